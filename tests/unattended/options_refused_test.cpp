// SPDX-License-Identifier: GPL-3.0-or-later
// What the command line refuses, and in which words.
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "file_options.h"
#include "options_test.h"

namespace m47::unattended {

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
    const Options options = parse(arguments);
    QCOMPARE(options.action, good ? Action::run : Action::wrong);
    QCOMPARE(options.error.isEmpty(), good);
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
    row("empty site", measuring({"--site", " "}), "--site takes a name");
    row("long site", measuring({"--site", QString(10'001, u'x')}),
        "--site takes a name of at most 10000 characters");
    row("site without a measurement", {"--site", "A"}, "--site goes with --measure only");
    row("site of a sweep", {"--on-port", "1", "--sweep", "920:2150", "--site", "A"},
        "--site does not go with --sweep");
    row("site of a peak",
        {"--on-port", "1", "--freq", "1000", "--move-the-dish", "--peak", "5", "--site", "A"},
        "--site does not go with --peak");
    row("site of an identification", {"--on-port", "1", "--identify", "--site", "A"},
        "--site does not go with --identify");
    row("resumed without a site", measuring({"--resume-visit"}), "--resume-visit needs --site");
    row("compared without a site", measuring({"--compare-with", "last"}),
        "--compare-with needs --site");
    row("worse than nothing", measuring({"--site", "A", "--worse-than", "2"}),
        "--worse-than needs --compare-with");
    for (const char* which : {"", "yesterday", "2026-13-01", "22/11/26", "LAST"})
        row(qPrintable(QStringLiteral("compared with '%1'").arg(QLatin1String(which))),
            measuring({"--site", "A", "--compare-with", which}), "--compare-with takes");
    for (const char* decibels : {"", "-1", "101", "two", "nan", "inf"})
        row(qPrintable(QStringLiteral("worse than '%1'").arg(QLatin1String(decibels))),
            measuring({"--site", "A", "--compare-with", "last", "--worse-than", decibels}),
            "--worse-than takes");
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
    for (const char* span : {"", "0", "0.9", "20.1", "21", "-5", "5°", "1e1", "five", "100"})
        row(span, {"--on-port", "1", "--freq", "1000", "--move-the-dish", "--peak", span},
            "--peak takes a SPAN from 1 to 20 degrees");
    row("peak without port", {"--freq", "1000", "--move-the-dish", "--peak", "5"}, "--on-port");
    row("peak without a frequency", {"--on-port", "1", "--move-the-dish", "--peak", "5"},
        "--peak needs --freq");
    row("peak with somebody at the dish", {"--on-port", "1", "--freq", "1000", "--peak", "5"},
        "--move-the-dish says that nobody stands there");
    row("dish of no peak", measuring({"--move-the-dish"}), "--move-the-dish goes with --peak only");
    for (const char* option :
         {"--measure", "--sweep", "--plan", "--diseqc", "--open", "--log", "--bandwidth"}) {
        QStringList all{"--on-port",       "1",      "--freq", "1000",
                        "--move-the-dish", "--peak", "5",      option};
        if (option != QLatin1String("--measure"))
            all += option == QLatin1String("--sweep") ? "920:2150" : "2000";
        row((QByteArray("peak and ") + option).constData(), all, option);
    }
    row("identification without port", {"--identify"}, "--identify needs --on-port");
    for (const char* part : {"", "10E", "10:30", "10E:30E:1E", "10E:190E", "10.25E:20E", "E:W"})
        row(part, {"--on-port", "1", "--identify", "--arc", part}, "--arc takes two places");
    row("empty tables", {"--on-port", "1", "--identify", "--scan-tables", " "},
        "--scan-tables takes a name");
    for (const char* option : {"--scan-tables", "--arc"})
        row(option, {"--on-port", "1", "--identify", "--candidates-from-plans", option, "1E:2E"},
            "does not go with --candidates-from-plans");
    for (const char* option : {"--candidates-from-plans", "--circular"})
        row(option, measuring({option}), "goes with --identify only");
    for (const char* dish : {"", "29", "1001", "80.5", "-80", "80cm", "eighty"})
        row(qPrintable(QStringLiteral("dish of '%1'").arg(QLatin1String(dish))),
            {"--on-port", "1", "--identify", "--dish", dish},
            "--dish takes whole centimetres from 30 to 1000");
    row("dish of nothing", measuring({"--dish", "80"}), "--dish goes with --identify only");
    row("part of nothing", measuring({"--arc", "1E:2E"}), "--arc goes with --identify only");
    row("tables of nothing", {"--scan-tables", "x"}, "--scan-tables goes with --identify only");
    for (const char* option : {"--measure", "--sweep", "--peak", "--lnb", "--freq", "--plan",
                               "--diseqc", "--open", "--log", "--create-database"}) {
        QStringList all{"--on-port", "1", "--identify", option};
        if (option == QLatin1String("--sweep")) all += "920:2150";
        if (option == QLatin1String("--peak")) all += "5";
        if (option == QLatin1String("--lnb")) all += "13";
        if (option == QLatin1String("--freq") || option == QLatin1String("--diseqc")) all += "1000";
        if (option == QLatin1String("--plan") || option == QLatin1String("--log")) all += "x";
        if (option == QLatin1String("--open")) all += "realtime";
        row((QByteArray("identification and ") + option).constData(), all, option);
    }
    row("supply of nothing", {"--lnb", "13"}, "--lnb goes with --measure, --sweep or --peak");
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
    const Options options = parse(arguments);
    QCOMPARE(options.action, Action::wrong);
    QVERIFY2(options.error.contains(named), qPrintable(options.error));
    QVERIFY2(!options.error.contains(u'\n'), "one line only");
}

void OptionsTest::a_value_out_of_range_is_told_its_range() {
    const auto told = [](const char* option, const char* value) {
        return parse(measuring({QLatin1String(option), QLatin1String(value)})).error;
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
    QCOMPARE(parse({"--on-port", "11"}).error,
             QString("--on-port takes a whole number from 1 to 10, not \"11\""));
    QCOMPARE(parse({"--open", ""}).error.section(',', -1), QString(" not \"\""));
    QCOMPARE(parse({"--open", "level"}).error.section(',', -1), QString(" not \"level\""));
    const auto of_plan = [](const QStringList& options) {
        return parse(measuring(QStringList{"--plan", "A"} + options)).error;
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
        return parse(measuring({option, one, option, other})).error;
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

void OptionsTest::wrong_antenna_options() {
    const auto told = [](const QStringList& options) { return parse(measuring(options)).error; };
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
        QCOMPARE(parse({option, value}).error.section(' ', 0, 0), QString(option));
    }
    QCOMPARE(told({"--plan", "A", "--lnb", "13"}), QString("--lnb does not go with --plan"));
    QCOMPARE(told({"--plan", "A", "--tone", "on"}), QString("--tone does not go with --plan"));
    QCOMPARE(told({"--plan", "A", "--diseqc", "1"}), QString("--diseqc does not go with --plan"));
    QCOMPARE(parse({"--lnb", "13"}).error,
             QString("--lnb goes with --measure, --sweep or --peak only"));
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
    for (const char* name : {"sites.sqlite", "here/sites.sqlite-journal"}) {
        options.screenshot = QLatin1String(name);
        QCOMPARE(fault(options), "--screenshot names the file of sites: " + options.screenshot);
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
    options.screenshot.clear();
    options.configuration = here.filePath("new");
    QCOMPARE(fault(options), QString("--config and --log name the same file: new"));
    options.configuration.clear();
    options.trace = "new.outbox";
    QCOMPARE(fault(options), QString());
    options.publish.address = QUrl("http://127.0.0.1/write");
    for (const char* name : {"new.outbox", "here/new.outbox-wal"}) {
        options.trace = QLatin1String(name);
        QCOMPARE(fault(options), "--trace names the outbox: " + options.trace);
    }
    options.log.clear();
    options.publish.meter = "tower 3";
    options.trace = "m47-tower_3.outbox";
    QCOMPARE(fault(options), QString("--trace names the outbox: m47-tower_3.outbox"));
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
    const Options options = parse(measuring({"--create-database", "--count", "0"}));
    QCOMPARE(options.action, Action::wrong);
    QVERIFY(!options.create_database);
    QVERIFY(!options.measure);
}

void OptionsTest::publishing_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("error");
    const QStringList address{"--publish", "http://h:8428"};
    QTest::newRow("all") << address + QStringList{"--publish-site",       " a  b ",
                                                  "--publish-meter",      "m",
                                                  "--publish-token-file", "t",
                                                  "--outbox-limit",       "2M"}
                         << "";
    QTest::newRow("no address") << QStringList{"--publish", "h:1"}
                                << "--publish takes an address such as http://host:8428/write or "
                                   "https://host/path";
    QTest::newRow("empty") << QStringList{"--publish", ""}
                           << "--publish takes a name, not an empty one";
    QTest::newRow("two") << address + QStringList{"--publish", "http://other"}
                         << "--publish takes one address";
    QTest::newRow("a limit") << address + QStringList{"--outbox-limit", "1k"}
                             << "--outbox-limit takes a size from 1M to 1024G, such as 512M, not "
                                "\"1k\"";
    for (const char* name : {"publish-site", "publish-meter", "publish-token-file", "outbox-limit"})
        QTest::newRow(name) << QStringList{QStringLiteral("--") + name, "1M"}
                            << QStringLiteral("--%1 needs --publish").arg(QLatin1String(name));
}

void OptionsTest::publishing() {
    QFETCH(QStringList, options);
    QFETCH(QString, error);
    const Options read = parse(measuring(options));
    QCOMPARE(read.error, error);
    if (!error.isEmpty()) return;
    QCOMPARE(read.publish.address.toString(), "http://h:8428/write");
    QCOMPARE(read.publish.site, "a b");
    QCOMPARE(read.publish.limit, qint64{2} * 1024 * 1024);
    QCOMPARE(parse(measuring({"--publish", "http://h"})).publish.limit, qint64{1024} * 1024 * 1024);
    QCOMPARE(parse({"--publish", "http://h"}).error, "--publish goes with --measure only");
}

void OptionsTest::publishing_keeps_secrets() {
    for (const QStringList& options :
         {QStringList{"--publish", "http://me:secret@h"},
          QStringList{"--publish", "http://me:secret@h", "--publish", "http://h"}}) {
        const Options read = parse(measuring(options));
        QCOMPARE(read.action, Action::wrong);
        QVERIFY2(!read.error.contains("secret"), qPrintable(read.error));
    }
}

}  // namespace m47::unattended
