// SPDX-License-Identifier: GPL-3.0-or-later
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include "process_support.h"

namespace m47 {

/// Plans that are measured with nobody at the screen.
class PlanTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void two_passes_of_a_plan();
    void full_tune_data();
    void full_tune();
    void no_such_plan_data();
    void no_such_plan();
    void a_signal_ends_after_the_running_measurement();
    void a_lost_link_ends_the_run();
    void a_program_that_the_meter_refuses_is_named();
    void the_run_goes_on_when_the_meter_is_back();
    void another_meter_takes_the_place_data();
    void another_meter_takes_the_place();
    void another_meter_after_a_loss_within_an_exchange();
    void a_late_answer_shifts_no_row_data();
    void a_late_answer_shifts_no_row();
    void a_signal_while_the_lost_meter_is_looked_for();
    void a_meter_that_is_away_at_the_start();
    void a_plan_in_other_letters();
    void a_pass_that_is_cut_short();
    void a_plan_without_programs();
    void progress_on_a_terminal();
    void the_configuration_is_read_again();
    void a_service_manager_is_told();
};

namespace {

const QStringList kOpening{"ATTEN?",        "VER?",  "MEASURE",   "ATTEN 6",   "TONE22K 00",
                           "SYMBRATEQPSK?", "UNIT?", "LOCOSC 00", "FREQ 1000", "ATTEN 6"};

/// A database with a plan of three analog programs, the second of them not monitored.
/// With `two_bands` the third is received through the plan's oscillator.
void make_plan(TestStand& stand, bool two_bands = false, const QString& name = "ROOF") {
    const Ending ending = stand.remote.run(EmptyStand::measuring({"--create-database"}));
    QCOMPARE(ending.status, 3);
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "plan");
        database.setDatabaseName(stand.path("VKDM47_03.mdb"));
        QVERIFY(database.open());
        QSqlQuery query(database);
        const auto add = [&](const char* statement) {
            query.prepare(QString::fromLatin1(statement));
            query.addBindValue(name);
            QVERIFY(query.exec());
        };
        add("INSERT INTO gruppo (nome) VALUES (?)");
        add("INSERT INTO configurazione (nome, loc_osc1) VALUES (?, 9750)");
        for (int number = 1; number <= 3; ++number) {
            query.prepare(
                "INSERT INTO programmi (nome, pg_num, frequenza, loc_osc, loc_osc0, sat_ad, "
                "lnb_volt, K22, diseqc_cmd, diseqc_cmd2, monitor_state, lev_min, lev_max) "
                "VALUES (?, ?, ?, ?, 0, 0, 2, 1, 5, 73, ?, '5', '120')");
            query.addBindValue(name);
            query.addBindValue(QStringLiteral("00%1").arg(number));
            query.addBindValue(number == 3 && two_bands ? 10750 : 1000 + 100 * number);
            query.addBindValue(number == 3 && two_bands ? 0 : 1);
            query.addBindValue(number == 2 ? 0 : 1);
            QVERIFY(query.exec());
        }
    }
    QSqlDatabase::removeDatabase("plan");
}

QStringList frequencies(const QByteArray& out) {
    QStringList all;
    for (const QStringList& row : rows_of(out)) all += row.value(2);
    return all;
}

void write_file(const QString& path, const QByteArray& content) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

/// The one number that `query` asks the file for; -1 where there is none.
qsizetype number_in(const QString& file, const char* query) {
    qsizetype number = -1;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "look");
        database.setDatabaseName(file);
        QSqlQuery asked(database.open() ? database : QSqlDatabase());
        if (asked.exec(QString::fromLatin1(query)) && asked.next()) number = asked.value(0).toInt();
    }
    QSqlDatabase::removeDatabase("look");
    return number;
}

/// Stands for a service manager: the socket that it is told on.
class ManagerSocket {
  public:
    explicit ManagerSocket(const QString& path)
        : descriptor_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, qPrintable(path), sizeof address.sun_path);
        if (bind(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            qFatal("no socket");
        const timeval patience{0, 100'000};
        setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~ManagerSocket() { close(descriptor_); }
    ManagerSocket(const ManagerSocket&) = delete;
    ManagerSocket& operator=(const ManagerSocket&) = delete;

    /// What was told and not taken yet; empty after a tenth of a second without any.
    QByteArray take() const {
        char text[4096];
        const ssize_t size = recv(descriptor_, text, sizeof text, 0);
        return size > 0 ? QByteArray(text, static_cast<qsizetype>(size)) : QByteArray();
    }
    /// False where `wanted` is not told within a minute.
    bool wait_for(const QByteArray& wanted) const {
        const QDeadlineTimer deadline(60'000);
        while (!deadline.hasExpired())
            if (take() == wanted) return true;
        return false;
    }

  private:
    int descriptor_;
};

}  // namespace

void PlanTest::two_passes_of_a_plan() {
    TestStand stand;
    make_plan(stand);
    const Ending ending =
        stand.measure({"--plan", "roof", "--passes", "2", "--alarm", "level", "--log", "r.log"});
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0", "1100.0", "1300.0"}));
    for (const QStringList& row : rows_of(ending.out)) QCOMPARE(row.constLast(), QString("PASS"));
    QCOMPARE(stand.content("r.log"), as_log(ending.out));
    const QStringList pass{"MEASURE", "FREQ 1100.0", "ATTEN 6", "LEVANL?",
                           "MEASURE", "FREQ 1300.0", "ATTEN 6", "LEVANL?"};
    QCOMPARE(stand.meter.commands(), kOpening + pass + pass);
}

void PlanTest::full_tune_data() {
    QTest::addColumn<QString>("option");
    for (const char* option : {"--full-tune", "--corrected"})
        QTest::newRow(option) << QString::fromLatin1(option);
}

void PlanTest::full_tune() {
    QFETCH(QString, option);
    TestStand stand;
    make_plan(stand, true);
    const Ending ending = stand.measure({"--plan", "ROOF", option});
    QCOMPARE(ending.status, 0);
    const QStringList rest{"LNB 01", "LNVOLT 18", "TONE22K 01", "DISEQC 05", "MEASURE"};
    // The first level of a program is asked twice where everything is chosen.
    QStringList measurement{"ATTEN 6", "LEVANL?"};
    if (option == "--corrected") measurement += "LEVANL?";
    QCOMPARE(stand.meter.commands().mid(kOpening.size()),
             QStringList("LOCOSC 0") + rest + QStringList("FREQ 1100.0") + measurement +
                 QStringList({"LOCOSC 1 09750", "LOCOSC 1"}) + rest + QStringList("FREQ 10750") +
                 measurement);
}

void PlanTest::no_such_plan_data() {
    QTest::addColumn<QString>("plan");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("unknown") << "nowhere" << QByteArray("there is no plan NOWHERE");
    QTest::newRow("nothing monitored")
        << "PLAN 1" << QByteArray("no program of the plan PLAN 1 is monitored");
}

void PlanTest::no_such_plan() {
    QFETCH(QString, plan);
    QFETCH(QByteArray, said);
    TestStand stand;
    const Ending ending = stand.measure({"--plan", plan});
    QCOMPARE(ending.status, 4);
    QCOMPARE(ending.err, "m47-remote: " + said + "\n");
    QCOMPARE(stand.meter.commands(), QStringList());
}

void PlanTest::a_signal_ends_after_the_running_measurement() {
    TestStand stand(
        {"--fault-on", wire::kLevel, "--fault-after", "1", "--fault", "late", "--late", "1.5"});
    make_plan(stand);
    stand.start_measuring({"--plan", "ROOF", "--passes", "0", "--log", "r.log"});
    QVERIFY(stand.meter.wait_for_command(wire::kLevel, 2));
    stand.remote.send_signal(SIGTERM);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    // The answer that was awaited when the signal came became a row.
    QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0"}));
    QCOMPARE(stand.content("r.log"), as_log(ending.out));
    QCOMPARE(stand.meter.commands().count(wire::kLevel), 2);
}

void PlanTest::a_lost_link_ends_the_run() {
    TestStand stand;
    make_plan(stand);
    stand.start_measuring({"--plan", "ROOF", "--passes", "0"});
    QVERIFY(stand.remote.wait_for_lines(2));
    stand.meter.unplug();
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.err, QByteArray("m47-remote: the link to the meter was lost\n"));
}

/// Its carrier is one of the sky, and nobody has told the meter the oscillator.
void PlanTest::a_program_that_the_meter_refuses_is_named() {
    TestStand stand;
    make_plan(stand, true);
    const Ending ending = stand.measure({"--plan", "ROOF", "--format", "csv"});
    QCOMPARE(ending.status, 3);
    QVERIFY2(ending.err.startsWith("m47-remote: the link to the meter was lost: the meter refused "
                                   "FREQ 10750 three times; ") ||
                 ending.err.contains("\nm47-remote: the link to the meter was lost: the meter "
                                     "refused FREQ 10750 three times; "),
             ending.err.constData());
    QVERIFY(ending.err.contains("--full-tune"));
    QCOMPARE(ending.out.count('\n'), 2);

    // With no row at all its table has the names of its columns, but as JSON.
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "alone");
        database.setDatabaseName(stand.path("VKDM47_03.mdb"));
        QVERIFY(database.open());
        QVERIFY(
            QSqlQuery(database).exec("UPDATE programmi SET monitor_state = 0 WHERE pg_num = "
                                     "'001'"));
    }
    QSqlDatabase::removeDatabase("alone");
    for (const char* format : {"csv", "tsv", "json"}) {
        const Ending without = stand.measure({"--plan", "ROOF", "--format", format});
        QCOMPARE(without.status, 3);
        QCOMPARE(without.out.startsWith("time"), QByteArray(format) != "json");
        QCOMPARE(without.out.count('\n'), QByteArray(format) == "json" ? 0 : 1);
    }
}

void PlanTest::the_run_goes_on_when_the_meter_is_back() {
    auto first = std::make_unique<TestStand>();
    TestStand& stand = *first;
    make_plan(stand);
    stand.start_measuring({"--plan", "ROOF", "--passes", "0", "--reconnect", "--log", "r.log"});
    QVERIFY(stand.remote.wait_for_lines(2));
    stand.meter.unplug();
    QVERIFY(stand.remote.wait_for_error_lines(1));
    QTest::qWait(1500);
    MeterProcess again(stand.folder.path(), {"--baud-factor", "0", "--delay", "0"});
    QVERIFY(stand.remote.wait_for_error_lines(3));
    // The new meter has been prepared like the old one before it was measured with.
    QVERIFY2(again.wait_for_command(wire::kLevel, 3), qPrintable(again.commands().join(u'|')));
    stand.remote.send_signal(SIGINT);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err.count('\n'), 3);
    QVERIFY(ending.err.contains("the link to the meter was lost, trying to connect again\n"));
    QVERIFY(ending.err.contains("Another device stands behind "));
    QVERIFY(ending.err.contains("connected again, nothing was measured for "));
    QVERIFY2(again.commands().mid(0, 10) == kOpening, qPrintable(again.commands().join(u'|')));
    // The programs follow each other in their order: the lost one was taken again, none was made
    // up.
    const QStringList rows = frequencies(ending.out);
    for (qsizetype k = 0; k < rows.size(); ++k)
        QCOMPARE(rows[k], k % 2 == 0 ? QString("1100.0") : QString("1300.0"));
    QCOMPARE(stand.content("r.log"), as_log(ending.out));
}

void PlanTest::another_meter_takes_the_place_data() {
    QTest::addColumn<bool>("reconnect");
    QTest::addColumn<bool>("unplugged");
    QTest::newRow("the link leads elsewhere") << false << false;
    QTest::newRow("the number is given to another") << false << true;
    QTest::newRow("the link leads elsewhere, --reconnect") << true << false;
    QTest::newRow("the number is given to another, --reconnect") << true << true;
}

/// In the pause between two passes, so that no exchange sees the meter go.
void PlanTest::another_meter_takes_the_place() {
    QFETCH(bool, reconnect);
    QFETCH(bool, unplugged);
    TestStand stand;
    make_plan(stand);
    const QStringList options{"--plan", "ROOF", "--passes", "2", "--every", "3"};
    stand.start_measuring(options + (reconnect ? QStringList("--reconnect") : QStringList()));
    QVERIFY(stand.remote.wait_for_lines(2));
    QTest::qWait(300);
    if (unplugged) stand.meter.unplug();
    // It makes the path that stood for the first one its own.
    const MeterProcess other(stand.folder.path(), {"--baud-factor", "0", "--delay", "0"});
    const Ending ending = stand.remote.wait();
    QVERIFY2(ending.err.contains("Another device stands behind "), ending.err.constData());
    if (reconnect) {
        QCOMPARE(ending.status, 0);
        QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0", "1100.0", "1300.0"}));
        QVERIFY(ending.err.contains("connected again"));
        // It was asked who it is and prepared before anything was measured with it.
        QCOMPARE(other.commands().mid(0, kOpening.size()), kOpening);
    } else {
        QCOMPARE(ending.status, 3);
        QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0"}));
        QVERIFY(ending.err.contains("the link to the meter was lost\n"));
        QCOMPARE(other.commands(), QStringList());
    }
}

/// The first one goes while its answer is waited for.
void PlanTest::another_meter_after_a_loss_within_an_exchange() {
    TestStand stand({"--fault", "silence", "--fault-on", "FREQ 1300"});
    make_plan(stand);
    stand.start_measuring({"--plan", "ROOF", "--reconnect"});
    QVERIFY(stand.meter.wait_for_command("FREQ 1300.0"));
    stand.meter.unplug();
    const MeterProcess other(stand.folder.path(), {"--baud-factor", "0", "--delay", "0"});
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0"}));
    const qsizetype told = ending.err.indexOf("Another device stands behind ");
    QVERIFY2(told > ending.err.indexOf("the link to the meter was lost"), ending.err.constData());
    QVERIFY(told < ending.err.indexOf("connected again"));
    QCOMPARE(ending.err.count('\n'), 3);
    QCOMPARE(other.commands().mid(0, kOpening.size()), kOpening);
}

void PlanTest::a_late_answer_shifts_no_row_data() {
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<int>("late");
    QTest::newRow("once") << QStringList{"--fault", "late:1", "--fault-on", wire::kLevel} << 1;
    QTest::newRow("every level") << QStringList{"--fault", "late", "--fault-on", wire::kLevel} << 2;
    QTest::newRow("the tuning") << QStringList{"--fault", "late:1", "--fault-on", "FREQ 1300"} << 1;
}

/// Each is asked again after two seconds, and answered twice.
void PlanTest::a_late_answer_shifts_no_row() {
    QFETCH(QStringList, faults);
    QFETCH(int, late);
    TestStand stand(faults + QStringList{"--late", "2.3"});
    make_plan(stand);
    const Ending ending = stand.measure({"--plan", "ROOF"});
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0"}));
    QCOMPARE(stand.meter.commands().count(wire::kWakeUp), late);

    QMap<QString, QStringList> levels;
    QString tuned;
    for (const TraceEntry& entry : stand.meter.trace()) {
        const QString text = QString::fromLatin1(entry.bytes);
        if (entry.received && text.startsWith("FREQ ")) tuned = text.mid(5).trimmed();
        const QStringList lines = text.split(u'\r');
        if (!entry.received && lines[0] == wire::kLevel) levels[tuned] += lines.value(1).trimmed();
    }
    for (const QStringList& row : rows_of(ending.out))
        QVERIFY2(levels[row[2]].contains(row[4]), qPrintable(row.join(u'|')));
}

void PlanTest::a_signal_while_the_lost_meter_is_looked_for() {
    TestStand stand;
    make_plan(stand);
    stand.start_measuring({"--plan", "ROOF", "--passes", "0", "--reconnect"});
    QVERIFY(stand.remote.wait_for_lines(1));
    stand.meter.unplug();
    QVERIFY(stand.remote.wait_for_error_lines(1));
    stand.remote.send_signal(SIGTERM);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 3);
    QVERIFY2(ending.err.endsWith("m47-remote: ended without a link to the meter\n"),
             ending.err.constData());
}

void PlanTest::a_meter_that_is_away_at_the_start() {
    TestStand stand;
    make_plan(stand);
    stand.meter.unplug();
    QFile::remove(stand.meter.link());
    QCOMPARE(stand.measure({"--plan", "ROOF"}).status, 3);
    stand.start_measuring({"--plan", "ROOF", "--reconnect", "--log", "r.log"});
    QVERIFY(stand.remote.wait_for_error_lines(2));
    MeterProcess late(stand.folder.path(), {"--baud-factor", "0", "--delay", "0"});
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QVERIFY(ending.err.contains(": no meter answers, waiting for it\n"));
    QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0"}));
    QCOMPARE(stand.content("r.log"), as_log(ending.out));
    QCOMPARE(late.commands().mid(0, 10), kOpening);
}

void PlanTest::a_plan_in_other_letters() {
    TestStand stand;
    make_plan(stand, false, "Roof");
    const Ending ending = stand.measure({"--plan", "Roof"});
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(frequencies(ending.out), QStringList({"1100.0", "1300.0"}));
}

void PlanTest::a_pass_that_is_cut_short() {
    TestStand stand;
    make_plan(stand);
    stand.start_measuring({"--plan", "ROOF"});
    // The first program is tuned and will be measured; the second cannot be read.
    QVERIFY(stand.meter.wait_for_command("FREQ 1100.0"));
    Ending ending;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "other");
        database.setDatabaseName(stand.path("VKDM47_03.mdb"));
        QVERIFY(database.open());
        QVERIFY(QSqlQuery(database).exec("BEGIN EXCLUSIVE"));
        ending = stand.remote.wait();
    }
    QSqlDatabase::removeDatabase("other");
    QCOMPARE(ending.status, 7);
    QCOMPARE(frequencies(ending.out), QStringList("1100.0"));
    QVERIFY2(ending.err.contains(": pass 1 was cut short: "), ending.err.constData());
    QCOMPARE(ending.err.count('\n'), 1);
}

void PlanTest::a_plan_without_programs() {
    TestStand stand;
    make_plan(stand);
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "other");
        database.setDatabaseName(stand.path("VKDM47_03.mdb"));
        QVERIFY(database.open());
        QVERIFY(QSqlQuery(database).exec("DELETE FROM programmi"));
    }
    QSqlDatabase::removeDatabase("other");
    const Ending ending = stand.measure({"--plan", "ROOF"});
    QCOMPARE(ending.status, 4);
    QVERIFY2(ending.err.contains("The plan has no programs"), ending.err.constData());
    QVERIFY(ending.err.startsWith("m47-remote: "));
    QCOMPARE(ending.err.count('\n'), 1);
}

void PlanTest::progress_on_a_terminal() {
    TestStand stand;
    make_plan(stand);
    stand.remote.start_in_shell(
        R"(exec bash -c 'script -qec "$(printf "%q " "$@") >rows" screen >/dev/null' x "$0" "$@")",
        stand.measuring({"--plan", "ROOF", "--passes", "2", "--every", "3"}));
    QCOMPARE(stand.remote.wait().status, 0);
    QCOMPARE(frequencies(stand.content("rows")),
             QStringList({"1100.0", "1300.0", "1100.0", "1300.0"}));
    const QByteArray screen = stand.content("screen");
    for (const char* text : {"pass 1, program 1/2", "pass 1, program 2/2",
                             "pass 1 done, next in 0:00:0", "pass 2, program 2/2"})
        QVERIFY2(screen.contains(text), text);
}

void PlanTest::the_configuration_is_read_again() {
    TestStand stand;
    make_plan(stand);
    const QString path = stand.path("r.conf");
    const QByteArray before = "# all day\nplan = ROOF\npasses = 0\nformat = csv\nsite = Roof\n";
    write_file(path, before);
    stand.start_measuring({"--config", "r.conf"});
    QVERIFY(stand.remote.wait_for_lines(3));
    write_file(path, "plan = ROOF\npasses = 0\nevery = no\nformat = csv\n");
    stand.remote.send_signal(SIGHUP);
    QVERIFY(stand.remote.wait_for_error_lines(1));
    write_file(path, "plan = ROOFS\npasses = 0\n");
    stand.remote.send_signal(SIGHUP);
    QVERIFY(stand.remote.wait_for_error_lines(2));
    // The one before is in force: passes go on.
    QVERIFY(stand.remote.wait_for_lines(static_cast<int>(stand.remote.written().count('\n')) + 2));
    write_file(path, "plan = ROOF\npasses = 2\nformat = csv\nsite = Roof\n");
    stand.remote.send_signal(SIGHUP);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    const QByteArray file = QFileInfo(path).absoluteFilePath().toUtf8();
    QCOMPARE(ending.err,
             "m47-remote: the configuration stays as it was: " + file +
                 ":3: --every takes a whole number from 1 to 31536000, not \"no\"\n" +
                 "m47-remote: the configuration stays as it was: there is no plan ROOFS\n" +
                 "m47-remote: the configuration " + file + " was read again\n");
    // Whole passes, under one line of names.
    const QList<QByteArray> lines = ending.out.trimmed().split('\n');
    QVERIFY(lines.size() >= 9 && lines.size() % 2 == 1);
    QCOMPARE(ending.out.count("time"), 1);
    // And in one visit.
    QCOMPARE(number_in(stand.path("sites.sqlite"), "SELECT count(*) FROM visits"), 1);
    QCOMPARE(number_in(stand.path("sites.sqlite"), "SELECT count(*) FROM measurements"),
             lines.size() - 1);
}

void PlanTest::a_service_manager_is_told() {
    TestStand stand;
    make_plan(stand);
    const QString path = stand.folder.filePath("notify");
    const ManagerSocket manager(path);
    stand.remote.environment.insert("NOTIFY_SOCKET", path);
    stand.remote.environment.insert("WATCHDOG_USEC", "300000");
    stand.start_measuring({"--plan", "ROOF", "--passes", "0", "--every", "2"});
    QVERIFY(manager.wait_for("READY=1"));
    QVERIFY(manager.wait_for("STATUS=pass 1, program 1/2"));
    for (int ping = 0; ping < 3; ++ping) QVERIFY(manager.wait_for("WATCHDOG=1"));
    // What hangs is no sign of life.
    stand.remote.send_signal(SIGSTOP);
    while (!manager.take().isEmpty()) continue;
    for (int look = 0; look < 6; ++look) QCOMPARE(manager.take(), QByteArray());
    stand.remote.send_signal(SIGCONT);
    QVERIFY(manager.wait_for("WATCHDOG=1"));
    stand.remote.send_signal(SIGTERM);
    QVERIFY(manager.wait_for("STOPPING=1"));
    QCOMPARE(stand.remote.wait().status, 0);
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::PlanTest)
#include "plan_test.moc"
