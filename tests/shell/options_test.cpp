// SPDX-License-Identifier: GPL-3.0-or-later
#include "options.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "file_options.h"
#include "screen_table.h"

namespace m47::shell {

/// The command line as it is read, without anything being done.
class OptionsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void nothing();
    void window_options();
    void user_data();
    void measurement_options();
    void plan_options();
    void value_behind_an_equals_sign();
    void several_ports_and_alarms();
    void alarm_limits_as_typed();
    void bounds_of_numbers_data();
    void bounds_of_numbers();
    void screens_data();
    void screens();
    void help_and_version_come_first();
    void wrong_data();
    void wrong();
    void a_value_out_of_range_is_told_its_range();
    void twice_with_different_values();
    void antenna_options();
    void formats();
    void plan_files();
    void wrong_antenna_options();
    void no_file_of_an_option_is_written_over();
    void wrong_options_keep_nothing();
    void help_names_every_option();
    void sweeps();
};

namespace {

using Action = Options::Action;

QStringList measuring(const QStringList& options) {
    return QStringList{"--measure", "--on-port", "1"} + options;
}

}  // namespace

void OptionsTest::nothing() {
    const Options options = parse_options({});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.error, QString());
    QCOMPARE(options.directory, QString());
    QVERIFY(!options.user_data);
    QCOMPARE(options.ports, QStringList());
    QVERIFY(!options.create_database);
    QCOMPARE(options.on_port, 0);
    QCOMPARE(options.open, QString());
    QVERIFY(!options.measure);
    QCOMPARE(options.count, 1);
}

void OptionsTest::sweeps() {
    const Options whole = parse_options({"--on-port", "1", "--sweep", "920:2150"});
    QCOMPARE(whole.error, QString());
    QVERIFY(whole.unattended() && !whole.carriers);
    QCOMPARE(whole.sweep->from, 920.0);
    QCOMPARE(whole.sweep->to, 2150.0);
    QVERIFY(!whole.sweep->step);
    const Options stepped = parse_options({"--on-port", "1", "--sweep", "950.5:1000:0.5", "--lnb",
                                           "18", "--tone", "on", "--carriers"});
    QCOMPARE(stepped.error, QString());
    QCOMPARE(stepped.sweep->from, 950.5);
    QCOMPARE(stepped.sweep->step.value(), 0.5);
    QVERIFY(stepped.carriers);
    // The sky runs the other way below an oscillator above it.
    const Options c_band = parse_options({"--on-port", "1", "--sweep", "3400:4200", "--oscillator",
                                          "5150", "--carriers", "--scan-table", "table"});
    QCOMPARE(c_band.error, QString());
    QCOMPARE(c_band.sweep->from, 950.0);
    QCOMPARE(c_band.sweep->to, 1750.0);
    QCOMPARE(c_band.scan_table, QString("table"));
}

void OptionsTest::window_options() {
    const Options options =
        parse_options({"--directory", "some where", "--create-database", "--on-port", "10",
                       "--port", "10=/dev/ttyUSB0", "--open", "setport", "--trace", "a.trace"});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.directory, QString("some where"));
    QVERIFY(options.create_database);
    QCOMPARE(options.on_port, 10);
    QCOMPARE(options.ports, QStringList("10=/dev/ttyUSB0"));
    QCOMPARE(options.open, QString("setport"));
    QCOMPARE(options.trace, QString("a.trace"));
    QCOMPARE(parse_options({"--open", "realtime", "--replay", "b.trace"}).replay,
             QString("b.trace"));
    QVERIFY(!options.measure);
    QVERIFY(!options.corrected);
    QVERIFY(!options.unattended());
    const Options report = parse_options({"--problem-report", "a.tar.gz", "--on-port", "1"});
    QCOMPARE(report.action, Action::run);
    QCOMPARE(report.problem_report, QString("a.tar.gz"));
    QVERIFY(report.unattended());
}

void OptionsTest::user_data() {
    const Options options = parse_options({"--user-data", "--create-database"});
    QCOMPARE(options.action, Action::run);
    QVERIFY(options.user_data);
    QVERIFY(options.create_database);
    QCOMPARE(options.directory, QString());
}

void OptionsTest::measurement_options() {
    const Options options = parse_options(measuring(
        {"--digital", "--freq", "1275.5", "--bandwidth", "27", "--symbol-rate", "22000", "--count",
         "12", "--log", "a.log", "--screenshot", "a.png", "--trace", "a.trace"}));
    QCOMPARE(options.action, Action::run);
    QVERIFY(options.measure);
    QVERIFY(options.digital);
    QCOMPARE(options.on_port, 1);
    QCOMPARE(options.frequency, QString("1275.5"));
    QCOMPARE(options.bandwidth, QString("27"));
    QCOMPARE(options.symbol_rate, QString("22000"));
    QCOMPARE(options.count, 12);
    QCOMPARE(options.log, QString("a.log"));
    QCOMPARE(options.screenshot, QString("a.png"));
    QCOMPARE(options.trace, QString("a.trace"));

    const Options plain = parse_options(measuring({"--analog"}));
    QCOMPARE(plain.action, Action::run);
    QVERIFY(!plain.digital);
    QCOMPARE(plain.frequency, QString());
    QVERIFY(plain.alarms.isEmpty());
}

void OptionsTest::plan_options() {
    const Options options = parse_options(
        measuring({"--plan", "Hotel roof", "--passes", "0", "--every", "300", "--full-tune",
                   "--reconnect", "--bandwidth", "36", "--alarm", "level", "--alarm", "mer"}));
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.plan, QString("Hotel roof"));
    QCOMPARE(options.passes, 0);
    QCOMPARE(options.every, 300);
    QVERIFY(options.full_tune);
    QVERIFY(options.reconnect);
    QCOMPARE(options.alarms.size(), 2);
    QCOMPARE(options.alarms[1].name, QString("mer"));
    QCOMPARE(options.alarms[1].minimum, QString());

    QVERIFY(parse_options({"--corrected"}).corrected);
    QVERIFY(parse_options(measuring({"--corrected"})).corrected);

    const Options plain = parse_options(measuring({"--plan", "A"}));
    QCOMPARE(plain.action, Action::run);
    QCOMPARE(plain.passes, 1);
    QCOMPARE(plain.every, 0);
    QVERIFY(!plain.full_tune);
    QVERIFY(!plain.reconnect);
}

void OptionsTest::value_behind_an_equals_sign() {
    const Options options =
        parse_options({"--measure", "--on-port=3", "--port=3=/dev/a=b", "--freq=1000"});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.on_port, 3);
    QCOMPARE(options.ports, QStringList("3=/dev/a=b"));
    QCOMPARE(options.frequency, QString("1000"));
}

void OptionsTest::several_ports_and_alarms() {
    const Options options =
        parse_options(measuring({"--digital", "--port", "1=/dev/a", "--port", "2=/dev/b", "--alarm",
                                 "level=20:110", "--alarm", "ber=1E-8:3E-2"}));
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.ports, QStringList({"1=/dev/a", "2=/dev/b"}));
    QCOMPARE(options.alarms.size(), 2);
    QCOMPARE(options.alarms[0].name, QString("level"));
    QCOMPARE(options.alarms[0].minimum, QString("20"));
    QCOMPARE(options.alarms[0].maximum, QString("110"));
    QCOMPARE(options.alarms[1].name, QString("ber"));
    QCOMPARE(options.alarms[1].minimum, QString("1E-8"));
    QCOMPARE(options.alarms[1].maximum, QString("3E-2"));
}

void OptionsTest::alarm_limits_as_typed() {
    for (const char* name : {"level", "ber", "mer"}) {
        const Options options = parse_options(
            measuring({"--digital", "--alarm", QString::fromLatin1(name) + "=-10.5:40"}));
        QCOMPARE(options.action, Action::run);
        QCOMPARE(options.alarms.value(0).name, QString::fromLatin1(name));
        QCOMPARE(options.alarms.value(0).minimum, QString("-10.5"));
        QCOMPARE(options.alarms.value(0).maximum, QString("40"));
    }
}

void OptionsTest::bounds_of_numbers_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("good");
    QTest::newRow("on port 0") << QStringList{"--on-port", "0"} << false;
    QTest::newRow("on port 1") << QStringList{"--on-port", "1"} << true;
    QTest::newRow("on port 10") << QStringList{"--on-port", "10"} << true;
    QTest::newRow("on port 11") << QStringList{"--on-port", "11"} << false;
    QTest::newRow("port 0") << QStringList{"--port", "0=/dev/a"} << false;
    QTest::newRow("port 1") << QStringList{"--port", "1=/dev/a"} << true;
    QTest::newRow("port 10") << QStringList{"--port", "10=/dev/a"} << true;
    QTest::newRow("port 11") << QStringList{"--port", "11=/dev/a"} << false;
    QTest::newRow("port -1") << QStringList{"--port", "-1=/dev/a"} << false;
    QTest::newRow("count 0") << measuring({"--count", "0"}) << false;
    QTest::newRow("count 1") << measuring({"--count", "1"}) << true;
    QTest::newRow("count 1000000000") << measuring({"--count", "1000000000"}) << true;
    QTest::newRow("count 1000000001") << measuring({"--count", "1000000001"}) << false;
    QTest::newRow("count too long") << measuring({"--count", "99999999999"}) << false;
    QTest::newRow("frequency 0") << measuring({"--freq", "0"}) << false;
    const auto bounds = [](const char* option, const QStringList& good, const QStringList& bad) {
        for (const QString& value : good + bad)
            QTest::addRow("%s %s", option, qPrintable(value))
                << measuring({QString::fromLatin1(option), value}) << good.contains(value);
    };
    // What the screen would move into its range without a word is refused.
    bounds("--freq", {"920", "2150", "1e3"}, {"0.1", "919.9", "2150.1", "99999"});
    bounds("--bandwidth", {"5", "36"}, {"4.9", "36.1", "99", "0"});
    bounds("--symbol-rate", {"1500", "45000"}, {"9", "1499", "45001"});
    bounds("--alarm", {"level=-1:1", "level=20:20.5"},
           {"level=75:45", "level=50:50", "level=nan:50", "level=20:inf"});
    QTest::newRow("frequency -0.1") << measuring({"--freq", "-0.1"}) << false;
    QTest::newRow("frequency nan") << measuring({"--freq", "nan"}) << false;
    QTest::newRow("frequency inf") << measuring({"--freq", "inf"}) << false;
}

void OptionsTest::bounds_of_numbers() {
    QFETCH(QStringList, arguments);
    QFETCH(bool, good);
    const Options options = parse_options(arguments);
    QCOMPARE(options.action, good ? Action::run : Action::wrong);
    QCOMPARE(options.error.isEmpty(), good);
}

void OptionsTest::screens_data() {
    QTest::addColumn<QString>("key");
    for (const QString& key : screen_keys()) QTest::newRow(qPrintable(key)) << key;
}

void OptionsTest::screens() {
    QFETCH(QString, key);
    const Options options = parse_options({"--open", key});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.open, key);
}

void OptionsTest::help_and_version_come_first() {
    QCOMPARE(parse_options({"--help"}).action, Action::help);
    QCOMPARE(parse_options({"-h"}).action, Action::help);
    QCOMPARE(parse_options({"--version"}).action, Action::version);
    QCOMPARE(parse_options({"-v"}).action, Action::version);
    // What else stands there need not make sense then.
    QCOMPARE(parse_options({"--measure", "--help"}).action, Action::help);
    QCOMPARE(parse_options({"--freq", "x", "--version", "y"}).action, Action::version);
}

void OptionsTest::wrong_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    const auto row = [](const char* name, const QStringList& arguments, const char* named) {
        QTest::newRow(name) << arguments << QString::fromLatin1(named);
    };
    row("unknown", {"--bogus"}, "bogus");
    row("argument", {"--", "--measure"}, "--measure");
    row("missing value", {"--directory"}, "directory");
    row("value too many", {"--create-database=1"}, "create-database");
    row("empty plan", measuring({"--plan", ""}), "--plan takes a name");
    row("empty log", measuring({"--log", " "}), "--log takes a name");
    row("empty picture", measuring({"--screenshot", ""}), "--screenshot takes a name");
    row("empty recording", {"--trace", " "}, "--trace takes a name");
    row("empty report", {"--problem-report", ""}, "--problem-report takes a name");
    row("report of an import", {"--import-database", "a", "--problem-report", "b"},
        "--problem-report");
    row("report of a window", {"--open", "realtime", "--problem-report", "b"}, "--problem-report");
    row("recording of nothing", {"--problem-report", "a", "--trace", "b"}, "--trace");
    row("no recording", {"--replay", ""}, "--replay takes a name");
    row("recording unattended", {"--measure", "--on-port", "1", "--replay", "a"}, "--replay");
    row("recording and port", {"--on-port", "1", "--replay", "a"}, "--replay does not go with");
    row("recording and import", {"--import-database", "a", "--replay", "b"}, "--replay");
    row("recording of an import", {"--import-database", "a", "--trace", "b"}, "--trace");
    row("empty folder", {"--directory", ""}, "--directory takes a name");
    row("two folders", {"--user-data", "--directory", "."}, "--user-data");
    row("measurement without port", {"--measure"}, "--on-port");
    row("two modes", measuring({"--digital", "--analog"}), "--analog");
    row("screen in a measurement", measuring({"--open", "realtime"}), "--open");
    row("empty screen in a measurement", measuring({"--open", ""}), "--open");
    row("sweep without port", {"--sweep", "920:2150"}, "--on-port");
    for (const char* span : {"", "920", "920:", ":2150", "919:2150", "920:2151", "2150:920",
                             "1000:1000", "920:2150:", "920:2150:0", "920:2150:101", "1e3:2e3",
                             "-920:2150", "920:2150:1:1", "920.55:2150"})
        row(span, {"--on-port", "1", "--sweep", span}, "--sweep takes");
    row("sweep in the wrong sky",
        {"--on-port", "1", "--sweep", "920:2150", "--oscillator", "10600"},
        "from 11520 to 12750 MHz with --oscillator 10600");
    row("sweep and measurement", measuring({"--sweep", "920:2150"}), "--measure does not go");
    for (const char* option : {"--freq", "--plan", "--diseqc", "--open", "--log"})
        row(option, {"--on-port", "1", "--sweep", "920:2150", option, "1000"}, option);
    row("carriers of no sweep", measuring({"--carriers"}), "--carriers goes with --sweep");
    row("names of no carriers",
        {"--on-port", "1", "--sweep", "11700:12700", "--oscillator", "10600", "--scan-table", "x"},
        "--scan-table needs --carriers");
    row("names without an oscillator",
        {"--on-port", "1", "--sweep", "920:2150", "--carriers", "--scan-table", "x"},
        "--scan-table needs --oscillator");
    row("supply of nothing", {"--lnb", "13"}, "--lnb goes with --measure or --sweep");
    row("bandwidth of an analog row", measuring({"--analog", "--bandwidth", "27"}), "--bandwidth");
    row("rate of an analog row", measuring({"--analog", "--symbol-rate", "22000"}),
        "--symbol-rate");
    row("empty old database", {"--import-database", " "}, "--import-database takes a name");
    row("empty port", {"--port", ""}, "--port takes N=DEVICE");
    row("screen in capitals", {"--open", "Realtime"}, "--open");
    row("alarm without limits", measuring({"--alarm", "level"}), "--alarm");
    row("alarm limit that is no number", measuring({"--alarm", "level=abc:110"}), "--alarm");
    row("alarm with an empty limit", measuring({"--alarm", "level=:110"}), "--alarm");
    row("alarm with three limits", measuring({"--alarm", "level=1:2:3"}), "--alarm");
    row("alarm in capitals", measuring({"--alarm", "LEVEL=1:2"}), "--alarm");
    row("second alarm", measuring({"--alarm", "level=1:2", "--alarm", "x=1:2"}), "--alarm");
    row("second port", {"--port", "1=/dev/a", "--port", "b"}, "--port");
    row("port without device", {"--port", "1="}, "--port");
    for (const char* option : {"--freq", "--bandwidth", "--symbol-rate"})
        row(option, measuring({option, "1 000"}), option);
    for (const char* option : {"--analog", "--digital"}) row(option, {option}, option);
    for (const char* option : {"--plan", "--passes", "--every"}) row(option, {option, "1"}, option);
    for (const char* option : {"--full-tune", "--reconnect"}) row(option, {option}, option);
    row("passes without a plan", measuring({"--passes", "2"}), "--plan");
    row("interval without a plan", measuring({"--every", "2"}), "--plan");
    row("reconnecting without a plan", measuring({"--reconnect"}), "--plan");
    row("full tune without a plan", measuring({"--full-tune"}), "--plan");
    row("plan and frequency", measuring({"--plan", "A", "--freq", "1000"}), "--freq");
    row("plan and count", measuring({"--plan", "A", "--count", "2"}), "--count");
    row("plan and presentation", measuring({"--plan", "A", "--digital"}), "--digital");
    row("plan and limits", measuring({"--plan", "A", "--alarm", "level=1:2"}), "--alarm");
    row("no passes", measuring({"--plan", "A", "--passes", "-1"}), "--passes");
    row("no interval", measuring({"--plan", "A", "--every", "0"}), "--every");
    row("count alone", {"--count", "1"}, "--count");
    row("log alone", {"--log", "a"}, "--log");
    row("picture alone", {"--screenshot", "a"}, "--screenshot");
    row("alarm alone", {"--alarm", "level=1:2"}, "--alarm");
    row("alarm that an analog row does not have", measuring({"--alarm", "ber=1:2"}), "--digital");
    row("alarm on C/N, which no cycle measures", measuring({"--digital", "--alarm", "cn=1:2"}),
        "--alarm");
}

void OptionsTest::wrong() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    const Options options = parse_options(arguments);
    QCOMPARE(options.action, Action::wrong);
    QVERIFY2(options.error.contains(named), qPrintable(options.error));
    QVERIFY2(!options.error.contains(u'\n'), "one line only");
}

void OptionsTest::a_value_out_of_range_is_told_its_range() {
    const auto told = [](const char* option, const char* value) {
        return parse_options(measuring({QLatin1String(option), QLatin1String(value)})).error;
    };
    QCOMPARE(told("--freq", "99999"),
             QString("--freq takes a number from 920 to 2150 MHz, not \"99999\""));
    QCOMPARE(told("--freq", ""), QString("--freq takes a number from 920 to 2150 MHz, not \"\""));
    QCOMPARE(told("--bandwidth", "27MHz"),
             QString("--bandwidth takes a number from 5 to 36 MHz, not \"27MHz\""));
    QCOMPARE(told("--symbol-rate", "nan"),
             QString("--symbol-rate takes a number from 1500 to 45000 kS/s, not \"nan\""));
    QCOMPARE(told("--alarm", "level=75:45"),
             QString("--alarm level takes a MIN below its MAX, not \"level=75:45\""));
    QCOMPARE(told("--alarm", "level=1:2dB"),
             QString("--alarm takes NAME=MIN:MAX with NAME one of level, ber, mer, not "
                     "\"level=1:2dB\""));
    QCOMPARE(told("--count", "0"),
             QString("--count takes a whole number from 1 to 1000000000, not \"0\""));
    QCOMPARE(told("--count", "2x"),
             QString("--count takes a whole number from 1 to 1000000000, not \"2x\""));
    QCOMPARE(parse_options({"--on-port", "11"}).error,
             QString("--on-port takes a whole number from 1 to 10, not \"11\""));
    QCOMPARE(parse_options({"--open", ""}).error.section(',', -1), QString(" not \"\""));
    QCOMPARE(parse_options({"--open", "level"}).error.section(',', -1), QString(" not \"level\""));
    const auto of_plan = [](const QStringList& options) {
        return parse_options(measuring(QStringList{"--plan", "A"} + options)).error;
    };
    QCOMPARE(of_plan({"--every", "0"}),
             QString("--every takes a whole number from 1 to 31536000, not \"0\""));
    QCOMPARE(of_plan({"--every", "1e3"}),
             QString("--every takes a whole number from 1 to 31536000, not \"1e3\""));
    QCOMPARE(of_plan({"--passes", "-1"}),
             QString("--passes takes a whole number from 0 to 1000000000, not \"-1\""));
    QCOMPARE(of_plan({"--alarm", "cn"}),
             QString("--alarm with --plan takes one of level, ber, mer, not \"cn\""));
    QCOMPARE(told("--freq", "1\n2"),
             QString("--freq takes a number from 920 to 2150 MHz, not \"1 2\""));
}

/// Which of the two was meant nobody can know; the same twice is no contradiction.
void OptionsTest::twice_with_different_values() {
    const auto twice = [](const QString& option, const QString& one, const QString& other) {
        return parse_options(measuring({option, one, option, other})).error;
    };
    QCOMPARE(twice("--freq", "1000", "1200"),
             QString("--freq is given twice, as \"1000\" and as \"1200\""));
    QCOMPARE(twice("--freq", "1000", "1000"), QString());
    QCOMPARE(twice("--count", "1", "2"), QString("--count is given twice, as \"1\" and as \"2\""));
    QCOMPARE(twice("--log", "a", "b"), QString("--log is given twice, as \"a\" and as \"b\""));
    QCOMPARE(twice("--on-port", "2", "1"),
             QString("--on-port is given twice, as \"1\" and as \"2\""));
    QCOMPARE(twice("--alarm", "level=1:2", "level=1:3"),
             QString("--alarm level is given twice, as \"level=1:2\" and as \"level=1:3\""));
    QCOMPARE(twice("--alarm", "level=1:2", "level=1:2"), QString());
    QCOMPARE(twice("--port", "1=/dev/a", "1=/dev/b"),
             QString("--port 1 is given twice, as \"1=/dev/a\" and as \"1=/dev/b\""));
    QCOMPARE(twice("--port", "1=/dev/a", "01=/dev/b"),
             QString("--port 1 is given twice, as \"1=/dev/a\" and as \"01=/dev/b\""));
    QCOMPARE(twice("--port", "1=/dev/a", "2=/dev/a"), QString());
}

void OptionsTest::antenna_options() {
    const Options options =
        parse_options(measuring({"--oscillator", "10600", "--freq", "11778", "--lnb", "18",
                                 "--tone", "on", "--diseqc", "37"}));
    QCOMPARE(options.error, QString());
    QCOMPARE(options.antenna.oscillator, std::optional(10600));
    QCOMPARE(options.antenna.supply, std::optional(3));
    QCOMPARE(options.antenna.tone, std::optional(0));
    QCOMPARE(options.antenna.diseqc, std::optional(37));

    const Options plain = parse_options(measuring({}));
    QCOMPARE(plain.antenna.oscillator, std::nullopt);
    QCOMPARE(plain.antenna.supply, std::nullopt);
    QCOMPARE(plain.antenna.tone, std::nullopt);
    QCOMPARE(plain.antenna.diseqc, std::nullopt);

    const Options off =
        parse_options(measuring({"--lnb", "off", "--tone", "off", "--diseqc", "reset"}));
    QCOMPARE(off.antenna.supply, std::optional(0));
    QCOMPARE(off.antenna.tone, std::optional(1));
    QCOMPARE(off.antenna.diseqc, std::optional(3));
    // The texts have double blanks, which nobody types.
    QCOMPARE(parse_options(measuring({"--diseqc", "SW2 ON V"})).antenna.diseqc, std::optional(8));
    QCOMPARE(parse_options(measuring({"--diseqc", "0"})).antenna.diseqc, std::optional(0));
}

void OptionsTest::formats() {
    using measurement::OutputFormat;
    const auto read = [](const char* name) {
        return parse_options(measuring({"--format", QLatin1String(name)}));
    };
    QCOMPARE(parse_options(measuring({})).format, std::nullopt);
    QCOMPARE(read("tsv").format, std::optional(OutputFormat::tsv));
    QCOMPARE(read("csv").format, std::optional(OutputFormat::csv));
    QCOMPARE(read("json").format, std::optional(OutputFormat::json));
    for (const char* wrong : {"", "JSON", "xml", "1"})
        QCOMPARE(read(wrong).error,
                 QStringLiteral("--format takes one of tsv, csv, json, not \"%1\"").arg(wrong));
    QCOMPARE(parse_options({"--format", "csv"}).error,
             QString("--format goes with --measure only"));
}

void OptionsTest::plan_files() {
    const Options out = parse_options({"--export-plan", "Roof=my=plan.tsv", "--overwrite"});
    QCOMPARE(out.error, QString());
    QCOMPARE(out.export_plan.plan, QString("Roof"));
    QCOMPARE(out.export_plan.file, QString("my=plan.tsv"));
    QVERIFY(out.overwrite);
    QVERIFY(out.unattended());
    const Options in = parse_options({"--import-plan", "Roof=a.csv", "--create-database"});
    QCOMPARE(in.error, QString());
    QCOMPARE(in.import_plan.plan, QString("Roof"));
    QCOMPARE(in.import_plan.file, QString("a.csv"));
    QVERIFY(in.unattended());
    for (const char* option : {"--export-plan", "--import-plan"}) {
        const auto told = [option](const char* value) {
            return parse_options({QLatin1String(option), QLatin1String(value)}).error;
        };
        for (const char* value : {"", "ROOF", "=a", "ROOF=", " =a", "ROOF= "})
            QCOMPARE(told(value),
                     QStringLiteral("%1 takes NAME=FILE, not \"%2\"").arg(option, value));
        QCOMPARE(told("A name too long=a"),
                 QStringLiteral("%1 takes a plan's name of at most 10 characters, not "
                                "\"A name too long\"")
                     .arg(option));
        for (const QStringList& other : {QStringList{"--open", "program"},
                                         QStringList{"--on-port", "1"}, QStringList{"--corrected"}})
            QCOMPARE(parse_options(QStringList{option, "A=b"} + other).error,
                     QStringLiteral("%1 does not go with %2").arg(option, other.constFirst()));
        QCOMPARE(parse_options(measuring({option, "A=b"})).error,
                 QStringLiteral("%1 does not go with --measure").arg(option));
        QCOMPARE(parse_options({"--import-database", "x", option, "A=b"}).error,
                 QStringLiteral("--import-database does not go with %1").arg(option));
    }
    QCOMPARE(parse_options({"--import-plan", "A=b", "--export-plan", "A=b"}).error,
             QString("--export-plan does not go with --import-plan"));
    for (const QStringList& without : {QStringList(), QStringList{"--import-plan", "A=b"}})
        QCOMPARE(parse_options(QStringList("--overwrite") + without).error,
                 QString("--overwrite goes with --export-plan only"));
}

void OptionsTest::wrong_antenna_options() {
    const auto told = [](const QStringList& options) {
        return parse_options(measuring(options)).error;
    };
    for (const char* value : {"3069", "12001", "9750.5", "", "nan", "9750MHz"})
        QCOMPARE(told({"--freq", "1000", "--oscillator", value}),
                 QStringLiteral("--oscillator takes a whole number from 3070 to 12000, not \"%1\"")
                     .arg(value));
    QCOMPARE(told({"--oscillator", "10600"}), QString("--oscillator needs --freq"));
    // What can be received through the oscillator.
    const auto through = [&](const char* oscillator, const char* frequency) {
        return told({"--oscillator", oscillator, "--freq", frequency});
    };
    QCOMPARE(through("10600", "11520"), QString());
    QCOMPARE(through("10600", "12750"), QString());
    QCOMPARE(through("10600", "1000"),
             QString("--freq takes a number from 11520 to 12750 MHz with --oscillator 10600, not "
                     "\"1000\""));
    QCOMPARE(through("5150", "2999.9"),
             QString("--freq takes a number from 3000 to 4230 MHz with --oscillator 5150, not "
                     "\"2999.9\""));
    for (const char* value : {"", "0", "12", "13V", "ON"})
        QCOMPARE(told({"--lnb", value}),
                 QStringLiteral("--lnb takes one of off, 13, 15, 18, 24, not \"%1\"").arg(value));
    for (const char* value : {"", "1", "ON"})
        QCOMPARE(told({"--tone", value}),
                 QStringLiteral("--tone takes one of on, off, not \"%1\"").arg(value));
    for (const char* value : {"", "-1", "74", "3x", "1e1", "nothing"})
        QCOMPARE(told({"--diseqc", value}),
                 QStringLiteral("--diseqc takes a number from 0 to 73 or a text of the list, not "
                                "\"%1\"")
                     .arg(value));
    QCOMPARE(told({"--diseqc", "Po 1-V-h LO"}),
             QString("--diseqc takes 38 or 54, which are both called \"Po 1-V-h LO\""));
    for (const char* option : {"--oscillator", "--lnb", "--tone", "--diseqc"}) {
        const QString value = QLatin1String(option) == QLatin1String("--tone") ? "on" : "13";
        QCOMPARE(parse_options({option, value}).error.section(' ', 0, 0), QString(option));
    }
    QCOMPARE(told({"--plan", "A", "--lnb", "13"}), QString("--lnb does not go with --plan"));
    QCOMPARE(told({"--plan", "A", "--tone", "on"}), QString("--tone does not go with --plan"));
    QCOMPARE(told({"--plan", "A", "--diseqc", "1"}), QString("--diseqc does not go with --plan"));
    QCOMPARE(parse_options({"--lnb", "13"}).error,
             QString("--lnb goes with --measure or --sweep only"));
}

void OptionsTest::no_file_of_an_option_is_written_over() {
    const QTemporaryDir folder;
    const QDir here(folder.path());
    const QString base = folder.path() + u'/';
    const auto put = [&](const char* name) {
        QFile file(here.filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    };
    put("VKDM47_03.mdb");
    put("rows.log");
    QVERIFY(QFile::link(here.filePath("VKDM47_03.mdb"), here.filePath("link.png")));
    QVERIFY(QFile::link(folder.path(), here.filePath("here")));
    QCOMPARE(::link(qPrintable(here.filePath("VKDM47_03.mdb")), qPrintable(here.filePath("twin"))),
             0);
    // They name no file yet.
    QVERIFY(QFile::link("VKDM47_03.mdb-journal", here.filePath("later.log")));
    QVERIFY(QFile::link("new.log", here.filePath("other.log")));
    const auto fault = [&](Options options) {
        for (QString* name : {&options.log, &options.screenshot, &options.trace, &options.replay,
                              &options.problem_report, &options.import_database})
            if (!name->isEmpty()) *name = here.filePath(*name);
        return file_option_fault(options, base).remove(base);
    };
    Options options;
    QCOMPARE(fault(options), QString());
    for (const char* name : {"VKDM47_03.mdb", "link.png", "twin", "here/VKDM47_03.mdb",
                             "VKDM47_03.mdb-journal", "here/VKDM47_03.mdb-wal", "later.log"}) {
        options.screenshot = QLatin1String(name);
        QCOMPARE(fault(options), "--screenshot names the database: " + options.screenshot);
    }
    options = {};
    options.trace = "twin";
    QCOMPARE(fault(options), QString("--trace names the database: twin"));
    options.trace = options.problem_report = "new";
    QCOMPARE(fault(options), QString("--trace and --problem-report name the same file: new"));
    options = {};
    options.log = options.trace = "rows.log";
    QCOMPARE(fault(options), QString("--log and --trace name the same file: rows.log"));
    options.log.clear();
    options.replay = "rows.log";
    QCOMPARE(fault(options), QString("--trace and --replay name the same file: rows.log"));
    options = {};
    options.log = "other.log";
    options.screenshot = "new.log";
    QCOMPARE(fault(options), QString("--log and --screenshot name the same file: new.log"));
    options = {};
    options.log = "VKDM47_03.mdb";
    QCOMPARE(fault(options), QString("--log names the database: VKDM47_03.mdb"));
    options.log = "rows.log";
    options.screenshot = "here/rows.log";
    QCOMPARE(fault(options), QString("--log and --screenshot name the same file: here/rows.log"));
    // Neither has to be there yet.
    options.log = "new";
    options.screenshot = "here/new";
    QCOMPARE(fault(options), QString("--log and --screenshot name the same file: here/new"));
    options.screenshot = "other";
    QCOMPARE(fault(options), QString());
    options = {};
    options.import_database = "VKDM47_03.mdb";
    QCOMPARE(fault(options), QString("--import-database names the database: VKDM47_03.mdb"));
    options = {};
    options.export_plan = {"A", here.filePath("link.png")};
    QCOMPARE(fault(options), QString("--export-plan names the database: link.png"));
    options = {};
    options.import_plan = {"A", here.filePath("twin")};
    QCOMPARE(fault(options), QString("--import-plan names the database: twin"));
}

void OptionsTest::wrong_options_keep_nothing() {
    const Options options = parse_options(measuring({"--create-database", "--count", "0"}));
    QCOMPARE(options.action, Action::wrong);
    QVERIFY(!options.create_database);
    QVERIFY(!options.measure);
}

void OptionsTest::help_names_every_option() {
    const QString help = help_text();
    for (const char* name :
         {"--help",      "--version",    "--directory",   "--port",        "--create-database",
          "--on-port",   "--open",       "--measure",     "--analog",      "--digital",
          "--freq",      "--bandwidth",  "--symbol-rate", "--alarm",       "--count",
          "--log",       "--screenshot", "--plan",        "--passes",      "--every",
          "--full-tune", "--reconnect",  "--user-data",   "--oscillator",  "--lnb",
          "--tone",      "--diseqc",     "--format",      "--export-plan", "--import-plan",
          "--overwrite"})
        QVERIFY2(help.contains(QLatin1String(name)), name);
}

}  // namespace m47::shell

QTEST_GUILESS_MAIN(m47::shell::OptionsTest)
#include "options_test.moc"
