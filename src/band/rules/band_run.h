// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "band_choice.h"
#include "meter_levels.h"
#include "sweep.h"
#include "work.h"

namespace m47::band {

/// How a run of passes over the band ended, for whoever waited for it.
struct BandEnd {
    bool stopped = false;  ///< told to stop or to end
    bool lost = false;     ///< nobody answers any more
    int levels = 0;
    int without_level = 0;  ///< frequencies at which the meter gave no sure level
    /// The unit was changed at the meter in a pass, which ended there with the levels before; where
    /// nobody can tell which those are, none of the pass counts.
    bool unit_changed = false;
    bool pass_left_out = false;
    std::vector<Bilingual> not_set_back{};
};

/// What `end` says in one sentence, with the number of `carriers` found.
QString end_text(const BandEnd& end, std::size_t carriers, const Texts& texts);

/// Passes over the band, one behind the other. At the end, however it comes, the meter is set back.
class BandRun {
  public:
    BandRun(link::Link& link, std::vector<BandPass> passes)
        : link_(link), passes_(std::move(passes)), levels_(link) {}

    /// Asked behind all passes whether they begin again; while it would say so nobody is told how
    /// much is to come.
    std::function<bool()> repeats = [] { return false; };
    /// Told of a pass that begins, the meter's unit known, and of each answer in it.
    std::function<void(const BandPass& pass, std::optional<LevelUnit> unit)> on_pass;
    std::function<void(const Sample& sample)> on_level;
    /// Told that the levels of the pass that began last are in units that nobody can tell apart.
    std::function<void()> on_mixed;
    /// Told of each pass that was gone through to its end.
    std::function<void()> on_passed;

    /// Sweeps. Told to stop it ends with what there is and does not throw.
    BandEnd run();

  private:
    void sweep_all(link::Work& work);
    void sweep_one(std::size_t place, link::Work& work);
    void note(const Sample& sample);
    void check_unit(link::Work& work);
    void leave_out_pass(link::Work& work);
    void finish(link::Work& work);

    link::Link& link_;
    std::vector<BandPass> passes_;
    MeterLevels levels_;
    BandEnd end_;
    int pass_levels_ = 0;  ///< of the pass whose unit was not asked for again yet
};

}  // namespace m47::band
