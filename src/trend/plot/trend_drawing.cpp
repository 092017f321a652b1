// SPDX-License-Identifier: GPL-3.0-or-later
// What is drawn of a plot elsewhere than on the screen.
#include <QPdfWriter>

#include "trend_plot.h"

namespace m47::trend {
namespace {

constexpr QSize kLeastPicture(1280, 800);
constexpr double kPictureScale = 2;  // so that it is sharp in a report
constexpr double kPageMargin = 10;   // mm

std::shared_ptr<QCPPainter> page_painter() {
    auto painter = std::make_shared<QCPPainter>();
    painter->setMode(QCPPainter::pmVectorized);
    painter->setMode(QCPPainter::pmNoCaching);
    return painter;
}

}  // namespace

void TrendPlot::on_paper(const std::function<void()>& paint) {
    set_colours(paper_colours());
    sample();
    paint();
    set_colours(trend_colours(palette()));
    replot(rpQueuedReplot);
}

bool TrendPlot::draw_picture(QIODevice& file) {
    const QSize picture = size().expandedTo(kLeastPicture);
    bool drawn = false;
    on_paper([&] {
        drawn = toPixmap(picture.width(), picture.height(), kPictureScale).save(&file, "PNG");
    });
    return drawn;
}

bool TrendPlot::draw_page(QIODevice& file) {
    QPdfWriter page(&file);
    page.setTitle(QStringLiteral("Trend"));
    page.setResolution(logicalDpiX());
    page.setPageLayout({QPageSize(QPageSize::A4), QPageLayout::Landscape,
                        QMarginsF(kPageMargin, kPageMargin, kPageMargin, kPageMargin),
                        QPageLayout::Millimeter});
    const auto painter = page_painter();
    if (!painter->begin(&page)) return false;
    on_paper([&] { toPainter(painter.get(), page.width(), page.height()); });
    return painter->end();
}

std::shared_ptr<QPainter> TrendPlot::painter() {
    return page_painter();
}

void TrendPlot::draw(QPainter& painter, QSize room) {
    // What is drawn is chosen for the room there is, which has to be known before.
    setViewport({{}, room});
    replot();
    on_paper([&] { toPainter(&static_cast<QCPPainter&>(painter), room.width(), room.height()); });
}

}  // namespace m47::trend
