// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_summary.h"

#include <unordered_map>

namespace m47::report {
namespace {

void count_row(RowCounts& counts, measurement::Verdict verdict) {
    ++counts.rows;
    counts.passed += verdict == measurement::Verdict::pass;
    counts.failed += verdict == measurement::Verdict::fail;
}

void take_reading(ProgramSummary::Extremes& extremes, const measurement::Reading& reading) {
    if (!reading.measured()) return;
    if (!extremes.minimum.measured() || reading.value < extremes.minimum.value)
        extremes.minimum = reading;
    if (!extremes.maximum.measured() || reading.value > extremes.maximum.value)
        extremes.maximum = reading;
}

}  // namespace

QString ProgramSummary::range(measurement::Quantity quantity) const {
    const Extremes& of = extremes[static_cast<std::size_t>(quantity)];
    if (!of.minimum.measured()) return {};
    return measurement::reading_text(quantity, of.minimum) + QStringLiteral(" … ") +
           measurement::reading_text(quantity, of.maximum);
}

QStringList PageSummary::plans() const {
    QStringList all;
    for (const ProgramSummary& program : programs)
        if (!program.key.program.plan.isEmpty()) all += program.key.program.plan;
    all.removeDuplicates();
    return all;
}

QStringList PageSummary::units() const {
    QStringList all;
    for (const ProgramSummary& program : programs)
        if (program.extremes[0].minimum.measured()) all += measurement::unit_text(program.key.unit);
    all.removeDuplicates();
    return all;
}

PageSummary summary_of(const measurement::PageStore& page, std::optional<LevelUnit> unit) {
    PageSummary summary;
    std::unordered_map<measurement::SeriesKey, std::size_t, measurement::SeriesKeyHash> places;
    for (int row = 0; row < page.rows(); ++row) {
        const measurement::Measurement measurement = page.measurement(row, unit);
        const auto [place, is_new] =
            places.try_emplace(measurement::series_key(measurement), summary.programs.size());
        if (is_new) summary.programs.push_back({place->first, {}, {}});
        ProgramSummary& program = summary.programs[place->second];
        count_row(summary.counts, measurement.verdict);
        count_row(program.counts, measurement.verdict);
        for (std::size_t k = 0; k < measurement::kQuantities.size(); ++k)
            take_reading(program.extremes[k], measurement.reading(measurement::kQuantities[k]));
    }
    return summary;
}

}  // namespace m47::report
