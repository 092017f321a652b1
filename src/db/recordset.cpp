// SPDX-License-Identifier: GPL-3.0-or-later
#include "recordset.h"

#include <QScopeGuard>
#include <algorithm>
#include <utility>

#include "fault.h"

namespace m47::db {
namespace {

const QString kComma = QStringLiteral(", ");

constexpr Bilingual kNoRecord{"There is no current record: choose a plan and a program first.",
                              "Nessun record corrente: scegliere prima un piano e un programma."};
constexpr Bilingual kDeleted{
    "The record has been deleted by another program. Move to another one and back.",
    "Il record è stato cancellato da un altro programma. Passare a un altro e tornare."};
constexpr Bilingual kClosed{"The database is closed.", "Il database è chiuso."};

// As the engine gives it back: a Boolean as 0 or 1. An empty text is no unset field, however it was
// made.
QVariant stored_form(const QVariant& value) {
    if (value.typeId() == QMetaType::Bool) return value.toInt();
    if (value.typeId() == QMetaType::QString && value.toString().isNull())
        return QStringLiteral("");
    return value;
}

}  // namespace

RecordGone::RecordGone() : Fault(kDeleted) {}

Recordset Recordset::table(const QSqlDatabase& database, const QString& table) {
    return Recordset(database, table_named(table), QString(), {});
}

Recordset Recordset::where(const QSqlDatabase& database, const QString& table, const QString& field,
                           const QVariant& value) {
    const Table& layout = table_named(table);
    return Recordset(database, layout, checked_field(layout, field), {stored_form(value)});
}

Recordset Recordset::where_any(const QSqlDatabase& database, const QString& table,
                               const QString& field, const QStringList& texts) {
    const Table& layout = table_named(table);
    QVariantList values;
    for (const QString& text : texts) values += stored_form(text);
    return Recordset(database, layout, checked_field(layout, field), values);
}

Recordset::Recordset(const QSqlDatabase& database, const Table& table, const QString& field,
                     const QVariantList& values)
    : connection_(database.connectionName()),
      table_(&table),
      read_statement_(QStringLiteral("SELECT %1 FROM %2 WHERE rowid = ?")
                          .arg(field_list(table), QLatin1String(table.name))),
      field_(field),
      filter_(values) {
    requery();
}

/// What a row must meet to belong to a set with a filter; its places take `filter_`.
QString Recordset::condition() const {
    const QStringList places(filter_.size(), QStringLiteral("?"));
    return QStringLiteral("%1 IN (%2)").arg(field_, places.join(kComma));
}

QSqlDatabase Recordset::database() const {
    QSqlDatabase database = QSqlDatabase::database(connection_, false);
    if (!database.isOpen()) throw Fault(kClosed);
    return database;
}

void Recordset::requery() {
    QString statement = QStringLiteral("SELECT rowid FROM %1").arg(QLatin1String(table_->name));
    QVariantList values;
    if (!field_.isEmpty()) {
        statement += QStringLiteral(" WHERE ") + condition();
        values += filter_;
    }
    std::vector<qint64> rows;
    Query query(database(), statement + QStringLiteral(" ORDER BY rowid"), values);
    while (query.next()) rows.push_back(query.value(0).toLongLong());
    rows_ = std::move(rows);
    settle(-1, std::nullopt);
    if (!rows_.empty()) seek(0, 1);
}

/// The row `id`, about to be read.
Query& Recordset::rows_with(qint64 id) const {
    const QSqlDatabase open = database();
    if (reader_)
        reader_->again({id});
    else
        reader_ = std::make_shared<Query>(open, read_statement_, QVariantList{id});
    return *reader_;
}

std::optional<Recordset::Row> Recordset::read(qint64 id) const {
    // Whatever happens, no lock is held behind it.
    const auto let_go = qScopeGuard([this] {
        if (reader_) reader_->finish();
    });
    Query& query = rows_with(id);
    if (!query.next()) return std::nullopt;
    Row row;
    row.reserve(table_->fields.size());
    for (std::size_t place = 0; place < table_->fields.size(); ++place)
        row.push_back(query.value(static_cast<int>(place)));
    return row;
}

void Recordset::settle(qsizetype position, std::optional<Row> row) {
    position_ = position;
    current_ = std::move(row);
    removed_ = false;
    cancel();
}

// To the row at `position`, or to the next in the direction of `step` that is still there. The
// rows that are gone leave the set only once nothing can fail any more.
void Recordset::seek(qsizetype position, qsizetype step) {
    const auto size = static_cast<qsizetype>(rows_.size());
    qsizetype target = position;
    std::optional<Row> row;
    for (; target >= 0 && target < size; target += step) {
        row = read(rows_[static_cast<std::size_t>(target)]);
        if (row) break;
    }
    const qsizetype first_gone = step > 0 ? position : target + 1;
    const qsizetype gone = step > 0 ? target - position : position - target;
    const auto from = rows_.begin() + first_gone;
    rows_.erase(from, from + gone);
    settle(step > 0 ? position : target, std::move(row));
}

void Recordset::move_first() {
    if (rows_.empty()) throw Fault(kNoRecord);
    seek(0, 1);
}

void Recordset::move_last() {
    if (rows_.empty()) throw Fault(kNoRecord);
    seek(static_cast<qsizetype>(rows_.size()) - 1, -1);
}

void Recordset::move_next() {
    if (!removed_ && end_of_set()) throw Fault(kNoRecord);
    seek(removed_ ? position_ : position_ + 1, 1);
}

void Recordset::move_previous() {
    if (!removed_ && begin_of_set()) throw Fault(kNoRecord);
    seek(position_ - 1, -1);
}

bool Recordset::begin_of_set() const {
    return rows_.empty() || position_ < 0;
}

bool Recordset::end_of_set() const {
    return rows_.empty() || (!removed_ && position_ >= static_cast<qsizetype>(rows_.size()));
}

bool Recordset::empty() const {
    return rows_.empty();
}

int Recordset::count() const {
    return static_cast<int>(rows_.size());
}

bool Recordset::find_first(const QString& field, const QString& value) {
    QString statement = QStringLiteral("SELECT rowid FROM %1 WHERE %2 = ?")
                            .arg(QLatin1String(table_->name), checked_field(*table_, field));
    QVariantList values{stored_form(value)};
    if (!field_.isEmpty()) {
        statement += QStringLiteral(" AND ") + condition();
        values += filter_;
    }
    Query query(database(), statement + QStringLiteral(" ORDER BY rowid"), values);
    while (query.next()) {
        const qint64 id = query.value(0).toLongLong();
        const auto place = std::ranges::lower_bound(rows_, id);
        if (place == rows_.end() || *place != id) continue;
        settle(place - rows_.begin(), read(id));
        return true;
    }
    return false;
}

qint64 Recordset::current_id() const {
    if (!current_) throw Fault(kNoRecord);
    return rows_[static_cast<std::size_t>(position_)];
}

QVariant Recordset::value(const QString& field) const {
    const std::size_t place = field_place(*table_, field);
    current_id();
    return (*current_)[place];
}

QString Recordset::text(const QString& field) const {
    return value(field).toString();
}

void Recordset::add_new() {
    changed_.clear();
    pending_ = Pending::added;
}

void Recordset::edit() {
    std::optional<Row> row = read(current_id());
    if (!row) throw RecordGone();
    current_ = std::move(row);
    changed_.clear();
    pending_ = Pending::edited;
}

void Recordset::set(const QString& field, const QVariant& value) {
    checked_field(*table_, field);
    if (pending_ == Pending::nothing) throw Fault("no record is open for writing");
    changed_.insert(field, stored_form(value));
}

void Recordset::update() {
    if (pending_ == Pending::nothing) throw Fault("no record is open for writing");
    // One statement is one transaction: the engine keeps the old row or the new one whole.
    if (pending_ == Pending::added)
        insert_changed();
    else
        write_changed();
    cancel();
}

void Recordset::insert_changed() {
    const QString name = QString::fromLatin1(table_->name);
    QString statement = QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(name);
    if (!changed_.isEmpty()) {
        const QStringList places(changed_.size(), QStringLiteral("?"));
        statement = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                        .arg(name, QStringList(changed_.keys()).join(kComma), places.join(kComma));
    }
    last_added_ = Query(database(), statement, changed_.values()).inserted_row();
    join(last_added_);
}

void Recordset::write_changed() {
    if (changed_.isEmpty()) return;
    QStringList places;
    for (const QString& field : changed_.keys()) places += QStringLiteral("%1 = ?").arg(field);
    const Query query(database(),
                      QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?")
                          .arg(QLatin1String(table_->name), places.join(kComma)),
                      changed_.values() << current_id());
    if (query.rows_changed() == 0) throw RecordGone();
    for (auto change = changed_.cbegin(); change != changed_.cend(); ++change)
        (*current_)[field_place(*table_, change.key())] = change.value();
}

void Recordset::join(qint64 id) {
    const auto place = std::ranges::lower_bound(rows_, id);
    if (place != rows_.end() && *place == id) return;
    const qsizetype position = place - rows_.begin();
    rows_.insert(place, id);
    if (position < position_ || (position == position_ && !removed_)) ++position_;
}

void Recordset::cancel() {
    changed_.clear();
    pending_ = Pending::nothing;
}

void Recordset::remove() {
    const Query query(
        database(),
        QStringLiteral("DELETE FROM %1 WHERE rowid = ?").arg(QLatin1String(table_->name)),
        {current_id()});
    if (query.rows_changed() == 0) throw RecordGone();
    rows_.erase(rows_.begin() + position_);
    settle(position_, std::nullopt);
    removed_ = true;
}

Bookmark Recordset::bookmark() const {
    return current_id();
}

void Recordset::go_to(Bookmark bookmark) {
    const auto place = std::ranges::lower_bound(rows_, bookmark);
    if (place == rows_.end() || *place != bookmark) throw Fault("not a record of this set");
    std::optional<Row> row = read(bookmark);
    if (!row) throw RecordGone();
    settle(place - rows_.begin(), std::move(row));
}

Bookmark Recordset::last_added() const {
    return last_added_;
}

}  // namespace m47::db
