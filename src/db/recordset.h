// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QSqlDatabase>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>
#include <vector>

#include "engine.h"
#include "fault.h"
#include "schema.h"

namespace m47::db {

/// A row of a record set, to come back to it. It holds for every set on the same table.
using Bookmark = qint64;

/// The current row of a set is no longer in the file: another program has deleted it.
class RecordGone : public Fault {
  public:
    RecordGone();
};

/// An updatable record set over one table: it knows which rows belong to it and reads a row anew
/// at each move. Before the first and behind the last row there is no current row; reading, editing
/// or deleting there is a Fault, and so is any error of the database engine. A row that another
/// program has deleted meanwhile is skipped in the direction of the move and leaves the set; rows
/// added elsewhere join at requery(). A set that outlives its Database only faults.
class Recordset {
  public:
    /// The whole of `table`, in the order its rows were added.
    static Recordset table(const QSqlDatabase& database, const QString& table);

    /// The rows of `table` whose `field` equals `value`, in the order they were added. The value is
    /// bound: quotes in it are just characters.
    static Recordset where(const QSqlDatabase& database, const QString& table, const QString& field,
                           const QVariant& value);

    /// As where(), of the rows whose `field` equals one of `texts`.
    static Recordset where_any(const QSqlDatabase& database, const QString& table,
                               const QString& field, const QStringList& texts);

    /// Reads anew which rows belong to the set and moves to the first.
    void requery();

    /// Each move on an empty set is a Fault. Moving on from the last row reaches the end, back from
    /// the first the begin; moving further than that is a Fault. A move drops an open row.
    void move_first();
    void move_next();
    void move_previous();
    void move_last();

    bool begin_of_set() const;
    bool end_of_set() const;
    bool empty() const;
    /// False before the first row, behind the last and where a row has just been removed.
    bool has_current() const { return current_.has_value(); }
    int count() const;
    /// The rows of the set, in the order of the file; one that another program has deleted may
    /// still be among them.
    const std::vector<Bookmark>& rows() const { return rows_; }

    /// Moves to the first row whose `field` equals `value` (text, compared as it stands). False and
    /// the current row unchanged where there is none.
    bool find_first(const QString& field, const QString& value);

    /// The current row's field; an unset one is a null QVariant. An unknown field is a Fault. What
    /// has been set but not yet updated does not show here.
    QVariant value(const QString& field) const;
    /// As value(), as text; empty when unset.
    QString text(const QString& field) const;

    /// Opens a new row or the current one for set(); update() writes it in one transaction and
    /// cancel() drops it. A new row joins the set at its end without becoming current. After an
    /// update() that failed the row is open as it was. A null QVariant unsets a field, an empty
    /// text does not.
    void add_new();
    void edit();
    void set(const QString& field, const QVariant& value);
    void update();
    void cancel();

    /// Deletes the current row; there is no current row then until the next move, which starts from
    /// where the row was.
    void remove();

    Bookmark bookmark() const;
    void go_to(Bookmark bookmark);
    /// The row last added by update(); 0, which is no row, before the first.
    Bookmark last_added() const;

    /// The set's connection, for a transaction around what is asked and changed together.
    QSqlDatabase database() const;

  private:
    enum class Pending { nothing, added, edited };
    /// A value for each field of the table, in their order.
    using Row = std::vector<QVariant>;

    Recordset(const QSqlDatabase& database, const Table& table, const QString& field,
              const QVariantList& values);

    QString condition() const;
    std::optional<Row> read(qint64 id) const;
    Query& rows_with(qint64 id) const;
    qint64 current_id() const;
    void seek(qsizetype position, qsizetype step);
    void settle(qsizetype position, std::optional<Row> row);
    void insert_changed();
    void write_changed();
    void join(qint64 id);

    // A name and no handle: the Database can close its connection while sets on it still live.
    QString connection_;
    const Table* table_;
    /// Asks for all fields of one row.
    QString read_statement_;
    /// Kept ready, as every move reads a row. Copies of a set may share it: a reading is over
    /// before the next begins.
    mutable std::shared_ptr<Query> reader_;
    QString field_;
    QVariantList filter_;
    /// The rows of the set in rising order.
    std::vector<qint64> rows_;
    /// Of the current row; -1 before the first, the number of rows behind the last. Where a row has
    /// just been removed: of the row that followed it.
    qsizetype position_ = -1;
    bool removed_ = false;
    std::optional<Row> current_;
    QMap<QString, QVariant> changed_;
    Pending pending_ = Pending::nothing;
    qint64 last_added_ = 0;
};

}  // namespace m47::db
