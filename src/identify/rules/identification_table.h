// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <optional>

#include "identification_run.h"
#include "measurement.h"

namespace m47::identify {

/// An identification as lines for other programs, separated by TAB: what was asked in which state
/// of the LNB, what the meter said, and what is held behind that: the most probable answer, the
/// next candidate, and the drift of the LNB. Chances are rounded down: nothing is quite certain.
QByteArray identification_header();
/// With what is held when it is called: to be called behind each answer.
QByteArray asked_line(const IdentificationRun& run, const Asked& asked,
                      std::optional<LevelUnit> unit);

/// The line behind the last one: the verdict. Empty where it ended before it was clear.
QByteArray verdict_line(const IdentificationRun& run, const IdentificationEnd& end);

}  // namespace m47::identify
