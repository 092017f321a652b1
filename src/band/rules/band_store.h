// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "band_traces.h"
#include "sweep_table.h"

namespace m47::band {

/// The levels of one state of the LNB, in one unit.
struct BandState {
    Feed feed;
    std::optional<LevelUnit> unit{};
    BandTraces traces{};
};

/// A curve that others are held against.
struct ReferenceCurve {
    Feed feed;
    std::optional<LevelUnit> unit{};
    BandCurve curve{};
};

/// What sweeps have brought, and the reference. A state comes with its first pass.
class BandStore {
  public:
    /// A pass begins, measured in `unit`: what came in another one is left.
    void begin_pass(const Feed& feed, std::optional<LevelUnit> unit);
    /// A level of the pass that began last.
    void take(const Sample& sample);
    /// The levels of the pass that began last were none: its state is as it was before.
    void drop_pass();
    /// Leaves all but the reference.
    void clear();

    const std::vector<BandState>& states() const { return states_; }
    /// The place of the state that was swept last.
    std::size_t latest() const { return latest_; }
    bool empty() const;

    /// The last pass of each state becomes the reference.
    void keep_as_reference();
    /// The levels of a table become it.
    void take_reference(const std::vector<SweepRow>& rows);
    bool has_reference() const { return !references_.empty(); }
    /// That of the same feed and unit as `state`; null without one.
    const BandCurve* reference_for(const BandState& state) const;

  private:
    BandCurve& reference_of(const Feed& feed, std::optional<LevelUnit> unit);

    std::vector<BandState> states_;
    std::vector<ReferenceCurve> references_;
    std::size_t latest_ = 0;
    BandTraces before_;  ///< of the state of the pass that began last, as that began
};

}  // namespace m47::band
