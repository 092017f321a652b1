// SPDX-License-Identifier: GPL-3.0-or-later
#include "verify_dialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace m47 {
namespace {

constexpr Bilingual kVerifyTitle{"Verify upload", "Verifica dell'invio"};
constexpr Bilingual kVerified{"The logger table is as planned.",
                              "La tabella datalogger è come previsto."};
constexpr Bilingual kDiffers{"%1 lines of the logger table are not as planned.",
                             "%1 righe della tabella datalogger non sono come previsto."};
constexpr Bilingual kVerifyColumns[] = {{"Line", "Riga"},
                                        {"Planned: program, state", "Previsto: programma, stato"},
                                        {"Found", "Trovato"},
                                        {"", ""}};

QString mark_of(const TableComparison& row) {
    if (!row.judged) return {};
    return row.matches() ? QStringLiteral("✓") : QStringLiteral("✗");
}

QTableWidget* table_of(const std::vector<TableComparison>& rows, const Texts& texts) {
    QStringList header;
    for (const Bilingual& column : kVerifyColumns) header += texts.pick(column);
    auto* table = new QTableWidget(static_cast<int>(rows.size()), static_cast<int>(header.size()));
    table->setObjectName(QStringLiteral("verify_table"));
    table->setHorizontalHeaderLabels(header);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    int number = 0;
    for (const TableComparison& row : rows) {
        int column = 0;
        for (const QString& text : {row.line, row.planned, row.found, mark_of(row)})
            table->setItem(number, column++, new QTableWidgetItem(text));
        ++number;
    }
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    return table;
}

}  // namespace

VerifyDialog::VerifyDialog(const std::vector<TableComparison>& rows, const Texts& texts,
                           QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("verify_result"));
    setWindowTitle(texts.pick(kVerifyTitle));
    const auto wrong =
        std::ranges::count_if(rows, [](const TableComparison& row) { return !row.matches(); });
    auto* summary =
        new QLabel(wrong == 0 ? texts.pick(kVerified) : texts.pick(kDiffers).arg(wrong));
    summary->setObjectName(QStringLiteral("verify_summary"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary);
    layout->addWidget(table_of(rows, texts));
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 24);
}

}  // namespace m47
