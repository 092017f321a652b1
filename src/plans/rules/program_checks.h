// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

#include "program_record.h"

namespace m47::plans {

// Each takes what stands in a box and gives back what has to stand there: the text itself where it
// is good, the nearest allowed value (or a fixed one) where it is not. None refuses.

/// Program number, 0 to 99 in three digits.
QString checked_program_number(const QString& text);

/// Frequency in MHz within what the meter tunes, directly or through `oscillator` (MHz). Without
/// an oscillator there is no range yet and the text stays.
QString checked_frequency(const QString& text, bool direct, const QString& oscillator);

/// Symbol rate, 1500 to 45000 kS/s.
QString checked_symbol_rate(const QString& text);

/// Channel bandwidth, 1 to 40 MHz in two digits. Enter takes the nearest end; whoever leaves the
/// box with a value out of range gets the usual 36 MHz.
QString bandwidth_on_enter(const QString& text);
QString bandwidth_on_leaving(const QString& text);

/// Local oscillator, 3070 to 12000 MHz; an empty box is no oscillator and stays.
QString checked_oscillator(const QString& text);

/// Level limits in the unit that lies `unit_offset` dB below dBuV: 20 to 120 dBuV.
void correct_level_limits(QString& minimum, QString& maximum, double unit_offset);
/// C/N and MER limits, dB: a minimum outside 1 to 40 starts again at 1.
void correct_ratio_limits(QString& minimum, QString& maximum);
/// Channel BER limits: a minimum outside 0 to 0.03 becomes the nearer usual limit.
void correct_chber_limits(QString& minimum, QString& maximum);

/// Every alarm limit of `record`. Without a `unit_offset` the level limits are numbers of a unit
/// that nobody knows here, and stay.
void correct_limits(programme::ProgramRecord& record, std::optional<double> unit_offset);

/// A frequency as it is kept: checked, and with no more decimals than the box shows of it.
QString stored_frequency(const QString& text, bool direct, const QString& oscillator);

/// Every check but the number's, as Enter in each box runs it. Every text is then a number that
/// its box shows whole. `oscillator` is the text of the program's oscillator, `unit_offset` as for
/// correct_limits.
void correct_fields(programme::ProgramRecord& record, QString& oscillator,
                    std::optional<double> unit_offset);

}  // namespace m47::plans
