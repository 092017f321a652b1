// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_panel.h"

#include <algorithm>

namespace m47 {
namespace {

constexpr double kDotSize = 4;
constexpr double kFailedSize = 7;

QVector<QCPGraphData> graph_data(const std::vector<TrendSpot>& spots) {
    QVector<QCPGraphData> data;
    data.reserve(static_cast<qsizetype>(spots.size()));
    for (const TrendSpot& spot : spots) data.append({spot.time, spot.value});
    return data;
}

void set_up_time_axis(QCPAxis* axis) {
    const QSharedPointer<QCPAxisTickerDateTime> ticker(new QCPAxisTickerDateTime);
    // The times are those of the rows as they stand; nothing is shifted by a time zone.
    ticker->setDateTimeSpec(Qt::UTC);
    ticker->setDateTimeFormat(QStringLiteral("HH:mm:ss\ndd/MM/yy"));
    ticker->setTickCount(5);
    axis->setTicker(ticker);
}

void set_up_decades(QCPAxis* axis) {
    axis->setScaleType(QCPAxis::stLogarithmic);
    const QSharedPointer<QCPAxisTickerLog> ticker(new QCPAxisTickerLog);
    axis->setTicker(ticker);
    axis->setNumberFormat(QStringLiteral("eb"));
    axis->setNumberPrecision(0);
    axis->setRange(1e-9, 1e-1);
}

}  // namespace

TrendPanel::TrendPanel(QCustomPlot* plot, Quantity quantity)
    : plot_(plot),
      quantity_(quantity),
      rect_(new QCPAxisRect(plot, false)),
      legend_(new TrendLegend(plot)) {
    rect_->addAxes(QCPAxis::atLeft | QCPAxis::atBottom);
    rect_->setMinimumSize(40, 20);
    rect_->setMinimumMargins({0, 4, 8, 2});
    rect_->setRangeDragAxes(time_axis(), value_axis());
    rect_->setRangeZoomAxes(time_axis(), value_axis());
    set_up_time_axis(time_axis());
    if (quantity == Quantity::ber) set_up_decades(value_axis());
    for (QCPAxis* axis : rect_->axes()) {
        axis->setLayer(QStringLiteral("axes"));
        axis->grid()->setLayer(QStringLiteral("grid"));
    }
    below_ = add_band();
    above_ = add_band();
    failed_ = add_graph();
    failed_->setLineStyle(QCPGraph::lsNone);
    failed_->setLayer(QStringLiteral("overlay"));
}

QCPGraph* TrendPanel::add_graph() {
    QCPGraph* graph = plot_->addGraph(time_axis(), value_axis());
    // What comes here is sampled already.
    graph->setAdaptiveSampling(false);
    graph->setSelectable(QCP::stNone);
    return graph;
}

QCPItemRect* TrendPanel::add_band() {
    auto* band = new QCPItemRect(plot_);
    band->setLayer(QStringLiteral("background"));
    band->setClipAxisRect(rect_);
    band->setSelectable(false);
    band->setPen(Qt::NoPen);
    band->setVisible(false);
    for (QCPItemPosition* corner : band->positions()) {
        corner->setAxes(time_axis(), value_axis());
        corner->setAxisRect(rect_);
        corner->setTypeX(QCPItemPosition::ptAxisRectRatio);
    }
    return band;
}

void TrendPanel::set_colours(const TrendColours& colours, const QFont& font) {
    colours_ = colours;
    for (QCPAxis* axis : rect_->axes()) {
        axis->setLabelFont(font);
        axis->setTickLabelFont(font);
        axis->setLabelColor(colours.text);
        axis->setTickLabelColor(colours.text);
        axis->setBasePen(colours.axis);
        axis->setTickPen(colours.axis);
        axis->setSubTickPen(colours.axis);
        axis->grid()->setPen(QPen(colours.grid, 0));
        axis->grid()->setZeroLinePen(Qt::NoPen);
    }
    below_->setBrush(colours.band);
    above_->setBrush(colours.band);
    failed_->setScatterStyle(
        {QCPScatterStyle::ssCross, QPen(colours.failed, 1.6), Qt::NoBrush, kFailedSize});
    legend_->set_font(font);
    legend_->set_text_colour(colours.text);
}

void TrendPanel::show_curves(std::span<const TrendCurve> curves, TrendRange shown, int columns) {
    while (drawn_.size() < curves.size()) drawn_.push_back({add_graph(), add_graph()});
    std::vector<TrendLegend::Line> lines;
    std::vector<TrendSpot> failed;
    std::optional<TrendRange> values;
    for (std::size_t k = 0; k < drawn_.size(); ++k) {
        if (k >= curves.size()) {
            draw_curve(drawn_[k], {}, {});
            continue;
        }
        const TrendSeries& series = *curves[k].series;
        const QColor colour = colours_.curve(curves[k].number);
        const TrendSamples samples = sample_trend(series, quantity_, shown, columns);
        draw_curve(drawn_[k], samples, colour);
        failed.insert(failed.end(), samples.failed.begin(), samples.failed.end());
        if (samples.values)
            values = values ? TrendRange{std::min(values->lower, samples.values->lower),
                                         std::max(values->upper, samples.values->upper)}
                            : *samples.values;
        if (!series.minimum(quantity_).measured()) continue;
        lines.push_back({colour,
                         series.name(),
                         {reading_text(quantity_, series.minimum(quantity_)),
                          reading_text(quantity_, series.maximum(quantity_)),
                          reading_text(quantity_, series.last(quantity_))}});
    }
    failed_->data()->set(graph_data(failed));
    legend_->set_lines(std::move(lines));
    if (held_) return;
    const TrendRange axis = m47::value_axis(quantity_, values, limits_);
    value_axis()->setRange(axis.lower, axis.upper);
}

void TrendPanel::draw_curve(const Drawn& drawn, const TrendSamples& samples, const QColor& colour) {
    drawn.line->setPen(QPen(colour, 0));
    drawn.line->data()->set(graph_data(samples.line), true);
    drawn.dots->setPen(Qt::NoPen);
    drawn.dots->setLineStyle(QCPGraph::lsNone);
    drawn.dots->setScatterStyle(
        {QCPScatterStyle::ssDisc, QPen(colour, 0), QBrush(colour), kDotSize});
    drawn.dots->data()->set(graph_data(samples.dots), true);
}

void TrendPanel::show_limits(const std::optional<TrendRange>& limits) {
    limits_ = limits;
    below_->setVisible(limits.has_value());
    above_->setVisible(limits.has_value());
    if (!limits) return;
    // From the limit to the edge of the chart, wherever that is.
    below_->topLeft->setTypeY(QCPItemPosition::ptPlotCoords);
    below_->topLeft->setCoords(0, limits->lower);
    below_->bottomRight->setTypeY(QCPItemPosition::ptAxisRectRatio);
    below_->bottomRight->setCoords(1, 1);
    above_->topLeft->setTypeY(QCPItemPosition::ptAxisRectRatio);
    above_->topLeft->setCoords(0, 0);
    above_->bottomRight->setTypeY(QCPItemPosition::ptPlotCoords);
    above_->bottomRight->setCoords(1, limits->upper);
}

}  // namespace m47
