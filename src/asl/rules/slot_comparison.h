// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

#include "slot_block.h"

namespace m47::asl {

/// Up to eight neighbouring bytes of two slot blocks.
struct ComparedRow {
    int address = 0;
    QByteArray left;
    QByteArray right;
    /// For each byte, whether the two differ.
    QList<bool> differs;
};

/// Two slot blocks side by side, byte by byte.
struct SlotComparison {
    static constexpr int kRowBytes = 8;

    QList<ComparedRow> rows;
    /// How many bytes differ.
    int differing = 0;
};

SlotComparison compare_slots(const SlotBlock& left, const SlotBlock& right);

}  // namespace m47::asl
