// SPDX-License-Identifier: GPL-3.0-or-later
#include "slot_comparison.h"

namespace m47::asl {

SlotComparison compare_slots(const SlotBlock& left, const SlotBlock& right) {
    SlotComparison comparison;
    for (int address = 0; address < SlotBlock::kBytes; address += SlotComparison::kRowBytes) {
        ComparedRow row{address,
                        left.bytes().mid(address, SlotComparison::kRowBytes),
                        right.bytes().mid(address, SlotComparison::kRowBytes),
                        {}};
        for (qsizetype at = 0; at < row.left.size(); ++at) {
            row.differs += row.left[at] != row.right[at];
            if (row.differs.last()) ++comparison.differing;
        }
        comparison.rows += row;
    }
    return comparison;
}

}  // namespace m47::asl
