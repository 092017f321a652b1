// SPDX-License-Identifier: GPL-3.0-or-later
// The search of the manual. It works on a file of the disk, where a page may fetch nothing: the text
// of all pages comes along as m47Sections, [page, title, heading, anchor, text] each.
"use strict";

(function () {
    const form = document.getElementById("search");
    const sought = document.getElementById("sought");
    const found = document.getElementById("found");
    const pages = document.getElementById("pages");
    const kMost = 12;
    const kAround = 50;

    // Accents and capitals make no difference.
    function plain(text) {
        return text.toLowerCase().normalize("NFD").replace(/[\u0300-\u036f]/g, "");
    }

    // How well a section fits all of the words; 0 where one of them is missing.
    function rank(section, words) {
        const heading = plain(section[1] + " " + section[2]);
        const text = plain(section[4]);
        let points = 0;
        for (const word of words) {
            const inHeading = heading.includes(word);
            const inText = text.includes(word);
            if (!inHeading && !inText) return 0;
            points += inHeading ? 10 : 1;
        }
        return points;
    }

    function cutOut(text, word) {
        const at = Math.max(0, plain(text).indexOf(word));
        const from = Math.max(0, at - kAround);
        const to = Math.min(text.length, at + word.length + kAround);
        return (from > 0 ? "…" : "") + text.slice(from, to).trim() + (to < text.length ? "…" : "");
    }

    function entry(section, word) {
        const item = document.createElement("li");
        const link = document.createElement("a");
        link.href = section[0] + ".html" + (section[3] ? "#" + section[3] : "");
        link.textContent = section[2] ? section[1] + ": " + section[2] : section[1];
        const text = document.createElement("span");
        text.textContent = cutOut(section[4], word);
        item.append(link, document.createElement("br"), text);
        return item;
    }

    function search() {
        const words = plain(sought.value).split(/\s+/).filter((word) => word);
        found.replaceChildren();
        found.hidden = words.length === 0;
        pages.hidden = words.length > 0;
        if (words.length === 0) return;
        const hits = m47Sections
            .map((section) => [rank(section, words), section])
            .filter((hit) => hit[0] > 0)
            .sort((one, other) => other[0] - one[0])
            .slice(0, kMost);
        for (const hit of hits) found.append(entry(hit[1], words[0]));
        if (hits.length === 0) {
            const none = document.createElement("li");
            none.textContent = found.dataset.none;
            found.append(none);
        }
    }

    form.hidden = false;
    sought.addEventListener("input", search);
    form.addEventListener("submit", function (event) {
        event.preventDefault();
        const first = found.querySelector("a");
        if (first) first.click();
    });
    // What was sought before is shown again by a page that is come back to; a link can name it too.
    const named = new URLSearchParams(window.location.search).get("q");
    if (named) sought.value = named;
    search();
})();
