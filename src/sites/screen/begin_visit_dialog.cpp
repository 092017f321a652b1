// SPDX-License-Identifier: GPL-3.0-or-later
#include "begin_visit_dialog.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "dialog_body.h"
#include "dialog_buttons.h"
#include "site_file.h"

namespace m47::sites {
namespace {

constexpr Bilingual kBeginTitle{"Begin visit", "Inizia visita"};
constexpr Bilingual kBeginKey{"&Begin", "I&nizia"};
constexpr Bilingual kTechnician{"&Technician:", "&Tecnico:"};
constexpr Bilingual kTechnicianTip{"Who measures; it is remembered", "Chi misura; viene ricordato"};
constexpr Bilingual kPlanBox{"&Plan:", "&Piano:"};
constexpr Bilingual kPlanTip{"The plan that is measured; the rows say theirs anyway",
                             "Il piano che si misura; le righe indicano comunque il proprio"};
constexpr Bilingual kVisitRemarks{"&Remarks on the visit:", "Note sulla &visita:"};
constexpr Bilingual kVisitRemarksTip{"What is true today: weather, reason, what was found",
                                     "Ciò che vale oggi: tempo, motivo, ciò che si è trovato"};

}  // namespace

BeginVisitDialog::BeginVisitDialog(const SiteStore* store, const VisitFacts& facts,
                                   const Texts& texts, QWidget* parent)
    : QDialog(parent), texts_(texts), proposed_(facts), picker_(new SitePicker(store, texts)) {
    setObjectName(QStringLiteral("begin_visit"));
    setWindowTitle(texts.pick(kBeginTitle));
    setProperty("manual_page", QStringLiteral("visits"));
    auto* layout = new QVBoxLayout(this);
    add_body(layout)->addWidget(picker_);
    make_boxes(picker_->rows());
    layout->addWidget(make_buttons());
    resize(fontMetrics().averageCharWidth() * 70, sizeHint().height());
    picker_->setFocus();
}

QLineEdit* BeginVisitDialog::add_box(QFormLayout* form, const char* name, const Bilingual& caption,
                                     const Bilingual& tip, const QString& text) {
    auto* box = new QLineEdit(text);
    box->setMaxLength(static_cast<int>(kMostSiteText));
    box->setObjectName(QLatin1String(name));
    box->setToolTip(texts_.pick(tip));
    form->addRow(texts_.pick(caption), box);
    return box;
}

void BeginVisitDialog::make_boxes(QFormLayout* form) {
    technician_ =
        add_box(form, "visit_technician", kTechnician, kTechnicianTip, proposed_.technician);
    plan_ = add_box(form, "visit_plan", kPlanBox, kPlanTip, proposed_.plan);
    remarks_ = new QPlainTextEdit(proposed_.remarks);
    remarks_->setObjectName(QStringLiteral("visit_remarks"));
    remarks_->setToolTip(texts_.pick(kVisitRemarksTip));
    remarks_->setTabChangesFocus(true);
    remarks_->setMaximumHeight(
        qMax(fontMetrics().height() * 4, remarks_->minimumSizeHint().height()));
    form->addRow(texts_.pick(kVisitRemarks), remarks_);
}

QDialogButtonBox* BeginVisitDialog::make_buttons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* begin = buttons->button(QDialogButtonBox::Ok);
    begin->setText(texts_.pick(kBeginKey));
    begin->setEnabled(picker_->site().has_value());
    name_buttons(buttons, texts_);
    connect(picker_, &SitePicker::changed, begin,
            [this, begin] { begin->setEnabled(picker_->site().has_value()); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

Site BeginVisitDialog::site() const {
    return picker_->site().value_or(Site{});
}

VisitFacts BeginVisitDialog::facts() const {
    VisitFacts facts = proposed_;
    facts.technician = technician_->text().simplified();
    facts.plan = plan_->text().simplified();
    facts.remarks = remarks_->toPlainText().trimmed();
    return facts;
}

}  // namespace m47::sites
