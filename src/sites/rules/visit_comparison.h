// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "change.h"
#include "series_key.h"
#include "site_records.h"
#include "texts.h"

namespace m47::sites {

/// What a change of this much means; less of it is the meter's jitter and the weather.
struct Thresholds {
    double level = 2;  ///< dB
    double cn = 1;     ///< dB
    double mer = 1;    ///< dB
    double ber = 1;    ///< decades, of both bit error rates
};

/// Of `quantity`.
double threshold_of(measurement::Quantity quantity, const Thresholds& thresholds);

/// What became of a program between two visits.
enum class Meaning : std::uint8_t {
    lost,          ///< received then, asked again and no reading now
    worse,         ///< at least one quantity fell by the threshold or more
    incomparable,  ///< nothing that both visits know in a way that can be compared
    elsewhere,     ///< its number stands for another transponder now: the plan has changed
    unasked,       ///< measured then, not at all in the later visit
    same,
    better,  ///< none fell, at least one rose by the threshold or more
    fresh,   ///< received now, not measured or without a reading then
};

/// One program in two visits.
struct ProgramComparison {
    measurement::SeriesKey key;  ///< without a unit
    std::optional<VisitMeasurement> earlier{};
    std::optional<VisitMeasurement> later{};
    /// In the order of kComparedQuantities, a level in dB at 75 ohm whatever the units; nothing
    /// where a unit is not known, or a level was measured analog once and digital once.
    std::array<std::optional<Change>, kComparedQuantities.size()> changes{};
    /// In the same order: read then, and not comparable now, as it was not read or in no unit.
    std::array<bool, kComparedQuantities.size()> unknown{};
    Meaning meaning = Meaning::incomparable;
    /// How far the worst quantity fell, in thresholds; below 0 where it rose, 0 where nothing is
    /// known.
    double badness = 0;

    const std::optional<Change>& change(measurement::Quantity quantity) const;
    bool is_unknown(measurement::Quantity quantity) const;
};

/// One of the two is of another transponder than the other; a fine tuning is none.
bool is_elsewhere(const measurement::Measurement& one, const measurement::Measurement& other);

/// What tells the program of `one` apart, whatever unit it was measured in.
measurement::SeriesKey program_key(const VisitMeasurement& one);

/// The measurement of each program that counts in a visit: its last one, with or without readings,
/// as that is how the installation was left. In the order in which the programs first came. A
/// number that stood for two transponders is two of them.
std::vector<VisitMeasurement> counting(const std::vector<VisitMeasurement>& visit);

/// Compares two visits program by program, the worst first: lost, worse, incomparable, elsewhere,
/// unasked, same, better, fresh; within each by `badness`. A program is told by plan and number;
/// what has none, as an imported log, by frequency and oscillator, where only one can be meant.
std::vector<ProgramComparison> compare_visits(const std::vector<VisitMeasurement>& earlier,
                                              const std::vector<VisitMeasurement>& later,
                                              const Thresholds& thresholds = {});

/// By how many dB MER or level of `compared` fell, whichever fell more; nothing where neither is
/// known to have fallen. At least this much where a reading lay beyond the range.
std::optional<double> fall_of(const ProgramComparison& compared);

/// "worse".
QString meaning_text(Meaning meaning, const Texts& texts);

}  // namespace m47::sites
