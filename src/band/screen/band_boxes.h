// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "band_choice.h"
#include "band_picture.h"
#include "texts.h"

namespace Ui {
class BandSweep;
}

namespace m47::band {

/// What stands in the boxes of the screen.
struct BandBoxes {
    QString from, to;
    QString low = QStringLiteral("9750");
    QString high = QStringLiteral("10600");
    int feed = 0;
    int axis = 0;  ///< 0 intermediate band, 1 sky
    int step = 0;  ///< 0 where something is, else an entry of the list
    bool whole = true;
    bool part = false;  ///< not whole: `from` and `to` can be typed
    bool repeats = false;
    std::array<bool, kTraces> traces{true, false, false, true, false};

    bool& trace(Trace one) { return traces[static_cast<std::size_t>(one)]; }
};

/// Fills the lists, in the language of `texts`.
void fill_lists(const Ui::BandSweep& ui, const Texts& texts);

/// What the boxes ask for.
BandChoice choice_of(const BandBoxes& boxes);

/// Where an axis in the sky is wanted without oscillators that an LNB can have, or where `from` and
/// `to` leave nothing: the sentence that says so; null where all can be swept.
const Bilingual* fault_of(const BandBoxes& boxes);

/// Takes `from` and `to` over to the axis that was just chosen, by the oscillator of the LNB state
/// chosen. Of several each has a span of its own there: they stay.
void turn_span(BandBoxes& boxes);

/// Brings `from` and `to` into what can be swept: all of it where the whole band is wanted, or
/// where they lie outside.
void fit_span(BandBoxes& boxes);

}  // namespace m47::band
