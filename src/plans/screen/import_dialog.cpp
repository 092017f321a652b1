// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "text_table.h"
#include "tooltips.h"

namespace m47::plans {
namespace {

constexpr Bilingual kImportTitle{"Import programs", "Importa programmi"};
constexpr Bilingual kImportButton{"Import", "Importa"};
constexpr Bilingual kCancelButton{"Cancel", "Annulla"};
constexpr Bilingual kAddedOf{"%1 of %2 programs will be added.",
                             "Verranno aggiunti %1 programmi su %2."};
constexpr Bilingual kBlankGoes{"They replace the empty program of the new plan.",
                               "Sostituiscono il programma vuoto del nuovo piano."};
constexpr Bilingual kIgnoredColumns{"Columns not used: %1", "Colonne non usate: %1"};
constexpr Bilingual kImportColumns[] = {{"File line", "Riga del file"}, {"Program", "Programma"},
                                        {"Freq MHz", "Freq MHz"},       {"L.O. MHz", "O.L. MHz"},
                                        {"Symbol rate", "SymbolRate"},  {"Result", "Risultato"}};
constexpr Bilingual kWillBeAdded{"Added", "Aggiunto"};
constexpr Bilingual kWillBeCorrected{"Added, corrected: %1", "Aggiunto, corretto: %1"};

QString result_of(const ImportRow& row, const Texts& texts) {
    if (!row.added()) return import_problem_text(row.problem, texts);
    if (row.corrections.isEmpty()) return texts.pick(kWillBeAdded);
    return texts.pick(kWillBeCorrected).arg(row.corrections.join(QStringLiteral("; ")));
}

QStringList cells_of(const ImportRow& row, const Texts& texts) {
    const programme::ProgramRecord& record = row.record;
    return {QString::number(row.line),
            record.pg_num,
            record.frequenza,
            row.oscillator,
            record.sat_ad ? record.qpsk_symbolrate : QString(),
            result_of(row, texts)};
}

QTableWidget* table_of_import(const ImportPreview& preview, const Texts& texts) {
    QList<QStringList> rows;
    for (const ImportRow& row : preview.rows) rows.append(cells_of(row, texts));
    QTableWidget* table = text_table("import_table", kImportColumns, rows, texts);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    for (int row = 0; row < table->rowCount(); ++row)
        for (int column = 0; column < table->columnCount(); ++column)
            table->item(row, column)->setToolTip(plain_tooltip(table->item(row, column)->text()));
    return table;
}

QString summary_of(const ImportPreview& preview, const QStringList& unknown_columns,
                   const Texts& texts) {
    QStringList lines{texts.pick(kAddedOf).arg(preview.added()).arg(preview.rows.size())};
    if (preview.replaces_blank) lines += texts.pick(kBlankGoes);
    if (!unknown_columns.isEmpty())
        lines += texts.pick(kIgnoredColumns).arg(unknown_columns.join(QStringLiteral(", ")));
    return lines.join(u'\n');
}

}  // namespace

ImportDialog::ImportDialog(const ImportPreview& preview, const QStringList& unknown_columns,
                           const Texts& texts, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("import_preview"));
    setWindowTitle(texts.pick(kImportTitle));
    auto* summary = new QLabel(summary_of(preview, unknown_columns, texts));
    summary->setObjectName(QStringLiteral("import_summary"));
    summary->setTextFormat(Qt::PlainText);
    summary->setWordWrap(true);
    auto* buttons = new QDialogButtonBox;
    auto* import_button =
        buttons->addButton(texts.pick(kImportButton), QDialogButtonBox::AcceptRole);
    import_button->setEnabled(preview.added() > 0);
    buttons->addButton(texts.pick(kCancelButton), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary);
    layout->addWidget(table_of_import(preview, texts));
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 26);
}

}  // namespace m47::plans
