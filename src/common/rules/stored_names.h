// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47 {

/// The longest name of a plan or of a satellite, in characters; the meter has room for no more of a
/// satellite's.
inline constexpr qsizetype kLongestName = 10;

/// The name of a satellite slot, or of a row, that holds no satellite.
inline const QString kNoSatellite = QStringLiteral("**********");

/// The record that ends the data of a satellite, in the meter's answer as in a row.
inline const QString kSatelliteEnd = QStringLiteral("S9030000FC");

}  // namespace m47
