// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIODevice>
#include <span>

#include "trend_series.h"

namespace m47::trend {

/// Writes the series to `file` for a spreadsheet: a header line, then the rows program by program,
/// each in its order of time, as TAB-separated fields in Latin-1 ended by LF:
/// TIME ("yyyy-mm-dd hh:mm:ss"), PROGRAM, LEV, BER, MER, STATUS, in MARKS the names of the
/// quantities that lay beyond the meter's range with their mark ("BER<"), and in UNIT that of the
/// level. What was not measured or is not known is an empty field. False when the device did not
/// take all of it.
bool write_trend_table(QIODevice& file, std::span<const TrendSeries* const> series);

}  // namespace m47::trend
