// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdint>

#include "measurement.h"

namespace m47::measurement {

/// How measurements are handed to other programs: a line each, in UTF-8, with its end.
enum class OutputFormat : std::uint8_t {
    tsv,   ///< separated by TAB; what separates within a text becomes a blank
    csv,   ///< as RFC 4180 has it: commas, quotes where they are needed, CR LF
    json,  ///< an object a line, null for what was not measured or is not known
};

/// The names of the readings for other programs, by quantity.
inline constexpr std::array<const char*, kAllQuantities> kQuantityNames{
    "level", "ber", "mer", "pvber", "cfo", "cn", "noise"};

/// "digital", "analog" or nothing.
QString mode_text(MeasureMode mode);

/// The mark of a value beyond the meter's range, as it stands in a column: "<", ">" or nothing.
QByteArray mark_text(RangeMark mark);

/// The line of the columns' names; empty for JSON, where each line has them.
QByteArray output_header(OutputFormat format);

/// `measured` as a line. Its instant is told as ISO 8601 with `offset`, the seconds by which the
/// clock that wrote it is before UTC. Values are plain numbers, the meter's range mark "<" or ">" a
/// column of its own; level and noise are in `unit`, frequencies in MHz.
QByteArray output_line(OutputFormat format, const Measurement& measured, int offset);

}  // namespace m47::measurement
