// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlError>
#include <QString>
#include <functional>
#include <optional>

namespace m47::db {

/// Asked before each call of the database engine: executing `statement`, reading its next row.
/// With an answer the call is not made and fails with that error.
using StatementFault = std::function<std::optional<QSqlError>(const QString& statement)>;

/// For tests alone, which let any call of the engine fail; the program never sets one. An empty
/// `fault` lets every call pass again.
void set_statement_fault(StatementFault fault);

}  // namespace m47::db
