// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "band_chart.h"
#include "band_choice.h"
#include "band_store.h"
#include "carrier_names.h"
#include "carrier_programs.h"

namespace m47::band {

/// What of a state is drawn, and how.
struct BandLook {
    bool in_the_sky = false;
    std::array<bool, kTraces> traces{};                     ///< in the order of Trace
    std::array<std::optional<double>, kMarkers> markers{};  ///< MHz of the intermediate band
};

/// Under what `state` was measured, as the axis of `choice` tells it: in the sky with the
/// oscillator.
SweepTerms terms_of(const BandState& state, const BandChoice& choice);

/// A frequency of the intermediate band on the axis, and back.
double on_axis(double mhz, const SweepTerms& terms);
double in_the_band(double mhz, const SweepTerms& terms);

/// The carriers in the last pass of `state`, by the names of `listed`.
std::vector<FoundCarrier> carriers_in(const BandState& state, const SweepTerms& terms,
                                      const std::vector<ListedTransponder>& listed);

/// The chart of `state` with those of `carriers` that are its own; `reference` may be null.
BandPicture picture_of(const BandState& state, const SweepTerms& terms, const BandLook& look,
                       const BandCurve* reference, const std::vector<FoundCarrier>& carriers,
                       const Texts& texts);

/// Lets the axis go over what is chosen to be swept, on the axis itself, and over the last pass of
/// `state`, which may have been of another choice.
void fit_axis(BandPicture& picture, double from, double to, const BandState& state,
              const SweepTerms& terms);

/// "1: 1200.0 MHz 58.3 dBuV" for each marker, as the last pass of `state` has it, a dash where that
/// has no level there or not yet, and what lies between them; empty without one.
QString markers_text(const BandState& state, const BandLook& look, const SweepTerms& terms);

/// The level of `curve` next to `mhz`, whatever lies between; nothing where there is none.
std::optional<Sample> nearest_level(const BandCurve& curve, double mhz);
/// The one above or below that of `mhz`; that itself at an end.
std::optional<Sample> next_level(const BandCurve& curve, double mhz, bool up);

}  // namespace m47::band
