// SPDX-License-Identifier: GPL-3.0-or-later
// The program's process dies at any instant while plans are stored, copied, deleted and uploaded:
// what is found afterwards is as before the step that was under way, or as after it.
#include <signal.h>
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <cstdio>

#include "fake_link_view.h"
#include "fake_port.h"
#include "plan_sets.h"
#include "plan_upload.h"

namespace m47::plans {
namespace {

constexpr int kPrograms = 10;
constexpr int kCopies = 5;
constexpr int kUsualKills = 25;
constexpr unsigned kLongestRun = 60000;  // microseconds behind the child's first step
constexpr int kPatience = 30000;         // ms
const QString kPlan = QStringLiteral("PLAN 1");
const QString kFirstNumber = QStringLiteral("000");

QString file_in(const QString& folder) {
    return folder_with_separator(folder) + QLatin1String(db::kDatabaseFile);
}

std::unique_ptr<db::Database> opened(const QString& folder) {
    db::DatabaseError error{};
    auto database = db::Database::open(file_in(folder), error);
    if (!database) qFatal("fault %d: %s", static_cast<int>(error.fault), qPrintable(error.detail));
    return database;
}

/// The meter's logger table: longer than a page of any disk.
QByteArray logger_table() {
    QByteArray table;
    for (int line = 0; line < 900; ++line)
        table += QByteArray::number(line).rightJustified(2, '0') + " 07 01\r";
    return table.chopped(1);
}

/// A record all of whose numbers tell the same generation.
programme::ProgramRecord of_generation(int generation) {
    programme::ProgramRecord record;
    record.pg_num = kFirstNumber;
    record.loc_osc = true;
    record.frequenza = QString::number(950 + generation % 1000);
    record.qpsk_symbolrate = QString::number(1500 + generation % 40000);
    record.satchbw = QStringLiteral("36");
    record.logger_pos = QStringLiteral("00");
    return record;
}

void make_plan(const QString& folder) {
    db::DatabaseError error{};
    if (!db::Database::create(file_in(folder), error)) qFatal("%s", qPrintable(error.detail));
    const auto database = opened(folder);
    PlanSets sets(*database);
    QString oscillator;
    for (int number = 0; number < kPrograms; ++number) {
        programme::ProgramRecord record = of_generation(0);
        record.pg_num = QString::number(number);
        if (sets.store_record(record, oscillator, 0, number == 0) != Clash::none)
            qFatal("the plan cannot be made");
    }
}

void say(int generation) {
    std::printf("%d\n", generation);
    std::fflush(stdout);
}

/// What a technician does, again and again, until killed. Each generation is said when it is over.
int work_for_ever(const QString& folder) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const auto database = opened(folder);
    VirtualClock clock;
    FakePort port(clock);
    FakeLinkView view;
    link::Link link(port, clock, view);
    link.port_connected = true;
    port.answer = [](const QByteArray& command) {
        return FakePort::good(command, command.endsWith('?') ? logger_table() : QByteArray());
    };
    ProgramState state;
    state.base_dir = folder_with_separator(folder);
    PlanSets sets(*database);
    QString oscillator;
    int generation = sets.program().qpsk_symbolrate.toInt() - 1500;
    for (;;) {
        ++generation;
        programme::ProgramRecord record = of_generation(generation);
        sets.store_record(record, oscillator, 0, true);
        const QString copy = QStringLiteral("COPY %1").arg(generation % kCopies);
        if (sets.has_plan(copy)) {
            sets.crea_records(copy);
            sets.del_old();
        } else {
            sets.copy_plan(copy);
        }
        sets.crea_records(kPlan);
        PlanUpload(link, state).run({sets.programs(), sets.oscillators(), "36", 0}, kDisable);
        say(generation);
    }
}

}  // namespace

class KillTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    int journals_ = 0;

    QList<QStringList> sql(const QString& statement) {
        QList<QStringList> rows;
        {
            auto database = QSqlDatabase::addDatabase("QSQLITE", "look");
            database.setDatabaseName(file_in(folder_->path()));
            if (!database.open()) qFatal("the database file does not open");
            QSqlQuery query(statement, database);
            while (query.next()) {
                rows.append(QStringList());
                for (int k = 0; !query.value(k).isNull(); ++k)
                    rows.last() += query.value(k).toString();
            }
        }
        QSqlDatabase::removeDatabase("look");
        return rows;
    }

    /// The last generation that a child has said, killed after a while.
    int killed_after_a_while(QRandomGenerator& random) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {"--child", folder_->path()});
        while (!child.canReadLine())
            if (!child.waitForReadyRead(kPatience)) qFatal("the child does not work");
        QThread::usleep(random.bounded(kLongestRun));
        ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
        child.waitForFinished(kPatience);
        if (QFile::exists(file_in(folder_->path()) + "-journal")) ++journals_;
        const QList<QByteArray> lines = child.readAllStandardOutput().trimmed().split('\n');
        return lines.last().toInt();
    }

    void verify_plans(int said) {
        QCOMPARE(sql("PRAGMA integrity_check"), QList<QStringList>{{"ok"}});
        const auto row =
            sql("SELECT frequenza, qpsk_symbolrate FROM programmi WHERE nome = "
                "'PLAN 1' AND pg_num = '000'");
        QCOMPARE(row.size(), 1);
        const int generation = row[0][1].toInt() - 1500;
        QVERIFY2(generation == said || generation == said + 1, qPrintable(row[0].join(u' ')));
        // Every row of every plan is of one generation, and every plan is whole.
        QCOMPARE(sql("SELECT nome FROM programmi WHERE frequenza + 0 <> 950 + "
                     "(qpsk_symbolrate - 1500) % 1000"),
                 QList<QStringList>());
        const auto plans = sql("SELECT nome FROM gruppo ORDER BY nome");
        QCOMPARE(sql("SELECT nome FROM configurazione ORDER BY nome"), plans);
        QCOMPARE(sql("SELECT DISTINCT nome FROM programmi ORDER BY nome"), plans);
        QCOMPARE(sql(QStringLiteral("SELECT nome FROM programmi GROUP BY nome HAVING count(*) <> "
                                    "%1")
                         .arg(kPrograms)),
                 QList<QStringList>());
    }

    /// A copy of the meter's table is whole wherever there is one.
    void verify_copies() {
        const QDir backup(folder_->filePath("backup"));
        const QStringList names = backup.entryList({"logger-*.txt"});
        QVERIFY(names.size() <= 31);
        for (const QString& name : names) {
            QFile file(backup.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), logger_table());
        }
    }

  private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        make_plan(folder_->path());
    }

    void each_step_is_done_or_not() {
        bool given = false;
        const int asked = qEnvironmentVariableIntValue("M47_KILLS", &given);
        const int kills = given ? asked : kUsualKills;
        QRandomGenerator random(471);
        int generations = 0;
        for (int round = 0; round < kills; ++round) {
            const int said = killed_after_a_while(random);
            QVERIFY(said > 0);
            generations = said;
            // In turn the program itself and another one are the first to open the file again.
            if (round % 2 == 0) opened(folder_->path());
            verify_plans(said);
            verify_copies();
            if (QTest::currentTestFailed()) return;
        }
        qInfo("%d kills, %d of them left a journal, %d generations of work", kills, journals_,
              generations);
    }
};

}  // namespace m47::plans

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--child"))
        return m47::plans::work_for_ever(arguments[2]);
    m47::plans::KillTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "kill_test.moc"
