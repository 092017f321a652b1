// SPDX-License-Identifier: GPL-3.0-or-later
#include "stored_rows.h"

#include "engine.h"
#include "schema.h"

namespace m47::db {
namespace {

QVariantList values_of(const StoredRow& row, Bookmark bookmark) {
    QVariantList values;
    for (const QVariant& value : row) values.push_back(value);
    values.push_back(bookmark);
    return values;
}

/// False where there is no such row.
bool change_row(const QSqlDatabase& database, const Table& table, Bookmark row,
                const StoredRow& content) {
    QStringList places;
    for (const Field& field : table.fields)
        places += QStringLiteral("%1 = ?").arg(QLatin1String(field.name));
    const Query query(database,
                      QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?")
                          .arg(QLatin1String(table.name), places.join(QStringLiteral(", "))),
                      values_of(content, row));
    return query.rows_changed() > 0;
}

void insert_row(const QSqlDatabase& database, const Table& table, Bookmark row,
                const StoredRow& content) {
    const QStringList places(static_cast<qsizetype>(content.size()) + 1, QStringLiteral("?"));
    const Query query(
        database,
        QStringLiteral("INSERT INTO %1 (%2, rowid) VALUES (%3)")
            .arg(QLatin1String(table.name), field_list(table), places.join(QStringLiteral(", "))),
        values_of(content, row));
}

}  // namespace

std::optional<StoredRow> read_row(const QSqlDatabase& database, const QString& table,
                                  Bookmark row) {
    const Table& layout = table_named(table);
    Query query(database,
                QStringLiteral("SELECT %1 FROM %2 WHERE rowid = ?").arg(field_list(layout), table),
                {row});
    if (!query.next()) return std::nullopt;
    StoredRow content;
    for (std::size_t place = 0; place < layout.fields.size(); ++place)
        content.push_back(query.value(static_cast<int>(place)));
    return content;
}

void write_row(const QSqlDatabase& database, const QString& table, Bookmark row,
               const std::optional<StoredRow>& content) {
    const Table& layout = table_named(table);
    if (!content) {
        const Query query(database, QStringLiteral("DELETE FROM %1 WHERE rowid = ?").arg(table),
                          {row});
        return;
    }
    if (!change_row(database, layout, row, *content)) insert_row(database, layout, row, *content);
}

}  // namespace m47::db
