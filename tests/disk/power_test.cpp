// SPDX-License-Identifier: GPL-3.0-or-later
// The power goes at each change of the disk that a program makes, and what no sync covers is lost
// or halved: what was acknowledged is there, and nothing else than the step under way is open.
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTest>

#include "disk_image.h"
#include "disk_job.h"
#include "plan_sets.h"
#include "program_state.h"
#include "signal_stand.h"

namespace m47 {
namespace {

constexpr int kUsualSteps = 3;
constexpr int kPlanPrograms = 3;
const QString kPlan = QStringLiteral("PLAN 1");
const QString kCopy = QStringLiteral("COPY");
const QString kLog = QStringLiteral("r.log");

int wanted_steps() {
    bool given = false;
    const int asked = qEnvironmentVariableIntValue("M47_POWER_STEPS", &given);
    return given ? asked : kUsualSteps;
}

programme::ProgramRecord of_step(int step, int number) {
    programme::ProgramRecord record;
    record.pg_num = QStringLiteral("00%1").arg(number);
    record.loc_osc = true;
    record.frequenza = QStringLiteral("1000");
    record.satchbw = QStringLiteral("36");
    record.qpsk_symbolrate = QString::number(2000 + step);
    return record;
}

void say(int step) {
    const QByteArray line = QByteArray::number(step) + '\n';
    if (::write(STDOUT_FILENO, line.constData(), static_cast<size_t>(line.size())) < 0) ::_exit(1);
}

std::unique_ptr<db::Database> opened(const QString& folder) {
    db::DatabaseError error{};
    auto database = db::Database::open(folder_with_separator(folder) + kDatabase, error);
    if (!database) qFatal("no database: %s", qPrintable(error.detail));
    return database;
}

void store(plans::PlanSets& sets, int step, int number, bool over) {
    programme::ProgramRecord record = of_step(step, number);
    QString oscillator;
    if (sets.store_record(record, oscillator, 0, over) != plans::Clash::none) qFatal("not stored");
}

void make_plan(const QString& folder) {
    db::DatabaseError error{};
    if (!db::Database::create(folder_with_separator(folder) + kDatabase, error)) qFatal("not made");
    const auto database = opened(folder);
    plans::PlanSets sets(*database);
    for (int number = 0; number < kPlanPrograms; ++number) store(sets, 0, number, number == 0);
}

/// Stores a program, copies the plan or deletes the copy in turn; each step is said when it is
/// over.
int store_programs(const QString& folder, int steps) {
    const auto database = opened(folder);
    plans::PlanSets sets(*database);
    for (int step = 1; step <= steps; ++step) {
        if (sets.has_plan(kCopy)) {
            sets.crea_records(kCopy);
            sets.del_old();
        } else {
            sets.copy_plan(kCopy);
        }
        sets.crea_records(kPlan);
        store(sets, step, 0, true);
        say(step);
    }
    return 0;
}

}  // namespace

class PowerTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder_{folder_template()};
    int states_ = 0;

    QString made(const char* name) {
        const QString path = folder_.filePath(QString::fromLatin1(name));
        QDir(path).removeRecursively();
        if (!QDir().mkpath(path)) qFatal("no folder");
        return path;
    }
    /// All slots of a meter with satellites, as the window saves them.
    static void keep_satellites(const QString& path) {
        WindowStand other({});
        other.start();
        other.order({"trigger asl", "trigger cmdsaveall", "file " + path, "press Ok",
                     "pick listastr 0", "click cmddelstr"});
        if (!other.wait_until_ready()) qFatal("nothing saved");
        // What differs from it will be written.
        QFile file(path);
        if (!file.open(QIODevice::ReadWrite)) qFatal("nothing saved");
        const QByteArray text = file.readAll();
        const QByteArray slot = text.left(text.indexOf("S9") + 12);
        const QByteArray next = text.mid(slot.size());
        file.resize(0);
        // The second satellite goes into the first slot too.
        file.write(slot.left(slot.indexOf('\n') + 1) + next.mid(next.indexOf('\n') + 1));
    }
    QString after_cut(const QMap<QString, QByteArray>& files) {
        const QString path = made("after");
        for (auto file = files.begin(); file != files.end(); ++file) {
            QFile written(path + u'/' + file.key());
            if (!written.open(QIODevice::WriteOnly) ||
                written.write(file.value()) != file.value().size())
                qFatal("no room");
        }
        return path;
    }

    /// Cuts the power at each of `changes`, in every way; `check` gets what is left, and how many
    /// of them had come.
    void cut_everywhere(const QString& folder, const QMap<QString, QByteArray>& before,
                        const QList<DiskChange>& changes,
                        const std::function<void(const QString&, qsizetype)>& check) {
        QRandomGenerator random(47);
        DiskImage image(folder, before);
        QMap<QString, QByteArray> last;
        states_ = 0;
        for (qsizetype done = 0; done <= changes.size(); ++done) {
            if (done > 0) image.apply(changes[done - 1]);
            for (const Leaves leaves : kEveryWay) {
                const auto left = image.after_power_cut(leaves, random);
                if (left == last && changes[qMax(qsizetype{1}, done) - 1].call != "said") continue;
                last = left;
                ++states_;
                check(after_cut(left), done);
                if (!QTest::currentTestFailed()) continue;
                qWarning("at change %d (%s %s), way %d", int(done),
                         changes[qMax(qsizetype{1}, done) - 1].call.constData(),
                         qPrintable(changes[qMax(qsizetype{1}, done) - 1].name), int(leaves));
                return;
            }
        }
        qInfo("%d changes of the disk, %d different states after a cut", int(changes.size()),
              states_);
    }

    /// The database holds the step that was said last, or the next one; and no half copy.
    static void verify_database(const QString& path, int said) {
        const QString file = path + u'/' + kDatabase;
        const QString rows = rows_in(file);
        QVERIFY2(!rows.startsWith("damaged"), qPrintable(rows));
        const QStringList rates = answer(file,
                                         "SELECT qpsk_symbolrate FROM programmi WHERE nome = "
                                         "'PLAN 1' AND pg_num = '000'");
        QCOMPARE(rates.size(), 1);
        const int step = rates[0].toInt() - 2000;
        QVERIFY2(step == said || step == said + 1,
                 qPrintable(QStringLiteral("step %1 was said, %2 is there").arg(said).arg(step)));
        const qsizetype copies = answer(file, "SELECT nome FROM gruppo WHERE nome = 'COPY'").size();
        const QStringList copied = answer(file, "SELECT id FROM programmi WHERE nome = 'COPY'");
        QCOMPARE(copied.size(), copies * kPlanPrograms);
    }

  private Q_SLOTS:
    void stored_programs_are_there() {
        const QString work = made("work");
        make_plan(work);
        const QMap<QString, QByteArray> before{{kDatabase, content_of(work + u'/' + kDatabase)}};
        const QString record = folder_.filePath("record");
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LD_PRELOAD", DISK_SHIM);
        environment.insert("M47_DISK_FOLDER", QFileInfo(work).canonicalFilePath());
        environment.insert("M47_DISK_RECORD", record);
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    {"--child", work, QString::number(wanted_steps())});
        QVERIFY(child.waitForFinished(120000));
        QCOMPARE(child.exitCode(), 0);
        const QList<DiskChange> changes = recorded_changes(content_of(record));
        QVERIFY(changes.size() > 100);
        cut_everywhere(QFileInfo(work).canonicalFilePath(), before, changes,
                       [&](const QString& path, qsizetype done) {
                           int said = 0;
                           for (qsizetype k = 0; k < done; ++k)
                               if (changes[k].call == "said") said = changes[k].bytes.toInt();
                           verify_database(path, said);
                       });
    }

    void a_log_is_a_prefix_and_its_lines_stay() {
        EmptyStand stand;
        QCOMPARE(stand.remote.run(stand.measuring({"--create-database"})).status, 3);
        const auto before = stand.files();
        DiskJob job({}, before, true);
        const QString record = folder_.filePath("log-record");
        job.record_to(record);
        job.start({"--measure", "--on-port", "1", "--port", "1=METER", "--count",
                   QString::number(wanted_steps()), "--log", kLog});
        job.wait();
        QVERIFY2(job.ending.status == 0, job.ending.err.constData());
        const QByteArray whole = job.content(kLog);
        QCOMPARE(whole.count('\n'), wanted_steps());
        const QList<DiskChange> changes = recorded_changes(content_of(record));
        cut_everywhere(QFileInfo(job.path(QString())).canonicalFilePath(), before, changes,
                       [&](const QString& path, qsizetype done) {
                           const QByteArray log = content_of(path + u'/' + kLog);
                           QVERIFY2(whole.startsWith(log), log.constData());
                           // A line that was written and closed is a line that was promised.
                           qsizetype promised = 0;
                           qsizetype written = 0;
                           for (qsizetype k = 0; k < done; ++k) {
                               if (!changes[k].name.endsWith(kLog)) continue;
                               if (changes[k].call == "write") written += changes[k].bytes.size();
                               if (changes[k].call == "close") promised = written;
                           }
                           QVERIFY2(log.size() >= promised, log.constData());
                           QVERIFY(!rows_in(path + u'/' + kDatabase).startsWith("damaged"));
                       });
    }

    void a_copy_is_safe_before_anything_is_erased_data() {
        QTest::addColumn<QString>("erases");
        QTest::addColumn<QStringList>("orders");
        QTest::addColumn<QString>("copy");
        QTest::newRow("logger table, before an upload disables its lines")
            << "DATAPROGRAM 01 01 00"
            << QStringList{"trigger program", "trigger accoda", "press Yes", "trigger sostituisci",
                           "press Yes"}
            << "backup/logger-*.txt";
        // The header of a block for slot 0.
        QTest::newRow("satellites, before a restore writes the first slot")
            << "S00A000041534C20303030"
            << QStringList{"trigger asl", "trigger cmdrestoreall", "file FOLDER/all.s19", "accept"}
            << "all-before-*.s19";
    }
    /// The power goes just as the meter gets the first command that takes something away.
    void a_copy_is_safe_before_anything_is_erased() {
        QFETCH(const QString, erases);
        QFETCH(const QStringList, orders);
        QFETCH(const QString, copy);
        WindowStand window({"--fault-on", erases.left(20), "--fault", "silence"});
        keep_satellites(window.stand.path("all.s19"));
        const QString record = window.stand.folder.filePath("record");
        for (const auto& [name, value] :
             {std::pair{"LD_PRELOAD", QStringLiteral(DISK_SHIM)},
              std::pair{"M47_DISK_FOLDER", QFileInfo(window.stand.path("")).canonicalFilePath()},
              std::pair{"M47_DISK_REPORT", window.stand.folder.filePath("report")},
              std::pair{"M47_DISK_RECORD", record}})
            window.stand.remote.environment.insert(name, value);
        QMap<QString, QByteArray> before;
        for (const QString& name : {kDatabase, QStringLiteral("all.s19")})
            before.insert(name, window.stand.content(name));
        window.start();
        window.order(orders);
        QVERIFY(window.wait_for(erases));
        window.stand.remote.kill_now();
        const QString folder = QFileInfo(window.stand.path("")).canonicalFilePath();
        DiskImage image(folder, before);
        for (const DiskChange& change : recorded_changes(content_of(record))) image.apply(change);
        QRandomGenerator random(1);
        const auto left = image.after_power_cut(Leaves::nothing, random);
        const QFileInfo kept = QDir(folder + u'/' + QFileInfo(copy).path())
                                   .entryInfoList({QFileInfo(copy).fileName()})
                                   .value(0);
        QVERIFY(kept.size() > 20);
        QVERIFY2(left.contains(QDir(folder).relativeFilePath(kept.filePath())),
                 qPrintable(left.keys().join(u' ')));
        QCOMPARE(left.value(QDir(folder).relativeFilePath(kept.filePath())),
                 content_of(kept.filePath()));
    }
};

}  // namespace m47

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--child"))
        return m47::store_programs(arguments[2], arguments[3].toInt());
    m47::PowerTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "power_test.moc"
