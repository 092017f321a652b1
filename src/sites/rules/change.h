// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <optional>

#include "measurement.h"
#include "texts.h"

namespace m47::sites {

/// What two measurements of a program are compared by.
inline constexpr std::array kComparedQuantities{
    measurement::Quantity::level, measurement::Quantity::cn, measurement::Quantity::mer,
    measurement::Quantity::ber, measurement::Quantity::pvber};

/// What became of a reading: the later one less the earlier one in dB, of the bit error rates in
/// decades. Where a reading lay beyond the meter's range it is known on one side alone: `least` is
/// the smallest and `most` the largest that it can be, and nothing on a side that is open.
struct Change {
    std::optional<double> least;
    std::optional<double> most;

    /// The value itself, where both readings have one.
    std::optional<double> exactly() const;
    bool operator==(const Change&) const = default;
};

/// The change between two readings of `quantity`; nothing where one was not measured, where both
/// lay beyond the same end of the range, or where it can be anything. A bit error rate of 0 lies
/// below the range.
std::optional<Change> change_between(measurement::Quantity quantity,
                                     const measurement::Reading& earlier,
                                     const measurement::Reading& later);

/// By how much `change` of `quantity` is for the worse, in its unit: less of level, C/N and MER,
/// more of the bit error rates. The sides stay what is known at least and at most.
Change loss_of(measurement::Quantity quantity, const Change& change);

/// A level in dBuV at 75 ohm; dBmV and dBm are converted exactly.
double in_dbuv(double level, LevelUnit unit);

/// As a cell shows it: "-3.2", "≥2.0" where it is known to be at least that, "≤-1.0" at most;
/// a dash for nothing.
QString change_text(const std::optional<Change>& change);

/// As a sentence says it: "3.2 dB less", "at least 2.0 decades worse", "unchanged"; empty for
/// nothing.
QString change_words(measurement::Quantity quantity, const std::optional<Change>& change,
                     const Texts& texts);

}  // namespace m47::sites
