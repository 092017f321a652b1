// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_boxes.h"

#include <algorithm>

#include "carrier_table.h"
#include "numbers.h"
#include "oscillators.h"
#include "ui_band_sweep.h"

namespace m47::band {
namespace {

constexpr std::array kSteps{0.5, 1.0, 2.0, 5.0, 10.0};
constexpr Bilingual kClever{"as needed", "secondo bisogno"};
constexpr Bilingual kNothingThere{
    "Nothing was swept: the first frequency has to lie below the last, both in the band.",
    "Nessuna scansione: la prima frequenza deve stare sotto l'ultima, entrambe nella banda."};
constexpr Bilingual kNoOscillator{
    "Nothing was swept: an LNB has an oscillator from 3070 to 12000 MHz.",
    "Nessuna scansione: un LNB ha un oscillatore da 3070 a 12000 MHz."};

void fill(QComboBox* list, const QStringList& entries) {
    const int chosen = std::max(0, list->currentIndex());
    list->clear();
    list->addItems(entries);
    list->setCurrentIndex(chosen);
}

QString digits(double mhz) {
    return QString::number(mhz, 'f', 1);
}

}  // namespace

void fill_lists(const Ui::BandSweep& ui, const Texts& texts) {
    QStringList feeds, steps{texts.pick(kClever)};
    for (const Feed& feed : kFeeds) feeds += feed_text(feed, texts);
    feeds += all_feeds_text(texts);
    for (const double step : kSteps) steps += QStringLiteral("%1 MHz").arg(step);
    fill(ui.band_feed, feeds);
    fill(ui.band_step, steps);
    fill(ui.band_axis, {QStringLiteral("IF"), QStringLiteral("RF")});
}

BandChoice choice_of(const BandBoxes& boxes) {
    BandChoice choice;
    choice.in_the_sky = boxes.axis == 1;
    choice.whole = boxes.whole;
    choice.from = link::typed_value(boxes.from);
    choice.to = link::typed_value(boxes.to);
    if (boxes.step > 0) choice.step = kSteps[static_cast<std::size_t>(boxes.step) - 1];
    choice.feed = std::max(0, boxes.feed);
    choice.oscillators = {link::typed_value(boxes.low), link::typed_value(boxes.high)};
    return choice;
}

const Bilingual* fault_of(const BandBoxes& boxes) {
    const BandChoice choice = choice_of(boxes);
    if (choice.in_the_sky && !std::ranges::all_of(choice.oscillators, programme::is_oscillator))
        return &kNoOscillator;
    return passes_of(choice).empty() ? &kNothingThere : nullptr;
}

void turn_span(BandBoxes& boxes) {
    const BandChoice choice = choice_of(boxes);
    if (choice.feed == kAllFeeds) return;
    const double oscillator = oscillator_of(choice, kFeeds[static_cast<std::size_t>(choice.feed)]);
    if (!programme::is_oscillator(oscillator)) return;
    const auto turned = [&](double mhz) {
        return choice.in_the_sky ? sky_frequency(mhz, oscillator) : std::abs(mhz - oscillator);
    };
    const auto [from, to] = std::minmax({turned(choice.from), turned(choice.to)});
    boxes.from = digits(from);
    boxes.to = digits(to);
}

void fit_span(BandBoxes& boxes) {
    boxes.part = !boxes.whole;
    const BandChoice choice = choice_of(boxes);
    const SweepSpan widest = widest_span(choice);
    const bool inside =
        choice.from >= widest.from && choice.from < choice.to && choice.to <= widest.to;
    if (!boxes.whole && inside) return;
    boxes.from = digits(widest.from);
    boxes.to = digits(widest.to);
}

}  // namespace m47::band
