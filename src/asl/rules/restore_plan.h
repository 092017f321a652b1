// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "slot_block.h"

namespace m47::asl {

/// What becomes of one slot in a restore.
enum class SlotFate {
    unchanged,   ///< the meter holds it already
    written,     ///< a satellite is programmed
    emptied,     ///< the satellite in it is deleted
    left_alone,  ///< the file does not hold it whole
};

struct SlotPlan {
    SlotFate fate = SlotFate::left_alone;
    /// What the meter holds now; nothing where it did not arrive whole.
    std::optional<SlotBlock> now;
    /// What the file holds; nothing where that is not whole.
    std::optional<SlotBlock> file;
};

/// What becomes of each slot, the slot being the place.
using RestorePlan = std::array<SlotPlan, kSlots>;

RestorePlan restore_plan(const SlotTable& now, const SlotTable& file);

/// True when `plan` changes any slot.
bool changes_any(const RestorePlan& plan);

/// The slots that `plan` changes although nobody knows what they hold now.
QList<int> overwritten_unread(const RestorePlan& plan);

/// The slots that do not hold what `plan` was to bring about, `now` being what the meter holds
/// after it. A slot that was left alone must hold what it held before.
QList<int> slots_that_differ(const RestorePlan& plan, const SlotTable& now);

}  // namespace m47::asl
