// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_summary.h"

#include <unordered_map>

namespace m47 {
namespace {

enum SummaryColumn { kFrequencyColumn = 2, kOscillatorColumn = 3, kStatusColumn = 10 };

constexpr int column_of(Quantity quantity) {
    switch (quantity) {
        case Quantity::ber:
            return 5;
        case Quantity::mer:
            return 8;
        case Quantity::level:
            break;
    }
    return 4;
}

using SummaryFields = std::array<std::string_view, PageStore::kColumns>;

SummaryFields fields_of(std::string_view line) {
    SummaryFields fields;
    for (std::string_view& field : fields) {
        const std::size_t end = line.find('\t');
        field = line.substr(0, end);
        if (end == std::string_view::npos) break;
        line.remove_prefix(end + 1);
    }
    return fields;
}

void count_row(RowCounts& counts, std::string_view status) {
    ++counts.rows;
    counts.passed += status == "PASS";
    counts.failed += status == "FAIL";
}

void take_reading(ProgramSummary::Extremes& extremes, const Reading& reading) {
    if (!reading.measured()) return;
    if (!extremes.minimum.measured() || reading.value < extremes.minimum.value)
        extremes.minimum = reading;
    if (!extremes.maximum.measured() || reading.value > extremes.maximum.value)
        extremes.maximum = reading;
}

}  // namespace

QString ProgramSummary::range(Quantity quantity) const {
    const Extremes& of = extremes[static_cast<std::size_t>(quantity)];
    if (!of.minimum.measured()) return {};
    return reading_text(quantity, of.minimum) + QStringLiteral(" … ") +
           reading_text(quantity, of.maximum);
}

PageSummary summary_of(const PageStore& page) {
    PageSummary summary;
    std::unordered_map<std::string, std::size_t> places;
    for (int row = 0; row < page.rows(); ++row) {
        const SummaryFields fields = fields_of(page.line(row));
        std::string key(fields[kFrequencyColumn]);
        key.append(1, '\t').append(fields[kOscillatorColumn]);
        const auto [place, is_new] = places.try_emplace(std::move(key), summary.programs.size());
        if (is_new)
            summary.programs.push_back({std::string(fields[kFrequencyColumn]),
                                        std::string(fields[kOscillatorColumn]),
                                        {},
                                        {}});
        ProgramSummary& program = summary.programs[place->second];
        count_row(summary.counts, fields[kStatusColumn]);
        count_row(program.counts, fields[kStatusColumn]);
        for (const Quantity quantity : kQuantities)
            take_reading(
                program.extremes[static_cast<std::size_t>(quantity)],
                reading_of(quantity, fields[static_cast<std::size_t>(column_of(quantity))]));
    }
    return summary;
}

}  // namespace m47
