// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "program_state.h"
#include "reading.h"

namespace m47::measurement {

/// How the meter was asked; a line of a log does not say it.
enum class MeasureMode : std::uint8_t { none = 0, analog = 2, digital = 3 };

/// What the limits make of a measurement; `none` where no alarm was on.
enum class Verdict : std::uint8_t { none, pass, fail };

/// "PASS", "FAIL" or empty.
QString verdict_text(Verdict verdict);

/// The program of a plan that was measured; empty for a measurement without a plan.
struct ProgramIdentity {
    QString plan;
    QString number;

    bool known() const { return !plan.isEmpty() || !number.isEmpty(); }
    /// "ASTRA 007"; empty when not known.
    QString text() const;
    bool operator==(const ProgramIdentity&) const = default;
};

/// A value is within its limits above `minimum` and below `maximum`; a side without a limit is
/// open.
struct Limits {
    std::optional<double> minimum;
    std::optional<double> maximum;

    /// A value equal to a limit is not within.
    bool hold(double value) const {
        return !(minimum && value <= *minimum) && !(maximum && value >= *maximum);
    }
    bool operator==(const Limits&) const = default;
};

/// The limits that readings were held against, by quantity; nothing where one was not checked.
using LimitsInForce = std::array<std::optional<Limits>, kAllQuantities>;

/// One measurement: what was sent to the meter and what it answered, whatever the boxes of a screen
/// show meanwhile.
struct Measurement {
    /// Seconds since 1970 on the clock that wrote the row, without a time zone; nothing for a line
    /// of a log that holds no date and time.
    std::optional<double> instant;
    ProgramIdentity program;
    MeasureMode mode = MeasureMode::none;
    std::optional<float> frequency;   ///< MHz, as it was sent
    std::optional<float> oscillator;  ///< MHz, as it was sent; nothing for the first IF
    std::array<Reading, kAllQuantities> readings{};
    /// What the levels were asked in; nothing where that is not known, as of a line of a log.
    std::optional<LevelUnit> unit;
    LimitsInForce limits{};
    Verdict verdict = Verdict::none;

    const Reading& reading(Quantity quantity) const {
        return readings[static_cast<std::size_t>(quantity)];
    }
    Reading& reading(Quantity quantity) { return readings[static_cast<std::size_t>(quantity)]; }
};

/// The name of `unit`, "dBuV"; empty where it is not known.
QString unit_text(std::optional<LevelUnit> unit);

/// `index` as a unit; nothing where there is none of that index.
std::optional<LevelUnit> unit_of_index(std::optional<int> index);

/// A frequency in MHz as it is shown: "11778.0".
QString frequency_text(float mhz);

}  // namespace m47::measurement
