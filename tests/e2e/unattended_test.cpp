// SPDX-License-Identifier: GPL-3.0-or-later
// What is measured: the commands and the rows.
#include "unattended_test.h"

#include <QDateTime>
#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <algorithm>

namespace m47 {
namespace {

enum Field {
    kDate,
    kTime,
    kFrequency,
    kOscillator,
    kLevel,
    kBer,
    kPvBer,
    kCfo,
    kMer,
    kRu,
    kStatus
};
constexpr qsizetype kFields = 11;

const QStringList kIdentification{"ATTEN?", "VER?"};
const QStringList kScreenOpening{"MEASURE", "ATTEN 6",   "TONE22K 00", "SYMBRATEQPSK?",
                                 "UNIT?",   "LOCOSC 00", "FREQ 1000",  "ATTEN 6"};
const QStringList kDigitalMode{"TONE22K 00", "SYMBRATEQPSK?"};

QStringList analog_cycle(const QString& frequency) {
    return {"MEASURE", "FREQ " + frequency, "ATTEN 6", "LEVANL?"};
}

QStringList digital_cycle(const QString& frequency, const QString& bandwidth,
                          const QString& symbol_rate) {
    return {"MEASURE",
            "FREQ " + frequency,
            "CHBW " + bandwidth,
            "ATTEN 6",
            "ATTEN?",
            "LEVANL?",
            "LEVDCP?",
            "FREQ " + frequency,
            "ATTEN 00",
            "SYMBRATEQPSK " + symbol_rate,
            "BERQPSK",
            "BERQPSK?",
            "MEASURE"};
}

/// Line number `line` of an answer, counted from 0 behind the echo, without the blanks around it.
QString line_of(const QByteArray& answer, int line) {
    return QString::fromLatin1(answer.split('\r').value(line + 1)).trimmed();
}

/// What stands behind the colon in such a line.
QString value_of(const QByteArray& answer, int line) {
    return line_of(answer, line).section(u':', 1).trimmed();
}

QDateTime time_of(const QStringList& row) {
    const QString text = row[kDate].left(6) + "20" + row[kDate].mid(6) + ' ' + row[kTime];
    return QDateTime::fromString(text, "dd/MM/yyyy HH:mm:ss");
}

/// Row times are whole seconds, cut off.
QDateTime whole_seconds(const QDateTime& time) {
    return time.addMSecs(-time.time().msec());
}

qsizetype count_pixels(const QImage& picture, QRgb colour) {
    qsizetype count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) count += picture.pixel(x, y) == colour ? 1 : 0;
    return count;
}

qsizetype count_lines(const QList<QByteArray>& lines, const QByteArray& with) {
    return std::ranges::count_if(lines,
                                 [&](const QByteArray& line) { return line.endsWith(with); });
}

constexpr QRgb kRedLamp = 0xFFFF0000;
constexpr QRgb kGreenLamp = 0xFF00FF00;

}  // namespace

void UnattendedTest::start(const QString& name, const QStringList& options) {
    digital_.try_emplace(name).first->second.start_measuring(QStringList("--digital") + options);
}

/// Digital runs wait five seconds for the demodulator: they go on while the other tests run.
void UnattendedTest::initTestCase() {
    start("plain", {"--freq", "1000", "--log", "run.log"});
    start("all options",
          {"--freq", "1097.5", "--bandwidth", "27", "--symbol-rate", "22000", "--alarm", "mer=5:40",
           "--alarm", "ber=1E-9:3E-2", "--alarm", "level=20:110", "--screenshot", "s.png"});
    start("alarm", {"--freq", "1000", "--alarm", "level=20:110", "--alarm", "mer=40:50"});
}

void UnattendedTest::cleanupTestCase() {
    digital_.clear();
}

void UnattendedTest::analog_rows() {
    TestStand stand;
    const QDateTime begin = whole_seconds(QDateTime::currentDateTime());
    const Ending ending =
        stand.measure({"--analog", "--freq", "1275.5", "--count", "2", "--log", "run.log",
                       "--screenshot", "screen.png", "--trace", "run.trace"});
    const QDateTime end = QDateTime::currentDateTime();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());

    QCOMPARE(stand.meter.commands(), kIdentification + kScreenOpening + QStringList("FREQ 1275.5") +
                                         analog_cycle("1275.5") + analog_cycle("1275.5"));

    const QList<QByteArray> levels = stand.meter.answers_to("LEVANL?");
    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 2);
    for (qsizetype k = 0; k < rows.size(); ++k) {
        QCOMPARE(rows[k].size(), kFields);
        QVERIFY2(time_of(rows[k]) >= begin && time_of(rows[k]) <= end, ending.out.constData());
        const QStringList expected{"1275.5", "10600", line_of(levels[k], 0), "", "", "", "",
                                   "",       ""};
        QCOMPARE(rows[k].mid(kFrequency), expected);
    }
    QVERIFY(time_of(rows[0]) < time_of(rows[1]));
    QVERIFY(ending.out.endsWith('\n'));
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    compare_recordings(stand);

    if (RemoteProcess::is_probe()) return;
    const QImage picture(stand.path("screen.png"), "PNG");
    QVERIFY(picture.width() >= 900 && picture.height() >= 560);
    QVERIFY(picture.width() <= 4000 && picture.height() <= 4000);
    QVERIFY2(
        count_pixels(picture, picture.pixel(2, 2)) < picture.width() * picture.height() * 9 / 10,
        "an empty picture");
    QCOMPARE(count_pixels(picture, kRedLamp) + count_pixels(picture, kGreenLamp), 0);
}

/// What the program has recorded of a run is what the meter has recorded of it.
void UnattendedTest::compare_recordings(const TestStand& stand) {
    QStringList sent;
    QByteArray received;
    const QList<QByteArray> lines = stand.content("run.trace").split('\n');
    QVERIFY(lines.first().startsWith("M47TRACE 1 2"));
    for (const QByteArray& line : lines) {
        const QByteArray text = line.mid(line.indexOf(' ', line.indexOf(' ', 3) + 1) + 1);
        if (line.startsWith("RX ")) sent += QString::fromLatin1(text).remove("<CR>");
        if (line.startsWith("TX ")) received += text;
    }
    QCOMPARE(sent, stand.meter.commands());
    QByteArray answers;
    for (const TraceEntry& entry : stand.meter.trace())
        if (!entry.received) answers += entry.bytes;
    QCOMPARE(received.replace("<CR>", "\r"), answers);
    const QByteArray opened = "open " + stand.meter.link().toUtf8() + " 38400,n,8,2";
    QCOMPARE(count_lines(lines, opened), sent.size());
    QCOMPARE(count_lines(lines, " close"), sent.size());
}

void UnattendedTest::frequencies() {
    TestStand own;
    const Ending without = own.measure({});
    QCOMPARE(without.status, 0);
    QCOMPARE(without.err, QByteArray());
    QCOMPARE(own.meter.commands(), kIdentification + kScreenOpening + analog_cycle("1000.0"));
    QCOMPARE(rows_of(without.out).value(0).value(kFrequency), QString("1000.0"));
    // What has more digits than the meter takes is told.
    const Ending rounded = own.measure({"--freq", "1000.123", "--bandwidth", "5.5"});
    QCOMPARE(rounded.status, 0);
    QCOMPARE(rounded.err, QByteArray("m47-remote: --freq: 1000.123 MHz is set as 1000.1\n"
                                     "m47-remote: --bandwidth: 5.5 MHz is set as 6\n"));
    // The screen takes the nearest end of the receiver's band; here nobody would see that.
    for (const char* outside : {"919.9", "12000.5"}) {
        const Ending refused = own.measure({"--freq", QLatin1String(outside)});
        QCOMPARE(refused.status, 2);
        QCOMPARE(refused.err,
                 QByteArray("m47-remote: --freq takes a number from 920 to 2150 MHz, not \"") +
                     outside + "\"\n");
    }
}

/// What the boxes of the screen send, before the frequency.
void UnattendedTest::antenna_options() {
    TestStand whole;
    const Ending ending = whole.measure({"--freq", "10773", "--oscillator", "9750", "--lnb", "13",
                                         "--tone", "on", "--diseqc", "sw opt b", "--count", "2"});
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(ending.status, 0);
    const QStringList antenna{"LOCOSC 1 A 09750", "LOCOSC 1 A", "FREQ?",     "LNVOLT 13",
                              "LNB 01",           "TONE22K 01", "DISEQC 28", "FREQ 10773"};
    QCOMPARE(whole.meter.commands(), kIdentification + kScreenOpening + antenna +
                                         analog_cycle("10773") + analog_cycle("10773"));
    QCOMPARE(rows_of(ending.out).size(), 2);
    QCOMPARE(rows_of(ending.out)[0].value(kFrequency), QString("10773"));
    QCOMPARE(rows_of(ending.out)[0].value(kOscillator), QString("9750"));

    TestStand single;
    QCOMPARE(single.measure({"--lnb", "off", "--tone", "off", "--diseqc", "73"}).status, 0);
    const QStringList switched{"LNB 00", "TONE22K 00", "DISEQC 73"};
    QCOMPARE(single.meter.commands(),
             kIdentification + kScreenOpening + switched + analog_cycle("1000.0"));
}

void UnattendedTest::rows_for_programs() {
    TestStand stand;
    stand.remote.environment.insert("TZ", "XYZ-05:30");
    const auto lines = [&](const char* format) {
        const Ending ending = stand.measure({"--freq", "1275.5", "--count", "2", "--alarm",
                                             "level=20:110", "--format", format, "--log", "a.log"});
        if (ending.status != 0 || !ending.err.isEmpty()) return QByteArrayList();
        return ending.out.split('\n');
    };
    const QByteArrayList csv = lines("csv");
    QCOMPARE(csv.size(), 4);
    QVERIFY2(csv[0].startsWith("time,plan,program,") && csv[0].endsWith("verdict\r"), csv[0]);
    const QByteArrayList cells = csv[1].split(',');
    QCOMPARE(cells.size(), 22);
    QVERIFY2(cells[0].endsWith("+05:30"), cells[0]);
    QCOMPARE(cells[4], QByteArray("1275.5"));
    // What the log has of it stays as it is, in the clock's own time.
    const QStringList logged = rows_of(stand.content("a.log")).value(0);
    QCOMPARE(logged.size(), kFields);
    QCOMPARE(QString::fromLatin1(cells[0].mid(11, 8)), logged[kTime]);
    QCOMPARE(cells[7].toDouble(), logged[kLevel].toDouble());
    QCOMPARE(cells[21], QByteArray("PASS\r"));

    const QByteArrayList json = lines("json");
    QCOMPARE(json.size(), 3);
    for (const QByteArray& line : json.first(2)) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        QCOMPARE(object["frequency"], QJsonValue(1275.5));
        QVERIFY(object["level"].isDouble());
        QVERIFY(object["plan"].isNull());
    }
    const QByteArrayList tsv = lines("tsv");
    QCOMPARE(tsv.size(), 4);
    QCOMPARE(QByteArray(tsv[0]).replace('\t', ','), csv[0].chopped(1));
    QCOMPARE(tsv[2].split('\t').size(), 22);
}

void UnattendedTest::level_limits_out_of_range() {
    TestStand stand;
    const Ending ending = stand.measure({"--alarm", "level=19:110"});
    QCOMPARE(ending.status, 2);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err, QByteArray("m47-remote: --alarm level takes limits from 20 to 120 dBuV, "
                                    "the meter's unit, not \"level=19:110\"\n"));
}

void UnattendedTest::alarms() {
    TestStand inside;
    TestStand outside;
    inside.start_measuring(
        {"--freq", "1275.5", "--alarm", "level=20:110", "--screenshot", "s.png"});
    outside.start_measuring({"--freq", "1275.5", "--alarm", "level=100:110", "--count", "2",
                             "--log", "run.log", "--screenshot", "s.png"});
    const Ending good = inside.remote.wait();
    const Ending bad = outside.remote.wait();

    QCOMPARE(good.status, 0);
    QCOMPARE(good.err, QByteArray());
    QCOMPARE(rows_of(good.out).value(0).value(kStatus), QString("PASS"));
    if (RemoteProcess::is_probe()) return;
    const QImage green(inside.path("s.png"), "PNG");
    QVERIFY(count_pixels(green, kGreenLamp) > 0);
    QCOMPARE(count_pixels(green, kRedLamp), 0);

    // An alarm does not end the run: all rows are taken, then the status tells.
    QCOMPARE(bad.status, 1);
    QCOMPARE(bad.err, QByteArray());
    QCOMPARE(rows_of(bad.out).size(), 2);
    QCOMPARE(rows_of(bad.out)[0].value(kStatus), QString("FAIL"));
    QCOMPARE(rows_of(bad.out)[1].value(kStatus), QString("FAIL"));
    QCOMPARE(outside.content("run.log"), as_log(bad.out));
    const QImage red(outside.path("s.png"), "PNG");
    QVERIFY(count_pixels(red, kRedLamp) > 0);
    QCOMPARE(count_pixels(red, kGreenLamp), 0);
}

void UnattendedTest::no_window_system_is_needed() {
    TestStand stand;
    stand.remote.environment.insert("QT_QPA_PLATFORM", "no-such-platform");
    const Ending ending = stand.measure({});
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(rows_of(ending.out).size(), 1);
}

void UnattendedTest::a_second_start_on_the_same_port() {
    TestStand stand;
    stand.start_measuring({"--count", "12"});
    QVERIFY(stand.remote.wait_for_lines(1));
    // In another folder and by another path: the meter's own link is one already.
    const EmptyStand other;
    RemoteProcess second(other.path("."), other.folder.filePath("runtime"));
    const QString device = QFileInfo(stand.meter.link()).canonicalFilePath();
    const Ending ending = second.run({"--directory", other.path("."), "--create-database", "--port",
                                      "2=" + device, "--measure", "--on-port", "2"});
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.out, QByteArray());
    const qint64 process = stand.remote.process().processId();
    const QString told = QStringLiteral(
                             "m47-remote: %1 is in use by %3 (process %2). End "
                             "that program or choose another port.\n")
                             .arg(device)
                             .arg(process)
                             .arg(RemoteProcess::name());
    QCOMPARE(QString::fromUtf8(ending.err), told);
    QVERIFY(stand.remote.process().state() == QProcess::Running);
    // The one that was there first measures to its end.
    const Ending first = stand.remote.wait();
    QCOMPARE(first.status, 0);
    QCOMPARE(rows_of(first.out).size(), 12);
    // When it has ended the port is free.
    QCOMPARE(second
                 .run({"--directory", other.path("."), "--port", "2=" + device, "--measure",
                       "--on-port", "2"})
                 .status,
             0);
}

void UnattendedTest::digital_row() {
    TestStand& stand = digital_.at("plain");
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(stand.meter.commands(), kIdentification + kScreenOpening + kDigitalMode +
                                         QStringList("FREQ 1000.0") +
                                         digital_cycle("1000.0", "05", "27500"));
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].size(), kFields);
    QCOMPARE(rows[0][kFrequency], QString("1000.0"));
    QCOMPARE(rows[0][kStatus], QString());
}

void UnattendedTest::digital_row_with_all_options() {
    TestStand& stand = digital_.at("all options");
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(stand.meter.commands(), kIdentification + kScreenOpening + kDigitalMode +
                                         QStringList("FREQ 1097.5") +
                                         digital_cycle("1097.5", "27", "22000"));
    const QByteArray power = stand.meter.answers_to("LEVDCP?").value(0);
    const QByteArray quality = stand.meter.answers_to("BERQPSK?").value(0);
    QVERIFY2(value_of(quality, 3).toDouble() > 5, "the simulated carrier is not received");
    const QStringList expected{"1097.5",
                               "10600",
                               line_of(power, 0),
                               value_of(quality, 0),
                               value_of(quality, 1),
                               value_of(quality, 2),
                               value_of(quality, 3),
                               "",
                               "PASS"};
    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].size(), kFields);
    QCOMPARE(rows[0].mid(kFrequency), expected);
    if (RemoteProcess::is_probe()) return;
    const QImage picture(stand.path("s.png"), "PNG");
    QVERIFY(count_pixels(picture, kGreenLamp) > 0);
    QCOMPARE(count_pixels(picture, kRedLamp), 0);
}

/// One alarm of two is enough.
void UnattendedTest::digital_alarm() {
    const Ending ending = digital_.at("alarm").remote.wait();
    QCOMPARE(ending.status, 1);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(rows_of(ending.out).value(0).value(kStatus), QString("FAIL"));
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::UnattendedTest)
