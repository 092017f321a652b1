// SPDX-License-Identifier: GPL-3.0-or-later
#include "link_sky.h"

#include <cmath>

#include "reading.h"

namespace m47::identify {
namespace {

constexpr int kLowVolts = 13;
constexpr int kHighVolts = 18;
constexpr double kKilosymbolsASecond = 1000;

/// As the meter wrote it: its tenths, without what a float adds behind them.
double decibels(const measurement::Reading& reading) {
    return std::round(double(reading.value) * 10) / 10;
}

Answer answer_of(const measurement::Reading& level) {
    // Beyond the range the reading stands still, and is no level.
    if (!level.measured() || level.mark == measurement::RangeMark::above) return {};
    return {.db = decibels(level), .below_range = level.mark == measurement::RangeMark::below};
}

Answer answer_of(const band::Quality& quality) {
    if (!quality.measured()) return {};
    Answer answer{.locked = quality.locked()};
    if (!quality.locked()) return answer;
    answer.mer = decibels(quality.mer);
    if (quality.offset.measured()) answer.offset = double(quality.offset.value);
    return answer;
}

}  // namespace

band::Feed feed_of(const LnbState& state) {
    return {state.high_voltage ? kHighVolts : kLowVolts, state.tone};
}

bool LinkSky::feed(int state) {
    const band::Feed feed = feed_of(lnb_.state(state));
    if (!prepared_) levels_.prepare(feed);
    prepared_ = true;
    return levels_.change_feed(feed);
}

Answer LinkSky::ask(const Question& question) {
    if (lost() || !feed(question.state)) return {};
    if (question.kind == Question::Kind::level) return answer_of(levels_.level(question.if_mhz));
    const auto kilosymbols = static_cast<int>(std::lround(question.rate * kKilosymbolsASecond));
    return answer_of(levels_.quality(question.if_mhz, kilosymbols));
}

std::vector<Bilingual> LinkSky::set_back() {
    prepared_ = false;
    return levels_.set_back();
}

}  // namespace m47::identify
