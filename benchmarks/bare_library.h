// SPDX-License-Identifier: GPL-3.0-or-later
// What the database costs is held against the very same statements run by the bare database
// library: they are recorded while the program runs them and run again, every column of every row
// read.
#pragma once

#include <sqlite3.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QString>
#include <QVariant>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace bench {

using Statements = std::vector<std::string>;

/// Records the statements of a connection while it lives, with their values in place.
class Recorder {
  public:
    explicit Recorder(const QSqlDatabase& database)
        : handle_(*static_cast<sqlite3* const*>(database.driver()->handle().constData())) {
        sqlite3_trace_v2(handle_, SQLITE_TRACE_STMT, &Recorder::note, this);
    }
    ~Recorder() { sqlite3_trace_v2(handle_, 0, nullptr, nullptr); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    Statements statements;

  private:
    static int note(unsigned, void* self, void* statement, void*) {
        char* text = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
        static_cast<Recorder*>(self)->statements.emplace_back(text);
        sqlite3_free(text);
        return 0;
    }
    sqlite3* handle_;
};

/// The database library and nothing else.
class BareLibrary {
  public:
    /// `setting` makes it store as safely as the program does.
    BareLibrary(const QString& path, const char* setting) {
        sqlite3_open(path.toUtf8().constData(), &handle_);
        run_one(setting);
    }
    ~BareLibrary() { sqlite3_close(handle_); }
    BareLibrary(const BareLibrary&) = delete;
    BareLibrary& operator=(const BareLibrary&) = delete;

    /// False when one fails.
    bool run(const Statements& statements) {
        for (const std::string& text : statements)
            if (!run_one(text)) return false;
        return true;
    }

    std::size_t characters = 0;  ///< of all that was read
    double sum = 0;              ///< of all numbers

  private:
    bool run_one(const std::string& text) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(handle_, text.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            return false;
        int result = SQLITE_ROW;
        while ((result = sqlite3_step(statement)) == SQLITE_ROW)
            for (int column = 0; column < sqlite3_column_count(statement); ++column)
                read(statement, column);
        sqlite3_finalize(statement);
        return result == SQLITE_DONE;
    }
    /// As what it is: a number need not become a text.
    void read(sqlite3_stmt* statement, int column) {
        const int type = sqlite3_column_type(statement, column);
        if (type == SQLITE_INTEGER)
            sum += static_cast<double>(sqlite3_column_int64(statement, column));
        else if (type == SQLITE_FLOAT)
            sum += sqlite3_column_double(statement, column);
        else if (type != SQLITE_NULL && sqlite3_column_blob(statement, column))
            characters += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    }
    sqlite3* handle_ = nullptr;
};

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

inline double milliseconds(const std::function<void()>& run) {
    QElapsedTimer timer;
    timer.start();
    run();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// In memory where there is such a place: a disk would hide what the program adds.
inline QString folder_template() {
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QStringLiteral(".")) +
           QStringLiteral("/m47-bench-XXXXXX");
}

}  // namespace bench
