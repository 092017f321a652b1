// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_legend.h"

#include <QFontMetrics>
#include <algorithm>

namespace m47::trend {
namespace {

constexpr int kGap = 8;
constexpr const char* kWidestFigure = ">-000.0";

}  // namespace

TrendLegend::TrendLegend(QCustomPlot* plot) : QCPLayoutElement(plot) {
    setLayer(QStringLiteral("legend"));
    setMargins({kGap, 0, 2, 0});
}

void TrendLegend::set_captions(const std::array<QString, kFigures>& captions) {
    captions_ = captions;
    measure();
}

void TrendLegend::set_lines(std::vector<Line> lines) {
    if (lines == lines_) return;
    lines_ = std::move(lines);
    measure();
}

void TrendLegend::set_font(const QFont& font) {
    font_ = font;
    measure();
}

void TrendLegend::measure() {
    const QFontMetrics metrics(font_);
    line_height_ = metrics.height();
    name_left_ = line_height_ + kGap / 2;
    int right = name_left_;
    for (const Line& line : lines_)
        right = std::max(right, name_left_ + metrics.horizontalAdvance(line.name));
    for (std::size_t k = 0; k < kFigures; ++k) {
        int width = std::max(metrics.horizontalAdvance(QLatin1String(kWidestFigure)),
                             metrics.horizontalAdvance(captions_[k]));
        for (const Line& line : lines_)
            width = std::max(width, metrics.horizontalAdvance(line.figures[k]));
        right += kGap + width;
        figure_widths_[k] = width;
        figure_rights_[k] = right;
    }
}

QSize TrendLegend::minimumOuterSizeHint() const {
    return {margins().left() + figure_rights_.back() + margins().right(), 0};
}

QSize TrendLegend::maximumOuterSizeHint() const {
    return {minimumOuterSizeHint().width(), QWIDGETSIZE_MAX};
}

void TrendLegend::draw(QCPPainter* painter) {
    if (lines_.empty()) return;
    painter->setFont(font_);
    // One line of the room is the captions'; what is left out takes the last.
    const auto fitting = static_cast<std::size_t>(std::max(1, rect().height() / line_height_ - 1));
    const bool whole = lines_.size() <= fitting;
    const std::size_t shown = whole ? lines_.size() : fitting - 1;
    int top = rect().top();
    painter->setPen(text_colour_);
    draw_figures(painter, captions_, top);
    for (std::size_t k = 0; k < shown; ++k) draw_line(painter, lines_[k], top += line_height_);
    if (!whole)
        draw_text(painter, top + line_height_, QStringLiteral("+ %1 …").arg(lines_.size() - shown));
}

void TrendLegend::draw_text(QCPPainter* painter, int top, const QString& text) const {
    painter->drawText(QRect(rect().left() + name_left_, top, rect().width(), line_height_),
                      Qt::AlignLeft | Qt::AlignVCenter, text);
}

void TrendLegend::draw_line(QCPPainter* painter, const Line& line, int top) const {
    painter->setPen(QPen(line.colour, 3));
    const int middle = top + line_height_ / 2;
    painter->drawLine(QLineF(rect().left(), middle, rect().left() + line_height_ - 3, middle));
    painter->setPen(text_colour_);
    draw_text(painter, top, line.name);
    draw_figures(painter, line.figures, top);
}

void TrendLegend::draw_figures(QCPPainter* painter, const std::array<QString, kFigures>& figures,
                               int top) const {
    for (std::size_t k = 0; k < kFigures; ++k) {
        const int left = rect().left() + figure_rights_[k] - figure_widths_[k];
        painter->drawText(QRect(left, top, figure_widths_[k], line_height_),
                          Qt::AlignRight | Qt::AlignVCenter, figures[k]);
    }
}

}  // namespace m47::trend
