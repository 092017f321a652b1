// SPDX-License-Identifier: GPL-3.0-or-later
#include "unit_watch.h"

#include <cmath>
#include <utility>

#include "commands.h"
#include "fault.h"

namespace m47::link {
namespace {

/// A doubtful answer is asked for again so often.
constexpr int kTries = 2;
/// Who turns a dish seldom moves a level by so much from one answer to the next, dB; another unit
/// moves it by 48.8 at least.
constexpr double kLeap = 25;

}  // namespace

bool UnitWatch::changed() {
    const Measuring measuring(link_);
    for (int tried = 0; tried < kTries && link_.port_connected; ++tried) {
        try {
            static_cast<void>(link_.ask(command::query(command::kUnit)));
        } catch (const DoubtfulAnswer&) {
            continue;
        }
        const std::optional<int> now = link_.settings.unit();
        if (now) return first_ && now != first_;
    }
    return false;
}

bool UnitWatch::changed_at(double level) {
    const std::optional<double> before = std::exchange(last_, level);
    if (!before || std::abs(level - *before) < kLeap || !changed()) return false;
    last_.reset();
    return true;
}

}  // namespace m47::link
