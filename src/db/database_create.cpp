// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFileInfo>

#include "database.h"
#include "engine.h"
#include "fields.h"
#include "new_file.h"
#include "schema.h"
#include "tables.h"

namespace m47::db {
namespace {

const QString kFirstPlan = QStringLiteral("PLAN 1");

void fill(const QSqlDatabase& database) {
    Query(database, QStringLiteral("BEGIN"));
    for (const Table& table : schema())
        for (const QString& statement : creation_statements(table)) Query(database, statement);
    for (const char* table : {table::kGruppo, table::kConfigurazione, table::kProgrammi})
        Query(database,
              QStringLiteral("INSERT INTO %1 (%2) VALUES (?)")
                  .arg(QLatin1String(table), QLatin1String(field::kNome)),
              {kFirstPlan});
    Query(database, QStringLiteral("COMMIT"));
}

bool is_taken(const QString& path) {
    const QFileInfo about(path);
    return about.exists() || about.isSymLink();
}

}  // namespace

bool Database::create(const QString& path, DatabaseError& error) {
    if (is_taken(path)) return true;
    try {
        make_database_file(path, fill);
        return true;
    } catch (const Fault& fault) {
        error = {DatabaseFault::cannot_create, path, QString::fromUtf8(fault.what())};
        return false;
    }
}

}  // namespace m47::db
