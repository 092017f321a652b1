// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_plot.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>

namespace m47::band {
namespace {

constexpr double kStep = 0.2;  // of what is shown, for a key
constexpr double kZoom = 1.5;
/// Around the levels, of their range, and the least range in dB.
constexpr double kAround = 0.08;
constexpr double kLeastRange = 10;
/// The range of an empty chart, in whatever unit comes.
constexpr double kEmptyLow = 0;
constexpr double kEmptyHigh = 100;
/// How far a press may move and still be a click, how near to a flag it means it: pixels.
constexpr int kStill = 4;
constexpr int kReach = 8;
/// A flag stands so far over its carrier, and the next one not nearer beside it.
constexpr int kOverTop = 5;
constexpr int kMostOfHeight = 2;  // flags take at most the half

}  // namespace

BandPlot::BandPlot(QWidget* parent) : QCustomPlot(parent) {
    setObjectName(QStringLiteral("band_plot"));
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(1, 1);
    setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    setNoAntialiasingOnDrag(true);
    make_traces();
    make_legend();
    make_markers();
    connect(xAxis, qOverload<const QCPRange&>(&QCPAxis::rangeChanged), this, [this] {
        if (!moving_) zoomed_ = true;
    });
    set_colours(band_colours(palette()));
    show_band({}, false);
}

void BandPlot::make_traces() {
    for (std::size_t k = 0; k < kTraces; ++k)
        traces_[k] =
            addGraph(xAxis, k == static_cast<std::size_t>(Trace::difference) ? yAxis2 : yAxis);
    yAxis2->setVisible(false);
}

/// A line of its own above the chart, so that it covers nothing.
void BandPlot::make_legend() {
    setAutoAddPlottableToLegend(false);
    auto* line = new QCPLayoutGrid;
    plotLayout()->insertRow(0);
    plotLayout()->addElement(0, 0, line);
    line->addElement(0, 0, legend);
    // A legend without an entry has no width, and would leave none to the chart under it.
    line->addElement(0, 1, new QCPLayoutElement(this));
    line->setColumnStretchFactor(0, 0.001);
    plotLayout()->setRowStretchFactor(0, 0.001);
    legend->setFillOrder(QCPLegend::foColumnsFirst);
    legend->setWrap(0);
    legend->setBorderPen(Qt::NoPen);
    legend->setBrush(Qt::NoBrush);
    legend->setMargins({0, 0, 0, 0});
    legend->setVisible(true);
}

void BandPlot::make_markers() {
    for (std::size_t k = 0; k < kMarkers; ++k) {
        lines_[k] = new QCPItemLine(this);
        names_[k] = new QCPItemText(this);
        names_[k]->setText(QString::number(k + 1));
        names_[k]->setPositionAlignment(Qt::AlignTop | Qt::AlignLeft);
        for (QCPItemPosition* end : {lines_[k]->start, lines_[k]->end, names_[k]->position}) {
            end->setTypeX(QCPItemPosition::ptPlotCoords);
            end->setTypeY(QCPItemPosition::ptAxisRectRatio);
        }
    }
}

void BandPlot::show_band(const BandPicture& picture, bool grows) {
    setNotAntialiasedElements(grows ? QCP::aeAll : QCP::aeNone);
    picture_ = picture;
    xAxis->setLabel(picture.frequency_caption);
    yAxis->setLabel(picture.level_caption);
    yAxis2->setLabel(picture.difference_caption);
    legend->clearItems();
    for (std::size_t k = 0; k < kTraces; ++k) {
        traces_[k]->setData(picture.curves[k].mhz, picture.curves[k].db, true);
        traces_[k]->setName(picture.curves[k].name);
        if (!picture.curves[k].mhz.isEmpty()) traces_[k]->addToLegend();
    }
    yAxis2->setVisible(!picture.curve(Trace::difference).mhz.isEmpty());
    show_ranges();
    show_flags();
    show_markers();
    replot(rpRefreshHint);
}

void BandPlot::show_ranges() {
    const QScopedValueRollback moving(moving_, true);
    if (!zoomed_ && picture_.to > picture_.from) xAxis->setRange(picture_.from, picture_.to);
    if (!levels_held_) show_levels();
    if (!yAxis2->visible()) return;
    graph(Trace::difference)->rescaleValueAxis();
    yAxis2->scaleRange(1 + 2 * kAround);
    const double least = std::max(kLeastRange, yAxis2->range().size());
    yAxis2->setRange(yAxis2->range().center(), least, Qt::AlignCenter);
}

/// All levels that are shown, with room over them for the names of the carriers.
void BandPlot::show_levels() {
    yAxis->setRange(kEmptyLow, kEmptyHigh);
    bool first = true;
    for (const Trace trace : {Trace::reference, Trace::average, Trace::max_hold, Trace::live}) {
        if (graph(trace)->data()->isEmpty()) continue;
        graph(trace)->rescaleValueAxis(!first);
        first = false;
    }
    if (first) return;
    const QCPRange found = yAxis->range();
    const double range = std::max(kLeastRange, found.size());
    int longest = 0;
    for (const Flag& flag : picture_.flags)
        longest = std::max(longest, fontMetrics().horizontalAdvance(flag.text) + 2 * kOverTop);
    const double share =
        std::min(1.0 / kMostOfHeight, double(longest) / std::max(1, axisRect()->height()));
    yAxis->setRange(found.lower - kAround * range,
                    found.lower + (1 + kAround) * range / (1 - share));
}

/// Where two carriers lie close beside each other the first is named.
void BandPlot::show_flags() {
    for (QCPItemText* flag : flags_) removeItem(flag);
    flags_.clear();
    const double apart = fontMetrics().height() * 0.8;
    double last = -apart;
    for (const Flag& flag : picture_.flags) {
        const double place = xAxis->coordToPixel(flag.mhz);
        auto* text = new QCPItemText(this);
        text->setText(place - last < apart ? QString() : flag.text);
        if (place - last >= apart) last = place;
        text->setFont(font());
        text->setColor(colours_.text);
        text->setRotation(-90);
        text->setPositionAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        text->setPadding({kOverTop, 0, 0, 0});
        text->position->setCoords(flag.mhz, flag.level);
        flags_.push_back(text);
    }
}

void BandPlot::show_markers() {
    for (std::size_t k = 0; k < kMarkers; ++k) {
        const Marker& marker = picture_.markers[k];
        lines_[k]->setVisible(marker.set);
        names_[k]->setVisible(marker.set);
        lines_[k]->start->setCoords(marker.mhz, 0);
        lines_[k]->end->setCoords(marker.mhz, 1);
        names_[k]->position->setCoords(marker.mhz, 0);
    }
}

bool BandPlot::reset_zoom() {
    const bool zoomed = zoomed_ || levels_held_;
    zoomed_ = levels_held_ = false;
    show_band(BandPicture(picture_), false);
    return zoomed;
}

void BandPlot::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    if (event->type() != QEvent::PaletteChange && event->type() != QEvent::FontChange) return;
    set_colours(band_colours(palette()));
    replot(rpQueuedReplot);
}

void BandPlot::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    // Which names have room depends on the size.
    show_band(BandPicture(picture_), false);
}

void BandPlot::direct_mouse(const QPointF& place, Qt::KeyboardModifiers keys) {
    const bool levels = keys.testFlag(Qt::ControlModifier);
    axisRect()->setRangeDrag(levels ? Qt::Vertical : Qt::Horizontal);
    axisRect()->setRangeZoom(levels ? Qt::Vertical : Qt::Horizontal);
    if (levels && axisRect()->rect().contains(place.toPoint())) levels_held_ = true;
}

void BandPlot::mousePressEvent(QMouseEvent* event) {
    pressed_ = event->pos();
    direct_mouse(event->position(), event->modifiers());
    QCustomPlot::mousePressEvent(event);
}

void BandPlot::mouseReleaseEvent(QMouseEvent* event) {
    QCustomPlot::mouseReleaseEvent(event);
    if ((event->pos() - pressed_).manhattanLength() > kStill) return;
    const bool second =
        event->button() == Qt::RightButton || event->modifiers().testFlag(Qt::ShiftModifier);
    if (second || event->button() == Qt::LeftButton) click(event->pos(), second);
}

void BandPlot::wheelEvent(QWheelEvent* event) {
    direct_mouse(event->position(), event->modifiers());
    QCustomPlot::wheelEvent(event);
}

void BandPlot::click(const QPoint& place, bool second) {
    if (!axisRect()->rect().contains(place)) return;
    for (std::size_t k = 0; !second && k < picture_.flags.size(); ++k) {
        const Flag& flag = picture_.flags[k];
        const bool over = place.y() < yAxis->coordToPixel(flag.level);
        if (!over || std::abs(xAxis->coordToPixel(flag.mhz) - place.x()) > kReach) continue;
        if (on_flag_clicked) on_flag_clicked(k);
        return;
    }
    if (on_place_clicked) on_place_clicked(xAxis->pixelToCoord(place.x()), second ? 1 : 0);
}

void BandPlot::move_axis(double lower, double upper) {
    xAxis->setRange(lower, upper);
    show_flags();
    replot(rpQueuedReplot);
}

/// True for a key that moves or zooms.
bool BandPlot::move_by_key(int key) {
    const auto [lower, upper] = xAxis->range();
    const double step = kStep * (upper - lower);
    const double wider = (upper - lower) * (kZoom - 1) / 2;
    const double closer = (upper - lower) * (1 - 1 / kZoom) / 2;
    if (key == Qt::Key_Left)
        move_axis(lower - step, upper - step);
    else if (key == Qt::Key_Right)
        move_axis(lower + step, upper + step);
    else if (key == Qt::Key_Plus)
        move_axis(lower + closer, upper - closer);
    else if (key == Qt::Key_Minus)
        move_axis(lower - wider, upper + wider);
    else if (key == Qt::Key_Home)
        reset_zoom();
    else
        return false;
    return true;
}

void BandPlot::keyPressEvent(QKeyEvent* event) {
    const bool sideways = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (sideways && event->modifiers().testFlag(Qt::ControlModifier)) {
        const std::size_t marker = event->modifiers().testFlag(Qt::ShiftModifier) ? 1 : 0;
        if (on_marker_moved) on_marker_moved(marker, event->key() == Qt::Key_Right);
        return;
    }
    if (!move_by_key(event->key())) QCustomPlot::keyPressEvent(event);
}

}  // namespace m47::band
