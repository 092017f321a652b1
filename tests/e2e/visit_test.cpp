// SPDX-License-Identifier: GPL-3.0-or-later
// Runs that are kept as visits at a site: what they store, what they are compared with, and what is
// left where the program or its disk dies.
#include <sys/inotify.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QThread>
#include <array>
#include <deque>

#include "meter_in_process.h"
#include "no_view.h"
#include "process_support.h"
#include "signal_stand.h"
#include "small_disk.h"
#include "told_lines.h"
#include "unattended.h"
#include "visit_recorder.h"

namespace m47 {
namespace {

const QString kSites = QString::fromLatin1(sites::kSitesFile);

/// The first column of what a connection of somebody else is answered.
QStringList ask(const QString& file, const QStringList& statements) {
    QStringList answer;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "other");
        database.setDatabaseName(file);
        if (!database.open()) qFatal("cannot open %s", qPrintable(file));
        QSqlQuery query(database);
        for (const QString& statement : statements)
            if (!query.exec(statement)) qFatal("%s", qPrintable(statement));
        while (query.next()) answer += query.value(0).toString();
    }
    QSqlDatabase::removeDatabase("other");
    return answer;
}

QString measurements(const QString& file) {
    return ask(file, {"SELECT count(*) FROM measurements"}).value(0);
}

/// A plan "ROOF" of digital programs that are tuned directly.
void add_plan(const QString& file) {
    QStringList statements{"INSERT INTO gruppo (nome) VALUES ('ROOF')",
                           "INSERT INTO configurazione (nome, loc_osc1) VALUES ('ROOF', 9750)"};
    const std::pair<double, int> programs[] = {
        {1000, 27500}, {1097.5, 22000}, {1362, 30000}, {1718.5, 22000}};
    int number = 0;
    for (const auto& [mhz, rate] : programs)
        statements +=
            QStringLiteral(
                "INSERT INTO programmi (nome, pg_num, frequenza, loc_osc, loc_osc0, sat_ad, "
                "qpsk_symbolrate, satchbw, lnb_volt, K22, diseqc_cmd, diseqc_cmd2, monitor_state) "
                "VALUES ('ROOF', '00%1', %2, 1, 0, 1, '%3', 27, 0, 0, 73, 73, 1)")
                .arg(++number)
                .arg(mhz)
                .arg(rate);
    ask(file, statements);
}

/// What goes to stdout meanwhile, in a file.
class StdoutInto {
  public:
    explicit StdoutInto(const QString& path) : file_(path) {
        if (!file_.open(QIODevice::ReadWrite | QIODevice::Truncate)) qFatal("no file");
        std::fflush(stdout);
        kept_ = ::dup(STDOUT_FILENO);
        ::dup2(file_.handle(), STDOUT_FILENO);
    }
    ~StdoutInto() {
        std::fflush(stdout);
        ::dup2(kept_, STDOUT_FILENO);
        ::close(kept_);
    }
    StdoutInto(const StdoutInto&) = delete;
    StdoutInto& operator=(const StdoutInto&) = delete;

  private:
    QFile file_;
    int kept_ = -1;
};

/// What a run on a day of a virtual clock printed and told, at a dish that has lost `fade` dB.
struct Told {
    int status = -1;
    QByteArray rows;
    QStringList lines;
};

Told run_on(const QString& folder, const QDate& day, double fade, const QStringList& more,
            int unit_changed_at = 0) {
    const QString file = folder_with_separator(folder) + QLatin1String(db::kDatabaseFile);
    db::DatabaseError error{};
    if (!QFile::exists(file)) {
        db::Database::create(file, error);
        add_plan(file);
    }
    const auto database = db::Database::open(file, error);
    ProgramState state;
    state.base_dir = folder_with_separator(folder);
    state.corrected.full_tune = true;
    auto clock = std::make_unique<VirtualClock>();
    clock->set_date(day);
    auto port = std::make_unique<FakePort>(*clock);
    FakePort& line = *port;
    link::PortList ports(link::PortSources{folder, folder, [] { return QStringList(); }});
    ports.add(QStringLiteral("1=/dev/no-such-meter"));
    unattended::NoView view;
    unattended::MeterConnection connection(state, ports, std::move(clock), std::move(port), view,
                                           view);
    // It leaves the line before the connection closes it for good.
    MeterInProcess meter(line, 1, fade);
    int levels = 0;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command != "LEVANL?" || ++levels != unit_changed_at) return;
        line.answer("UNIT 02");  // by a key of the meter: the line hears nothing of it
        line.hush();
    };
    const unattended::Options options =
        unattended::parse_options(QStringList{"--measure", "--on-port", "1", "--plan", "ROOF",
                                              "--full-tune", "--site", "Condominio Sole"} +
                                      more,
                                  {QStringLiteral("m47-remote"), {}});
    if (!options.error.isEmpty()) qFatal("%s", qPrintable(options.error));
    told_lines().clear();
    Told told;
    {
        const StdoutInto printed(folder + "/out");
        told.status = unattended::run_unattended(state, *database, connection, options, {});
    }
    told.rows = content_of(folder + "/out");
    for (const QString& text : told_lines().lines()) told.lines += text.section(" m47.run ", 1);
    return told;
}

/// A run of the real program that dies at an instant of chance, or while it stores a row.
class Victim {
  public:
    void start() {
        stand_.start_measuring(
            {"--freq", "1000", "--count", "1000", "--site", "Sole", "--directory", work_.path()});
    }
    /// False, told, where it does not.
    bool measures() {
        if (stand_.remote.wait_for_lines(1)) return true;
        qWarning("%s", stand_.remote.wait().err.constData());
        return false;
    }

    /// Dies within `milliseconds`.
    void die_within(unsigned milliseconds, QRandomGenerator& random) {
        deadline_ = std::make_unique<QDeadlineTimer>(random.bounded(milliseconds));
    }
    /// Dies within so many microseconds of the next journal.
    void die_at_journal(unsigned microseconds, QRandomGenerator& random) {
        behind_ = random.bounded(microseconds);
        watch_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        ::inotify_add_watch(watch_, qPrintable(work_.path()), IN_CREATE);
    }
    /// Looks whether it is time; true once it is dead.
    bool dead() {
        if (dead_) return true;
        dead_ = deadline_ ? deadline_->hasExpired() : journal_is_there();
        if (!dead_) return false;
        QElapsedTimer timer;
        timer.start();
        while (timer.nsecsElapsed() < behind_ * 1000LL) continue;
        stand_.remote.kill_now();
        // Half written it would stand in the way of the next meter of that number.
        QFile::remove("/var/lock/LCK.." +
                      QFileInfo(stand_.meter.link()).symLinkTarget().mid(5).replace('/', '_'));
        if (watch_ >= 0) ::close(watch_);
        return true;
    }

    QString file() const { return work_.filePath(kSites); }
    /// Rows that somebody got to see.
    int printed() { return static_cast<int>(rows_of(stand_.remote.wait().out).size()); }

  private:
    bool journal_is_there() const {
        std::array<char, 4096> events{};
        const auto bytes = ::read(watch_, events.data(), events.size());
        return bytes > 0 &&
               QByteArray::fromRawData(events.data(), bytes).contains("sqlite-journal");
    }

    TestStand stand_;
    /// On a disk, where storing takes its time.
    QTemporaryDir work_;
    std::unique_ptr<QDeadlineTimer> deadline_;
    int watch_ = -1;
    unsigned behind_ = 0;
    bool dead_ = false;
};

/// What is left of a visit can be read and gone on with; how many rows it has.
int rows_left(const QString& file) {
    if (ask(file, {"PRAGMA integrity_check"}) != QStringList("ok")) qFatal("damaged");
    sites::StoreError error;
    const auto store = sites::SiteStore::open(file, error);
    if (!store) qFatal("%s", qPrintable(error.detail));
    const std::vector<sites::Visit> visits = store->visits(store->sites().at(0).id);
    const std::size_t kept = store->measurements(visits.at(0).id).size();
    sites::VisitRecorder recorder(*store);
    recorder.resume(visits[0].id);
    measurement::Measurement row;
    row.instant = visits[0].begun.wall() + 10000;
    recorder.take(row, visits[0].begun.offset);
    recorder.end(QDateTime::currentDateTime());
    if (visits.size() != 1 || visits[0].ended || recorder.missing() > 0 ||
        store->measurements(visits[0].id).size() != kept + 1)
        qFatal("the visit does not go on");
    return static_cast<int>(kept);
}

}  // namespace

class VisitTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_dish_that_gets_worse_over_a_year();
    void a_unit_changed_at_the_meter_is_told_and_set_back();
    void a_run_is_kept_and_compared();
    void a_file_that_cannot_be_used_ends_the_run_untouched_data();
    void a_file_that_cannot_be_used_ends_the_run_untouched();
    void a_file_locked_or_taken_away_in_the_middle_stops_nothing();
    void a_full_disk_stops_nothing_and_is_counted();
    void killed_at_any_instant_it_has_every_row_that_was_printed();
    void a_visit_that_another_process_keeps_is_left_alone();
    void a_window_killed_at_any_instant_loses_no_row_and_its_visit_goes_on();
};

void VisitTest::a_dish_that_gets_worse_over_a_year() {
    const QTemporaryDir folder(folder_template());
    const QStringList first{"--compare-with", "first", "--worse-than", "2"};
    const Told january = run_on(folder.path(), {2026, 1, 10}, 0, first);
    QCOMPARE(january.status, 7);
    QCOMPARE(january.lines,
             QStringList("there is no earlier visit at Condominio Sole to compare with"));
    QCOMPARE(rows_of(january.rows).size(), 4);
    const Told july = run_on(folder.path(), {2026, 7, 4}, 1.2, first);
    QCOMPARE(july.status, 0);
    QCOMPARE(july.lines, QStringList("compared with the visit of 2026-01-10 10:00:00: "
                                     "0 of 4 programs got worse"));
    const Told later = run_on(folder.path(), {2027, 1, 9}, 3.5, first);
    QCOMPARE(later.status, 1);
    QCOMPARE(later.lines.value(0), QString("compared with the visit of 2026-01-10 10:00:00: "
                                           "4 of 4 programs got worse"));
    QCOMPARE(later.lines.size(), 5);
    for (const QString& line : later.lines.mid(1)) {
        QVERIFY2(line.startsWith("worse: ROOF 00"), qPrintable(line));
        QVERIFY2(line.contains(QRegularExpression(": level 3\\.[2-8] dB less")), qPrintable(line));
    }
    // The rows are what they are without a site.
    QCOMPARE(rows_of(later.rows).size(), 4);
    // Since July no more than 2.3 dB are gone; on its date it is found again.
    const Told last = run_on(folder.path(), {2027, 1, 10}, 3.5,
                             {"--compare-with", "2026-07-04", "--worse-than", "2.9"});
    QCOMPARE(last.status, 0);
    QVERIFY(last.lines.value(0).startsWith("compared with the visit of 2026-07-04"));
    const Told none = run_on(folder.path(), {2027, 1, 11}, 3.5, {"--compare-with", "2026-07-05"});
    QCOMPARE(none.status, 7);
    QCOMPARE(ask(folder.filePath(kSites), {"SELECT count(*) FROM visits WHERE plan = 'ROOF' AND "
                                           "instrument <> '' AND logo <> '' AND ended_utc > "
                                           "begun_utc"}),
             QStringList("5"));
}

/// What stays in the file as a number has its own unit, or none where nobody knows it.
void VisitTest::a_unit_changed_at_the_meter_is_told_and_set_back() {
    const QTemporaryDir folder(folder_template());
    const Told told =
        run_on(folder.path(), {2026, 1, 10}, 0, {"--passes", "2", "--format", "tsv"}, 3);
    QCOMPARE(told.status, 0);
    QCOMPARE(told.lines, QStringList("the unit was changed at the meter: nobody knows in which one "
                                     "the level of this row is; the meter is set back to dBuV"));
    QCOMPARE(ask(folder.filePath(kSites),
                 {"SELECT CASE WHEN unit IS NULL THEN '-' ELSE unit END || ' ' || (level > 0) "
                  "FROM measurements ORDER BY utc"}),
             QStringList({"0 1", "0 1", "- 0", "0 1", "0 1", "0 1", "0 1", "0 1"}));
}

void VisitTest::a_run_is_kept_and_compared() {
    TestStand stand;
    const Ending first = stand.measure({"--freq", "1000", "--count", "2", "--site", "Sole"});
    QCOMPARE(first.status, 0);
    QCOMPARE(first.err, QByteArray());
    QCOMPARE(rows_of(first.out).size(), 2);
    QCOMPARE(measurements(stand.path(kSites)), QString("2"));
    const Ending second = stand.measure({"--freq", "1000", "--format", "json", "--site", "SOLE ",
                                         "--compare-with", "last", "--worse-than", "1.5"});
    QCOMPARE(second.status, 0);
    QCOMPARE(second.out.count('\n'), 1);
    QVERIFY(second.out.startsWith('{'));
    QVERIFY2(second.err.contains(": 0 of 1 programs got worse\n"), second.err);
    const Ending other =
        stand.measure({"--freq", "1100", "--site", "Sole", "--compare-with", "first"});
    QCOMPARE(other.status, 7);
    QVERIFY2(
        other.err.contains("no earlier visit at Sole has a program of this one to compare with\n"),
        other.err);
    // The visit in between has nothing of it, and is passed over.
    const Ending again =
        stand.measure({"--freq", "1000", "--site", "Sole", "--compare-with", "last"});
    QCOMPARE(again.status, 0);
    QVERIFY2(again.err.contains(": 0 of 1 programs got worse\n"), again.err);
    QCOMPARE(ask(stand.path(kSites), {"SELECT count(*) || ' ' || (SELECT count(*) FROM sites) "
                                      "FROM visits"}),
             QStringList("4 1"));
}

void VisitTest::a_file_that_cannot_be_used_ends_the_run_untouched_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("word");
    const QTemporaryDir folder(folder_template());
    sites::StoreError error;
    const QString file = folder.filePath(kSites);
    sites::SiteStore::open(file, error).reset();
    const QByteArray sound = content_of(file);
    QByteArray newer = sound;
    newer[63] = '\x7';
    QByteArray damaged = sound;
    damaged.replace(4096, 300, QByteArray(300, '\x33'));
    QTest::newRow("newer") << newer << QByteArray("later version");
    QTest::newRow("damaged") << damaged << QByteArray("is damaged");
    QTest::newRow("foreign") << QByteArray("dear diary") << QByteArray("not a file of sites");
}

void VisitTest::a_file_that_cannot_be_used_ends_the_run_untouched() {
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, word);
    TestStand stand;
    QFile file(stand.path(kSites));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    const Ending ending = stand.measure({"--site", "Sole"});
    QCOMPARE(ending.status, 4);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY2(ending.err.contains(word), ending.err);
    QVERIFY(stand.content(kSites) == content);
    QCOMPARE(stand.meter.commands(), QStringList());
}

void VisitTest::a_file_locked_or_taken_away_in_the_middle_stops_nothing() {
    TestStand locked;
    TestStand away;
    for (TestStand* stand : {&locked, &away})
        stand->start_measuring(
            {"--freq", "1000", "--count", "4", "--log", "run.log", "--site", "Sole"});
    QVERIFY(locked.remote.wait_for_lines(1) && away.remote.wait_for_lines(1));
    QVERIFY(QFile::rename(away.path(kSites), away.path("elsewhere")));
    {
        QSqlDatabase holder = QSqlDatabase::addDatabase("QSQLITE", "holder");
        holder.setDatabaseName(locked.path(kSites));
        QVERIFY(holder.open());
        QSqlQuery query(holder);
        QVERIFY(query.exec("BEGIN EXCLUSIVE"));
        QVERIFY(locked.remote.wait_for_lines(3));
        QVERIFY(query.exec("ROLLBACK"));
    }
    QSqlDatabase::removeDatabase("holder");
    const Ending free = locked.remote.wait();
    QCOMPARE(free.status, 0);
    QCOMPARE(free.err.count('\n'), 1);
    QVERIFY2(free.err.contains("in use by another program"), free.err);
    QCOMPARE(measurements(locked.path(kSites)), QString("4"));
    QCOMPARE(locked.content("run.log"), as_log(free.out));

    const Ending gone = away.remote.wait();
    QCOMPARE(gone.status, 5);
    QCOMPARE(rows_of(gone.out).size(), 4);
    QCOMPARE(away.content("run.log"), as_log(gone.out));
    QCOMPARE(gone.err.count('\n'), 2);
    QVERIFY2(gone.err.contains("was deleted, moved or replaced"), gone.err);
    const int kept = measurements(away.path("elsewhere")).toInt();
    const QByteArray missing = "Of the visit, " + QByteArray::number(4 - kept) + " of 4 rows";
    QVERIFY2(gone.err.contains(missing), gone.err);
    QVERIFY(!QFile::exists(away.path(kSites)));
}

void VisitTest::a_full_disk_stops_nothing_and_is_counted() {
    TestStand stand;
    SmallDisk disk(stand.path("disk"), 160);
    if (!disk.mounted()) QSKIP("no rights to mount a small disk");
    const QString file = disk.path(kSites);
    QStringList arguments = stand.measuring(
        {"--freq", "1000", "--count", "4", "--site", "Sole", "--log", stand.path("run.log")});
    arguments += {"--directory", disk.path(QString("."))};
    stand.remote.start(arguments);
    QVERIFY(stand.remote.wait_for_lines(1));
    disk.fill();
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 5);
    QCOMPARE(rows_of(ending.out).size(), 4);
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    QVERIFY2(ending.err.contains("no room left for the file of sites"), ending.err);
    QVERIFY2(ending.err.contains("of 4 rows are missing"), ending.err);
    disk.make_room();
    QCOMPARE(ask(file, {"PRAGMA integrity_check"}), QStringList("ok"));
    QVERIFY(measurements(file).toInt() >= 1);
}

void VisitTest::killed_at_any_instant_it_has_every_row_that_was_printed() {
    constexpr int kUsualKills = 30;
    constexpr std::size_t kAtOnce = 10;
    const int kills = std::max(qEnvironmentVariableIntValue("M47_KILLS"), kUsualKills);
    QRandomGenerator random(20);
    int journals = 0;
    int not_printed = 0;
    for (int killed = 0; killed < kills; killed += static_cast<int>(kAtOnce)) {
        std::deque<Victim> victims(kAtOnce);
        for (Victim& victim : victims) victim.start();
        for (Victim& victim : victims) QVERIFY(victim.measures());
        for (std::size_t k = 0; k < kAtOnce; ++k) {
            // Storing takes little of a cycle, so most die there.
            if (k < 3)
                victims[k].die_within(1300, random);
            else
                victims[k].die_at_journal(1500, random);
        }
        const auto all_dead = [&] {
            return std::ranges::count_if(victims, &Victim::dead) ==
                   static_cast<std::ptrdiff_t>(kAtOnce);
        };
        while (!all_dead()) QThread::usleep(30);
        for (Victim& victim : victims) {
            journals += QFile::exists(victim.file() + "-journal") ? 1 : 0;
            const int printed = victim.printed();
            const int kept = rows_left(victim.file());
            QVERIFY2(kept == printed || kept == printed + 1,
                     qPrintable(QStringLiteral("%1 of %2").arg(kept).arg(printed)));
            not_printed += kept - printed;
        }
    }
    qInfo("%d of %d kills left a journal, %d a row that was not printed", journals, kills,
          not_printed);
}

void VisitTest::a_visit_that_another_process_keeps_is_left_alone() {
    TestStand stand;
    const QStringList resumed{"--freq", "1000", "--site", "Sole", "--resume-visit"};
    sites::StoreError error;
    const auto store = sites::SiteStore::open(stand.path(kSites), error);
    sites::VisitRecorder recorder(*store);
    recorder.begin("Sole", {}, QDateTime::currentDateTime());
    const Ending kept = stand.measure(resumed);
    QCOMPARE(kept.status, 4);
    QCOMPARE(kept.out, QByteArray());
    QVERIFY2(kept.err.contains("keeps this visit"), kept.err);
    recorder.leave();
    const Ending free = stand.measure(resumed);
    QCOMPARE(free.status, 0);
    QCOMPARE(store->visits(store->sites().at(0).id).size(), std::size_t{1});
    QCOMPARE(store->measurements(recorder.visit()->id).size(), std::size_t{1});
}

/// By hand, in a pass over the plan and at intervals: the log has a row before the visit has it.
void VisitTest::a_window_killed_at_any_instant_loses_no_row_and_its_visit_goes_on() {
    WindowStand window({});
    const QString file = window.stand.path(kSites);
    const QString log = window.stand.path("day.log");
    QRandomGenerator random(17);
    const QStringList begin{"trigger realtime", "click meas_statea_0", "trigger save",
                            "file FOLDER/day.log", "trigger cmdvisit"};
    for (int kill = 0; kill < 3; ++kill) {
        window.start();
        QVERIFY(window.wait_for("VER?", kill + 1));
        window.order(begin);
        window.order(kill == 0 ? QStringList{"type site_name Sole", "accept"} : QStringList());
        window.order({"trigger single_acq", "trigger group", "trigger multiple_acq"});
        if (kill == 2) window.order({"trigger start", "choose time_delay 0", "click cmdstart"});
        const auto before = content_of(log).count('\n');
        QTRY_VERIFY_WITH_TIMEOUT(content_of(log).count('\n') >= before + 3, 60000);
        QThread::msleep(random.bounded(300U));
        window.stand.remote.kill_now();
        window.stand.remote.wait();
        QFile::remove(
            "/var/lock/LCK.." +
            QFileInfo(window.stand.meter.link()).symLinkTarget().mid(5).replace('/', '_'));
        const auto rows = content_of(log).count('\n');
        const int kept = measurements(file).toInt();
        QVERIFY2(kept <= rows && kept >= rows - 1 - kill,
                 qPrintable(QStringLiteral("%1 of %2").arg(kept).arg(rows)));
        QCOMPARE(ask(file, {"SELECT count(*) FROM visits WHERE ended_utc IS NULL"}),
                 QStringList("1"));
    }
    const int kept = measurements(file).toInt();
    window.start();
    QVERIFY(window.wait_for("VER?", 4));
    window.order(begin + QStringList{"trigger single_acq", "trigger cmdendvisit", "accept"});
    QTRY_COMPARE_WITH_TIMEOUT(ask(file, {"SELECT count(*) FROM visits WHERE ended_utc > 0"}),
                              QStringList("1"), 60000);
    QCOMPARE(measurements(file).toInt(), kept + 1);
    QCOMPARE(ask(file, {"SELECT count(*) FROM visits"}), QStringList("1"));
    QCOMPARE(QDir(window.stand.path({})).entryList({"sites.visit-*"}), QStringList());
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::VisitTest)
#include "visit_test.moc"
