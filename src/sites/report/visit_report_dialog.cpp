// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_report_dialog.h"

#include <QFileDialog>

#include "file_question.h"
#include "handler.h"
#include "message_box.h"
#include "visit_report_file.h"
#include "visit_report_form.h"
#include "visit_report_texts.h"

namespace m47::sites {
namespace {

constexpr Bilingual kSaveVisitReport{"Save report", "Salva rapporto"};
constexpr Bilingual kReportNotSaved{"The report was not saved to %1: %2",
                                    "Il rapporto non è stato salvato in %1: %2"};
constexpr Bilingual kReportName{"report", "rapporto"};

constexpr int kLongestSite = 40;

/// "Hotel-Miramare-report-2026-11-22.pdf", of characters that every system takes.
QString proposed_file(const Site& site, const VisitReport& report, const Texts& texts) {
    QString name = site.name.simplified().left(kLongestSite) + u'-' + texts.pick(kReportName);
    if (!report.visits.empty())
        name += u'-' + report_time(report.visits.back().visit).section(u' ', 0, 0);
    for (QChar& each : name)
        if (!each.isLetterOrNumber()) each = u'-';
    return name + QStringLiteral(".pdf");
}

QString ask_where(QWidget* parent, const ProgramState& program, const QString& name) {
    QFileDialog dialog(parent, program.texts.pick(kSaveVisitReport));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("PDF (*.pdf)"));
    dialog.setDefaultSuffix(QStringLiteral("pdf"));
    dialog.selectFile(name);
    return ask_for_file(dialog, program, FilePurpose::report);
}

}  // namespace

void show_visit_report(QWidget* parent, const ProgramState& program, const SiteStore& store,
                       const Site& site, const std::vector<QUuid>& visits,
                       const CodeRateOf& code_rate) {
    VisitReportForm form(program, site, store.visits(site.id), visits, parent);
    const auto save = [&] {
        QString fault;
        const Letterhead letterhead = kept_letterhead(program.preferences, program.texts, &fault);
        const VisitReport report = visit_report(store, site, form.wish());
        const QString path = ask_where(&form, program, proposed_file(site, report, program.texts));
        if (path.isEmpty()) return false;
        const QString reason =
            save_visit_report(path, report, letterhead, code_rate, form.paper(), program.texts);
        if (!reason.isEmpty()) {
            report_fault(&form, program.texts.pick(kReportNotSaved).arg(path, reason));
            return false;
        }
        program.saved(path);
        // The report is whole without it.
        if (!fault.isEmpty())
            show_message_box(&form, QMessageBox::Warning, form.windowTitle(), fault);
        return true;
    };
    form.on_save = save;
    form.exec();
}

}  // namespace m47::sites
