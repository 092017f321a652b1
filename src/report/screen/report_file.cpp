// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_file.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>

#include "part.h"
#include "report_pages.h"
#include "save_file.h"
#include "trend_chart.h"

namespace m47::report {
namespace {

constexpr double kReportMargin = 15;  // mm
constexpr int kPaperUnits = 96;       // to an inch

constexpr Bilingual kNotLoaded{"%1 is missing or damaged", "%1 manca o è danneggiato"};

bool draw_report(QIODevice& file, const CustomerReport& report, trend::TrendChart* chart) {
    QPdfWriter writer(&file);
    writer.setTitle(report.title);
    writer.setCreator(QStringLiteral("m47-remote"));
    writer.setResolution(kPaperUnits);
    writer.setPageLayout({QPageSize(QPageSize::A4), QPageLayout::Portrait,
                          QMarginsF(kReportMargin, kReportMargin, kReportMargin, kReportMargin),
                          QPageLayout::Millimeter});
    const ReportPages pages(report, QSizeF(writer.width(), writer.height()), chart != nullptr);
    const auto painter = chart ? chart->painter() : std::make_shared<QPainter>();
    if (!painter->begin(&writer)) return false;
    for (int number = 0; number < pages.count(); ++number) {
        if (number > 0 && !writer.newPage()) return false;
        pages.draw(number, *painter, [&](QSizeF size) { chart->draw(*painter, size.toSize()); });
    }
    return painter->end();
}

}  // namespace

QString save_report(const QString& path, const measurement::PageStore& page,
                    const ReportContext& context, const trend::TrendLimits& limits,
                    const Texts& texts) {
    trend::TrendData data(context.entry.unit);
    data.update(page);
    Part part(trend::kTrendPart);
    std::unique_ptr<trend::TrendChart> chart;
    if (!data.empty()) {
        auto* const charts = part.offer<trend::TrendCharts>();
        if (!charts) return texts.pick(kNotLoaded).arg(part.fault());
        chart.reset(charts->make(data, limits, texts));
        chart->rows_came();
    }
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    if (!draw_report(pdf, compose_report(page, context, texts), chart.get()))
        return pdf.errorString();
    return write_whole_file(path, pdf.data());
}

}  // namespace m47::report
