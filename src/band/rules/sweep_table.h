// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <optional>
#include <vector>

#include "band_curve.h"
#include "carriers.h"
#include "measurement.h"
#include "meter_levels.h"

namespace m47::band {

/// What holds for all levels of one pass over the band.
struct SweepTerms {
    Feed feed;                           ///< as it was chosen
    std::optional<double> oscillator{};  ///< of the LNB, MHz; nothing: not told
    std::optional<LevelUnit> unit{};     ///< nothing: the meter has not told
};

/// Where the sky sends what arrives at `mhz` of the intermediate band: above an oscillator below
/// the received band, below one above it.
double sky_frequency(double mhz, double oscillator);

/// A level with what it was measured under, a line of a table.
struct SweepRow {
    Sample sample;
    SweepTerms terms;
};

// Tables of lines that end in LF, cells parted by TAB, the first line their names. An empty cell is
// what is not known, or was not measured.

QByteArray sweep_header();
QByteArray sweep_line(const SweepRow& row);

QByteArray carrier_header();
QByteArray carrier_line(const Carrier& carrier, const SweepTerms& terms);

/// The rows of a table of levels, as far as it is sound.
struct SweepRead {
    std::vector<SweepRow> rows;
    std::optional<Said> fault;  ///< where and why it ends before its end
};
SweepRead read_sweep(const QByteArray& bytes);

}  // namespace m47::band
