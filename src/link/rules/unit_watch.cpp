// SPDX-License-Identifier: GPL-3.0-or-later
#include "unit_watch.h"

#include "commands.h"
#include "fault.h"

namespace m47::link {
namespace {

/// A doubtful answer is asked for again so often.
constexpr int kTries = 2;

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

}  // namespace m47::link
