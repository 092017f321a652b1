// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_report_form.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <algorithm>

#include "dialog_buttons.h"
#include "handler.h"
#include "key_filter.h"
#include "letterhead_dialog.h"
#include "tooltips.h"
#include "visit_report_texts.h"

namespace m47::sites {
namespace {

constexpr Bilingual kVisitReportTitle{"Report on visits", "Rapporto sulle visite"};
constexpr Bilingual kSiteField{"Site", "Sito"};
constexpr Bilingual kVisitsField{"&Visits", "&Visite"};
constexpr Bilingual kBeforeField{"&Compared with", "&Confronta con"};
constexpr Bilingual kPaperField{"&Paper", "Ca&rta"};
constexpr Bilingual kSavePdf{"&Save PDF…", "&Salva PDF…"};
constexpr Bilingual kLetterheadKey{"&Letterhead…", "&Intestazione…"};
constexpr Bilingual kWithPrevious{"the visit before", "la visita precedente"};
constexpr Bilingual kWithFirst{"the first visit", "la prima visita"};
constexpr Bilingual kWithNothing{"nothing", "nulla"};

constexpr Tooltip kVisitReportTips[] = {
    {"report_visits", "Ticked visits are in the report, the earliest first",
     "Le visite spuntate sono nel rapporto, dalla meno recente"},
    {"report_before", "What stands before in the table before and after",
     "Che cosa sta nel prima della tabella prima e dopo"},
    {"report_paper", "The size of the pages", "Il formato delle pagine"},
    {"report_letterhead", "Company, technician and logo over each report",
     "Azienda, tecnico e logo sopra ogni rapporto"},
};

constexpr int kListColumns = 56;
constexpr int kListLines = 7;
constexpr int kKindRole = Qt::UserRole + 1;

}  // namespace

VisitReportForm::VisitReportForm(const ProgramState& program, const Site& site,
                                 const std::vector<Visit>& visits, const std::vector<QUuid>& ticked,
                                 QWidget* parent)
    : QDialog(parent),
      program_(program),
      visits_(new QListWidget),
      before_(new QComboBox),
      paper_(new QComboBox) {
    const Texts& texts = program.texts;
    setObjectName(QStringLiteral("visit_report_form"));
    setProperty("manual_page", QStringLiteral("visit-report"));
    setWindowTitle(texts.pick(kVisitReportTitle));
    auto* form = new QFormLayout(this);
    auto* name = new QLabel(fontMetrics().elidedText(
        site.name.simplified(), Qt::ElideRight, fontMetrics().averageCharWidth() * kListColumns));
    name->setTextFormat(Qt::PlainText);
    form->addRow(texts.pick(kSiteField), name);
    visits_->setObjectName(QStringLiteral("report_visits"));
    visits_->setMinimumWidth(fontMetrics().averageCharWidth() * kListColumns);
    visits_->setMinimumHeight(fontMetrics().lineSpacing() * kListLines);
    visits_->setTextElideMode(Qt::ElideRight);
    visits_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* caption = new QLabel(texts.pick(kVisitsField));
    caption->setBuddy(visits_);
    form->addRow(caption, visits_);
    add_visits(visits, ticked);
    add_choices(form, visits);
    add_buttons(form);
    set_tooltips(this, kVisitReportTips, texts);
    connect(visits_, &QListWidget::itemChanged, this, [this] { look(); });
    look();
}

void VisitReportForm::add_visits(const std::vector<Visit>& visits,
                                 const std::vector<QUuid>& ticked) {
    for (const Visit& visit : visits) {
        QStringList facts{report_time(visit), visit.technician.simplified(), visit.plan,
                          visit.remarks.simplified()};
        facts.removeAll(QString());
        const QString text = facts.join(QStringLiteral(" · "));
        auto* item = new QListWidgetItem(text, visits_);
        item->setToolTip(text.toHtmlEscaped());
        const bool is_ticked = ticked.empty() ? visit.id == visits.front().id
                                              : std::ranges::find(ticked, visit.id) != ticked.end();
        item->setData(Qt::UserRole, visit.id);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(is_ticked ? Qt::Checked : Qt::Unchecked);
    }
    if (visits_->count() > 0) visits_->setCurrentRow(0);
}

void VisitReportForm::add_choices(QFormLayout* form, const std::vector<Visit>& visits) {
    const Texts& texts = program_.texts;
    const auto add = [this](const QString& text, ReportBefore kind, const QUuid& id = {}) {
        before_->addItem(text, id);
        before_->setItemData(before_->count() - 1, static_cast<int>(kind), kKindRole);
    };
    add(texts.pick(kWithPrevious), ReportBefore::previous);
    add(texts.pick(kWithFirst), ReportBefore::first);
    add(texts.pick(kWithNothing), ReportBefore::nothing);
    for (const Visit& visit : visits) add(report_time(visit), ReportBefore::chosen, visit.id);
    paper_->addItem(QStringLiteral("A4"), QPageSize::A4);
    paper_->addItem(QStringLiteral("Letter"), QPageSize::Letter);
    const bool is_letter =
        QLocale::system().measurementSystem() == QLocale::MeasurementSystem::ImperialUSSystem;
    paper_->setCurrentIndex(is_letter ? 1 : 0);
    const auto add_row = [&](const Bilingual& words, QComboBox* list, const char* name) {
        list->setObjectName(QLatin1String(name));
        new WheelGuard(list);
        auto* label = new QLabel(texts.pick(words));
        label->setBuddy(list);
        form->addRow(label, list);
    };
    add_row(kBeforeField, before_, "report_before");
    add_row(kPaperField, paper_, "report_paper");
}

void VisitReportForm::add_buttons(QFormLayout* form) {
    const Texts& texts = program_.texts;
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    buttons->setObjectName(QStringLiteral("report_buttons"));
    name_buttons(buttons, texts);
    save_ = buttons->button(QDialogButtonBox::Save);
    save_->setText(texts.pick(kSavePdf));
    auto* letterhead = buttons->addButton(texts.pick(kLetterheadKey), QDialogButtonBox::ActionRole);
    letterhead->setObjectName(QStringLiteral("report_letterhead"));
    form->addRow(buttons);
    on(letterhead, &QPushButton::clicked, this, "report_letterhead_Click",
       [this] { LetterheadDialog(program_, this).exec(); });
    on(save_, &QPushButton::clicked, this, "report_save_Click", [this] {
        if (!on_save || on_save()) accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

/// Without a visit there is nothing to report on.
void VisitReportForm::look() {
    save_->setEnabled(!wish().visits.empty());
}

VisitReportWish VisitReportForm::wish() const {
    VisitReportWish wish;
    for (int row = 0; row < visits_->count(); ++row)
        if (visits_->item(row)->checkState() == Qt::Checked)
            wish.visits.push_back(visits_->item(row)->data(Qt::UserRole).toUuid());
    wish.before = static_cast<ReportBefore>(before_->currentData(kKindRole).toInt());
    wish.chosen = before_->currentData().toUuid();
    return wish;
}

QPageSize::PageSizeId VisitReportForm::paper() const {
    return static_cast<QPageSize::PageSizeId>(paper_->currentData().toInt());
}

}  // namespace m47::sites
