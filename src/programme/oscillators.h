// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <optional>

#include "fields.h"
#include "recordset.h"

namespace m47::programme {

/// The four oscillators of a plan in MHz, as their list shows them; an empty one is none.
using Oscillators = std::array<QString, db::field::kOscillators.size()>;

/// Which of them, 0 to 3, is meant by the entry `stored` of a program: one that is not there counts
/// as the first.
constexpr int oscillator_entry(int stored) {
    return stored >= 0 && stored < static_cast<int>(db::field::kOscillators.size()) ? stored : 0;
}

/// The local oscillators that exist for LNBs, in MHz.
inline constexpr double kOscillatorMinimum = 3070;
inline constexpr double kOscillatorMaximum = 12000;

/// True for an oscillator in MHz that an LNB can have; the meter refuses all others.
constexpr bool is_oscillator(double mhz) {
    return mhz >= kOscillatorMinimum && mhz <= kOscillatorMaximum;
}

/// Of the current row of `configurazione`, the plan's set.
Oscillators read_oscillators(const db::Recordset& configurazione);

/// Sets oscillator `index` (0 to 3) of the row that is open in `configurazione`; an empty text
/// unsets it.
void write_oscillator(db::Recordset& configurazione, int index, const QString& text);

/// The entry of `oscillators` for `mhz`, taken there if need be; best the one that is `preferred`.
/// Nothing where all are in use at other frequencies.
std::optional<int> place_oscillator(Oscillators& oscillators, int preferred, const QString& mhz);

}  // namespace m47::programme
