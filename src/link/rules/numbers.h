// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::link {

/// The number that `text` begins with (blanks before it skipped, exponent allowed, "." as the
/// decimal point), 0 where it begins with none. For everything the meter sends.
double meter_value(const QString& text);

/// As meter_value, but the decimal point is "." or the system's decimal separator. For everything
/// that a user typed or the database holds.
double typed_value(const QString& text);

/// `value` in a numeric picture: "0" a digit that is always shown, "." the decimal point, blanks as
/// they stand (" 00" gives " 07"). More integer digits than the picture holds are all shown.
/// Rounds half away from zero on the decimal value as written: 503.25 in "0000.0" is "0503.3".
QString format_number(double value, const char* picture);

/// The plain decimal text of a number: "-89", "11", "20.5".
QString plain_text(double value);

/// Whole number (0 or more) to upper-case digits in `base` (2 to 16); zero is the empty text.
QString num_to_hex(long value, int base);

/// num_to_hex in base 16 with one "0" before it when it is shorter than two characters; so zero is
/// "0", not "00".
QString hex_byte(long value);

/// Digits in `base` to the number they denote, as decimal text.
QString hex_to_num(const QString& text, int base);

/// A frequency in MHz as the meter wants it: "0000.0" from 900 to 2150 (satellite intermediate
/// band), "00000" outside.
QString format_freq(const QString& text);

}  // namespace m47::link
