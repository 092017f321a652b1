// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::link {

/// The number of a displayed value without its range mark: a "<" or ">" in front says that the
/// reading lies below or above the meter's range. 0 where there is no number.
double delete_segno(const QString& parola);

/// The text behind the label `cosa` in the multi-line answer `dove`, up to the end of its line;
/// blanks behind the label are kept. A label that is not there is a Fault.
QString delete_cr(const QString& cosa, const QString& dove);

/// `text` can be a value of the meter's: a number with its range mark in front and maybe a unit
/// behind, or some word in the place of one. False for anything else with a digit in it: a byte of
/// it was spoilt, and what number it was nobody knows.
bool can_be_value(const QString& text);

/// The same for an error rate: a number from 0 to 1, maybe with an exponent.
bool can_be_rate(const QString& text);

/// `reply` from its character `position` (1-based) to the end, blanks at both ends removed.
QString trimmed_from(const QString& reply, int position);

/// The level in the answer to "LEVANL?" where its second character is a blank, else nothing to
/// compare: the meter marks readings outside its range there. True when `level` was set.
bool level_for_attenuator(const QString& reply, double& level);

/// The value in the answer `reply` to "LEVDCP?" with a frequency behind it. An answer without a
/// line end in its right place is a Fault.
QString noise_power(const QString& reply);

}  // namespace m47::link
