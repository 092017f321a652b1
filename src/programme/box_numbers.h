// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::programme {

// The numbers that stand in boxes, as texts.

/// True where `text` is a number, with "." or ",", and nothing else.
bool is_number(const QString& text);

/// The number that `text` begins with; its decimal point may be a comma on every system, as whoever
/// types "1500,5" means it.
double box_value(const QString& text);

/// `text` as it is kept: the number that every reader will take it for. "27500abc" is "27500",
/// "45,5" is "45.5", "1E-8" stays; a text without a number is "0", an empty one stays empty.
QString number_text(const QString& text);

/// A frequency as the box shows it: one decimal tuned directly, else whole MHz.
QString frequency_box_text(double mhz, bool direct);

/// A bandwidth in MHz as the box shows it, in two digits.
QString bandwidth_box_text(double mhz);

}  // namespace m47::programme
