// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <cstdint>
#include <memory>
#include <optional>

#include "outbox_error.h"

namespace m47::publish {

/// What a line is; only rows are measurements.
enum class LineKind : std::uint8_t { row, health };

/// What a row becomes in the log, and how long the log was before it.
struct LogPlace {
    qint64 size = 0;  ///< bytes
    QByteArray line;  ///< without its end
};

/// Lines that lie together, in their order.
struct Batch {
    qint64 first = 0;  ///< id of the first line
    qint64 last = 0;   ///< id of the last one; 0 in an empty batch
    int lines = 0;
    QByteArray body;
    bool empty() const { return lines == 0; }
};

/// The file of lines that an engine has not surely stored. One process at a time has it. What it
/// was told is in it durably when append returns; what is delivered stays until forget(). A file
/// that cannot be read or written is an OutboxFault, and as it was.
class Outbox {
  public:
    /// Opens the file at `path`, making it where there is none, of at most `limit` bytes. Nullptr
    /// with `error` filled where it cannot be used: it is left as it is then.
    static std::unique_ptr<Outbox> open(const QString& path, qint64 limit, OutboxError& error);
    ~Outbox();
    Outbox(const Outbox&) = delete;
    Outbox& operator=(const Outbox&) = delete;

    /// The time for a line written at `now`, milliseconds since 1970: later than that of every line
    /// before, also where the clock was set back by kMostAhead at most. Beyond that it is `now`:
    /// engines leave out what lies far in the future, without a word.
    qint64 time_after_all(qint64 now);
    /// That of the line before; 0 for none.
    qint64 last_time() const;
    static constexpr qint64 kMostAhead = qint64{24} * 3600 * 1000;

    /// Adds a line. With a `place` it is not delivered before count_all() was told that the log
    /// has it. Where there is no room within the limit the oldest lines go.
    void append(LineKind kind, qint64 milliseconds, const QByteArray& line,
                const std::optional<LogPlace>& place = {});
    /// What was appended counts as measured, on the disk with the next tend().
    void count_all();
    /// Where the log should have the last row, which the process before this one could not count.
    const std::optional<LogPlace>& uncounted_place() const { return uncounted_place_; }
    /// The log does not have it: it goes.
    void drop_uncounted();

    /// The next lines behind the id `after`, at most so many and so many bytes, but at least one.
    Batch batch(qint64 after, int most_lines, qsizetype most_bytes);
    /// The lines of these ids that are still here.
    Batch lines(qint64 first, qint64 last);

    /// Everything up to the id `last` was acknowledged.
    void acknowledge(qint64 last);
    /// Removes everything up to the id `last`.
    void forget(qint64 last);
    /// Puts these lines where they are never delivered from.
    void set_aside(qint64 first, qint64 last);
    /// Writes down what only this object knows yet; nothing to write where it knows nothing.
    void tend();

    /// The file is where it was made or found: what is in one that was moved or removed is sent by
    /// this process, and by none after it.
    bool in_place() const;

    qint64 acknowledged() const;  ///< the id of the last line that was
    qint64 rows_waiting() const;  ///< not acknowledged yet
    /// When the oldest of them was measured, milliseconds since 1970; nothing where none waits.
    std::optional<qint64> oldest_waiting();
    qint64 rows_dropped() const;    ///< unacknowledged, for want of room, ever
    qint64 rows_set_aside() const;  ///< ever

  private:
    explicit Outbox(const QString& path, qint64 limit);

    class File;
    std::unique_ptr<File> file_;
    std::optional<LogPlace> uncounted_place_;
};

}  // namespace m47::publish
