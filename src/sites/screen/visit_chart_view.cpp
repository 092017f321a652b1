// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_chart_view.h"

#include <QResizeEvent>
#include <algorithm>
#include <limits>

#include "visit_series.h"

namespace m47::sites {
namespace {

constexpr Bilingual kNoVisitChart{"No chart: %1 is missing or damaged.",
                                  "Nessun grafico: %1 manca o è danneggiato."};
constexpr Bilingual kNothingDrawn{"Nothing was measured of it.", "Non è stato misurato nulla."};
constexpr Bilingual kVisitChart{"The program over all visits", "Il programma in tutte le visite"};

/// The room that a chart needs beside the name in its legend, in characters: axis, curve, figures.
constexpr int kBesideName = 50;

}  // namespace

VisitChartView::VisitChartView(QWidget* parent) : QStackedWidget(parent), nothing_(new QLabel) {
    nothing_->setAlignment(Qt::AlignCenter);
    nothing_->setWordWrap(true);
    nothing_->setTextFormat(Qt::PlainText);
    addWidget(nothing_);
    setMinimumHeight(trend::height_of_charts(1, fontMetrics().height()));
}

VisitChartView::~VisitChartView() = default;

bool VisitChartView::make_chart(const Texts& texts) {
    if (chart_) return true;
    auto* const charts = part_.offer<trend::TrendCharts>();
    if (!charts) {
        nothing_->setText(texts.pick(kNoVisitChart).arg(part_.fault()));
        return false;
    }
    chart_ = charts->make(
        data_, [this](measurement::Quantity quantity) { return limits(quantity); }, texts);
    addWidget(chart_->widget());
    return true;
}

void VisitChartView::show_rows(const std::vector<VisitMeasurement>& rows, const Texts& texts) {
    setCurrentWidget(nothing_);
    nothing_->setText(texts.pick(kNothingDrawn));
    const std::vector<VisitMeasurement> last = visit_series(rows);
    data_.clear();
    std::vector<measurement::Measurement> measured;
    measured.reserve(last.size());
    for (const VisitMeasurement& each : last) measured.push_back(each.measurement);
    data_.add(measured);
    limits_ = last.empty() ? measurement::LimitsInForce() : last.back().measurement.limits;
    visits_ = static_cast<int>(last.size());
    if (on_charts) on_charts();
    if (data_.empty() || !make_chart(texts)) return;
    chart_->widget()->setAccessibleName(texts.pick(kVisitChart));
    chart_->name_panels();
    int name = 0;
    for (const auto& series : data_.series())
        name = std::max(name, fontMetrics().horizontalAdvance(series->name()));
    setMinimumWidth(name + fontMetrics().averageCharWidth() * kBesideName);
    choose();
    chart_->rows_replaced();
    setCurrentWidget(chart_->widget());
}

std::vector<measurement::Quantity> VisitChartView::measured() const {
    std::vector<measurement::Quantity> measured;
    for (const measurement::Quantity each :
         {measurement::Quantity::mer, measurement::Quantity::level, measurement::Quantity::ber})
        if (std::ranges::any_of(data_.series(), [each](const auto& series) {
                return series->minimum(each).measured();
            }))
            measured.push_back(each);
    return measured;
}

/// For so many charts there is room; for one always.
std::size_t VisitChartView::room() const {
    std::size_t charts = 1;
    while (charts < measurement::kQuantities.size() &&
           trend::height_of_charts(charts + 1, fontMetrics().height()) <= height())
        ++charts;
    return charts;
}

bool VisitChartView::has_room() const {
    return measured().size() <= room();
}

void VisitChartView::begin_with(measurement::Quantity quantity) {
    first_ = quantity;
    if (chart_ && !data_.empty()) choose();
}

/// As many charts as there is room for, from the one that is wanted on.
void VisitChartView::choose() {
    const std::vector<measurement::Quantity> charts = measured();
    const auto wanted = std::ranges::find(charts, first_);
    const auto first =
        wanted == charts.end() ? 0 : static_cast<std::size_t>(wanted - charts.begin());
    trend::TrendChoice choice;
    choice.quantities = {};
    for (std::size_t k = 0; k < std::min(room(), charts.size()); ++k)
        choice.quantities[static_cast<std::size_t>(charts[(first + k) % charts.size()])] = true;
    chart_->choose(choice);
}

void VisitChartView::resizeEvent(QResizeEvent* event) {
    QStackedWidget::resizeEvent(event);
    if (chart_ && !data_.empty()) choose();
    if (on_charts) on_charts();
}

std::optional<trend::TrendRange> VisitChartView::limits(measurement::Quantity quantity) const {
    const auto& held = limits_[static_cast<std::size_t>(quantity)];
    if (!held || (!held->minimum && !held->maximum)) return {};
    constexpr double kOpen = std::numeric_limits<double>::infinity();
    return trend::TrendRange{held->minimum.value_or(-kOpen), held->maximum.value_or(kOpen)};
}

bool VisitChartView::reset_zoom() {
    if (!chart_ || data_.empty()) return false;
    chart_->reset_zoom();
    return true;
}

}  // namespace m47::sites
