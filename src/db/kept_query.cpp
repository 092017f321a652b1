// SPDX-License-Identifier: GPL-3.0-or-later
#include "kept_query.h"

namespace m47::db {

Query& KeptQuery::run(const QSqlDatabase& database, const QVariantList& values) {
    if (query_)
        query_->again(values);
    else
        query_.emplace(database, QString::fromUtf8(statement_), values);
    return *query_;
}

}  // namespace m47::db
