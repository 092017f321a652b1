// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_choice.h"

#include <algorithm>

#include "tuning_range.h"

namespace m47::band {
namespace {

std::vector<Feed> feeds_of(const BandChoice& choice) {
    if (choice.feed == kAllFeeds) return {kFeeds.begin() + 1, kFeeds.end()};
    return {kFeeds[static_cast<std::size_t>(choice.feed)]};
}

SweepSpan range_of(const BandChoice& choice, const Feed& feed) {
    const programme::TuningRange range =
        programme::tuning_range(!choice.in_the_sky, oscillator_of(choice, feed));
    return {range.minimum, range.maximum, {}};
}

/// Of the intermediate band. An oscillator above the received band turns it round.
SweepSpan intermediate(const SweepSpan& span, const BandChoice& choice, const Feed& feed) {
    if (!choice.in_the_sky) return span;
    const double oscillator = oscillator_of(choice, feed);
    if (span.from > oscillator) return {span.from - oscillator, span.to - oscillator, span.step};
    return {oscillator - span.to, oscillator - span.from, span.step};
}

}  // namespace

double oscillator_of(const BandChoice& choice, const Feed& feed) {
    return choice.oscillators[feed.tone.value_or(false) ? 1 : 0];
}

SweepSpan widest_span(const BandChoice& choice) {
    const std::vector<Feed> feeds = feeds_of(choice);
    SweepSpan widest = range_of(choice, feeds.front());
    for (const Feed& feed : feeds) {
        const SweepSpan range = range_of(choice, feed);
        widest.from = std::min(widest.from, range.from);
        widest.to = std::max(widest.to, range.to);
    }
    return widest;
}

std::vector<BandPass> passes_of(const BandChoice& choice) {
    std::vector<BandPass> passes;
    for (const Feed& feed : feeds_of(choice)) {
        SweepSpan span = range_of(choice, feed);
        span.step = choice.step;
        if (!choice.whole) {
            span.from = std::max(span.from, choice.from);
            span.to = std::min(span.to, choice.to);
        }
        if (span.from < span.to) passes.push_back({feed, intermediate(span, choice, feed)});
    }
    return passes;
}

}  // namespace m47::band
