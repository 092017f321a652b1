// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <span>

#include "texts.h"

namespace m47 {

/// The tooltip of one control or toolbar key. A control whose Italian text is nullptr keeps the
/// English one in both languages; one whose English text is nullptr has none in English.
struct Tooltip {
    const char* control;
    const char* english;
    const char* italian;
};

/// Sets the tooltips of a screen that is being loaded, in the language that is in use now. A table
/// entry without its control is a Fault.
void set_tooltips(QObject* screen, std::span<const Tooltip> table, const Texts& texts);

/// What a menu, an entry of one, a button, a label or a frame is called.
struct Caption {
    const char* control;
    Bilingual text;
};

/// Sets the captions of what `screen` has, in the language that is in use now. A table entry
/// without its control is a Fault.
void set_captions(QObject* screen, std::span<const Caption> table, const Texts& texts);

/// Sets the words under the keys of `screen`'s toolbars, in the language that is in use now. A
/// table entry without its key is a Fault.
void set_key_words(QObject* screen, std::span<const Caption> table, const Texts& texts);

/// `text` as a tooltip that shows it as it stands, even where it looks like mark-up.
QString plain_tooltip(const QString& text);

/// Sets one tooltip of a widget or an action.
void set_tooltip(QObject* control, const QString& text);

}  // namespace m47
