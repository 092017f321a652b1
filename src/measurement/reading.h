// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace m47::measurement {

/// What the meter measures of a program.
enum class Quantity : std::uint8_t { level, ber, mer, pvber, cfo, cn, noise };
inline constexpr std::size_t kAllQuantities = 7;
/// What is drawn over time and summed up.
inline constexpr std::array kQuantities{Quantity::level, Quantity::ber, Quantity::mer};

/// The meter marks a reading that lies below or above its range with "<" or ">".
enum class RangeMark : std::uint8_t { none, below, above };

/// One value. A value that was not measured is no number.
struct Reading {
    float value = std::numeric_limits<float>::quiet_NaN();
    RangeMark mark = RangeMark::none;

    bool measured() const { return !std::isnan(value); }
};

/// The reading in `text`, an answer of the meter or a cell of the page. What does not hold a number
/// behind its range mark (empty, "ERROR"), or holds a negative bit error rate, was not measured.
Reading reading_of(Quantity quantity, std::string_view text);
Reading reading_of(Quantity quantity, const QString& text);

/// A reading as it is shown, range mark included: "58.3", "<1.0E-8"; a dash when it was not
/// measured.
QString reading_text(Quantity quantity, const Reading& reading);

/// True for the bit error rates, which are counted in decades.
constexpr bool is_error_rate(Quantity quantity) {
    return quantity == Quantity::ber || quantity == Quantity::pvber;
}

}  // namespace m47::measurement
