// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "band_boxes.h"
#include "band_store.h"
#include "carrier_names.h"

namespace m47::band {

/// What was chosen and swept. It outlives the screen: a sweep takes minutes, and a tab that was
/// closed by a slip has lost none of it.
struct BandDesk {
    BandBoxes boxes;
    BandStore store;
    std::vector<ListedTransponder> listed;
};

}  // namespace m47::band
