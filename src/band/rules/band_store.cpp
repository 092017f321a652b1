// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_store.h"

#include <algorithm>

namespace m47::band {

void BandStore::begin_pass(const Feed& feed, std::optional<LevelUnit> unit) {
    const auto place = std::ranges::find(states_, feed, &BandState::feed);
    latest_ = static_cast<std::size_t>(place - states_.begin());
    if (place == states_.end()) states_.push_back({feed, unit});
    BandState& state = states_[latest_];
    if (state.unit != unit) state = {feed, unit};
    before_ = state.traces;
    state.traces.begin_pass();
}

void BandStore::take(const Sample& sample) {
    states_[latest_].traces.take(sample);
}

void BandStore::drop_pass() {
    states_[latest_].traces = before_;
}

void BandStore::clear() {
    states_.clear();
    latest_ = 0;
}

bool BandStore::empty() const {
    return std::ranges::all_of(states_,
                               [](const BandState& state) { return state.traces.live().empty(); });
}

void BandStore::keep_as_reference() {
    references_.clear();
    for (const BandState& state : states_)
        references_.push_back({state.feed, state.unit, state.traces.live()});
}

BandCurve& BandStore::reference_of(const Feed& feed, std::optional<LevelUnit> unit) {
    for (ReferenceCurve& reference : references_)
        if (reference.feed == feed && reference.unit == unit) return reference.curve;
    references_.push_back({feed, unit});
    return references_.back().curve;
}

void BandStore::take_reference(const std::vector<SweepRow>& rows) {
    references_.clear();
    for (const SweepRow& row : rows) reference_of(row.terms.feed, row.terms.unit).take(row.sample);
}

const BandCurve* BandStore::reference_for(const BandState& state) const {
    for (const ReferenceCurve& reference : references_)
        if (reference.feed == state.feed && reference.unit == state.unit) return &reference.curve;
    return nullptr;
}

}  // namespace m47::band
