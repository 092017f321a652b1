// SPDX-License-Identifier: GPL-3.0-or-later
#include <signal.h>

#include <QTest>
#include <map>

#include "process_support.h"

namespace m47 {

/// The band swept, a dish brought to its peak and its satellite named, with nobody at the screen,
/// over a real line.
class SweepTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void every_byte_on_the_wire();
    void carriers_with_their_names();
    void a_unit_changed_at_the_meter_data();
    void a_unit_changed_at_the_meter();
    void told_to_end();
    void without_a_meter();
    void a_table_that_cannot_be_read();
    void under_each_fault_data();
    void under_each_fault();
    void a_peak_byte_by_byte();
    void a_turning_dish_is_told_to_stop();
    void a_peak_with_a_symbol_rate();
    void a_dish_under_a_fault_data();
    void a_dish_under_a_fault();
    void which_satellite_data();
    void which_satellite();
    void a_satellite_under_a_fault_data();
    void a_satellite_under_a_fault();
    void an_identification_told_to_end();
    void nothing_to_choose_from();

  private:
    void start_identifications();

    std::map<QString, TestStand> stands_;
    std::map<QString, TestStand> dishes_;
    std::map<QString, TestStand> skies_;
    QTemporaryDir tables_;
};

namespace {

const QStringList kIdentification{"ATTEN?", "VER?"};
const QStringList kNoted{"FREQ?", "LOCOSC?", "ATTEN?", "UNIT?"};
const QByteArray kHeader = "if_mhz\tsky_mhz\tlevel\tlevel_mark\tunit\tlnb\ttone\n";

QStringList sweeping(const TestStand& stand, const QStringList& options) {
    return QStringList{"--port", "1=" + stand.meter.link(), "--on-port", "1"} + options;
}

QStringList peaking(const TestStand& stand) {
    return sweeping(stand, {"--peak", "1", "--move-the-dish", "--freq", "11590", "--oscillator",
                            "10600", "--lnb", "18"});
}

const QStringList kPeakPrepared{"LNB?",        "LNVOLT?", "MEASURE", "LOCOSC 00", "LNVOLT 18",
                                "LNB 01",      "ATTEN 6", "ATTEN?",  "UNIT?",     "MEASURE",
                                "FREQ 0990.0", "ATTEN 6", "LEVANL?", "LEVANL?"};
const QStringList kPeakSetBack{"DISEQCMOT 00", "ATTEN 06",  "LOCOSC 00", "FREQ 1000.0",
                               "ATTEN 06",     "LNVOLT 13", "LNB 00"};

/// Two satellites, for an LNB of 10750 MHz; the meter's sky and the program's candidates are of the
/// same tables.
void write_tables(const QString& folder) {
    const auto write = [&](const char* name, double first, double step, const char* polarisation) {
        QByteArray text;
        for (double mhz = first; mhz < 12860; mhz += step)
            text += "[T]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = " +
                    QByteArray::number(mhz * 1000, 'f', 0) + "\nPOLARIZATION = " + polarisation +
                    "\nSYMBOL_RATE = 27500000\nINNER_FEC = 3/4\n";
        QFile file(folder + u'/' + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) qFatal("no table");
    };
    write("Alpha-10.0E", 11720, 80, "VERTICAL");
    write("Beta-20.0E", 11750, 90, "HORIZONTAL");
}

QStringList sky_of(const QString& tables, const char* point) {
    return {"--sky",  "orbit", "--sky-tables", tables,      "--point", point,           "--lnb",
            "single", "--cn",  "12",           "--weather", "0",       "--baud-factor", "1"};
}

QStringList identifying(const TestStand& stand, const QString& tables) {
    return sweeping(stand, {"--identify", "--scan-tables", tables, "--oscillator", "10750"});
}

const QStringList kIdentifyPrepared{"LNB?",      "LNVOLT?", "TONE22K?",   "MEASURE", "LOCOSC 00",
                                    "LNVOLT 13", "LNB 01",  "TONE22K 00", "ATTEN 6"};
const QStringList kIdentifySetBack{"LOCOSC 00", "FREQ 1000.0", "ATTEN 06",
                                   "LNVOLT 13", "LNB 00",      "TONE22K 00"};

/// The recording of a meter on which somebody chooses another unit between two levels.
void write_unit_change(const QString& path) {
    const QByteArrayList exchanges[] = {
        {"ATTEN?", "06"},      {"VER?", "V3.1.0 PLUS"}, {"FREQ?", "1000.0"},  {"LOCOSC?", "00"},
        {"ATTEN?", "06"},      {"UNIT?", "00"},         {"MEASURE", ""},      {"LOCOSC 00", ""},
        {"ATTEN 6", ""},       {"FREQ 0990.0", ""},     {"LEVANL?", " 57.9"}, {"FREQ 0995.0", ""},
        {"LEVANL?", " -51.1"}, {"UNIT?", "02"},         {"LOCOSC 00", ""},    {"FREQ 1000.0", ""},
        {"ATTEN 06", ""}};
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) qFatal("no recording");
    file.write("M47TRACE 1 2026-11-22T14:00:00+01:00 m47-remote 0.1.0 Qt 6.4.2\n");
    int time = 0;
    for (const QByteArrayList& exchange : exchanges) {
        const QByteArray sent = QByteArray::number(++time) + ".000 ";
        const QByteArray value = exchange[1].isEmpty() ? QByteArray() : exchange[1] + "<CR>";
        file.write("RX " + sent + sent + exchange[0] + "<CR>\n");
        file.write("TX " + sent + sent + exchange[0] + "<CR>" + value + "OK<CR>\n");
    }
}

/// What the meter answered to each "LEVANL?", as a number.
QByteArrayList levels_of(const TestStand& stand) {
    QByteArrayList levels;
    for (const QByteArray& answer : stand.meter.answers_to(wire::kLevel)) {
        QByteArray value = answer.split('\r').value(1).trimmed();
        if (value.endsWith(".0")) value.chop(2);
        levels += value;
    }
    return levels;
}

}  // namespace

/// These only wait for what does not come, so they go on while the other tests run.
void SweepTest::initTestCase() {
    for (const char* fault :
         {"error", "commanderror", "silence", "garbage", "partial", "late", "asleep", "drop",
          "unplug", "noecho", "wrongecho", "noise", "badrecord", "trickle", "endless"}) {
        TestStand& stand =
            stands_
                .try_emplace(fault, QStringList{"--fault-on", wire::kLevel, "--fault-after", "1",
                                                "--fault", fault, "--baud-factor", "1"})
                .first->second;
        stand.remote.start(sweeping(stand, {"--sweep", "990:1000:5", "--lnb", "18"}));
    }
    for (const char* fault : {"error", "silence", "noecho", "unplug", "partial", "noise"}) {
        TestStand& stand =
            dishes_
                .try_emplace(fault, QStringList{"--fault-on", "DISEQCMOT 08", "--fault", fault,
                                                "--baud-factor", "1"})
                .first->second;
        stand.remote.start(peaking(stand));
    }
    // Its jitter makes no place look like a summit.
    TestStand& still = dishes_.try_emplace(QString(), QStringList{"--seed", "5"}).first->second;
    still.remote.start(peaking(still));
    start_identifications();
}

void SweepTest::start_identifications() {
    write_tables(tables_.path());
    for (const char* point : {"10.3E", "19.8E", "11.9E", "100E"}) {
        TestStand& stand = skies_.try_emplace(point, sky_of(tables_.path(), point)).first->second;
        stand.remote.start(identifying(stand, tables_.path()));
    }
    for (const char* fault :
         {"error", "commanderror", "silence", "garbage", "partial", "late", "asleep", "drop",
          "unplug", "noecho", "wrongecho", "noise", "badrecord", "trickle", "endless"}) {
        const QStringList spoilt{"--fault-on", wire::kLevel, "--fault-after",
                                 "2",          "--fault",    QString(fault) + ":6"};
        TestStand& stand =
            skies_.try_emplace(fault, sky_of(tables_.path(), "100E") + spoilt).first->second;
        stand.remote.start(identifying(stand, tables_.path()));
    }
}

void SweepTest::cleanupTestCase() {
    stands_.clear();
    dishes_.clear();
    skies_.clear();
}

void SweepTest::every_byte_on_the_wire() {
    TestStand stand;
    const Ending ending =
        stand.remote.run(sweeping(stand, {"--sweep", "11590:11600:5", "--oscillator", "10600",
                                          "--lnb", "18", "--tone", "on"}));
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(ending.status, 0);
    const QStringList begin =
        kIdentification + kNoted + QStringList{"LNB?",    "LNVOLT?",    "TONE22K?",
                                               "MEASURE", "LOCOSC 00",  "LNVOLT 18",
                                               "LNB 01",  "TONE22K 01", "ATTEN 6"};
    const QStringList levels{"FREQ 0990.0", "LEVANL?",     "FREQ 0995.0",
                             "LEVANL?",     "FREQ 1000.0", "LEVANL?"};
    const QStringList set_back{"LOCOSC 00", "FREQ 1000.0", "ATTEN 06",
                               "LNVOLT 13", "LNB 00",      "TONE22K 00"};
    QCOMPARE(stand.meter.commands(), begin + levels + QStringList{"UNIT?"} + set_back);
    const QByteArrayList answered = levels_of(stand);
    QCOMPARE(answered.size(), 3);
    QByteArray rows = kHeader;
    for (int k = 0; k < 3; ++k)
        rows += QByteArray::number(990 + 5 * k) + ".0\t" + QByteArray::number(11590 + 5 * k) +
                ".0\t" + answered[k] + "\t\tdBuV\t18\ton\n";
    QCOMPARE(ending.out, rows);
    // Nothing is kept, so nothing is made.
    QVERIFY(stand.content("VKDM47_03.mdb").isEmpty());
}

void SweepTest::carriers_with_their_names() {
    TestStand stand;
    QFile table(stand.path("table"));
    QVERIFY(table.open(QIODevice::WriteOnly));
    table.write(
        "[FILM]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 11027000\nPOLARIZATION = VERTICAL\n"
        "SYMBOL_RATE = 30000000\n");
    table.close();
    const Ending ending = stand.remote.run(
        sweeping(stand, {"--sweep", "10980:11150", "--oscillator", "9750", "--lnb", "13", "--tone",
                         "off", "--carriers", "--scan-table", "table"}));
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(ending.status, 0);
    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows[0].constLast(), QString("name"));
    const double expected[][2] = {{1275.5, 33}, {1362, 36}};
    for (int k = 0; k < 2; ++k) {
        QVERIFY2(std::abs(rows[k + 1][0].toDouble() - expected[k][0]) <= 1.5, ending.out);
        QVERIFY2(std::abs(rows[k + 1][2].toDouble() - expected[k][1]) <= 4, ending.out);
    }
    QCOMPARE(rows[1].constLast(), QString("FILM"));
    QCOMPARE(rows[2].constLast(), QString());
}

/// Rows that are printed already cannot be taken back: one of the other unit is none.
void SweepTest::a_unit_changed_at_the_meter_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("lines");
    QTest::newRow("levels") << QStringList() << 2;
    QTest::newRow("carriers") << QStringList("--carriers") << 1;
}

void SweepTest::a_unit_changed_at_the_meter() {
    QFETCH(QStringList, options);
    QTemporaryDir folder;
    write_unit_change(folder.filePath("changed.trace"));
    TestStand stand({"--replay", folder.filePath("changed.trace")});
    const Ending ending =
        stand.remote.run(sweeping(stand, QStringList{"--sweep", "990:995:5"} + options));
    QCOMPARE(ending.err, QByteArray("m47-remote: the unit was changed at the meter during the "
                                    "sweep, which ends with the levels before that\n"));
    QCOMPARE(ending.status, 7);
    QTEST(int(rows_of(ending.out).size()), "lines");
    QCOMPARE(stand.meter.commands().last(4),
             QStringList({"UNIT?", "LOCOSC 00", "FREQ 1000.0", "ATTEN 06"}));
}

/// What was found stands, and the meter is as it was before.
void SweepTest::told_to_end() {
    TestStand stand;
    stand.remote.start(sweeping(stand, {"--sweep", "920:2150", "--tone", "on"}));
    QVERIFY(stand.remote.wait_for_lines(4));
    stand.remote.send_signal(SIGINT);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QVERIFY(ending.out.startsWith(kHeader) && ending.out.endsWith('\n'));
    QCOMPARE(stand.meter.commands().mid(stand.meter.commands().size() - 4),
             QStringList({"LOCOSC 00", "FREQ 1000.0", "ATTEN 06", "TONE22K 00"}));
}

void SweepTest::without_a_meter() {
    EmptyStand stand;
    const Ending ending = stand.remote.run(
        {"--port", "1=/dev/no-such-meter", "--on-port", "1", "--sweep", "920:2150"});
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.contains("/dev/no-such-meter"));
}

void SweepTest::a_table_that_cannot_be_read() {
    EmptyStand stand;
    stand.write("text", "nothing of the kind\n");
    for (const char* name : {"missing", "text"}) {
        const Ending ending =
            stand.remote.run({"--on-port", "1", "--sweep", "11700:12700", "--oscillator", "10600",
                              "--carriers", "--scan-table", QLatin1String(name)});
        QCOMPARE(ending.status, 2);
        QCOMPARE(ending.err.count('\n'), 1);
        QVERIFY2(ending.err.contains(QByteArray("scan table ") + name), ending.err);
    }
}

void SweepTest::under_each_fault_data() {
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("said");
    const QByteArray lost =
        "m47-remote: the link to the meter was lost, so these were not set back: local oscillator, "
        "tuned frequency, attenuator, LNB supply\n";
    const QByteArray doubtful = "m47-remote: the meter gave no sure level at 2 of 3 frequencies\n";
    for (const char* fault : {"error", "commanderror"})
        QTest::newRow(fault) << 3
                             << QByteArray(
                                    "m47-remote: the meter refused LEVANL? three times, "
                                    "which ends the link; it is set as it was before\n");
    for (const char* fault :
         {"silence", "garbage", "partial", "asleep", "drop", "unplug", "trickle", "endless"})
        QTest::newRow(fault) << 3 << lost;
    for (const char* fault : {"noecho", "wrongecho", "noise"})
        QTest::newRow(fault) << 7 << doubtful;
    // A late answer is known for what it is, and a level has no record to spoil.
    for (const char* fault : {"late", "badrecord"}) QTest::newRow(fault) << 0 << QByteArray();
}

/// Every second and third level is spoilt: the first stands, the end is one clear sentence.
void SweepTest::under_each_fault() {
    QFETCH(int, status);
    TestStand& stand = stands_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    QTEST(ending.err, "said");
    QCOMPARE(ending.status, status);
    const QList<QStringList> rows = rows_of(ending.out);
    QVERIFY2(rows.size() >= 2, ending.out);
    QCOMPARE(rows[1][0], QString("990.0"));
    QVERIFY(rows[1][2].toDouble() > 20);
    if (status == 0) QVERIFY(rows.size() == 4 && rows[3][2].toDouble() > 20);
    if (status != 7) return;
    QVERIFY(rows[2][2].isEmpty() && rows[3][2].isEmpty());
    QCOMPARE(stand.meter.commands().mid(stand.meter.commands().size() - 5),
             QStringList({"LOCOSC 00", "FREQ 1000.0", "ATTEN 06", "LNVOLT 13", "LNB 00"}));
}

/// The level is the same wherever the dish looks: it ends where it began.
void SweepTest::a_peak_byte_by_byte() {
    TestStand& stand = dishes_.at(QString());
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.err, QByteArray("m47-remote: Nothing better was found within the span: the "
                                    "dish is back at its start.\n"));
    QCOMPARE(ending.status, 7);
    const QStringList turned{"DISEQCMOT 09 04 01",
                             "DISEQCMOT 08 04 01",
                             "DISEQCMOT 09 09 01",
                             "DISEQCMOT 08 04 01",
                             "LEVANL?",
                             "DISEQCMOT 08 05 01",
                             "LEVANL?",
                             "DISEQCMOT 08 05 01",
                             "LEVANL?",
                             "DISEQCMOT 08 05 01",
                             "LEVANL?",
                             "UNIT?",
                             "DISEQCMOT 09 10 01",
                             "DISEQCMOT 09 04 01",
                             "DISEQCMOT 08 04 01"};
    QCOMPARE(stand.meter.commands(),
             kIdentification + kNoted + kPeakPrepared + turned + kPeakSetBack);
    const QByteArrayList answered = levels_of(stand);
    QByteArray rows = "steps\tdegrees\tquantity\tvalue\tvalue_mark\tunit\n";
    const QByteArrayList places{"0\t0.0", "0\t0.0", "-5\t-0.5", "0\t0.0", "5\t0.5", "10\t1.0"};
    QCOMPARE(answered.size(), places.size());
    for (qsizetype k = 0; k < places.size(); ++k)
        rows += places[k] + "\tlevel\t" + QByteArray::number(answered[k].toDouble(), 'f', 1) +
                "\t\tdBuV\n";
    QCOMPARE(ending.out, rows);
}

/// Not only when the drive has ended; and the meter is as it was before.
void SweepTest::a_turning_dish_is_told_to_stop() {
    TestStand stand;
    stand.remote.start(peaking(stand));
    QVERIFY(stand.meter.wait_for_command("DISEQCMOT 09 09 01"));
    stand.remote.send_signal(SIGTERM);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 7);
    QCOMPARE(ending.err, QByteArray("m47-remote: Stopped: the motor was told to stop, and the dish "
                                    "stays where it is.\n"));
    const QStringList sent = stand.meter.commands();
    QCOMPARE(sent.mid(sent.size() - 8), QStringList{"DISEQCMOT 09 09 01"} + kPeakSetBack);
}

/// The demodulator is told what to lock on before the first level, and the rate it had at the end.
void SweepTest::a_peak_with_a_symbol_rate() {
    TestStand stand;
    stand.remote.start(peaking(stand) + QStringList{"--symbol-rate", "22000"});
    QVERIFY(stand.meter.wait_for_command("DISEQCMOT 09 04 01"));
    stand.remote.send_signal(SIGTERM);
    QCOMPARE(stand.remote.wait().status, 7);
    QStringList prepared = kPeakPrepared;
    prepared.insert(7, "SYMBRATEQPSK?");
    prepared.insert(8, "SYMBRATEQPSK 22000");
    const QStringList sent = stand.meter.commands();
    QCOMPARE(sent.mid(0, kIdentification.size() + kNoted.size() + prepared.size()),
             kIdentification + kNoted + prepared);
    QCOMPARE(sent.mid(sent.size() - kPeakSetBack.size() - 1),
             kPeakSetBack + QStringList{"SYMBRATEQPSK 27500"});
}

void SweepTest::a_dish_under_a_fault_data() {
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("said");
    const QByteArray lost =
        "m47-remote: The link to the meter was lost and the motor could not be told to stop; its "
        "last drive, 1° at most, ends by itself; these were not set back: local oscillator, tuned "
        "frequency, attenuator, LNB supply\n";
    const QByteArray astray =
        "m47-remote: The meter did not surely take a drive: the motor was told to stop, and nobody "
        "knows how far it has turned.\n";
    QTest::newRow("unplug") << 3 << lost;
    for (const char* fault : {"error", "silence", "noecho", "partial", "noise"})
        QTest::newRow(fault) << 7 << astray;
}

/// Each drive to the east is spoilt: it goes out once, and then the motor is told to stop.
void SweepTest::a_dish_under_a_fault() {
    QFETCH(int, status);
    TestStand& stand = dishes_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    QTEST(ending.err, "said");
    QCOMPARE(ending.status, status);
    const QStringList sent = stand.meter.commands();
    QCOMPARE(sent.count("DISEQCMOT 08 04 01"), 1);
    if (status == 7) QCOMPARE(sent.mid(sent.size() - 7), kPeakSetBack);
}

void SweepTest::which_satellite_data() {
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("10.3E") << 0 << "10.0E" << QByteArray();
    QTest::newRow("19.8E") << 0 << "20.0E" << QByteArray();
    QTest::newRow("11.9E") << 1 << "none of these"
                           << QByteArray("m47-remote: None of these satellites, certainty ");
    QTest::newRow("100E") << 1 << "no satellite"
                          << QByteArray("m47-remote: No satellite: nothing but noise, certainty ");
}

/// Each question is a row with what the meter answered, behind them stands the verdict, and the
/// meter is as it was.
void SweepTest::which_satellite() {
    QFETCH(int, status);
    QFETCH(QString, name);
    QFETCH(QByteArray, said);
    TestStand& stand = skies_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    QVERIFY2(said.isEmpty() ? ending.err.isEmpty() : ending.err.startsWith(said), ending.err);
    QVERIFY(ending.err.count('\n') <= 1);
    QCOMPARE(ending.status, status);
    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows[0].size(), 18);
    QCOMPARE(rows.constLast()[0], QString("verdict"));
    QCOMPARE(rows.constLast()[12], name);
    QVERIFY(rows.constLast()[14].toDouble() > 0.5);
    const QByteArrayList answered = levels_of(stand);
    qsizetype level = 0;
    bool locked = false;
    for (const QStringList& row : rows) {
        QCOMPARE(row.size(), 18);
        if (row[0] == "level") QCOMPARE(row[6].toDouble(), answered[level++].toDouble());
        locked = locked || row[9] == "yes";
    }
    QCOMPARE(level, answered.size());
    const QStringList sent = stand.meter.commands();
    const QStringList begin = kIdentification + kNoted + kIdentifyPrepared;
    QCOMPARE(sent.mid(0, begin.size()), begin);
    const bool tried = sent.contains("BERQPSK");
    QVERIFY(locked == (status == 0));
    const QStringList end = kIdentifySetBack + QStringList(tried ? 1 : 0, "SYMBRATEQPSK 27500");
    QCOMPARE(sent.mid(sent.size() - end.size()), end);
}

void SweepTest::a_satellite_under_a_fault_data() {
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("said");
    const QString lost =
        "m47-remote: The link to the meter was lost at %1 answers, which stay, before it was clear "
        "which satellite this is.";
    const QString not_set_back =
        " Not set back: local oscillator, tuned frequency, attenuator, LNB supply, 22 kHz tone.\n";
    // A meter that refuses is there all the same, and is set back.
    for (const char* fault : {"error", "commanderror"})
        QTest::newRow(fault) << 3 << (lost.arg(2) + u'\n').toUtf8();
    for (const char* fault :
         {"silence", "garbage", "partial", "asleep", "drop", "trickle", "endless"})
        QTest::newRow(fault) << 3 << (lost.arg(2) + not_set_back).toUtf8();
    // It goes behind a good answer.
    QTest::newRow("unplug") << 3 << (lost.arg(3) + not_set_back).toUtf8();
    // What is spoilt is asked again, or left out: it is clear all the same.
    for (const char* fault : {"noecho", "wrongecho", "noise", "late", "badrecord"})
        QTest::newRow(fault) << 1 << QByteArray();
}

/// Six answers behind the second level are spoilt: what came before stands, and it ends in one
/// sentence, with the meter as it was or with what is not.
void SweepTest::a_satellite_under_a_fault() {
    QFETCH(int, status);
    QFETCH(QByteArray, said);
    TestStand& stand = skies_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    if (said.isEmpty())
        QVERIFY2(ending.err.startsWith("m47-remote: No satellite"), ending.err);
    else
        QCOMPARE(ending.err, said);
    QCOMPARE(ending.err.count('\n'), 1);
    QCOMPARE(ending.status, status);
    const QList<QStringList> rows = rows_of(ending.out);
    QVERIFY(rows.size() >= 3);
    for (int k : {1, 2}) QVERIFY(rows[k][6].toDouble() > 20);
    if (status != 1) return;
    QCOMPARE(rows.constLast()[12], QString("no satellite"));
    const QStringList sent = stand.meter.commands();
    QCOMPARE(sent.mid(sent.size() - kIdentifySetBack.size()), kIdentifySetBack);
}

/// What was found stands, and the meter is as it was before.
void SweepTest::an_identification_told_to_end() {
    TestStand stand(sky_of(tables_.path(), "10.3E"));
    stand.remote.start(identifying(stand, tables_.path()));
    QVERIFY(stand.remote.wait_for_lines(4));
    stand.remote.send_signal(SIGINT);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 7);
    QVERIFY2(ending.err.startsWith("m47-remote: Stopped at "), ending.err);
    QCOMPARE(ending.err.count('\n'), 1);
    const QStringList sent = stand.meter.commands();
    QCOMPARE(sent.mid(sent.size() - kIdentifySetBack.size()), kIdentifySetBack);
}

void SweepTest::nothing_to_choose_from() {
    EmptyStand stand;
    const Ending ending = stand.remote.run(
        {"--on-port", "1", "--identify", "--scan-tables", "/nowhere", "--arc", "10E:20E"});
    QCOMPARE(ending.status, 2);
    QCOMPARE(ending.out, QByteArray());
    QVERIFY2(ending.err.contains("/nowhere") && ending.err.count('\n') == 1, ending.err);
    const Ending plans = stand.remote.run(
        {"--create-database", "--measure", "--on-port", "1", "--port", "1=/dev/no-such-meter"});
    QCOMPARE(plans.status, 3);
    const Ending none =
        stand.remote.run({"--on-port", "1", "--identify", "--candidates-from-plans"});
    QCOMPARE(none.status, 4);
    QVERIFY2(none.err.contains("No plan has a digital program"), none.err);
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::SweepTest)
#include "sweep_test.moc"
