// SPDX-License-Identifier: GPL-3.0-or-later
// The real program, real engines, and what becomes of rows when either is killed.
#include <QDateTime>
#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QRandomGenerator>
#include <QTest>
#include <QThread>
#include <algorithm>
#include <csignal>
#include <deque>

#include "engine_processes.h"
#include "small_disk.h"

namespace m47::publish {
namespace {

/// A row by its second and its level: "23/11/26 00:17:05 57.9".
QStringList logged_rows(const QByteArray& log) {
    QStringList rows;
    for (const QStringList& cells : rows_of(log))
        rows += cells[0] + ' ' + cells[1] + ' ' + cells[4];
    std::ranges::sort(rows);
    return rows;
}

/// The same of what the store has of `meter`, each sample once.
QStringList stored_rows(const EngineProcess& store, const QString& meter) {
    QStringList rows;
    for (const QJsonObject& series : exported(store, "m47_level{meter=\"" + meter + "\"}")) {
        const QJsonArray times = series["timestamps"].toArray();
        const QJsonArray values = series["values"].toArray();
        for (qsizetype k = 0; k < times.size(); ++k)
            rows += QDateTime::fromMSecsSinceEpoch(times[k].toInteger())
                        .toString("dd/MM/yy HH:mm:ss ") +
                    QString::number(values[k].toDouble(), 'f', 1);
    }
    std::ranges::sort(rows);
    return rows;
}

/// A meter and the program that measures at it.
struct Probe {
    explicit Probe(int number) : name(QStringLiteral("meter%1").arg(number)) {}

    QStringList options(const EngineProcess& engine, int count) const {
        return {
            "--analog", "--freq",          "1000",      "--count",          QString::number(count),
            "--log",    "a.log",           "--publish", engine.address(""), "--publish-site",
            "roof",     "--publish-meter", name};
    }
    QByteArray log() const { return stand.content("a.log"); }
    void kill() {
        stand.remote.kill_now();
        // Half written it would stand in the way of the next start.
        QFile::remove("/var/lock/LCK.." +
                      QFileInfo(stand.meter.link()).symLinkTarget().mid(5).replace('/', '_'));
    }

    QString name;
    TestStand stand;
};

/// Looks until the store has `wanted`, at most half a minute.
QStringList awaited_rows(const EngineProcess& store, const QString& meter,
                         const QStringList& wanted) {
    const QDeadlineTimer deadline(30000);
    for (;;) {
        const QStringList found = stored_rows(store, meter);
        if (found == wanted || deadline.hasExpired()) return found;
        QThread::msleep(300);
    }
}

QString differences(const QStringList& found, const QStringList& wanted) {
    QStringList missing;
    QStringList extra;
    std::ranges::set_difference(wanted, found, std::back_inserter(missing));
    std::ranges::set_difference(found, wanted, std::back_inserter(extra));
    return "missing: " + missing.join(u',') + "; too much: " + extra.join(u',');
}

}  // namespace

/// Each row of the log is in the store once, and nothing else is.
class EngineTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;

  private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(folder_template()); }

    void killed_at_any_instant_the_store_has_the_log();
    void an_engine_that_comes_late_gets_everything();
    void a_store_whose_disk_is_full();
};

void EngineTest::killed_at_any_instant_the_store_has_the_log() {
    constexpr int kUsualKills = 10;
    constexpr int kAtOnce = 5;
    const int kills = std::max(qEnvironmentVariableIntValue("M47_KILLS"), kUsualKills);
    const auto store = store_in(folder_->path());
    const auto agent = agent_in(folder_->path(), *store);
    QVERIFY(store->start());
    QVERIFY(agent->start());
    QRandomGenerator random(21);
    std::deque<Probe> probes;
    for (int k = 0; k < kAtOnce; ++k) probes.emplace_back(k);
    for (int round = 0; round * kAtOnce < kills; ++round) {
        for (Probe& probe : probes) probe.stand.start_measuring(probe.options(*agent, 1000));
        if (!store->running()) QVERIFY(store->start());
        if (!agent->running()) QVERIFY(agent->start());
        // By then each of them measures.
        for (Probe& probe : probes) QVERIFY(probe.stand.remote.wait_for_lines(1));
        for (Probe& probe : probes) {
            QThread::usleep(static_cast<unsigned>(random.bounded(600'000)));
            probe.kill();
            // A row whose outbox could not be used would be missing later.
            const QByteArray told = probe.stand.remote.wait().err;
            QVERIFY2(!told.contains("outbox") || told.contains("wait in the outbox"), told);
        }
        if (round % 2 == 0)
            store->kill();
        else
            agent->kill();
    }
    if (!store->running()) QVERIFY(store->start());
    if (!agent->running()) QVERIFY(agent->start());
    int rows = 0;
    for (Probe& probe : probes) probe.stand.start_measuring(probe.options(*agent, 1));
    for (Probe& probe : probes) {
        const Ending ending = probe.stand.remote.wait();
        QVERIFY2(ending.status == 0 && ending.err.isEmpty(), ending.err);
        const QStringList wanted = logged_rows(probe.log());
        const QStringList found = awaited_rows(*store, probe.name, wanted);
        QVERIFY2(found == wanted, qPrintable(differences(found, wanted)));
        rows += static_cast<int>(wanted.size());
    }
    qInfo("%d kills, %d rows", kills, rows);
}

void EngineTest::an_engine_that_comes_late_gets_everything() {
    const auto store = store_in(folder_->path());
    Probe probe(1);
    probe.stand.start_measuring(probe.options(*store, 2));
    QVERIFY(probe.stand.remote.wait_for_lines(2));
    // It tries for some seconds yet; told twice it does not.
    for (int told = 0; told < 2; ++told) {
        QThread::msleep(600);
        probe.stand.remote.send_signal(SIGTERM);
    }
    const Ending alone = probe.stand.remote.wait();
    QVERIFY2(
        alone.err.contains("rows are not delivered now") && alone.err.contains("next start: 2"),
        alone.err);
    QVERIFY(store->start());
    // A start whose meter is away brings what waits.
    QStringList without_meter = probe.stand.measuring(probe.options(*store, 1));
    without_meter.removeAll("--create-database");
    without_meter.replaceInStrings(QRegularExpression("^1=.*"), "1=/dev/no-such-meter");
    QCOMPARE(probe.stand.remote.run(without_meter).status, 3);
    QStringList wanted = logged_rows(probe.log());
    QCOMPARE(wanted.size(), 2);
    QCOMPARE(awaited_rows(*store, probe.name, wanted), wanted);
    QCOMPARE(probe.stand.measure(probe.options(*store, 1)).status, 0);
    wanted = logged_rows(probe.log());
    QCOMPARE(wanted.size(), 3);
    QCOMPARE(awaited_rows(*store, probe.name, wanted), wanted);
}

/// It takes no rows until there is room, and the probe keeps them.
void EngineTest::a_store_whose_disk_is_full() {
    SmallDisk disk(folder_->filePath("disk"), 16384);
    if (!disk.mounted()) QSKIP("mounting wants the rights of root");
    const auto store = store_in(folder_->filePath("disk"));
    QVERIFY(store->start());
    Probe probe(1);
    QCOMPARE(probe.stand.measure(probe.options(*store, 1)).status, 0);
    disk.fill();
    QThread::sleep(1);
    probe.stand.start_measuring(probe.options(*store, 1000));
    QVERIFY(probe.stand.remote.wait_for_lines(2));
    probe.kill();
    const QByteArray told = probe.stand.remote.wait().err;
    QVERIFY2(told.contains("rows are not delivered now"), told);
    disk.make_room();
    // Also where the full disk has ended it.
    store->kill();
    QVERIFY(store->start());
    QCOMPARE(probe.stand.measure(probe.options(*store, 1)).status, 0);
    const QStringList wanted = logged_rows(probe.log());
    QVERIFY(wanted.size() >= 4);
    QCOMPARE(awaited_rows(*store, probe.name, wanted), wanted);
    store->kill();
}

}  // namespace m47::publish

QTEST_GUILESS_MAIN(m47::publish::EngineTest)
#include "engine_test.moc"
