// SPDX-License-Identifier: GPL-3.0-or-later
#include "end_visit_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "dialog_buttons.h"
#include "row_time.h"

namespace m47::sites {
namespace {

constexpr Bilingual kEndTitle{"End visit", "Termina visita"};
constexpr Bilingual kEndKey{"&End the visit", "T&ermina la visita"};
constexpr Bilingual kEndFacts{"Site: %1\nBegun: %2\nRows stored: %3",
                              "Sito: %1\nInizio: %2\nRighe memorizzate: %3"};
constexpr Bilingual kNotStored{"Rows not stored: %1. They are tried once more now.",
                               "Righe non memorizzate: %1. Ora si riprova ancora una volta."};
constexpr Bilingual kNothingMeasured{
    "Nothing was measured: without remarks the visit is not kept.",
    "Nulla è stato misurato: senza note la visita non viene conservata."};
constexpr Bilingual kEndWithLast{"It was cut off: it ends with its last row.",
                                 "È stata interrotta: termina con la sua ultima riga."};
constexpr Bilingual kEndRemarks{"&Remarks on the visit:", "Note sulla &visita:"};

QString facts_text(const VisitOfWindow& visit, const Texts& texts) {
    QString text = Said{kEndFacts,
                        {visit.site().name,
                         QString::fromStdString(measurement::time_text(visit.visit().begun.wall())),
                         QString::number(visit.rows())}}
                       .in(texts);
    if (visit.missing() > 0)
        text += u'\n' + Said{kNotStored, {QString::number(visit.missing())}}.in(texts);
    if (visit.rows() + visit.missing() == 0)
        text += u'\n' + texts.pick(kNothingMeasured);
    else if (visit.state() == VisitOfWindow::State::cut_off)
        text += u'\n' + texts.pick(kEndWithLast);
    return text;
}

}  // namespace

EndVisitDialog::EndVisitDialog(const VisitOfWindow& visit, const Texts& texts, QWidget* parent)
    : QDialog(parent), remarks_(new QPlainTextEdit(visit.facts().remarks)) {
    setObjectName(QStringLiteral("end_visit"));
    setWindowTitle(texts.pick(kEndTitle));
    setProperty("manual_page", QStringLiteral("visits"));
    auto* facts = new QLabel(facts_text(visit, texts));
    facts->setObjectName(QStringLiteral("visit_facts"));
    facts->setTextFormat(Qt::PlainText);
    facts->setWordWrap(true);
    remarks_->setObjectName(QStringLiteral("visit_remarks"));
    remarks_->setTabChangesFocus(true);
    auto* caption = new QLabel(texts.pick(kEndRemarks));
    caption->setBuddy(remarks_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(texts.pick(kEndKey));
    name_buttons(buttons, texts);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    for (QWidget* part : std::initializer_list<QWidget*>{facts, caption, remarks_, buttons})
        layout->addWidget(part);
    resize(fontMetrics().averageCharWidth() * 60, fontMetrics().height() * 16);
}

}  // namespace m47::sites
