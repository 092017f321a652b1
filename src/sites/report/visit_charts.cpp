// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_charts.h"

#include <algorithm>
#include <limits>

namespace m47::sites {
namespace {

using measurement::Quantity;

/// So many charts stand side by side.
constexpr qsizetype kBeside = 2;

bool is_measured(const ReportedProgram& program, Quantity quantity) {
    return std::ranges::any_of(program.rows, [quantity](const VisitMeasurement& row) {
        return row.measurement.reading(quantity).measured();
    });
}

std::optional<trend::TrendRange> limits_of(const ReportedProgram& program, Quantity quantity) {
    const auto& held = program.rows.back().measurement.limits[static_cast<std::size_t>(quantity)];
    if (!held || (!held->minimum && !held->maximum)) return {};
    constexpr double kOpen = std::numeric_limits<double>::infinity();
    return trend::TrendRange{held->minimum.value_or(-kOpen), held->maximum.value_or(kOpen)};
}

}  // namespace

const std::shared_ptr<QPainter>& VisitCharts::painter() {
    if (painter_) return painter_;
    charts_ = part_.offer<trend::TrendCharts>();
    if (charts_) {
        const std::unique_ptr<trend::TrendChart> chart(charts_->make(
            no_rows_, [](Quantity) { return std::optional<trend::TrendRange>(); }, texts_));
        painter_ = chart->painter();
    } else {
        painter_ = std::make_shared<QPainter>();
    }
    return painter_;
}

QList<report::DrawTrend> VisitCharts::of(const ReportedProgram& program) {
    QList<report::DrawTrend> drawings;
    for (const Quantity quantity : {Quantity::mer, Quantity::level, Quantity::ber})
        if (drawings.size() < kBeside && is_measured(program, quantity))
            drawings += [this, &program, quantity](QSizeF room) { draw(program, quantity, room); };
    return drawings;
}

/// Each is made when it is drawn: of two hundred programs they would fill the memory.
void VisitCharts::draw(const ReportedProgram& program, Quantity quantity, QSizeF room) {
    if (!charts_) return;
    trend::TrendData data({}, true);
    std::vector<measurement::Measurement> measured;
    for (const VisitMeasurement& row : program.rows) measured.push_back(row.measurement);
    data.add(measured);
    if (data.empty()) return;
    const std::unique_ptr<trend::TrendChart> chart(charts_->make(
        data, [&program](Quantity each) { return limits_of(program, each); }, texts_));
    trend::TrendChoice choice;
    choice.quantities = {};
    const auto place = std::ranges::find(measurement::kQuantities, quantity);
    choice.quantities[static_cast<std::size_t>(place - measurement::kQuantities.begin())] = true;
    chart->choose(choice);
    chart->rows_came();
    chart->draw(*painter_, room.toSize());
}

}  // namespace m47::sites
