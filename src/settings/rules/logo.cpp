// SPDX-License-Identifier: GPL-3.0-or-later
#include "logo.h"

#include <algorithm>

#include "blanks.h"
#include "commands.h"
#include "enter_key.h"

namespace m47::settings {

void Logo::read() {
    link_.send(link::command::query(link::command::kLogo));
    logo_txt = link_.last_answer();
}

void Logo::logo_txt_KeyPress(int key_ascii) {
    if (key_ascii != kEnterKey || !can_be_sent(logo_txt)) return;
    const qsizetype end = logo_txt.indexOf(u'\r');
    if (end >= 0) logo_txt.truncate(end);
    link_.send(link::command::kLogo + u' ' + without_blanks(logo_txt));
    read();
}

bool Logo::can_be_sent(const QString& text) {
    constexpr char16_t kLastLatin1 = 0xFF;
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.unicode() <= kLastLatin1; });
}

}  // namespace m47::settings
