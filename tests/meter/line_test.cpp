// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "line_buffer.h"
#include "options.h"
#include "pacing.h"
#include "text.h"
#include "trace.h"

using namespace std::chrono_literals;

namespace {

std::variant<meter::Options, std::string> parse(const std::vector<std::string>& arguments) {
    return meter::parse_options(arguments);
}

}  // namespace

class TestLine : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void character_times();
    void no_drift();
    void faster_and_unpaced();
    void due_count_agrees_with_due();
    void lines_are_cut_at_cr();
    void arrival_times();
    void overlong_lines();
    void escaped_bytes();
    void exponent_forms();
    void trace_file();
    void default_options();
    void all_options();
    void options_of_the_sky();
    void refused_options_data();
    void refused_options();
    void help_names_every_option();
};

void TestLine::character_times() {
    const meter::Pacing pacing(1.0);
    QCOMPARE(pacing.due(0).count(), 286458);
    QCOMPARE(pacing.due(19).count(), 5729167);
}

void TestLine::no_drift() {
    const meter::Pacing pacing(1.0);
    QCOMPARE(pacing.due(38399), std::chrono::nanoseconds(11s));
    QCOMPARE(pacing.due(3839999), std::chrono::nanoseconds(1100s));
}

void TestLine::faster_and_unpaced() {
    QCOMPARE(meter::Pacing(10.0).due(38399), std::chrono::nanoseconds(1100ms));
    const meter::Pacing none(0.0);
    QVERIFY(!none.paced());
    QCOMPARE(none.due(1000), 0ns);
    QCOMPARE(none.due_count(0ns, 50), std::size_t{50});
}

void TestLine::due_count_agrees_with_due() {
    const meter::Pacing pacing(1.0);
    QCOMPARE(pacing.due_count(0ns, 100), std::size_t{0});
    QCOMPARE(pacing.due_count(-5ms, 100), std::size_t{0});
    for (std::size_t i = 0; i < 100; ++i) {
        QCOMPARE(pacing.due_count(pacing.due(i) - 1ns, 100), i);
        QCOMPARE(pacing.due_count(pacing.due(i), 100), i + 1);
    }
    QCOMPARE(pacing.due_count(10s, 100), std::size_t{100});
}

void TestLine::lines_are_cut_at_cr() {
    meter::LineBuffer buffer;
    buffer.push("ATT", {});
    QVERIFY(!buffer.has_line());
    QVERIFY(!buffer.next());
    buffer.push("EN?\r\nUNIT?\r\rFREQ", {});
    QCOMPARE(buffer.waiting(), std::size_t{3});
    QCOMPARE(buffer.next()->text, std::string("ATTEN?"));
    QCOMPARE(buffer.next()->text, std::string("UNIT?"));
    QCOMPARE(buffer.next()->text, std::string());
    QVERIFY(!buffer.has_line());
    buffer.push("?\r", {});
    QCOMPARE(buffer.next()->text, std::string("FREQ?"));
}

void TestLine::arrival_times() {
    meter::LineBuffer buffer;
    const meter::TimePoint start{100ms};
    buffer.push("A", start);
    buffer.push("B", start + 5ms);
    buffer.push("\r", start + 9ms);
    buffer.push("C\r", start + 20ms);
    const auto first = buffer.next().value();
    QVERIFY(first.first == start && first.last == start + 9ms);
    const auto second = buffer.next().value();
    QVERIFY(second.first == start + 20ms && second.last == start + 20ms);
}

void TestLine::overlong_lines() {
    meter::LineBuffer buffer;
    buffer.push(std::string(5000, 'A') + "\rB\r", {});
    QCOMPARE(buffer.next()->text.size(), meter::LineBuffer::longest_line);
    QCOMPARE(buffer.next()->text, std::string("B"));
}

void TestLine::escaped_bytes() {
    QCOMPARE(meter::escaped("A <1\r\n\t\x01\xFE~"), std::string("A <LT>1<CR><LF><TAB><01><FE>~"));
}

void TestLine::exponent_forms() {
    QCOMPARE(meter::exponent_form(2.0e-4), std::string("2.0E-4"));
    QCOMPARE(meter::exponent_form(1.25e-12), std::string("1.2E-12"));
    QCOMPARE(meter::exponent_form(0.03), std::string("3.0E-2"));
    QCOMPARE(meter::fixed(-0.04, 1), std::string("0.0"));
}

void TestLine::trace_file() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("trace");
    meter::Trace trace;
    QVERIFY(trace.open(path.toStdString(), "m47-meter 9.9"));
    trace.received({"ATTEN?", meter::TimePoint{1500us}, meter::TimePoint{2s}});
    trace.sent(meter::TimePoint{2002ms}, meter::TimePoint{2010ms}, "ATTEN?\r6\rOK\r");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    QVERIFY(text.startsWith("M47TRACE 1 ") && text.contains(" m47-meter 9.9\n"));
    text.remove(0, text.indexOf('\n') + 1);
    QCOMPARE(text, QByteArray("RX 1.500 2000.000 ATTEN?<CR>\n"
                              "TX 2002.000 2010.000 ATTEN?<CR>6<CR>OK<CR>\n"));
    QVERIFY(meter::Trace().open("", "m47-meter"));
    QVERIFY(!meter::Trace().open("/nonexistent/folder/trace", "m47-meter"));
}

void TestLine::default_options() {
    const auto options = std::get<meter::Options>(parse({}));
    QCOMPARE(options.version_text, std::string("V3.1.0 PLUS"));
    QCOMPARE(options.baud_factor, 1.0);
    QCOMPARE(options.late_seconds, 3.0);
    QVERIFY(!options.sky.orbit && !options.sky.chance.cn_db);
    QCOMPARE(options.sky.point_east, 13.0);
    QVERIFY(!options.logger_bytes && options.faults.empty() && !options.help && !options.version);
}

void TestLine::all_options() {
    const auto options = std::get<meter::Options>(parse({"--link",
                                                         "/tmp/x",
                                                         "--version-text=V2.9.9",
                                                         "--logger-bytes",
                                                         "4000",
                                                         "--seed=9",
                                                         "--baud-factor",
                                                         "0",
                                                         "--delay",
                                                         "12.5",
                                                         "--fault",
                                                         "error:2",
                                                         "--fault=late",
                                                         "--fault-after",
                                                         "3",
                                                         "--fault-on",
                                                         "BERQPSK?",
                                                         "--late",
                                                         "1.5",
                                                         "--trace",
                                                         "t",
                                                         "--state",
                                                         "s"}));
    QCOMPARE(options.link, std::string("/tmp/x"));
    QCOMPARE(options.version_text, std::string("V2.9.9"));
    QCOMPARE(options.logger_bytes.value(), std::size_t{4000});
    QCOMPARE(options.seed, std::uint64_t{9});
    QCOMPARE(options.baud_factor, 0.0);
    QCOMPARE(options.delay_ms, 12.5);
    QCOMPARE(options.faults.size(), std::size_t{2});
    QVERIFY(options.faults[0].kind->name == "error" && options.faults[1].kind->name == "late");
    QCOMPARE(options.fault_after, 3);
    QCOMPARE(options.fault_on, std::string("BERQPSK?"));
    QCOMPARE(options.late_seconds, 1.5);
    QCOMPARE(options.trace, std::string("t"));
    QCOMPARE(options.state, std::string("s"));
    const auto replay = std::get<meter::Options>(
        parse({"--replay", "r", "--speed", "2.5", "--strict", "--link=/tmp/x", "--trace", "t"}));
    QCOMPARE(replay.replay, std::string("r"));
    QCOMPARE(replay.speed, 2.5);
    QVERIFY(replay.strict);
    QVERIFY(std::get<meter::Options>(parse({"--help"})).help);
    QVERIFY(std::get<meter::Options>(parse({"--version"})).version);
}

void TestLine::options_of_the_sky() {
    const auto options = std::get<meter::Options>(
        parse({"--sky=orbit", "--sky-tables", "/tmp/t", "--dish=120", "--point", "5.5W",
               "--backlash", "3", "--lnb=c-band", "--cn", "8.5", "--off-air=30", "--unlisted=0",
               "--drift", "1.5", "--weather=0", "--fade", "3.5"}));
    QVERIFY(options.sky.orbit);
    QCOMPARE(options.sky.tables, std::string("/tmp/t"));
    QCOMPARE(options.sky.chance.dish_cm, 120.0);
    QCOMPARE(options.sky.point_east, -5.5);
    QCOMPARE(options.sky.backlash, 3);
    QCOMPARE(options.sky.lnb.oscillator_mhz, 5150.0);
    QCOMPARE(options.sky.chance.cn_db.value(), 8.5);
    QCOMPARE(options.sky.chance.off_air_percent, 30.0);
    QCOMPARE(options.sky.chance.unlisted_percent, 0.0);
    QCOMPARE(options.sky.chance.drift_mhz, 1.5);
    QCOMPARE(options.sky.chance.weather_db, 0.0);
    QCOMPARE(options.sky.fade_db, 3.5);
    QVERIFY(!std::get<meter::Options>(parse({"--sky=good"})).sky.orbit);
}

void TestLine::refused_options_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown") << QStringList{"--fast"};
    QTest::newRow("operand") << QStringList{"ttyS0"};
    QTest::newRow("no value") << QStringList{"--link"};
    QTest::newRow("empty value") << QStringList{"--link="};
    QTest::newRow("needless value") << QStringList{"--help=yes"};
    QTest::newRow("fault") << QStringList{"--fault", "fire"};
    QTest::newRow("count") << QStringList{"--logger-bytes", "-1"};
    QTest::newRow("sky") << QStringList{"--sky", "blue"};
    QTest::newRow("dish") << QStringList{"--dish", "20"};
    QTest::newRow("point") << QStringList{"--point", "13"};
    QTest::newRow("backlash") << QStringList{"--backlash", "4"};
    QTest::newRow("LNB") << QStringList{"--lnb", "ka"};
    QTest::newRow("share") << QStringList{"--off-air", "101"};
    QTest::newRow("fade") << QStringList{"--fade", "much"};
    QTest::newRow("C/N") << QStringList{"--cn", "x"};
    QTest::newRow("factor") << QStringList{"--baud-factor", "x"};
    QTest::newRow("speed") << QStringList{"--replay", "f", "--speed", "-1"};
    QTest::newRow("speed of nothing") << QStringList{"--speed", "2"};
    QTest::newRow("strict with nothing") << QStringList{"--strict"};
    for (const char* simulated :
         {"--version-text=x", "--logger-bytes=9", "--no-satellites", "--seed=1",
          "--sky=good",       "--baud-factor=1",  "--delay=1",       "--fault=error",
          "--fault-after=1",  "--fault-on=x",     "--late=1",        "--state=s",
          "--dish=80",        "--point=13.0E",    "--backlash=1",    "--lnb=single",
          "--cn=9",           "--off-air=5",      "--unlisted=5",    "--drift=1",
          "--weather=1",      "--sky-tables=d",   "--fade=1"})
        QTest::addRow("replay with %s", simulated) << QStringList{simulated, "--replay=f"};
}

void TestLine::refused_options() {
    QFETCH(QStringList, arguments);
    std::vector<std::string> list;
    for (const QString& argument : arguments) list.push_back(argument.toStdString());
    const auto result = parse(list);
    QVERIFY(std::holds_alternative<std::string>(result));
    QVERIFY(std::get<std::string>(result).find('\n') == std::string::npos);
}

void TestLine::help_names_every_option() {
    const QString help = QString::fromStdString(meter::help_text());
    for (const char* word : {"--link PATH",
                             "--version-text TEXT",
                             "--logger-bytes N",
                             "--seed N",
                             "--baud-factor X",
                             "--delay MS",
                             "--fault KIND[:N]",
                             "--fault-after M",
                             "--fault-on TEXT",
                             "--late SECONDS",
                             "--sky NAME",
                             "--sky-tables DIR",
                             "--dish CM",
                             "--point POSITION",
                             "--backlash N",
                             "--lnb NAME",
                             "--cn DB",
                             "--off-air PERCENT",
                             "--unlisted PERCENT",
                             "--drift MHZ",
                             "--weather DB",
                             "--fade DB",
                             "--trace FILE",
                             "--state FILE",
                             "--help",
                             "--version",
                             "--no-satellites",
                             "wrongecho",
                             "--replay FILE",
                             "--speed X",
                             "--strict"})
        QVERIFY2(help.contains(word), word);
}

QTEST_GUILESS_MAIN(TestLine)
#include "line_test.moc"
