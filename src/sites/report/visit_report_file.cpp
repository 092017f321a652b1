// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_report_file.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>

#include "save_file.h"
#include "visit_charts.h"
#include "visit_report_texts.h"

namespace m47::sites {
namespace {

using report::CellTone;
using report::ReportPages;

constexpr double kReportMargin = 15;  // mm
constexpr int kPaperUnits = 96;       // to an inch
constexpr double kChartHeight = 140;

constexpr Bilingual kVisitTitle{"Visit report", "Rapporto di visita"};
constexpr Bilingual kPaperSite{"Site", "Sito"};
constexpr Bilingual kPaperCustomer{"Customer", "Cliente"};
constexpr Bilingual kPaperAddress{"Address", "Indirizzo"};
constexpr Bilingual kPaperRemarks{"Remarks", "Note"};
constexpr Bilingual kVisitOf{"Visit of %1", "Visita del %1"};
constexpr Bilingual kOverVisits{"Programs over the visits", "I programmi nelle visite"};
constexpr Bilingual kOverRemark{"The limits in force last are drawn as lines.",
                                "I limiti in vigore per ultimi sono tracciati come linee."};
constexpr Bilingual kNoVisits{"No visit.", "Nessuna visita."};
constexpr Bilingual kSignatures{"Signatures", "Firme"};
constexpr Bilingual kSignedBy{"Technician: %1", "Tecnico: %1"};
constexpr Bilingual kSignedFor{"Customer: %1", "Cliente: %1"};
constexpr Bilingual kPageOf{"Page %1 of %2", "Pagina %1 di %2"};

/// Lays the report out on pages of one size.
class ReportLayout {
  public:
    ReportLayout(ReportPages& pages, const VisitReport& report, const Letterhead& letterhead,
                 const Texts& texts)
        : pages_(pages), report_(report), letterhead_(letterhead), texts_(texts) {}

    void add_all(const CodeRateOf& code_rate, QPainter& painter) {
        add_site();
        for (const ReportedVisit& visit : report_.visits) add_visit(visit, code_rate);
        add_charts(painter);
        add_signatures();
    }

  private:
    void add_site() {
        pages_.add_letterhead(letterhead_.logo, letterhead_.lines());
        pages_.add_title(texts_.pick(kVisitTitle));
        pages_.add_fact(texts_.pick(kPaperSite), report_.site.name);
        pages_.add_fact(texts_.pick(kPaperCustomer), report_.site.customer);
        pages_.add_fact(texts_.pick(kPaperAddress), report_.site.address);
        pages_.add_fact(texts_.pick(kPaperRemarks), report_.site.remarks);
        if (report_.visits.empty()) pages_.add_paragraph(texts_.pick(kNoVisits));
    }

    void add_visit(const ReportedVisit& visit, const CodeRateOf& code_rate) {
        constexpr double kWithHeading = 120;
        pages_.add_heading(texts_.pick(kVisitOf).arg(report_time(visit.visit)), kWithHeading);
        for (const auto& [caption, value] : facts_of(visit, texts_))
            pages_.add_fact(caption, value);
        pages_.add_gap();
        for (const VerdictLine& line : verdict_of(visit, texts_))
            pages_.add_paragraph(line.text, line.tone);
        if (!visit.compared.empty()) pages_.add_table(before_table(visit, texts_));
        if (!visit.rows.empty()) pages_.add_table(measured_table(visit, code_rate, texts_));
    }

    void add_charts(QPainter& painter) {
        bool is_first = true;
        for (const ReportedProgram& program : report_.programs) {
            const QList<report::DrawTrend> drawings = visit_charts(program, painter, texts_);
            if (drawings.isEmpty()) continue;
            if (is_first) {
                pages_.add_heading(texts_.pick(kOverVisits), kChartHeight + kWithChart);
                pages_.add_paragraph(texts_.pick(kOverRemark));
                pages_.add_gap();
            }
            is_first = false;
            pages_.add_drawings(program.key.name(), drawings, kChartHeight);
        }
    }

    void add_signatures() {
        constexpr double kOfSignatures = 84;
        const QString visited =
            report_.visits.empty() ? QString() : report_.visits.back().visit.technician;
        const QString technician = visited.isEmpty() ? letterhead_.technician : visited;
        pages_.add_heading(texts_.pick(kSignatures), kOfSignatures);
        pages_.add_signatures({texts_.pick(kSignedBy).arg(technician),
                               texts_.pick(kSignedFor).arg(report_.site.customer)});
    }

    /// The remark and the caption over a chart.
    static constexpr double kWithChart = 50;

    ReportPages& pages_;
    const VisitReport& report_;
    const Letterhead& letterhead_;
    const Texts& texts_;
};

bool draw_pages(QPdfWriter& writer, const ReportPages& pages, QPainter& painter) {
    if (!painter.begin(&writer)) return false;
    for (int number = 0; number < pages.count(); ++number) {
        if (number > 0 && !writer.newPage()) return false;
        pages.draw(number, painter);
    }
    return painter.end();
}

}  // namespace

QString save_visit_report(const QString& path, const VisitReport& report,
                          const Letterhead& letterhead, const CodeRateOf& code_rate,
                          QPageSize::PageSizeId paper, const Texts& texts) {
    QPainter painter;
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    QPdfWriter writer(&pdf);
    const QString title = texts.pick(kVisitTitle) + QStringLiteral(" · ") + report.site.name;
    writer.setTitle(title);
    writer.setCreator(QStringLiteral("m47-remote"));
    writer.setResolution(kPaperUnits);
    writer.setPageLayout({QPageSize(paper), QPageLayout::Portrait,
                          QMarginsF(kReportMargin, kReportMargin, kReportMargin, kReportMargin),
                          QPageLayout::Millimeter});
    ReportPages pages(QSizeF(writer.width(), writer.height()), texts.pick(kPageOf), title);
    ReportLayout(pages, report, letterhead, texts).add_all(code_rate, painter);
    if (!draw_pages(writer, pages, painter)) return pdf.errorString();
    return write_whole_file(path, pdf.data());
}

}  // namespace m47::sites
