// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "page_store.h"
#include "trend_reading.h"

namespace m47 {

/// The outcomes of a number of rows.
struct RowCounts {
    qint64 rows = 0;
    qint64 passed = 0;
    qint64 failed = 0;

    /// Rows that were measured with no alarm on.
    qint64 unjudged() const { return rows - passed - failed; }
};

/// What the page holds of one program, which is a frequency and an oscillator.
struct ProgramSummary {
    std::string frequency;
    std::string oscillator;
    RowCounts counts;
    struct Extremes {
        Reading minimum;
        Reading maximum;
    };
    std::array<Extremes, kQuantities.size()> extremes;

    /// "58.1 … 60.2" with the range marks; empty when it was never measured.
    QString range(Quantity quantity) const;
};

/// Every row of the page, summed up.
struct PageSummary {
    RowCounts counts;
    std::vector<ProgramSummary> programs;  ///< in the order in which they first came
};

/// O(1) a row.
PageSummary summary_of(const PageStore& page);

}  // namespace m47
