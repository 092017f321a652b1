// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_series.h"

#include <algorithm>

#include "change.h"
#include "visit_comparison.h"

namespace m47::sites {
namespace {

using measurement::Quantity;

std::optional<LevelUnit> last_unit(const std::vector<VisitMeasurement>& rows) {
    const auto found = std::find_if(rows.rbegin(), rows.rend(), [](const VisitMeasurement& row) {
        return row.measurement.unit.has_value();
    });
    return found == rows.rend() ? std::nullopt : found->measurement.unit;
}

/// A level of nobody knows which unit has no place among others.
void bring_to(LevelUnit unit, measurement::Measurement& measured) {
    if (!measured.unit) measured.reading(Quantity::level) = {};
    if (!measured.unit || *measured.unit == unit) return;
    measurement::Reading& level = measured.reading(Quantity::level);
    const double shift = in_dbuv(0, *measured.unit) - in_dbuv(0, unit);
    level.value = static_cast<float>(static_cast<double>(level.value) + shift);
    measured.unit = unit;
}

}  // namespace

std::vector<VisitMeasurement> visit_series(const std::vector<VisitMeasurement>& rows) {
    std::vector<VisitMeasurement> last;
    for (const VisitMeasurement& row : rows) {
        const auto met = std::ranges::find(last, row.visit, &VisitMeasurement::visit);
        if (met == last.end())
            last.push_back(row);
        else
            *met = row;
    }
    std::erase_if(last,
                  [now = last.empty() ? measurement::Measurement() : last.back().measurement](
                      const VisitMeasurement& row) { return is_elsewhere(row.measurement, now); });
    if (const std::optional<LevelUnit> unit = last_unit(last))
        for (VisitMeasurement& row : last) bring_to(*unit, row.measurement);
    return last;
}

}  // namespace m47::sites
