// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_files.h"

#include <QBuffer>
#include <QPdfWriter>

#include "save_file.h"
#include "trend_table.h"

namespace m47::trend {
namespace {

constexpr QSize kLeastPicture(1280, 800);
constexpr double kPictureScale = 2;  // so that it is sharp in a report
constexpr double kPageMargin = 10;   // mm

bool draw_picture(QIODevice& file, TrendPlot& plot) {
    const QSize size = plot.size().expandedTo(kLeastPicture);
    return plot.toPixmap(size.width(), size.height(), kPictureScale).save(&file, "PNG");
}

bool draw_page(QIODevice& file, TrendPlot& plot) {
    QPdfWriter page(&file);
    page.setTitle(QStringLiteral("Trend"));
    page.setResolution(plot.logicalDpiX());
    page.setPageLayout({QPageSize(QPageSize::A4), QPageLayout::Landscape,
                        QMarginsF(kPageMargin, kPageMargin, kPageMargin, kPageMargin),
                        QPageLayout::Millimeter});
    QCPPainter painter;
    if (!painter.begin(&page)) return false;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    plot.toPainter(&painter, page.width(), page.height());
    return painter.end();
}

}  // namespace

QString save_trend(const QString& path, TrendPlot& plot,
                   std::span<const TrendSeries* const> series) {
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    bool drawn = false;
    if (path.endsWith(QLatin1String(".tsv"), Qt::CaseInsensitive))
        drawn = write_trend_table(file, series);
    else if (path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive))
        plot.on_paper([&] { drawn = draw_page(file, plot); });
    else
        plot.on_paper([&] { drawn = draw_picture(file, plot); });
    return drawn ? write_whole_file(path, file.data()) : file.errorString();
}

}  // namespace m47::trend
