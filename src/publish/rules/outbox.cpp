// SPDX-License-Identifier: GPL-3.0-or-later
#include "outbox.h"

#include <algorithm>
#include <limits>

#include "database_transaction.h"
#include "engine.h"
#include "file_place.h"
#include "kept_query.h"
#include "outbox_file.h"

namespace m47::publish {
namespace {

constexpr int kDroppedAtOnce = 64;  // lines
constexpr qint64 kLastId = std::numeric_limits<qint64>::max();

template <typename Work>
auto told(const Work& work) {
    return db::told_as<OutboxFault>(work);
}

}  // namespace

/// The statements on the file.
class Outbox::File {
  public:
    /// What the file says of its lines.
    struct Facts {
        qint64 last_ms = 0;
        qint64 acknowledged = 0;
        qint64 dropped = 0;
        qint64 refused = 0;
        qint64 uncounted = 0;  ///< id; 0 for none
        LogPlace place;
    };

    File(const QString& path, qint64 limit)
        : connection_(path), path_(path), number_(platform::file_number(path)), limit_(limit) {}

    bool in_place() const { return platform::file_number(path_) == number_; }
    const QSqlDatabase& database() const { return connection_.database(); }
    qint64 number(db::KeptQuery& statement, const QVariantList& values = {});
    void run(db::KeptQuery& statement, const QVariantList& values) {
        statement.run(database(), values).finish();
    }
    void read_facts();
    void write_facts();
    qint64 insert(LineKind kind, qint64 milliseconds, const QByteArray& line);
    bool over_limit();
    qint64 oldest_to_drop();
    void drop_oldest();
    void make_room();
    qint64 rows_between(qint64 after, qint64 last) { return number(count_, {after, last}); }
    Batch read(db::Query& query, qsizetype most_bytes) const;

    Facts facts;
    qint64 waiting = 0;    ///< rows
    bool changed = false;  ///< facts that the file does not have yet
    db::KeptQuery next_{"SELECT id, line FROM lines WHERE id > ? AND id < ? ORDER BY id LIMIT ?"};
    db::KeptQuery between_{"SELECT id, line FROM lines WHERE id BETWEEN ? AND ? ORDER BY id"};
    db::KeptQuery oldest_{"SELECT ms FROM lines WHERE id > ? AND kind = 0 ORDER BY id LIMIT 1"};
    db::KeptQuery forget_{"DELETE FROM lines WHERE id <= ?"};
    db::KeptQuery drop_{"DELETE FROM lines WHERE id BETWEEN ? AND ?"};
    db::KeptQuery aside_{"INSERT INTO set_aside SELECT * FROM lines WHERE id BETWEEN ? AND ?"};

  private:
    db::Connection connection_;
    QString path_;
    std::optional<quint64> number_;  ///< which file it is, as long as it is open
    qint64 limit_;
    db::KeptQuery insert_{"INSERT INTO lines (kind, ms, line) VALUES (?, ?, ?)"};
    db::KeptQuery count_{"SELECT count(*) FROM lines WHERE kind = 0 AND id > ? AND id <= ?"};
    db::KeptQuery pages_{"PRAGMA page_count"};
    db::KeptQuery free_pages_{"PRAGMA freelist_count"};
    db::KeptQuery page_size_{"PRAGMA page_size"};
    db::KeptQuery oldest_ids_{
        "SELECT coalesce(max(id), 0) FROM (SELECT id FROM lines ORDER BY id LIMIT ?)"};
    db::KeptQuery oldest_aside_{
        "DELETE FROM set_aside WHERE id IN (SELECT id FROM set_aside ORDER BY id LIMIT ?)"};
    db::KeptQuery lines_there_{"SELECT count(*) FROM (SELECT 1 FROM lines LIMIT 2)"};
    db::KeptQuery aside_there_{"SELECT count(*) FROM (SELECT 1 FROM set_aside LIMIT 1)"};
    db::KeptQuery write_{
        "UPDATE facts SET last_ms = ?, acknowledged = ?, dropped = ?, refused = ?, uncounted = ?, "
        "log_size = ?, log_line = ?"};
};

qint64 Outbox::File::number(db::KeptQuery& statement, const QVariantList& values) {
    db::Query& query = statement.run(database(), values);
    const qint64 found = query.next() ? query.value(0).toLongLong() : 0;
    query.finish();
    return found;
}

void Outbox::File::read_facts() {
    db::Query query(database(), QStringLiteral("SELECT * FROM facts"));
    if (!query.next()) return;
    facts = {.last_ms = query.value(0).toLongLong(),
             .acknowledged = query.value(1).toLongLong(),
             .dropped = query.value(2).toLongLong(),
             .refused = query.value(3).toLongLong(),
             .uncounted = query.value(4).toLongLong(),
             .place = {query.value(5).toLongLong(), query.value(6).toByteArray()}};
    query.finish();
    waiting = rows_between(facts.acknowledged, kLastId);
}

void Outbox::File::write_facts() {
    const QByteArray line = facts.place.line.isNull() ? QByteArray("") : facts.place.line;
    run(write_, {facts.last_ms, facts.acknowledged, facts.dropped, facts.refused, facts.uncounted,
                 facts.place.size, line});
}

qint64 Outbox::File::insert(LineKind kind, qint64 milliseconds, const QByteArray& line) {
    db::Query& query = insert_.run(database(), {static_cast<int>(kind), milliseconds, line});
    const qint64 id = query.inserted_row();
    query.finish();
    return id;
}

bool Outbox::File::over_limit() {
    return (number(pages_) - number(free_pages_)) * number(page_size_) > limit_;
}

/// Up to which id the oldest go at once. What an engine has acknowledged is no loss; of the others
/// no more than has to.
qint64 Outbox::File::oldest_to_drop() {
    const qint64 oldest = number(oldest_ids_, {1});
    if (oldest > facts.acknowledged) return oldest;
    return std::min(number(oldest_ids_, {kDroppedAtOnce}), facts.acknowledged);
}

void Outbox::File::drop_oldest() {
    const qint64 last = oldest_to_drop();
    const qint64 lost = rows_between(facts.acknowledged, last);
    facts.dropped += lost;
    waiting -= lost;
    run(forget_, {last});
}

/// What nobody will ever send goes first; the line just written stays.
void Outbox::File::make_room() {
    while (over_limit()) {
        if (number(aside_there_) > 0)
            run(oldest_aside_, {kDroppedAtOnce});
        else if (number(lines_there_) > 1)
            drop_oldest();
        else
            return;
    }
}

Batch Outbox::File::read(db::Query& query, qsizetype most_bytes) const {
    Batch batch;
    while (query.next()) {
        const QByteArray line = query.value(1).toByteArray();
        if (batch.lines > 0 && batch.body.size() + line.size() > most_bytes) break;
        batch.last = query.value(0).toLongLong();
        if (batch.lines++ == 0) batch.first = batch.last;
        batch.body += line;
    }
    query.finish();
    return batch;
}

std::unique_ptr<Outbox> Outbox::open(const QString& path, qint64 limit, OutboxError& error) {
    if (const auto fault = make_outbox_file(path)) {
        error = *fault;
        return nullptr;
    }
    try {
        auto outbox = std::unique_ptr<Outbox>(new Outbox(path, limit));
        const auto fault = take_outbox_file(outbox->file_->database(), path);
        if (!fault) {
            outbox->file_->read_facts();
            const File::Facts& facts = outbox->file_->facts;
            if (facts.uncounted > 0) outbox->uncounted_place_ = facts.place;
            return outbox;
        }
        error = *fault;
    } catch (const db::EngineFault& fault) {
        error = db::own_file_error(fault);
    }
    return nullptr;
}

Outbox::Outbox(const QString& path, qint64 limit) : file_(std::make_unique<File>(path, limit)) {}

Outbox::~Outbox() = default;

qint64 Outbox::time_after_all(qint64 now) {
    // In the file with the line that has it.
    const qint64 behind = file_->facts.last_ms + 1;
    file_->facts.last_ms = behind - now > kMostAhead ? now : std::max(now, behind);
    return file_->facts.last_ms;
}

qint64 Outbox::last_time() const {
    return file_->facts.last_ms;
}

void Outbox::append(LineKind kind, qint64 milliseconds, const QByteArray& line,
                    const std::optional<LogPlace>& place) {
    const File::Facts before = file_->facts;
    const qint64 waiting = file_->waiting;
    try {
        told([&] {
            db::DatabaseTransaction transaction(file_->database());
            const qint64 id = file_->insert(kind, milliseconds, line);
            file_->facts.uncounted = place ? id : 0;
            file_->facts.place = place.value_or(LogPlace());
            if (kind == LineKind::row) ++file_->waiting;
            file_->make_room();
            file_->write_facts();
            transaction.commit();
            file_->changed = false;
        });
    } catch (const OutboxFault&) {
        file_->facts = before;
        file_->waiting = waiting;
        throw;
    }
}

void Outbox::count_all() {
    file_->changed = file_->changed || file_->facts.uncounted > 0;
    file_->facts.uncounted = 0;
    file_->facts.place = {};
    uncounted_place_.reset();
}

void Outbox::drop_uncounted() {
    const qint64 id = file_->facts.uncounted;
    count_all();
    told([&] {
        db::DatabaseTransaction transaction(file_->database());
        file_->waiting -= file_->rows_between(std::max(id - 1, file_->facts.acknowledged), id);
        file_->run(file_->drop_, {id, id});
        file_->write_facts();
        transaction.commit();
    });
    file_->changed = false;
}

Batch Outbox::batch(qint64 after, int most_lines, qsizetype most_bytes) {
    const qint64 uncounted = file_->facts.uncounted;
    return told([&] {
        return file_->read(
            file_->next_.run(file_->database(),
                             {after, uncounted > 0 ? uncounted : kLastId, most_lines}),
            most_bytes);
    });
}

Batch Outbox::lines(qint64 first, qint64 last) {
    return told([&] {
        return file_->read(file_->between_.run(file_->database(), {first, last}),
                           std::numeric_limits<qsizetype>::max());
    });
}

void Outbox::acknowledge(qint64 last) {
    const qint64 before = file_->facts.acknowledged;
    if (last <= before) return;
    file_->waiting -= told([&] { return file_->rows_between(before, last); });
    file_->facts.acknowledged = last;
    file_->changed = true;
}

void Outbox::forget(qint64 last) {
    told([&] { file_->run(file_->forget_, {last}); });
}

void Outbox::set_aside(qint64 first, qint64 last) {
    told([&] {
        db::DatabaseTransaction transaction(file_->database());
        const qint64 rows = file_->rows_between(first - 1, last);
        const qint64 waiting =
            file_->rows_between(std::max(first - 1, file_->facts.acknowledged), last);
        file_->run(file_->aside_, {first, last});
        file_->run(file_->drop_, {first, last});
        const File::Facts facts = file_->facts;
        file_->facts.refused += rows;
        try {
            file_->write_facts();
            transaction.commit();
        } catch (const db::EngineFault&) {
            file_->facts = facts;
            throw;
        }
        file_->waiting -= waiting;
    });
}

void Outbox::tend() {
    if (!file_->changed) return;
    told([&] { file_->write_facts(); });
    file_->changed = false;
}

bool Outbox::in_place() const {
    return file_->in_place();
}

qint64 Outbox::acknowledged() const {
    return file_->facts.acknowledged;
}

qint64 Outbox::rows_waiting() const {
    return file_->waiting;
}

std::optional<qint64> Outbox::oldest_waiting() {
    if (file_->waiting <= 0) return {};
    return told([&] { return file_->number(file_->oldest_, {file_->facts.acknowledged}); });
}

qint64 Outbox::rows_dropped() const {
    return file_->facts.dropped;
}

qint64 Outbox::rows_set_aside() const {
    return file_->facts.refused;
}

}  // namespace m47::publish
