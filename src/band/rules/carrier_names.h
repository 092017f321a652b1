// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "carriers.h"
#include "sweep_table.h"

namespace m47::band {

/// A transponder that a scan table lists.
struct ListedTransponder {
    double mhz = 0;
    double symbol_rate = 0;  ///< MS/s: how wide its carrier is where half of its power is reached
    QString polarisation;    ///< H, V, L or R
    QString name;            ///< "11778 V 27500" where the table has no name
};

/// The transponders of the DVB scan table `text` that can be understood and tuned.
std::vector<ListedTransponder> listed_transponders(const QString& text);

/// Gives each of `carriers` the name of the transponder that fits it best: near in the sky, as an
/// LNB drifts by some MHz, of about its width and of the polarisation that the supply chooses.
/// Without an oscillator in `terms` nobody knows where in the sky a carrier is, and none is named.
void name_carriers(std::vector<Carrier>& carriers,
                   const std::vector<ListedTransponder>& transponders, const SweepTerms& terms);

}  // namespace m47::band
