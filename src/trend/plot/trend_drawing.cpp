// SPDX-License-Identifier: GPL-3.0-or-later
// What is drawn of a plot elsewhere than on the screen.
#include "chart_drawing.h"
#include "trend_plot.h"

namespace m47::trend {

void TrendPlot::on_paper(const std::function<void()>& paint) {
    set_colours(paper_colours());
    sample();
    paint();
    set_colours(trend_colours(palette()));
    replot(rpQueuedReplot);
}

bool TrendPlot::draw_picture(QIODevice& file) {
    bool drawn = false;
    on_paper([&] { drawn = draw_chart_picture(*this, file); });
    return drawn;
}

bool TrendPlot::draw_page(QIODevice& file) {
    bool drawn = false;
    on_paper([&] { drawn = draw_chart_page(*this, file, QStringLiteral("Trend")); });
    return drawn;
}

std::shared_ptr<QPainter> TrendPlot::painter() {
    return line_painter();
}

void TrendPlot::draw(QPainter& painter, QSize room) {
    // What is drawn is chosen for the room there is, which has to be known before.
    setViewport({{}, room});
    replot();
    on_paper([&] { toPainter(&static_cast<QCPPainter&>(painter), room.width(), room.height()); });
}

}  // namespace m47::trend
