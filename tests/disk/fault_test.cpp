// SPDX-License-Identifier: GPL-3.0-or-later
// The disk fails at the n-th call of the real program: what stands on it
// afterwards is the old or the new, and what was lost is told. A sample of n;
// M47_DISK_ALL=1 takes every n.
#include <QBuffer>
#include <QImage>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include "disk_job.h"

namespace m47 {
namespace {

constexpr int kAtOnce = 8;
constexpr int kSample = 2;  // of each kind of fault
const QStringList kKinds{"enospc", "eio", "erofs", "eintr", "short", "fsync", "enospc+", "eio+"};
const QString kPicture = QStringLiteral("p.png");
const QString kLog = QStringLiteral("r.log");
constexpr int kPrograms = 2;

/// What an unattended run can end with.
enum Status { kGood = 0, kNoLink = 3, kNoDatabase = 4, kIncomplete = 7 };

using Files = QMap<QString, QByteArray>;
using Check = std::function<QString(const DiskJob&)>;

struct Work {
    Files files;
    bool meter = false;
    QStringList arguments;
    Check check;  ///< what is wrong afterwards, empty when nothing
};

QByteArray made_database() {
    EmptyStand stand;
    if (stand.remote.run(stand.measuring({"--create-database"})).status != kNoLink)
        qFatal("no database");
    return stand.files().value(kDatabase);
}

/// With the plan "ROOF" of two programs.
QByteArray database_with_plan() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(kDatabase);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(made_database()) < 0) qFatal("no file");
    file.close();
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "plan");
        database.setDatabaseName(path);
        if (!database.open()) qFatal("no database");
        QSqlQuery query(database);
        for (const char* statement :
             {"INSERT INTO gruppo (nome) VALUES ('ROOF')",
              "INSERT INTO configurazione (nome) VALUES ('ROOF')",
              "INSERT INTO programmi (nome, pg_num, frequenza, loc_osc, sat_ad, "
              "monitor_state) "
              "VALUES ('ROOF', '001', 1100, 1, 0, 1), ('ROOF', '002', 1200, 1, 0, "
              "1)"})
            if (!query.exec(statement)) qFatal("%s", statement);
    }
    QSqlDatabase::removeDatabase("plan");
    return content_of(path);
}

QString told_badly(const DiskJob& job, bool something_is_lost) {
    const Ending& ending = job.ending;
    if (ending.status < 0 || ending.status > kIncomplete) return "ended with a crash or not at all";
    if (something_is_lost && (ending.status < kNoLink || ending.err.isEmpty()))
        return "something is lost and not told";
    QList<QByteArray> lines = ending.err.split('\n');
    lines.removeLast();
    for (const QByteArray& line : lines)
        if (!line.startsWith("m47-remote: ")) return "told in a way of its own";
    return {};
}

/// The log has whole lines of `printed` in their order; of a fault that stays,
/// the first ones.
QString log_fault(const DiskJob& job) {
    const QByteArray log = job.content(kLog);
    if (!log.isEmpty() && !log.endsWith("\r\n")) return "half a line in the log";
    const QByteArray printed = as_log(job.ending.out);
    if (job.fault.stays())
        return printed.startsWith(log) ? QString() : "the log is no prefix of the rows";
    qsizetype from = 0;
    QList<QByteArray> lines = log.split('\n');
    lines.removeLast();
    for (const QByteArray& line : lines) {
        const qsizetype at = printed.indexOf(line + '\n', from);
        if (at < 0) return "the log has what is no row";
        from = at + line.size();
    }
    return {};
}

}  // namespace

class FaultTest : public QObject {
    Q_OBJECT

    int runs_ = 0;
    QStringList faults_;

    /// Runs `work` with each of the faults; true where each of them was met.
    bool run_all(const Work& work, const QList<DiskFault>& faults) {
        std::vector<std::unique_ptr<DiskJob>> jobs;
        for (const DiskFault& fault : faults) {
            jobs.push_back(std::make_unique<DiskJob>(fault, work.files, work.meter));
            jobs.back()->start(work.arguments);
        }
        bool all_met = true;
        for (const auto& job : jobs) {
            job->wait();
            if (job->hit().isEmpty()) {
                all_met = false;
                continue;
            }
            ++runs_;
            const QString wrong = work.check(*job);
            if (wrong.isEmpty()) continue;
            faults_ += QStringLiteral("%1 at %2 (%3): %4; status %5, stderr: %6")
                           .arg(job->fault.kind)
                           .arg(job->fault.at)
                           .arg(QString::fromLocal8Bit(job->hit()), wrong)
                           .arg(job->ending.status)
                           .arg(QString::fromLocal8Bit(job->ending.err.trimmed()));
        }
        return all_met;
    }

    static long calls_of(const Work& work, const QString& kind) {
        DiskJob job({kind, 0}, work.files, work.meter);
        job.start(work.arguments);
        job.wait();
        return job.calls();
    }

    void run_sample(const Work& work) {
        QList<DiskFault> faults;
        for (const QString& kind : kKinds) {
            const long calls = calls_of(work, kind);
            for (int k = 0; k < kSample && k < calls; ++k)
                faults += {kind, 1 + (k * calls + calls / 2) / kSample};
        }
        for (qsizetype at = 0; at < faults.size(); at += kAtOnce)
            run_all(work, faults.mid(at, kAtOnce));
    }

    void run_each(const Work& work) {
        for (const QString& kind : kKinds) {
            bool met = true;
            for (long at = 1; met; at += kAtOnce) {
                QList<DiskFault> faults;
                for (int k = 0; k < kAtOnce; ++k) faults += {kind, at + k};
                met = run_all(work, faults);
            }
        }
    }

    void run(const Work& work) {
        runs_ = 0;
        faults_.clear();
        // Without a fault nothing is wrong.
        DiskJob sound({}, work.files, work.meter);
        sound.start(work.arguments);
        sound.wait();
        QCOMPARE(work.check(sound), QString());
        QCOMPARE(sound.ending.err,
                 work.meter || sound.ending.status == kGood ? QByteArray() : sound.ending.err);
        if (qEnvironmentVariableIntValue("M47_DISK_ALL") != 0)
            run_each(work);
        else
            run_sample(work);
        qInfo("%d faults met", runs_);
        for (const QString& fault : std::as_const(faults_)) qWarning("%s", qPrintable(fault));
        QCOMPARE(faults_.size(), 0);
        QVERIFY(runs_ > 10);
    }

  private Q_SLOTS:
    void a_database_is_made() {
        const QByteArray reference = made_database();
        const QTemporaryDir folder;
        const QString other = folder.filePath(kDatabase);
        QFile file(other);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(reference) == reference.size());
        file.close();
        const QString rows = rows_in(other);
        run({{},
             false,
             EmptyStand::measuring({"--create-database"}),
             [&rows](const DiskJob& job) -> QString {
                 const bool there = QFile::exists(job.path(kDatabase));
                 if (there && rows_in(job.path(kDatabase)) != rows)
                     return "another database: " + rows_in(job.path(kDatabase));
                 if (!there && job.ending.status != kNoDatabase) return "none, and not told";
                 if (!job.hidden().isEmpty() && !job.fault.stays())
                     return "left over: " + job.hidden().join(u' ');
                 return told_badly(job, true);
             }});
    }

    void a_plan_is_measured() {
        const QByteArray database = database_with_plan();
        const QTemporaryDir folder;
        QFile file(folder.filePath(kDatabase));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(database) == database.size());
        file.close();
        const QString rows = rows_in(file.fileName());
        run({{{kDatabase, database}},
             true,
             {"--measure", "--on-port", "1", "--port", "1=METER", "--plan", "ROOF", "--log", kLog},
             [&rows](const DiskJob& job) -> QString {
                 if (rows_in(job.path(kDatabase)) != rows)
                     return "the database: " + rows_in(job.path(kDatabase));
                 if (const QString fault = log_fault(job); !fault.isEmpty()) return fault;
                 const bool whole = job.ending.out.count('\n') == kPrograms &&
                                    job.content(kLog) == as_log(job.ending.out);
                 // Told although nothing is lost: right only where it was in doubt.
                 const bool doubtful = job.hit().startsWith("close") || job.hit().contains("sync");
                 if (whole && job.ending.status != kGood && !doubtful)
                     return "told that something is lost, and nothing is";
                 return told_badly(job, !whole);
             }});
    }

    void a_picture_is_the_old_one_or_the_new() {
        QBuffer older;
        older.open(QIODevice::WriteOnly);
        QImage(8, 8, QImage::Format_RGB32).save(&older, "PNG");
        run({{{kDatabase, made_database()}, {kPicture, older.data()}},
             true,
             {"--measure", "--on-port", "1", "--port", "1=METER", "--screenshot", kPicture},
             [](const DiskJob& job) -> QString {
                 const QImage shown(job.path(kPicture));
                 if (shown.isNull()) return "half a picture";
                 return told_badly(job, shown.width() == 8);
             }});
    }

    void an_old_database_is_imported() {
        const QByteArray database = made_database();
        DiskJob reference({}, {{kDatabase, database}}, false);
        const QStringList arguments{"--import-database", OLD_DATABASE};
        reference.start(arguments);
        reference.wait();
        QCOMPARE(reference.ending.status, int{kGood});
        const QString whole = reference.path(kDatabase);
        const QStringList all = names_in(whole);
        QCOMPARE(all.size(), 6);
        run({{{kDatabase, database}}, false, arguments, [&](const DiskJob& job) -> QString {
                 const QString path = job.path(kDatabase);
                 const QStringList there = names_in(path);
                 if (there != all.first(qMin(there.size(), all.size())))
                     return "not in their order: " + there.join(u',');
                 if (rows_in(path) != rows_in(whole, there)) return "not whole: " + rows_in(path);
                 for (const QString& name : all.mid(1)) {
                     const QRegularExpression line(
                         QStringLiteral("^  %1( \\(programs: \\d+\\))?: came$").arg(name),
                         QRegularExpression::MultilineOption);
                     const bool said = QString::fromUtf8(job.ending.out).contains(line);
                     // Where the last sync of a storing fails, the engine itself cannot know
                     // whether it came: the item whose turn it was may be there.
                     const bool in_doubt = name == there.constLast() && job.ending.status != kGood;
                     if (said != there.contains(name) && !(in_doubt && !said))
                         return QStringLiteral("%1: said %2, there %3")
                             .arg(name)
                             .arg(said)
                             .arg(there.contains(name));
                 }
                 return told_badly(job, there.size() < all.size());
             }});
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::FaultTest)
#include "fault_test.moc"
