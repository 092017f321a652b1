// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPdfWriter>
#include <memory>

#include "custom_plot.h"

namespace m47 {

/// A painter that a chart can be drawn with in lines, not begun yet.
inline std::shared_ptr<QCPPainter> line_painter() {
    auto painter = std::make_shared<QCPPainter>();
    painter->setMode(QCPPainter::pmVectorized);
    painter->setMode(QCPPainter::pmNoCaching);
    return painter;
}

/// `plot` as it is shown now as a picture (PNG), large and sharp enough for a report. False when it
/// cannot be written.
inline bool draw_chart_picture(QCustomPlot& plot, QIODevice& file) {
    constexpr QSize kLeast(1280, 800);
    constexpr double kScale = 2;
    const QSize size = plot.size().expandedTo(kLeast);
    return plot.toPixmap(size.width(), size.height(), kScale).save(&file, "PNG");
}

/// The same as a page (PDF) called `title`.
inline bool draw_chart_page(QCustomPlot& plot, QIODevice& file, const QString& title) {
    constexpr double kMargin = 10;  // mm
    QPdfWriter page(&file);
    page.setTitle(title);
    page.setResolution(plot.logicalDpiX());
    page.setPageLayout({QPageSize(QPageSize::A4), QPageLayout::Landscape,
                        QMarginsF(kMargin, kMargin, kMargin, kMargin), QPageLayout::Millimeter});
    const auto painter = line_painter();
    if (!painter->begin(&page)) return false;
    plot.toPainter(painter.get(), page.width(), page.height());
    return painter->end();
}

}  // namespace m47
