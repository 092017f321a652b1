// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include "measurement.h"

namespace m47::measurement {

/// What measurements have in common that can be compared with one another: the program of a plan,
/// or the frequency and oscillator of a measurement without one, in one unit.
struct SeriesKey {
    ProgramIdentity program;
    std::optional<float> frequency;   ///< of a program: that of the first measurement
    std::optional<float> oscillator;  ///< the same
    std::optional<LevelUnit> unit;

    /// A program of a plan is told by its number alone: two polarisations share the frequency.
    bool operator==(const SeriesKey& other) const;

    /// "ASTRA 007 · 11778.0 / 10600", without a plan "11778.0 / 10600".
    QString name() const;
    /// "10600"; empty for the first IF.
    QString oscillator_text() const;
};

SeriesKey series_key(const Measurement& measurement);

struct SeriesKeyHash {
    std::size_t operator()(const SeriesKey& key) const;
};

}  // namespace m47::measurement
