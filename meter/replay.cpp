// SPDX-License-Identifier: GPL-3.0-or-later
#include "replay.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "text.h"

namespace meter {

namespace {

/// Of the commands that were never recorded so many are told.
constexpr std::size_t kMostTold = 1000;

std::string times(std::uint64_t count) {
    return count == 1 ? "once" : std::to_string(count) + " times";
}

}  // namespace

Replay::Replay(std::istream& file, double speed, bool strict)
    : recording_(file), speed_(speed), strict_(strict) {}

std::chrono::microseconds Replay::at_speed(std::chrono::microseconds recorded) const {
    if (speed_ <= 0.0) return std::chrono::microseconds(0);
    const double slowest = 1.0e15;
    const double time = static_cast<double>(recorded.count()) / speed_;
    return std::chrono::microseconds(std::llround(std::min(time, slowest)));
}

Delivery Replay::handle(const std::string& line) {
    auto exchange = recording_.next(line);
    if (!exchange) return unrecorded(line);
    RecordedPace& pace = exchange->pace;
    for (auto& piece : pace.pieces) {
        piece.first = at_speed(piece.first);
        piece.last = at_speed(piece.last);
    }
    if (pace.lost) pace.lost = at_speed(*pace.lost);
    if (pace.back) pace.back = at_speed(*pace.back);
    Delivery delivery;
    delivery.bytes = std::move(exchange->answer);
    delivery.recorded = std::move(pace);
    return delivery;
}

Delivery Replay::unrecorded(const std::string& line) {
    Delivery delivery;
    // What wakes the meter has no answer.
    if (line.empty()) return delivery;
    if (unrecorded_.size() < kMostTold || unrecorded_.contains(line)) ++unrecorded_[line];
    const bool question = trimmed(line).ends_with('?');
    const char* words = question ? "Invalid Parameter(s)\rOK\r" : "OK\r";
    delivery.bytes = line + "\r" + (strict_ ? "COMMAND ERROR\r" : words);
    return delivery;
}

std::string Replay::fault() const {
    const Soundness& soundness = recording_.soundness();
    if (soundness.unknown_version)
        return "is a recording of version " + std::to_string(*soundness.unknown_version) +
               ", and only version " + std::to_string(kTraceVersion) + " can be read here";
    return soundness.exchanges == 0 ? "holds no command to the meter" : "";
}

std::string Replay::remark() const {
    const Soundness& soundness = recording_.soundness();
    if (soundness.spoilt_lines == 0) return {};
    const bool one = soundness.spoilt_lines == 1;
    if (one && soundness.cut_off) return "the last line is cut off and left out";
    return std::to_string(soundness.spoilt_lines) +
           (one ? " line cannot be read and is left out, line "
                : " lines cannot be read and are left out, the first is line ") +
           std::to_string(soundness.first_spoilt) +
           (soundness.cut_off ? ", the last is cut off" : "");
}

std::string Replay::never_recorded() const {
    std::string text;
    for (const auto& [command, count] : unrecorded_)
        text += "m47-meter: never recorded, asked " + times(count) + ": " + escaped(command) + "\n";
    return text;
}

}  // namespace meter
