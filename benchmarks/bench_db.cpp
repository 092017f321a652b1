// SPDX-License-Identifier: GPL-3.0-or-later
// Shows, stores and finds in a database of 1,000 plans of 100 programs, against the very same
// statements run by the bare database library: they are recorded while the program runs them and
// run again, every column of every row read.
#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>
#include <vector>

#include "bare_library.h"
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

/// `action` with ever another number against its own statements. False when one of them fails.
bool compare(const char* what, m47::db::Database& database, const QString& path,
             const std::function<void(int)>& action) {
    bench::BareLibrary library(path, "PRAGMA synchronous = EXTRA");
    std::vector<double> own;
    std::vector<double> bare;
    bool good = true;
    std::size_t statements = 0;
    for (int k = 0; k < kRuns; ++k) {
        own.push_back(bench::milliseconds([&] { action(k); }));
        bench::Recorder recorder(database.connection());
        action(k);
        statements = recorder.statements.size();
        bare.push_back(
            bench::milliseconds([&] { good = library.run(recorder.statements) && good; }));
    }
    std::printf("%-28s %8.3f ms, its %zu statements alone %8.3f ms\n", what, bench::median(own),
                statements, bench::median(bare));
    bench::print_figure(what, bench::median(own) / bench::median(bare), kMostTimesTheLibrary,
                        "the same statements, bare sqlite3");
    return good && library.characters > 0;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder(bench::folder_template());
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
