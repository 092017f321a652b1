// SPDX-License-Identifier: GPL-3.0-or-later
#include "verify_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "text_table.h"

namespace m47::plans {
namespace {

constexpr Bilingual kVerifyTitle{"Verify upload", "Verifica dell'invio"};
constexpr Bilingual kVerified{"The logger table is as planned.",
                              "La tabella datalogger è come previsto."};
constexpr Bilingual kDiffers{"Lines of the logger table that are not as planned: %1.",
                             "Righe della tabella datalogger diverse dal previsto: %1."};
constexpr Bilingual kNoneActive{
    "The plan enters no program in the logger table, and none is active there.",
    "Il piano non inserisce programmi nella tabella datalogger e nessuno vi è attivo."};
constexpr Bilingual kNothingPlanned{
    "The plan enters no program in the logger table: nothing was compared.",
    "Il piano non inserisce programmi nella tabella datalogger: nulla è stato confrontato."};
constexpr Bilingual kNotTold{
    "The meter did not tell its logger table: nothing was compared.",
    "Lo strumento non ha comunicato la tabella datalogger: nulla è stato confrontato."};
constexpr Bilingual kPlanned{"Active lines planned: %1.", "Righe attive previste: %1."};
constexpr Bilingual kRead{"Lines read from the meter: %1, active: %2.",
                          "Righe lette dallo strumento: %1, attive: %2."};
constexpr Bilingual kActive{"program %1, active", "programma %1, attivo"};
constexpr Bilingual kInactive{"program %1, inactive", "programma %1, non attivo"};
constexpr Bilingual kNoLine{"none", "nessuno"};
constexpr Bilingual kUnknown{"not told", "non comunicato"};
const QString kUsualState = QStringLiteral("01");

constexpr Bilingual kVerifyColumns[] = {
    {"Line", "Riga"}, {"Planned", "Previsto"}, {"Found", "Trovato"}, {"", ""}};

QString mark_of(const TableComparison& row, const TableCheck& check) {
    if (!row.judged || !check.told) return {};
    return row.matches() ? QStringLiteral("✓") : QStringLiteral("✗");
}

/// A program and state in words.
QString in_words(const QString& entry, const Texts& texts) {
    if (entry.isEmpty()) return texts.pick(kNoLine);
    const QString program = entry.section(u' ', 0, 0);
    if (!table_entry_active(entry)) return texts.pick(kInactive).arg(program);
    const QString state = entry.section(u' ', -1);
    const QString words = texts.pick(kActive).arg(program);
    return state == kUsualState ? words : words + QStringLiteral(" (%1)").arg(state);
}

QStringList cells_of_line(const TableComparison& row, const TableCheck& check, const Texts& texts) {
    return {row.line, in_words(row.planned, texts),
            check.told ? in_words(row.found, texts) : texts.pick(kUnknown), mark_of(row, check)};
}

QString verdict_of(const TableCheck& check, const Texts& texts) {
    if (!check.told) return texts.pick(kNotTold);
    if (check.wrong() > 0) return texts.pick(kDiffers).arg(check.wrong());
    if (check.planned() > 0) return texts.pick(kVerified);
    return texts.pick(check.mode == kAppend ? kNothingPlanned : kNoneActive);
}

QString summary_of_check(const TableCheck& check, const Texts& texts) {
    QString summary = verdict_of(check, texts) + u'\n' + texts.pick(kPlanned).arg(check.planned());
    if (check.told) summary += u' ' + texts.pick(kRead).arg(check.found()).arg(check.active());
    return summary;
}

QTableWidget* table_of_check(const TableCheck& check, const Texts& texts) {
    QList<QStringList> rows;
    for (const TableComparison& row : check.rows) rows.append(cells_of_line(row, check, texts));
    QTableWidget* table = text_table("verify_table", kVerifyColumns, rows, texts);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    return table;
}

}  // namespace

VerifyDialog::VerifyDialog(const TableCheck& check, const Texts& texts, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("verify_result"));
    setWindowTitle(texts.pick(kVerifyTitle));
    setProperty("manual_page", QStringLiteral("upload"));
    auto* summary = new QLabel(summary_of_check(check, texts));
    summary->setTextFormat(Qt::PlainText);
    summary->setObjectName(QStringLiteral("verify_summary"));
    summary->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary);
    layout->addWidget(table_of_check(check, texts));
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 24);
}

}  // namespace m47::plans
