// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>

namespace m47::db {

/// Several changes of the database file that come true together or not at all: what has not been
/// committed is undone with this object. Record sets that changed meanwhile have to be read anew
/// then. Not to be nested.
class DatabaseTransaction {
  public:
    /// Takes the write lock; a file that cannot be written is an EngineFault before anything has
    /// been changed.
    explicit DatabaseTransaction(const QSqlDatabase& database);
    ~DatabaseTransaction();
    DatabaseTransaction(const DatabaseTransaction&) = delete;
    DatabaseTransaction& operator=(const DatabaseTransaction&) = delete;

    void commit();

  private:
    QSqlDatabase database_;
    bool open_ = true;
};

}  // namespace m47::db
