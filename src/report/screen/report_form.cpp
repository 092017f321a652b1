// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_form.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>

#include "file_question.h"
#include "handler.h"
#include "key_filter.h"
#include "message_box.h"
#include "tooltips.h"
#include "ui_report_form.h"

namespace m47::report {
namespace {

constexpr Bilingual kFormTitle{"Report", "Rapporto"};
constexpr Bilingual kSiteLabel{"&Site:", "&Luogo:"};
constexpr Bilingual kTechnicianLabel{"&Technician:", "&Tecnico:"};
constexpr Bilingual kUnitLabel{"&Unit of rows without one:", "&Unità delle righe che non l'hanno:"};
constexpr Bilingual kNoUnit{"not known", "non nota"};
constexpr Bilingual kNotesLabel{"&Notes:", "&Note:"};
constexpr Bilingual kFileLabel{"&File:", "&File:"};
constexpr Bilingual kBrowse{"&Browse…", "S&foglia…"};
constexpr Bilingual kSaveReport{"&Save", "&Salva"};
constexpr Bilingual kCancelReport{"&Cancel", "&Annulla"};
constexpr Bilingual kProposedName{"report", "rapporto"};
constexpr Bilingual kReplace{"'%1' exists already. Replace it?", "'%1' esiste già. Sostituirlo?"};

constexpr Tooltip kFormTips[] = {
    {"report_site", "Where was measured", "Dove si è misurato"},
    {"report_technician", "Who has measured", "Chi ha misurato"},
    {"report_unit", "The level unit of rows that came from a log, which does not say it",
     "L'unità del livello delle righe venute da un log, che non la dice"},
    {"report_notes", "Remarks for the customer", "Osservazioni per il cliente"},
    {"report_file", "The PDF file that is written", "Il file PDF che viene scritto"},
    {"report_browse", "Choose the file", "Scegli il file"},
};

const QString kReportSuffix = QStringLiteral("pdf");

}  // namespace

ReportForm::ReportForm(const ProgramState& program, QWidget* parent)
    : QDialog(parent),
      program_(program),
      ui_(std::make_unique<Ui::ReportForm>()),
      directory_(program.preferences.directory(FilePurpose::report, program.base_dir)) {
    const Texts& texts = program.texts;
    ui_->setupUi(this);
    set_captions(texts);
    ui_->report_file->setText(
        QDir(directory_).filePath(texts.pick(kProposedName) + u'.' + kReportSuffix));
    new WheelGuard(ui_->report_unit);
    on(ui_->report_browse, &QPushButton::clicked, this, "report_browse_Click",
       [this] { browse(); });
    connect(ui_->report_buttons, &QDialogButtonBox::accepted, this, [this] { confirm(); });
    connect(ui_->report_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    QPushButton* save = ui_->report_buttons->button(QDialogButtonBox::Save);
    // A path is long, and a low window narrow.
    resize(fontMetrics().averageCharWidth() * 90, sizeHint().height());
    connect(ui_->report_file, &QLineEdit::textChanged, save,
            [save](const QString& text) { save->setEnabled(!text.trimmed().isEmpty()); });
}

ReportForm::~ReportForm() = default;

void ReportForm::set_captions(const Texts& texts) {
    setWindowTitle(texts.pick(kFormTitle));
    setProperty("manual_page", QStringLiteral("logs"));
    ui_->report_site_label->setText(texts.pick(kSiteLabel));
    ui_->report_technician_label->setText(texts.pick(kTechnicianLabel));
    ui_->report_unit_label->setText(texts.pick(kUnitLabel));
    ui_->report_unit->addItem(texts.pick(kNoUnit));
    for (const LevelUnit unit : {kDbuv, kDbmv, kDbm}) ui_->report_unit->addItem(unit_name(unit));
    ui_->report_notes_label->setText(texts.pick(kNotesLabel));
    ui_->report_file_label->setText(texts.pick(kFileLabel));
    ui_->report_browse->setText(texts.pick(kBrowse));
    ui_->report_buttons->button(QDialogButtonBox::Save)->setText(texts.pick(kSaveReport));
    ui_->report_buttons->button(QDialogButtonBox::Cancel)->setText(texts.pick(kCancelReport));
    set_tooltips(this, kFormTips, texts);
}

ReportEntry ReportForm::entry() const {
    // The first entry is that of no unit.
    return {ui_->report_site->text(), ui_->report_technician->text(),
            ui_->report_notes->toPlainText(),
            measurement::unit_of_index(ui_->report_unit->currentIndex() - 1)};
}

QString ReportForm::path() const {
    QString path = QDir(directory_).absoluteFilePath(ui_->report_file->text().trimmed());
    if (QFileInfo(path).suffix().compare(kReportSuffix, Qt::CaseInsensitive) != 0)
        path += u'.' + kReportSuffix;
    return path;
}

void ReportForm::browse() {
    QFileDialog dialog(this, windowTitle());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("PDF (*.pdf)"));
    dialog.setDefaultSuffix(kReportSuffix);
    dialog.selectFile(QFileInfo(path()).fileName());
    const QString chosen = ask_for_file(dialog, program_, FilePurpose::report);
    if (chosen.isEmpty()) return;
    ui_->report_file->setText(chosen);
    confirmed_ = path();
}

void ReportForm::confirm() {
    if (path() != confirmed_ && QFileInfo::exists(path())) {
        const auto answer = show_message_box(this, QMessageBox::Question, windowTitle(),
                                             program_.texts.pick(kReplace).arg(path()),
                                             QMessageBox::Yes | QMessageBox::No);
        if (answer != QMessageBox::Yes) return;
    }
    program_.preferences.file_chosen(FilePurpose::report, path());
    accept();
}

}  // namespace m47::report
