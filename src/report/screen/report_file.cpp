// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_file.h"

#include <QBuffer>
#include <QPdfWriter>

#include "report_pages.h"
#include "save_file.h"
#include "trend_plot.h"

namespace m47::report {
namespace {

constexpr double kReportMargin = 15;  // mm
constexpr int kPaperUnits = 96;       // to an inch

void draw_trend(trend::TrendPlot& plot, QCPPainter& painter, QSizeF size) {
    const QSize room = size.toSize();
    // What is drawn is chosen for the room there is, which has to be known before.
    plot.setViewport({{}, room});
    plot.replot();
    plot.on_paper([&] { plot.toPainter(&painter, room.width(), room.height()); });
}

bool draw_report(QIODevice& file, const CustomerReport& report, trend::TrendPlot* plot) {
    QPdfWriter writer(&file);
    writer.setTitle(report.title);
    writer.setCreator(QStringLiteral("m47-remote"));
    writer.setResolution(kPaperUnits);
    writer.setPageLayout({QPageSize(QPageSize::A4), QPageLayout::Portrait,
                          QMarginsF(kReportMargin, kReportMargin, kReportMargin, kReportMargin),
                          QPageLayout::Millimeter});
    const ReportPages pages(report, QSizeF(writer.width(), writer.height()), plot != nullptr);
    QCPPainter painter;
    if (!painter.begin(&writer)) return false;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    for (int number = 0; number < pages.count(); ++number) {
        if (number > 0 && !writer.newPage()) return false;
        pages.draw(number, painter, [&](QSizeF size) { draw_trend(*plot, painter, size); });
    }
    return painter.end();
}

}  // namespace

QString save_report(const QString& path, const measurement::PageStore& page,
                    const ReportContext& context, const trend::TrendLimits& limits,
                    const Texts& texts) {
    trend::TrendData data(context.entry.unit);
    data.update(page);
    trend::TrendPlot plot(data, limits, texts);
    plot.rows_came();
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    if (!draw_report(pdf, compose_report(page, context, texts), data.empty() ? nullptr : &plot))
        return pdf.errorString();
    return write_whole_file(path, pdf.data());
}

}  // namespace m47::report
