// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <optional>

#include "measurement.h"
#include "peak_run.h"

namespace m47::peak {

/// A search as lines for other programs, separated by TAB: where the shaft stood, in steps and
/// degrees east of the start, what the meter said there, its range mark and its unit.
QByteArray peak_header();
QByteArray peak_line(const Taken& taken, std::optional<LevelUnit> unit);

/// The line behind the last one: where the dish stands on its peak, and by how many dB that is
/// better than the start. Empty where none was found.
QByteArray gain_line(const PeakOutcome& outcome);

}  // namespace m47::peak
