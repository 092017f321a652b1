// SPDX-License-Identifier: GPL-3.0-or-later
// How the chart looks, on the screen and on paper.
#include "band_plot.h"
#include "chart_drawing.h"

namespace m47::band {
namespace {

constexpr double kPointSize = 3;

void colour_axis(QCPAxis* axis, const BandColours& colours, const QFont& font) {
    axis->setTickLabelFont(font);
    axis->setLabelFont(font);
    axis->setBasePen(QPen(colours.text));
    axis->setTickPen(QPen(colours.text));
    axis->setSubTickPen(QPen(colours.text));
    axis->setTickLabelColor(colours.text);
    axis->setLabelColor(colours.text);
    axis->grid()->setPen(QPen(colours.grid));
    axis->grid()->setZeroLinePen(QPen(colours.grid));
}

}  // namespace

void BandPlot::set_colours(const BandColours& colours) {
    colours_ = colours;
    setBackground(QBrush(colours.background));
    for (QCPAxis* axis : {xAxis, yAxis, yAxis2}) colour_axis(axis, colours, font());
    for (std::size_t k = 0; k < kTraces; ++k) traces_[k]->setPen(QPen(colours.traces[k], 1));
    // Where the meter was asked is to be seen.
    graph(Trace::live)
        ->setScatterStyle(
            {QCPScatterStyle::ssSquare, graph(Trace::live)->pen().color(), kPointSize});
    for (std::size_t k = 0; k < kMarkers; ++k) {
        lines_[k]->setPen(QPen(colours.markers[k], 1, Qt::DashLine));
        names_[k]->setColor(colours.markers[k]);
        names_[k]->setFont(font());
    }
    legend->setFont(font());
    legend->setTextColor(colours.text);
    for (QCPItemText* flag : flags_) flag->setColor(colours.text);
}

void BandPlot::on_paper(const std::function<void()>& paint) {
    set_colours(paper_colours());
    paint();
    set_colours(band_colours(palette()));
    replot(rpQueuedReplot);
}

bool BandPlot::draw_picture(QIODevice& file) {
    bool drawn = false;
    on_paper([&] { drawn = draw_chart_picture(*this, file); });
    return drawn;
}

bool BandPlot::draw_page(QIODevice& file, const QString& title) {
    bool drawn = false;
    on_paper([&] { drawn = draw_chart_page(*this, file, title); });
    return drawn;
}

}  // namespace m47::band
