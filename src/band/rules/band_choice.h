// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "sweep_plan.h"
#include "sweep_table.h"

namespace m47::band {

/// How an LNB is fed, in the order in which it is chosen: as it is, then by polarisation and band.
inline constexpr std::array kFeeds{Feed{}, Feed{13, false}, Feed{13, true}, Feed{18, false},
                                   Feed{18, true}};
/// The choice behind them: all but the first, one after the other.
inline constexpr int kAllFeeds = static_cast<int>(kFeeds.size());

/// What somebody wants to have swept. Frequencies in MHz.
struct BandChoice {
    bool in_the_sky = false;  ///< `from` and `to` lie in the sky, not in the intermediate band
    bool whole = true;        ///< all of the band, whatever `from` and `to` are
    double from = 0;
    double to = 0;
    std::optional<double> step{};  ///< nothing: where something is
    int feed = 0;                  ///< an index of kFeeds, or kAllFeeds
    /// Of the LNB without and with the tone; as it is, the first.
    std::array<double, 2> oscillators{9750, 10600};
};

/// The oscillator of `choice` that an LNB has which is fed so.
double oscillator_of(const BandChoice& choice, const Feed& feed);

/// The ends that `choice` can have: the meter's own, in the sky those of all its feeds.
SweepSpan widest_span(const BandChoice& choice);

/// One way over the band in one state of the LNB.
struct BandPass {
    Feed feed;
    SweepSpan span;
};

/// What has to be swept for `choice`, in this order; a state of the LNB that receives nothing of
/// the span is left out, so that it can be nothing at all.
std::vector<BandPass> passes_of(const BandChoice& choice);

}  // namespace m47::band
