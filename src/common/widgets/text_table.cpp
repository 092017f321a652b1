// SPDX-License-Identifier: GPL-3.0-or-later
#include "text_table.h"

#include <QHeaderView>

namespace m47 {

QTableWidget* text_table(const char* name, std::span<const Bilingual> columns,
                         const QList<QStringList>& rows, const Texts& texts) {
    QStringList header;
    for (const Bilingual& column : columns) header += texts.pick(column);
    auto* table = new QTableWidget(static_cast<int>(rows.size()), static_cast<int>(header.size()));
    table->setObjectName(QString::fromLatin1(name));
    table->setHorizontalHeaderLabels(header);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (int row = 0; row < table->rowCount(); ++row)
        for (int column = 0; column < rows[row].size(); ++column)
            table->setItem(row, column, new QTableWidgetItem(rows[row][column]));
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    return table;
}

}  // namespace m47
