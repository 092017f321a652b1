// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <array>
#include <vector>

#include "page_store.h"
#include "series_key.h"

namespace m47::report {

/// The outcomes of a number of rows.
struct RowCounts {
    qint64 rows = 0;
    qint64 passed = 0;
    qint64 failed = 0;

    /// Rows that were measured with no alarm on.
    qint64 unjudged() const { return rows - passed - failed; }
};

/// What the page holds of one program in one unit.
struct ProgramSummary {
    measurement::SeriesKey key;
    RowCounts counts;
    struct Extremes {
        measurement::Reading minimum;
        measurement::Reading maximum;
    };
    std::array<Extremes, measurement::kQuantities.size()> extremes;

    /// "58.1 … 60.2" with the range marks; empty when it was never measured.
    QString range(measurement::Quantity quantity) const;
};

/// Every row of the page, summed up.
struct PageSummary {
    RowCounts counts;
    std::vector<ProgramSummary> programs;  ///< in the order in which they first came

    /// The plans that were measured, each once, in that order.
    QStringList plans() const;
    /// The units of the levels that were measured, each once, in that order; an empty text stands
    /// for one that is not known.
    QStringList units() const;
};

/// O(1) a row. Rows that do not tell their unit are in `unit`.
PageSummary summary_of(const measurement::PageStore& page, std::optional<LevelUnit> unit = {});

}  // namespace m47::report
