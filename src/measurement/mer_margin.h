// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

#include "measurement.h"
#include "texts.h"

namespace m47::measurement {

/// How far a MER lies above what it has to be, in dB; below 0 it lies under it. Where the MER lay
/// beyond the meter's range the margin does too, on the same side.
struct Margin {
    double decibels = 0;
    RangeMark mark = RangeMark::none;

    bool operator==(const Margin&) const = default;
};

/// The margin of the MER of `measured` above `needed` dB; nothing where it was not measured.
std::optional<Margin> mer_margin(const Measurement& measured, double needed);

/// The margin above the alarm minimum that was in force; nothing where none was.
std::optional<Margin> alarm_margin(const Measurement& measured);

/// As a cell shows it: "3.2", "<-7.0", ">22.0"; a dash for nothing.
QString margin_text(const std::optional<Margin>& margin);

/// As a sentence says it: "3.2 dB left", "at least 22.0 dB left", "1.3 dB too little"; empty for
/// nothing.
QString margin_words(const std::optional<Margin>& margin, const Texts& texts);

}  // namespace m47::measurement
