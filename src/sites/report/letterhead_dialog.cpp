// SPDX-License-Identifier: GPL-3.0-or-later
#include "letterhead_dialog.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>

#include "dialog_buttons.h"
#include "file_question.h"
#include "handler.h"
#include "tooltips.h"

namespace m47::sites {
namespace {

constexpr Bilingual kLetterheadTitle{"Letterhead", "Intestazione"};
constexpr Bilingual kCompanyField{"&Company", "&Azienda"};
constexpr Bilingual kTechnicianField{"&Technician", "&Tecnico"};
constexpr Bilingual kLogoField{"Logo", "Logo"};
constexpr Bilingual kLeftOut{"A report has %1 lines of it; left out: %2.",
                             "Un rapporto ne ha %1 righe; tralasciate: %2."};
constexpr Bilingual kNoLogo{"no logo", "nessun logo"};
constexpr Bilingual kChooseLogo{"C&hoose…", "&Scegli…"};
constexpr Bilingual kDropLogo{"&Remove", "&Elimina"};
constexpr Bilingual kPictures{"Pictures (*.png *.jpg *.jpeg)", "Immagini (*.png *.jpg *.jpeg)"};
constexpr Bilingual kLogoNotKept{"The logo could not be kept: %1",
                                 "Non è stato possibile conservare il logo: %1"};

constexpr Tooltip kLetterheadTips[] = {
    {"letterhead_company", "Name and address over each report; the first line is larger",
     "Nome e indirizzo sopra ogni rapporto; la prima riga è più grande"},
    {"letterhead_technician", "Who measures; also proposed when a visit begins",
     "Chi misura; proposto anche all'inizio di una visita"},
    {"letterhead_logo", "A PNG or JPEG picture, of which a copy is kept",
     "Un'immagine PNG o JPEG, di cui si conserva una copia"},
    {"letterhead_drop", "Reports have no logo", "I rapporti non hanno logo"},
};

constexpr int kCompanyColumns = 44;
constexpr int kTechnicianLength = 200;
constexpr QSize kShownLogo(220, 64);

}  // namespace

LetterheadDialog::LetterheadDialog(const ProgramState& program, QWidget* parent)
    : QDialog(parent),
      program_(program),
      company_(new QPlainTextEdit),
      left_out_(new QLabel),
      technician_(new QLineEdit),
      picture_(new QLabel) {
    const Texts& texts = program.texts;
    setObjectName(QStringLiteral("letterhead_dialog"));
    setProperty("manual_page", QStringLiteral("visit-report"));
    setWindowTitle(texts.pick(kLetterheadTitle));
    QString fault;
    const Letterhead kept = kept_letterhead(program.preferences, texts, &fault);
    auto* form = new QFormLayout(this);
    company_->setObjectName(QStringLiteral("letterhead_company"));
    company_->setTabChangesFocus(true);
    company_->setPlainText(kept.company);
    company_->setMinimumWidth(fontMetrics().averageCharWidth() * kCompanyColumns);
    company_->setFixedHeight(fontMetrics().lineSpacing() * (kMostCompanyLines + 1));
    technician_->setObjectName(QStringLiteral("letterhead_technician"));
    technician_->setMaxLength(kTechnicianLength);
    technician_->setText(kept.technician);
    const auto add_row = [&](const Bilingual& caption, QWidget* field) {
        auto* label = new QLabel(texts.pick(caption));
        label->setBuddy(field);
        form->addRow(label, field);
    };
    add_row(kCompanyField, company_);
    left_out_->setObjectName(QStringLiteral("letterhead_left_out"));
    left_out_->setTextFormat(Qt::PlainText);
    form->addRow(QString(), left_out_);
    connect(company_, &QPlainTextEdit::textChanged, this, [this] { count_lines(); });
    count_lines();
    add_row(kTechnicianField, technician_);
    add_logo(form);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    name_buttons(buttons, texts);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { keep(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    set_tooltips(this, kLetterheadTips, texts);
    logo_ = kept.logo;
    show_logo(fault);
}

/// What a report has no room for is told while it is written.
void LetterheadDialog::count_lines() {
    const int more = letterhead().lines_left_out();
    left_out_->setText(more > 0 ? program_.texts.pick(kLeftOut).arg(kMostCompanyLines).arg(more)
                                : QString());
}

void LetterheadDialog::add_logo(QFormLayout* form) {
    const Texts& texts = program_.texts;
    picture_->setObjectName(QStringLiteral("letterhead_picture"));
    picture_->setTextFormat(Qt::PlainText);
    picture_->setWordWrap(true);
    picture_->setMinimumSize(kShownLogo);
    auto* choose = new QPushButton(texts.pick(kChooseLogo));
    choose->setObjectName(QStringLiteral("letterhead_logo"));
    auto* drop = new QPushButton(texts.pick(kDropLogo));
    drop->setObjectName(QStringLiteral("letterhead_drop"));
    on(choose, &QPushButton::clicked, this, "letterhead_logo_Click",
       [this] { letterhead_logo_Click(); });
    on(drop, &QPushButton::clicked, this, "letterhead_drop_Click", [this] {
        logo_ = QImage();
        show_logo(QString());
    });
    auto* row = new QHBoxLayout;
    row->addWidget(picture_, 1);
    row->addWidget(choose);
    row->addWidget(drop);
    form->addRow(texts.pick(kLogoField), row);
}

void LetterheadDialog::show_logo(const QString& fault) {
    if (logo_.isNull())
        picture_->setText(fault.isEmpty() ? program_.texts.pick(kNoLogo) : fault);
    else
        picture_->setPixmap(QPixmap::fromImage(
            logo_.scaled(kShownLogo, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

void LetterheadDialog::letterhead_logo_Click() {
    QFileDialog dialog(this, windowTitle());
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(program_.texts.pick(kPictures));
    const QString path = ask_for_file(dialog, program_, FilePurpose::letterhead);
    if (!path.isEmpty()) take_logo(path);
}

void LetterheadDialog::take_logo(const QString& path) {
    const LogoRead read = read_logo(path, program_.texts);
    if (!read.fault.isEmpty()) return report_fault(this, read.fault);
    logo_ = read.logo;
    show_logo(QString());
}

Letterhead LetterheadDialog::letterhead() const {
    return {.company = company_->toPlainText().trimmed(),
            .technician = technician_->text().simplified(),
            .logo = logo_};
}

void LetterheadDialog::keep() {
    const QString reason = keep_letterhead(program_.preferences, letterhead());
    if (!reason.isEmpty()) report_fault(this, program_.texts.pick(kLogoNotKept).arg(reason));
    accept();
}

}  // namespace m47::sites
