// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <optional>
#include <string>
#include <string_view>

namespace m47::measurement {

/// The number that `text` begins with, as the limits read it; nothing where it begins with none.
std::optional<double> leading_value(std::string_view text);

/// The midnight that begins the date "dd/mm/yy" of a row (a year of four digits is taken too), as
/// seconds since 1970 on the clock that wrote it; time zones are left out of it. Nothing when it is
/// no date.
std::optional<double> row_midnight(std::string_view date);

/// The time "hh:mm:ss" of a row as seconds since midnight; nothing when it is none.
std::optional<double> row_clock(std::string_view time);

/// What row_midnight and row_clock give for a row written at `moment`.
double row_instant(const QDateTime& moment);

/// Seconds since 1970 as "yyyy-mm-dd hh:mm:ss".
std::string time_text(double time);

}  // namespace m47::measurement
