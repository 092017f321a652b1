// SPDX-License-Identifier: GPL-3.0-or-later
// Shows, stores and finds in a database of 1,000 plans of 100 programs, against the very same
// statements run by the bare database library: they are recorded while the program runs them and
// run again, every column of every row read.
#include <sqlite3.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlDriver>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "database_transaction.h"
#include "engine.h"
#include "fields.h"
#include "figure.h"
#include "plan_sets.h"
#include "tables.h"

namespace {

constexpr int kPlans = 1000;
constexpr int kPrograms = 100;
constexpr int kRuns = 40;
constexpr double kMostTimesTheLibrary = 1.3;

using Statements = std::vector<std::string>;

QString plan_of(int number) {
    return QStringLiteral("PLAN %1").arg(number, 4, 10, QLatin1Char('0'));
}

m47::programme::ProgramRecord program_of(int number) {
    m47::programme::ProgramRecord record = m47::plans::import_defaults(0);
    record.pg_num = QStringLiteral("%1").arg(number, 3, 10, QLatin1Char('0'));
    record.frequenza = QString::number(950 + number * 10);
    if (number < 41)
        record.logger_pos = QStringLiteral("%1").arg(number + 1, 2, 10, QLatin1Char('0'));
    return record;
}

void fill(m47::db::Database& database) {
    m47::db::DatabaseTransaction transaction(database.connection());
    m47::db::Recordset& plans = database.gruppo();
    m47::db::Recordset& configurations = database.configurazione();
    m47::db::Recordset& programs = database.programmi();
    for (int plan = 0; plan < kPlans; ++plan) {
        for (m47::db::Recordset* set : {&plans, &configurations}) {
            set->add_new();
            set->set(m47::db::field::kNome, plan_of(plan));
            set->update();
        }
        for (int number = 0; number < kPrograms; ++number) {
            programs.add_new();
            programs.set(m47::db::field::kNome, plan_of(plan));
            m47::programme::write_program(programs, program_of(number));
            programs.update();
        }
    }
    transaction.commit();
}

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
    explicit BareLibrary(const QString& path) {
        sqlite3_open(path.toUtf8().constData(), &handle_);
        // As safely as the program stores.
        run_one("PRAGMA synchronous = EXTRA");
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

  private:
    bool run_one(const std::string& text) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(handle_, text.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            return false;
        int result = SQLITE_ROW;
        while ((result = sqlite3_step(statement)) == SQLITE_ROW)
            for (int column = 0; column < sqlite3_column_count(statement); ++column)
                if (sqlite3_column_text(statement, column))
                    characters += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
        sqlite3_finalize(statement);
        return result == SQLITE_DONE;
    }
    sqlite3* handle_ = nullptr;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double milliseconds(const std::function<void()>& run) {
    QElapsedTimer timer;
    timer.start();
    run();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// `action` with ever another number against its own statements. False when one of them fails.
bool compare(const char* what, m47::db::Database& database, const QString& path,
             const std::function<void(int)>& action) {
    BareLibrary library(path);
    std::vector<double> own;
    std::vector<double> bare;
    bool good = true;
    std::size_t statements = 0;
    for (int k = 0; k < kRuns; ++k) {
        own.push_back(milliseconds([&] { action(k); }));
        Recorder recorder(database.connection());
        action(k);
        statements = recorder.statements.size();
        bare.push_back(milliseconds([&] { good = library.run(recorder.statements) && good; }));
    }
    std::printf("%-28s %8.3f ms, its %zu statements alone %8.3f ms\n", what, median(own),
                statements, median(bare));
    bench::print_figure(what, median(own) / median(bare), kMostTimesTheLibrary,
                        "the same statements, bare sqlite3");
    return good && library.characters > 0;
}

/// In memory where there is such a place: a disk would hide what the program adds.
QString folder_template() {
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QStringLiteral(".")) +
           QStringLiteral("/m47-bench-XXXXXX");
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder(folder_template());
    const QString path = folder.filePath(QString::fromLatin1(m47::db::kDatabaseFile));
    m47::db::DatabaseError error{};
    if (!m47::db::Database::create(path, error)) return 1;
    const std::unique_ptr<m47::db::Database> database = m47::db::Database::open(path, error);
    if (!database) return 1;
    fill(*database);
    m47::plans::PlanSets sets(*database);
    const auto place = [](int k) { return k * 379 % kPlans; };

    const bool shown = compare("show a plan of 100 programs", *database, path, [&](int k) {
        sets.crea_records(plan_of(place(k)));
        do {
            if (sets.program().pg_num.isEmpty()) std::abort();
        } while (sets.next_program());
    });
    const bool stored = compare("store a program", *database, path, [&](int k) {
        sets.crea_records(plan_of(place(k)));
        m47::programme::ProgramRecord record = program_of(0);
        record.frequenza = QString::number(1000 + k);
        QString oscillator;
        if (sets.store_record(record, oscillator, 0, true) != m47::plans::Clash::none) std::abort();
    });
    const bool found = compare("find a plan and a program", *database, path, [&](int k) {
        m47::db::Recordset& plans = database->gruppo();
        if (!plans.find_first(m47::db::field::kNome, plan_of(place(k)))) std::abort();
        m47::db::Recordset programs =
            database->of_plan(QString::fromLatin1(m47::db::table::kProgrammi), plan_of(place(k)));
        if (!programs.find_first(m47::db::field::kPgNum, QStringLiteral("050"))) std::abort();
    });
    return shown && stored && found ? 0 : 1;
}
