// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <memory>
#include <optional>

#include "recordset.h"

namespace m47::db {

class Connection;

/// The name of the database file in the program's folder.
inline constexpr const char* kDatabaseFile = "VKDM47_03.mdb";

/// Why the database file cannot be used.
enum class DatabaseFault {
    missing,
    unreadable,     ///< no permission to read it, or no regular file
    read_only,      ///< the file or its folder cannot be written
    moved,          ///< the open file was taken away, or another put in its place
    old_engine,     ///< a file of the old Jet engine
    foreign,        ///< a file of another kind, or another program's SQLite file
    damaged,        ///< the engine's check of the whole file does not pass
    index_damaged,  ///< the same, but its pages are sound: an index does not know every row
    table_missing,  ///< one of the four tables, or a field of one, is not there
    locked,         ///< another program holds it locked for longer than 3 s
    full,           ///< no room on its disk
    io_error,       ///< its disk cannot be read or written
    cannot_open,    ///< the file, or its journal, cannot be opened
    no_permission,  ///< the system forbids it
    changing,       ///< another program changes its tables at this moment
    refused,        ///< its tables no longer suit the statements
    constraint,     ///< a rule of its tables forbids the entry
    too_big,        ///< an entry is too long
    no_memory,
    crowded,        ///< too many programs lock it in turn
    interrupted,    ///< the engine was told to break off
    other,          ///< whatever else the engine reports
    cannot_create,  ///< --create-database could not make it
};

struct DatabaseError {
    DatabaseFault fault;
    QString path;
    /// The engine's own words, or the name of the table; may be empty.
    QString detail;
};

/// A plan's name as all its rows are known by, whatever other programs have written there: trimmed
/// and in upper case.
QString stored_plan_name(const QString& text);

/// Makes the row of the plan `name` the current one of `plans`, a set on the list of plans, in
/// whatever letters it is stored. False where there is none.
bool find_plan(Recordset& plans, const QString& name);

/// The program's one database file and its four shared record sets, open for the whole run.
class Database {
  public:
    /// Opens the file at `path` for reading and writing after a check of all of it and a write
    /// probe that leaves nothing behind. Nullptr with `error` filled when it cannot be used;
    /// nothing is created or changed then.
    static std::unique_ptr<Database> open(const QString& path, DatabaseError& error);

    /// The same, for a window that is not to wait for the check: check() is still to be asked,
    /// before anything is stored.
    static std::unique_ptr<Database> open_unchecked(const QString& path, DatabaseError& error);

    /// The check of all of it and the write probe; nothing where the file can be used.
    std::optional<DatabaseError> check();

    /// Makes the file at `path` with one plan "PLAN 1" that holds one empty program, whole or not
    /// at all. An existing file is left alone (true). False with `error` filled on failure.
    static bool create(const QString& path, DatabaseError& error);

    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    Recordset& programmi();
    Recordset& configurazione();
    Recordset& gruppo();
    Recordset& asl();

    /// A further set on `table`: the rows of the plan `plan`, in whatever letters and with whatever
    /// blanks around it their `nome` names it.
    Recordset of_plan(const QString& table, const QString& plan) const;

    /// Makes a copy of it as it stands now at `path`, where no file may be. A Fault where it
    /// cannot.
    void copy_to(const QString& path) const;

    const QSqlDatabase& connection() const;

  private:
    explicit Database(const QString& path);

    std::optional<DatabaseError> fault_of_reading();
    Recordset& read_once(std::optional<Recordset>& set, const char* table);

    QString path_;
    std::unique_ptr<Connection> connection_;
    std::optional<Recordset> programmi_;
    std::optional<Recordset> configurazione_;
    std::optional<Recordset> gruppo_;
    std::optional<Recordset> asl_;
};

}  // namespace m47::db
