// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_plot.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <cmath>

#include "row_time.h"
#include "trend_nearest.h"

namespace m47::trend {
namespace {

constexpr double kStep = 0.2;  // of what is shown, for a key
constexpr double kZoom = 1.5;
// How near the pointer has to come to a point, and how far from it its value stands, in pixels.
constexpr int kReach = 20;
constexpr int kBeside = 12;

constexpr Bilingual kLevelAxis{"Level", "Livello"};
constexpr Bilingual kBerAxis{"BER", "BER"};
constexpr Bilingual kMerAxis{"MER (dB)", "MER (dB)"};
constexpr std::array<Bilingual, TrendLegend::kFigures> kFigureCaptions{
    {{"min", "min"}, {"max", "max"}, {"last", "ultimo"}}};

const Bilingual& axis_caption(measurement::Quantity quantity) {
    if (quantity == measurement::Quantity::ber) return kBerAxis;
    return quantity == measurement::Quantity::mer ? kMerAxis : kLevelAxis;
}

}  // namespace

TrendPlot::TrendPlot(const TrendData& rows, TrendLimits limits, const Texts& texts)
    : data_(rows), limits_(std::move(limits)), texts_(texts), value_(new QLabel(this)) {
    setObjectName(QStringLiteral("trend_plot"));
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(1, 1);
    setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    setNoAntialiasingOnDrag(true);
    setAutoAddPlottableToLegend(false);
    value_->setObjectName(QStringLiteral("trend_value"));
    value_->setTextFormat(Qt::PlainText);
    value_->setFrameShape(QFrame::StyledPanel);
    value_->setMargin(2);
    value_->setAutoFillBackground(true);
    value_->setAttribute(Qt::WA_TransparentForMouseEvents);
    value_->hide();
    connect(this, &QCustomPlot::beforeReplot, this, [this] { sample(); });
    connect(this, &QCustomPlot::afterLayout, this, [this] { fit_times(); });
    build_panels();
}

TrendPlot::~TrendPlot() = default;

void TrendPlot::build_panels() {
    clearPlottables();
    clearItems();
    panels_.clear();
    plotLayout()->clear();
    edges_ = std::make_unique<QCPMarginGroup>(this);
    for (const measurement::Quantity quantity : measurement::kQuantities) {
        if (!choice_.quantities[static_cast<std::size_t>(quantity)]) continue;
        auto panel = std::make_unique<TrendPanel>(this, quantity);
        panel->axis_rect()->setMarginGroup(QCP::msLeft | QCP::msRight, edges_.get());
        connect(panel->time_axis(), qOverload<const QCPRange&>(&QCPAxis::rangeChanged), this,
                [this](const QCPRange& range) { range_chosen(range); });
        panels_.push_back(std::move(panel));
    }
    plotLayout()->setRowSpacing(0);
    plotLayout()->setColumnSpacing(0);
    for (const auto& panel : panels_) panel->time_axis()->setTickLabels(panel == panels_.back());
    name_panels();
    set_colours(trend_colours(palette()));
    show_window();
}

void TrendPlot::name_panels() {
    std::array<QString, TrendLegend::kFigures> captions;
    for (std::size_t k = 0; k < captions.size(); ++k) captions[k] = texts_.pick(kFigureCaptions[k]);
    for (const auto& panel : panels_) {
        panel->value_axis()->setLabel(texts_.pick(axis_caption(panel->quantity())));
        panel->legend()->set_captions(captions);
    }
    replot(rpQueuedReplot);
}

void TrendPlot::set_colours(const TrendColours& colours) {
    setBackground(QBrush(colours.background));
    for (const auto& panel : panels_) panel->set_colours(colours, font());
}

std::vector<TrendCurve> TrendPlot::curves() const {
    const auto& series = data_.series();
    std::vector<TrendCurve> curves;
    const auto chosen = static_cast<std::size_t>(choice_.program);
    if (choice_.program >= 0 && chosen < series.size()) return {{series[chosen].get(), chosen}};
    for (std::size_t k = series.size() - std::min(series.size(), kMostCurves); k < series.size();
         ++k)
        curves.push_back({series[k].get(), k});
    return curves;
}

void TrendPlot::sample() {
    const std::vector<TrendCurve> shown = curves();
    for (const auto& panel : panels_) {
        panel->show_limits(limits_(panel->quantity()));
        panel->show_curves(shown, window_.shown(), std::max(1, width()));
    }
}

/// How wide the charts are is known when they are laid out, which is too late for that frame.
void TrendPlot::fit_times() {
    bool changed = false;
    for (const auto& panel : panels_) changed |= panel->fit_times();
    if (changed) replot(rpQueuedReplot);
}

void TrendPlot::choose(const TrendChoice& choice) {
    const bool rebuild = choice.quantities != choice_.quantities;
    choice_ = choice;
    if (rebuild) build_panels();
    replot(rpQueuedReplot);
}

void TrendPlot::rows_came() {
    if (!data_.empty()) window_.rows_came(data_.time(), data_.newest());
    show_window();
}

void TrendPlot::rows_replaced() {
    const bool follows = window_.follows();
    window_ = TrendWindow();
    window_.set_follows(follows);
    for (const auto& panel : panels_) panel->release_values();
    rows_came();
}

void TrendPlot::set_follows(bool follows) {
    window_.set_follows(follows);
    show_window();
}

void TrendPlot::reset_zoom() {
    for (const auto& panel : panels_) panel->release_values();
    window_.reset();
    show_window();
}

void TrendPlot::show_window() {
    const QScopedValueRollback moving(moving_, true);
    for (const auto& panel : panels_) {
        panel->show_span(window_.shown().span());
        panel->time_axis()->setRange(window_.shown().lower, window_.shown().upper);
    }
    replot(rpQueuedReplot);
}

void TrendPlot::range_chosen(const QCPRange& range) {
    if (moving_) return;
    window_.choose({range.lower, range.upper});
    show_window();
    if (on_moved) on_moved();
}

void TrendPlot::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    if (event->type() != QEvent::PaletteChange && event->type() != QEvent::FontChange) return;
    set_colours(trend_colours(palette()));
    replot(rpQueuedReplot);
}

void TrendPlot::direct_mouse(const QPointF& place, Qt::KeyboardModifiers keys) {
    const bool values = keys.testFlag(Qt::ControlModifier);
    for (const auto& panel : panels_) {
        panel->axis_rect()->setRangeDrag(values ? Qt::Vertical : Qt::Horizontal);
        panel->axis_rect()->setRangeZoom(values ? Qt::Vertical : Qt::Horizontal);
        if (values && panel->axis_rect()->rect().contains(place.toPoint())) panel->hold_values();
    }
}

void TrendPlot::mousePressEvent(QMouseEvent* event) {
    direct_mouse(event->position(), event->modifiers());
    QCustomPlot::mousePressEvent(event);
}

/// What was measured next to `place`: its program, time and value; empty where nothing was.
QString TrendPlot::value_at(const TrendPanel& panel, const QPoint& place) const {
    const QCPAxis* time = panel.time_axis();
    const double pointed = time->pixelToCoord(place.x());
    const double reach = time->pixelToCoord(place.x() + kReach) - pointed;
    const auto quantity = panel.quantity();
    double least = kReach;
    QString text;
    for (const TrendCurve& curve : curves()) {
        const auto point = nearest_point(*curve.series, quantity, pointed, reach);
        if (!point) continue;
        const measurement::Reading reading = point->reading(quantity);
        const double value = plotted_value(quantity, reading.value);
        const double away = std::hypot(time->coordToPixel(point->time) - place.x(),
                                       panel.value_axis()->coordToPixel(value) - place.y());
        if (away >= least) continue;
        least = away;
        text = QStringLiteral("%1\n%2  %3")
                   .arg(panel.name_of(*curve.series),
                        QString::fromStdString(measurement::time_text(point->time)),
                        measurement::reading_text(quantity, reading));
    }
    return text;
}

void TrendPlot::show_value(const QPoint& place) {
    QString text;
    for (const auto& panel : panels_)
        if (panel->axis_rect()->rect().contains(place)) text = value_at(*panel, place);
    value_->setVisible(!text.isEmpty());
    if (text.isEmpty()) return;
    value_->setText(text);
    value_->adjustSize();
    const bool left = place.x() + kBeside + value_->width() > width();
    const int x = left ? place.x() - kBeside - value_->width() : place.x() + kBeside;
    const int y = qMin(place.y() + kBeside, height() - value_->height());
    value_->move(qMax(0, x), qMax(0, y));
}

void TrendPlot::mouseMoveEvent(QMouseEvent* event) {
    QCustomPlot::mouseMoveEvent(event);
    show_value(event->pos());
}

void TrendPlot::leaveEvent(QEvent* event) {
    QCustomPlot::leaveEvent(event);
    value_->hide();
}

void TrendPlot::wheelEvent(QWheelEvent* event) {
    direct_mouse(event->position(), event->modifiers());
    QCustomPlot::wheelEvent(event);
}

void TrendPlot::keyPressEvent(QKeyEvent* event) {
    const auto [lower, upper] = window_.shown();
    const double step = kStep * (upper - lower);
    const double wider = (upper - lower) * (kZoom - 1) / 2;
    const double closer = (upper - lower) * (1 - 1 / kZoom) / 2;
    switch (event->key()) {
        case Qt::Key_Left:
            return range_chosen({lower - step, upper - step});
        case Qt::Key_Right:
            return range_chosen({lower + step, upper + step});
        case Qt::Key_Plus:
            return range_chosen({lower + closer, upper - closer});
        case Qt::Key_Minus:
            return range_chosen({lower - wider, upper + wider});
        case Qt::Key_Home:
            return reset_zoom();
        default:
            QCustomPlot::keyPressEvent(event);
    }
}

}  // namespace m47::trend
