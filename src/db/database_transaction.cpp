// SPDX-License-Identifier: GPL-3.0-or-later
#include "database_transaction.h"

#include <QSqlQuery>

#include "engine.h"

namespace m47::db {

DatabaseTransaction::DatabaseTransaction(const QSqlDatabase& database) : database_(database) {
    Query(database_, QStringLiteral("BEGIN IMMEDIATE"));
}

DatabaseTransaction::~DatabaseTransaction() {
    // The engine may have undone it by itself already: nothing to tell anybody then.
    if (open_) QSqlQuery(QStringLiteral("ROLLBACK"), database_);
}

void DatabaseTransaction::commit() {
    Query(database_, QStringLiteral("COMMIT"));
    open_ = false;
}

}  // namespace m47::db
