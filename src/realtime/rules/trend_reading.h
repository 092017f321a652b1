// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace m47 {

/// What the trend shows of a row, each on an axis of its own.
enum class Quantity { level, ber, mer };
inline constexpr std::array kQuantities{Quantity::level, Quantity::ber, Quantity::mer};

/// The meter marks a reading that lies below or above its range with "<" or ">".
enum class RangeMark : std::uint8_t { none, below, above };

/// One value of a row. A value that was not measured is no number.
struct Reading {
    float value = std::numeric_limits<float>::quiet_NaN();
    RangeMark mark = RangeMark::none;

    bool measured() const { return !std::isnan(value); }
};

/// The least bit error rate that a logarithmic axis shows: a count without an error lies there.
inline constexpr double kLeastBer = 1e-9;

/// The reading in a cell of the page. A cell that does not hold a number behind its range mark
/// (empty, "ERROR"), or holds a negative bit error rate, was not measured.
Reading reading_of(Quantity quantity, std::string_view cell);

/// A reading as the legend shows it, range mark included: "58.3", "<1.0E-8"; a dash when it was not
/// measured.
QString reading_text(Quantity quantity, const Reading& reading);

/// Where on its axis a measured value lies: a bit error rate below kLeastBer lies at that.
double plotted_value(Quantity quantity, float value);

/// The midnight that begins the date "dd/mm/yy" of a row (a year of four digits is taken too), as
/// seconds since 1970 on the clock that wrote it; time zones are left out of it. Nothing when it is
/// no date.
std::optional<double> row_midnight(std::string_view date);

/// The time "hh:mm:ss" of a row as seconds since midnight; nothing when it is none.
std::optional<double> row_clock(std::string_view time);

/// Seconds since 1970 as "yyyy-mm-dd hh:mm:ss".
std::string time_text(double time);

}  // namespace m47
