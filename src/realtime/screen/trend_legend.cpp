// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_legend.h"

#include <QFontMetrics>
#include <algorithm>

namespace m47 {
namespace {

constexpr int kGap = 8;
constexpr const char* kWidestFigure = ">-000.0";

}  // namespace

TrendLegend::TrendLegend(QCustomPlot* plot) : QCPLayoutElement(plot) {
    setLayer(QStringLiteral("legend"));
    setMargins({kGap, 0, 2, 0});
}

int TrendLegend::sample_width() const {
    return QFontMetrics(font_).height();
}

int TrendLegend::name_width() const {
    int width = 0;
    for (const Line& line : lines_)
        width = std::max(width, QFontMetrics(font_).horizontalAdvance(line.name));
    return width;
}

int TrendLegend::figure_width(std::size_t figure) const {
    const QFontMetrics metrics(font_);
    int width = std::max(metrics.horizontalAdvance(QLatin1String(kWidestFigure)),
                         metrics.horizontalAdvance(captions_[figure]));
    for (const Line& line : lines_)
        width = std::max(width, metrics.horizontalAdvance(line.figures[figure]));
    return width;
}

int TrendLegend::whole_width() const {
    int width = sample_width() + kGap / 2 + name_width();
    for (std::size_t k = 0; k < kFigures; ++k) width += kGap + figure_width(k);
    return width;
}

QSize TrendLegend::minimumOuterSizeHint() const {
    return {margins().left() + whole_width() + margins().right(), 0};
}

QSize TrendLegend::maximumOuterSizeHint() const {
    return {minimumOuterSizeHint().width(), QWIDGETSIZE_MAX};
}

void TrendLegend::draw(QCPPainter* painter) {
    if (lines_.empty()) return;
    painter->setFont(font_);
    const int height = QFontMetrics(font_).height();
    const int room = std::max(1, rect().height() / height - 1);
    const auto fitting = static_cast<std::size_t>(room);
    const std::size_t shown =
        lines_.size() <= fitting ? lines_.size() : std::max<std::size_t>(fitting, 2) - 1;
    int top = rect().top();
    painter->setPen(text_colour_);
    draw_figures(painter, captions_, top);
    for (std::size_t k = 0; k < shown; ++k) draw_line(painter, lines_[k], top += height);
    if (shown == lines_.size()) return;
    painter->drawText(
        QRect(rect().left() + sample_width() + kGap / 2, top + height, whole_width(), height),
        Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("+ %1 …").arg(lines_.size() - shown));
}

void TrendLegend::draw_line(QCPPainter* painter, const Line& line, int top) const {
    const int height = QFontMetrics(font_).height();
    painter->setPen(QPen(line.colour, 3));
    const int middle = top + height / 2;
    painter->drawLine(QLineF(rect().left(), middle, rect().left() + sample_width() - 3, middle));
    painter->setPen(text_colour_);
    painter->drawText(
        QRect(rect().left() + sample_width() + kGap / 2, top, name_width() + 1, height),
        Qt::AlignLeft | Qt::AlignVCenter, line.name);
    draw_figures(painter, line.figures, top);
}

void TrendLegend::draw_figures(QCPPainter* painter, const std::array<QString, kFigures>& figures,
                               int top) const {
    int right = rect().left() + sample_width() + kGap / 2 + name_width();
    for (std::size_t k = 0; k < kFigures; ++k) {
        const int width = figure_width(k);
        painter->drawText(QRect(right + kGap, top, width, QFontMetrics(font_).height()),
                          Qt::AlignRight | Qt::AlignVCenter, figures[k]);
        right += kGap + width;
    }
}

}  // namespace m47
