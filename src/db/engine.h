// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <QVariantList>

#include "fault.h"

namespace m47::db {

/// An error of the database engine, in its own words.
class EngineFault : public Fault {
  public:
    /// `address` is the name under which the connection knows its file.
    EngineFault(const QSqlError& error, const QString& address);
    /// The engine's result code, extended where it gives that; -1 where the engine gave none.
    int code() const { return code_; }
    /// The file it happened on.
    const QString& path() const { return path_; }
    /// What is wrong with the file and what helps, and the engine's own words behind it.
    QString text(const Texts& texts) const override;

  private:
    int code_;
    QString path_;
};

/// One statement, executed at once with its values bound in their order. Every failure, also one
/// met while reading on, is an EngineFault. It holds a lock on the file until
/// it is finished or gone.
class Query {
  public:
    Query(const QSqlDatabase& database, const QString& statement, const QVariantList& values = {});

    /// The same statement with other values: it is not read and planned a second time.
    void again(const QVariantList& values);
    /// Lets go of the answer and of the lock; again() may follow.
    void finish() { query_.finish(); }
    /// To the next row of the answer; false behind the last.
    bool next();
    /// An unset field is a null QVariant.
    QVariant value(int column) const;
    int rows_changed() const { return query_.numRowsAffected(); }
    qint64 inserted_row() const { return query_.lastInsertId().toLongLong(); }

  private:
    void run(const QVariantList& values);

    QSqlQuery query_;
    QString address_;
};

/// A connection of its own to the file at `path`, which has to be there; closed and forgotten with
/// this object. Waits up to 3 s for a lock of another program.
class Connection {
  public:
    explicit Connection(const QString& path);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const QSqlDatabase& database() const { return database_; }

  private:
    void forget();

    QSqlDatabase database_;
};

/// The version of the engine behind the files, as "3.40.1"; empty where it does not tell.
QString engine_version();

}  // namespace m47::db
