// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_panel.h"

#include <algorithm>
#include <cmath>

namespace m47::trend {
namespace {

constexpr double kDotSize = 4;
constexpr double kFailedSize = 7;
// The most points that the curves of a chart are summed up to together, four in a column: more
// than that make a carpet on any screen, but slow every frame.
constexpr std::size_t kMostPoints = 60000;
// So many times are aimed at along the axis, fewer where they have no room beside one another.
constexpr int kMostTimes = 5;
constexpr int kBetweenTimes = 8;  // pixels
constexpr int kFailedCell = 5;    // pixels: crosses that lie closer cannot be told apart

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
    ticker->setTickCount(kMostTimes);
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

TrendPanel::TrendPanel(QCustomPlot* plot, measurement::Quantity quantity)
    : plot_(plot),
      quantity_(quantity),
      rect_(new QCPAxisRect(plot, false)),
      legend_(new TrendLegend(plot)) {
    rect_->addAxes(QCPAxis::atLeft | QCPAxis::atBottom);
    rect_->setMinimumSize(40, kLeastChart);
    // An item looks for the plot's axis rects, so this one has to have its place first.
    const int row = plot->plotLayout()->rowCount();
    plot->plotLayout()->addElement(row, 0, rect_);
    plot->plotLayout()->addElement(row, 1, legend_);
    rect_->setRangeDragAxes(time_axis(), value_axis());
    rect_->setRangeZoomAxes(time_axis(), value_axis());
    set_up_time_axis(time_axis());
    if (quantity == measurement::Quantity::ber) set_up_decades(value_axis());
    for (QCPAxis* axis : rect_->axes()) {
        axis->setLayer(QStringLiteral("axes"));
        axis->grid()->setLayer(QStringLiteral("grid"));
    }
    below_ = add_band();
    above_ = add_band();
    lower_line_ = add_limit_line();
    upper_line_ = add_limit_line();
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

QCPItemStraightLine* TrendPanel::add_limit_line() {
    auto* line = new QCPItemStraightLine(plot_);
    line->setClipAxisRect(rect_);
    line->setSelectable(false);
    line->setVisible(false);
    for (QCPItemPosition* end : line->positions()) {
        end->setAxes(time_axis(), value_axis());
        end->setAxisRect(rect_);
        end->setTypeX(QCPItemPosition::ptAxisRectRatio);
    }
    return line;
}

void TrendPanel::set_colours(const TrendColours& colours, const QFont& font) {
    colours_ = colours;
    // The last time on the axis reaches half its width beyond it.
    const int half_a_date = QFontMetrics(font).horizontalAdvance(QStringLiteral("00/00/00")) / 2;
    rect_->setMinimumMargins({0, 4, half_a_date, 2});
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
    for (QCPItemStraightLine* line : {lower_line_, upper_line_})
        line->setPen(QPen(colours.failed, 1, Qt::DashLine));
    failed_->setScatterStyle(
        {QCPScatterStyle::ssCross, QPen(colours.failed, 1.6), Qt::NoBrush, kFailedSize});
    legend_->set_font(font);
    legend_->set_text_colour(colours.text);
}

void TrendPanel::show_curves(std::span<const TrendCurve> curves, TrendRange shown, int columns) {
    while (drawn_.size() < curves.size()) drawn_.push_back({add_graph(), add_graph()});
    const std::size_t most = kMostPoints / 4 / std::max<std::size_t>(1, curves.size());
    columns = std::min(columns, static_cast<int>(most));
    units_differ_ = std::ranges::any_of(curves, [&curves](const TrendCurve& each) {
        return each.series->key().unit != curves.front().series->key().unit;
    });
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
                         name_of(series),
                         {measurement::reading_text(quantity_, series.minimum(quantity_)),
                          measurement::reading_text(quantity_, series.maximum(quantity_)),
                          measurement::reading_text(quantity_, series.last(quantity_))}});
    }
    legend_->set_lines(std::move(lines));
    if (!held_) {
        const TrendRange axis = trend::value_axis(quantity_, values, limits_);
        value_axis()->setRange(axis.lower, axis.upper);
    }
    draw_failed(failed);
}

/// The unit is that of the level and of nothing else, but tells curves of one program apart.
QString TrendPanel::name_of(const TrendSeries& series) const {
    const bool with_unit = quantity_ == measurement::Quantity::level || units_differ_;
    return with_unit ? series.name() : series.key().name();
}

void TrendPanel::draw_failed(const std::vector<TrendSpot>& failed) {
    const QRect area = rect_->rect();
    if (area.isEmpty()) return failed_->data()->set(graph_data(failed));  // not laid out yet
    const int across = area.width() / kFailedCell + 1;
    const int down = area.height() / kFailedCell + 1;
    std::vector<bool> taken(static_cast<std::size_t>(across) * static_cast<std::size_t>(down));
    std::vector<TrendSpot> marks;
    for (const TrendSpot& spot : failed) {
        const double x = time_axis()->coordToPixel(spot.time) - area.left();
        const double y = value_axis()->coordToPixel(spot.value) - area.top();
        if (x < 0 || y < 0 || x > area.width() || y > area.height()) continue;
        const auto row = static_cast<std::size_t>(static_cast<int>(y) / kFailedCell);
        const auto column = static_cast<std::size_t>(static_cast<int>(x) / kFailedCell);
        const std::size_t cell = row * static_cast<std::size_t>(across) + column;
        if (!taken[cell]) marks.push_back(spot);
        taken[cell] = true;
    }
    failed_->setAntialiasedScatters(marks.size() == failed.size());
    failed_->data()->set(graph_data(marks));
}

void TrendPanel::draw_curve(const Drawn& drawn, const TrendSamples& samples, const QColor& colour) {
    drawn.line->setPen(QPen(colour, 0));
    // Strokes a pixel apart gain nothing by it and take many times as long.
    drawn.line->setAntialiased(!samples.dense);
    drawn.line->data()->set(graph_data(samples.line), true);
    drawn.dots->setPen(Qt::NoPen);
    drawn.dots->setLineStyle(QCPGraph::lsNone);
    drawn.dots->setScatterStyle(
        {QCPScatterStyle::ssDisc, QPen(colour, 0), QBrush(colour), kDotSize});
    drawn.dots->data()->set(graph_data(samples.dots), true);
}

void TrendPanel::show_limits(const std::optional<TrendRange>& limits) {
    limits_ = limits;
    const bool lower = limits && std::isfinite(limits->lower);
    const bool upper = limits && std::isfinite(limits->upper);
    below_->setVisible(lower);
    lower_line_->setVisible(lower);
    above_->setVisible(upper);
    upper_line_->setVisible(upper);
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
    place_limit_line(lower_line_, limits->lower);
    place_limit_line(upper_line_, limits->upper);
}

void TrendPanel::place_limit_line(QCPItemStraightLine* line, double value) {
    line->point1->setCoords(0, value);
    line->point2->setCoords(1, value);
}

void TrendPanel::show_span(double seconds) {
    constexpr double kDays = 4 * 24 * 3600.0;
    const auto ticker = time_axis()->ticker().dynamicCast<QCPAxisTickerDateTime>();
    if (!ticker) return;
    ticker->setDateTimeFormat(seconds > kDays ? QStringLiteral("dd/MM/yy")
                                              : QStringLiteral("HH:mm:ss\ndd/MM/yy"));
}

bool TrendPanel::times_overlap(QCPAxisTicker& ticker) const {
    QVector<double> ticks;
    ticker.generate(time_axis()->range(), QLocale(), u'f', 0, ticks, nullptr, nullptr);
    const int needed =
        kBetweenTimes +
        QFontMetrics(time_axis()->tickLabelFont()).horizontalAdvance(QStringLiteral("00/00/00"));
    for (qsizetype k = 1; k < ticks.size(); ++k)
        if (time_axis()->coordToPixel(ticks[k]) - time_axis()->coordToPixel(ticks[k - 1]) < needed)
            return true;
    return false;
}

bool TrendPanel::fit_times() {
    const QSharedPointer<QCPAxisTicker> ticker = time_axis()->ticker();
    const int before = ticker->tickCount();
    int count = kMostTimes;
    ticker->setTickCount(count);
    while (count > 1 && times_overlap(*ticker)) ticker->setTickCount(--count);
    return count != before;
}

}  // namespace m47::trend
