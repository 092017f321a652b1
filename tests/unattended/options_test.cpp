// SPDX-License-Identifier: GPL-3.0-or-later
// What the command line takes.
#include "options_test.h"

#include <QTest>
#include <optional>

#include "screen_table.h"

namespace m47::unattended {

Offer OptionsTest::remote() {
    return {QStringLiteral("m47-remote"), shell::screen_keys()};
}

QStringList OptionsTest::measuring(const QStringList& options) {
    return QStringList{"--measure", "--on-port", "1"} + options;
}

void OptionsTest::nothing() {
    const Options options = parse({});
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
    const Options whole = parse({"--on-port", "1", "--sweep", "920:2150"});
    QCOMPARE(whole.error, QString());
    QVERIFY(whole.unattended() && !whole.carriers);
    QCOMPARE(whole.sweep->from, 920.0);
    QCOMPARE(whole.sweep->to, 2150.0);
    QVERIFY(!whole.sweep->step);
    const Options stepped = parse({"--on-port", "1", "--sweep", "950.5:1000:0.5", "--lnb", "18",
                                   "--tone", "on", "--carriers"});
    QCOMPARE(stepped.error, QString());
    QCOMPARE(stepped.sweep->from, 950.5);
    QCOMPARE(stepped.sweep->step.value(), 0.5);
    QVERIFY(stepped.carriers);
    // The sky runs the other way below an oscillator above it.
    const Options c_band = parse({"--on-port", "1", "--sweep", "3400:4200", "--oscillator", "5150",
                                  "--carriers", "--scan-table", "table"});
    QCOMPARE(c_band.error, QString());
    QCOMPARE(c_band.sweep->from, 950.0);
    QCOMPARE(c_band.sweep->to, 1750.0);
    QCOMPARE(c_band.scan_table, QString("table"));
}

void OptionsTest::visits() {
    using Compared = VisitOptions::Compared;
    const Options none = parse(measuring({}));
    QVERIFY(none.visit.site.isEmpty() && none.visit.compared == Compared::none);
    const Options kept = parse(measuring({"--site", "  Condominio   Sole ", "--resume-visit"}));
    QCOMPARE(kept.error, QString());
    QCOMPARE(kept.visit.site, QString("Condominio Sole"));
    QVERIFY(kept.visit.resumed);
    QCOMPARE(kept.visit.worse_than, 2.0);
    const Options to_last =
        parse(measuring({"--site", "A", "--compare-with", "last", "--worse-than", "0.5"}));
    QCOMPARE(to_last.error, QString());
    QVERIFY(to_last.visit.compared == Compared::last && !to_last.visit.resumed);
    QCOMPARE(to_last.visit.worse_than, 0.5);
    const Options to_date = parse(measuring({"--site", "A", "--compare-with", "2026-11-22"}));
    QVERIFY(to_date.visit.compared == Compared::of_date);
    QCOMPARE(to_date.visit.date, QDate(2026, 11, 22));
    QVERIFY(parse(measuring({"--site", "A", "--compare-with", "first"})).visit.compared ==
            Compared::first);
}

void OptionsTest::peaks() {
    const Options peak = parse({"--on-port", "1", "--freq", "11590", "--oscillator", "10600",
                                "--lnb", "18", "--tone", "on", "--peak", "2.5", "--move-the-dish",
                                "--trace", "t", "--symbol-rate", "22000"});
    QCOMPARE(peak.error, QString());
    QCOMPARE(peak.symbol_rate, QString("22000"));
    QVERIFY(peak.unattended() && peak.move_the_dish && !peak.sweep);
    QCOMPARE(peak.peak_span.value(), 25);
    QCOMPARE(peak.frequency, QString("11590"));
    QVERIFY(!parse({"--on-port", "1"}).peak_span);
}

void OptionsTest::identifications() {
    const Options usual = parse({"--on-port", "1", "--identify", "--trace", "t"});
    QCOMPARE(usual.error, QString());
    QVERIFY(usual.unattended() && usual.identify && !usual.identify->plans);
    QVERIFY(!usual.identify->part && usual.identify->lnb.states() == 4);
    QCOMPARE(usual.identify->folder, QString("/usr/share/dvb/dvb-s"));
    const Options other =
        parse({"--on-port", "1", "--identify", "--scan-tables", "here", "--arc", "5.5w:20E",
               "--oscillator", "5150", "--circular", "--dish", "180"});
    QCOMPARE(other.error, QString());
    QCOMPARE(other.identify->folder, QString("here"));
    QCOMPARE(other.identify->part->one, -5.5);
    QCOMPARE(other.identify->part->other, 20.0);
    QCOMPARE(other.identify->lnb.states(), 2);
    QCOMPARE(other.identify->lnb.oscillator, 5150.0);
    QVERIFY(other.identify->lnb.circular);
    QCOMPARE(other.identify->dish_cm(), 180);
    QCOMPARE(usual.identify->dish_cm(), 80);
    QCOMPARE(parse({"--on-port", "1", "--identify", "--oscillator", "5150"}).identify->dish_cm(),
             240);
    QVERIFY(parse({"--on-port", "1", "--identify", "--candidates-from-plans"}).identify->plans);
    QVERIFY(!parse({"--on-port", "1"}).identify);
}

void OptionsTest::window_options() {
    const Options options =
        parse({"--directory", "some where", "--create-database", "--on-port", "10", "--port",
               "10=/dev/ttyUSB0", "--open", "setport", "--trace", "a.trace"});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.directory, QString("some where"));
    QVERIFY(options.create_database);
    QCOMPARE(options.on_port, 10);
    QCOMPARE(options.ports, QStringList("10=/dev/ttyUSB0"));
    QCOMPARE(options.open, QString("setport"));
    QCOMPARE(options.trace, QString("a.trace"));
    QCOMPARE(parse({"--open", "realtime", "--replay", "b.trace"}).replay, QString("b.trace"));
    QVERIFY(!options.measure);
    QVERIFY(!options.corrected);
    QVERIFY(!options.unattended());
    const Options report = parse({"--problem-report", "a.tar.gz", "--on-port", "1"});
    QCOMPARE(report.action, Action::run);
    QCOMPARE(report.problem_report, QString("a.tar.gz"));
    QVERIFY(report.unattended());
}

void OptionsTest::user_data() {
    const Options options = parse({"--user-data", "--create-database"});
    QCOMPARE(options.action, Action::run);
    QVERIFY(options.user_data);
    QVERIFY(options.create_database);
    QCOMPARE(options.directory, QString());
}

void OptionsTest::measurement_options() {
    const Options options = parse(measuring(
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

    const Options plain = parse(measuring({"--analog"}));
    QCOMPARE(plain.action, Action::run);
    QVERIFY(!plain.digital);
    QCOMPARE(plain.frequency, QString());
    QVERIFY(plain.alarms.isEmpty());
}

void OptionsTest::plan_options() {
    const Options options = parse(
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

    QVERIFY(parse({"--corrected"}).corrected);
    QVERIFY(parse(measuring({"--corrected"})).corrected);

    const Options plain = parse(measuring({"--plan", "A"}));
    QCOMPARE(plain.action, Action::run);
    QCOMPARE(plain.passes, 1);
    QCOMPARE(plain.every, 0);
    QVERIFY(!plain.full_tune);
    QVERIFY(!plain.reconnect);
}

void OptionsTest::value_behind_an_equals_sign() {
    const Options options = parse({"--measure", "--on-port=3", "--port=3=/dev/a=b", "--freq=1000"});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.on_port, 3);
    QCOMPARE(options.ports, QStringList("3=/dev/a=b"));
    QCOMPARE(options.frequency, QString("1000"));
}

void OptionsTest::several_ports_and_alarms() {
    const Options options =
        parse(measuring({"--digital", "--port", "1=/dev/a", "--port", "2=/dev/b", "--alarm",
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
        const Options options =
            parse(measuring({"--digital", "--alarm", QString::fromLatin1(name) + "=-10.5:40"}));
        QCOMPARE(options.action, Action::run);
        QCOMPARE(options.alarms.value(0).name, QString::fromLatin1(name));
        QCOMPARE(options.alarms.value(0).minimum, QString("-10.5"));
        QCOMPARE(options.alarms.value(0).maximum, QString("40"));
    }
}

void OptionsTest::screens_data() {
    QTest::addColumn<QString>("key");
    for (const QString& key : shell::screen_keys()) QTest::newRow(qPrintable(key)) << key;
}

void OptionsTest::screens() {
    QFETCH(QString, key);
    const Options options = parse({"--open", key});
    QCOMPARE(options.action, Action::run);
    QCOMPARE(options.open, key);
}

void OptionsTest::help_and_version_come_first() {
    QCOMPARE(parse({"--help"}).action, Action::help);
    QCOMPARE(parse({"-h"}).action, Action::help);
    QCOMPARE(parse({"--version"}).action, Action::version);
    QCOMPARE(parse({"-v"}).action, Action::version);
    // What else stands there need not make sense then.
    QCOMPARE(parse({"--measure", "--help"}).action, Action::help);
    QCOMPARE(parse({"--freq", "x", "--version", "y"}).action, Action::version);
}

void OptionsTest::antenna_options() {
    const Options options = parse(measuring({"--oscillator", "10600", "--freq", "11778", "--lnb",
                                             "18", "--tone", "on", "--diseqc", "37"}));
    QCOMPARE(options.error, QString());
    QCOMPARE(options.antenna.oscillator, std::optional(10600));
    QCOMPARE(options.antenna.supply, std::optional(3));
    QCOMPARE(options.antenna.tone, std::optional(0));
    QCOMPARE(options.antenna.diseqc, std::optional(37));

    const Options plain = parse(measuring({}));
    QCOMPARE(plain.antenna.oscillator, std::nullopt);
    QCOMPARE(plain.antenna.supply, std::nullopt);
    QCOMPARE(plain.antenna.tone, std::nullopt);
    QCOMPARE(plain.antenna.diseqc, std::nullopt);

    const Options off = parse(measuring({"--lnb", "off", "--tone", "off", "--diseqc", "reset"}));
    QCOMPARE(off.antenna.supply, std::optional(0));
    QCOMPARE(off.antenna.tone, std::optional(1));
    QCOMPARE(off.antenna.diseqc, std::optional(3));
    // The texts have double blanks, which nobody types.
    QCOMPARE(parse(measuring({"--diseqc", "SW2 ON V"})).antenna.diseqc, std::optional(8));
    QCOMPARE(parse(measuring({"--diseqc", "0"})).antenna.diseqc, std::optional(0));
}

void OptionsTest::formats() {
    using measurement::OutputFormat;
    const auto read = [](const char* name) {
        return parse(measuring({"--format", QLatin1String(name)}));
    };
    QCOMPARE(parse(measuring({})).format, std::nullopt);
    QCOMPARE(read("tsv").format, std::optional(OutputFormat::tsv));
    QCOMPARE(read("csv").format, std::optional(OutputFormat::csv));
    QCOMPARE(read("json").format, std::optional(OutputFormat::json));
    for (const char* wrong : {"", "JSON", "xml", "1"})
        QCOMPARE(read(wrong).error,
                 QStringLiteral("--format takes one of tsv, csv, json, not \"%1\"").arg(wrong));
    QCOMPARE(parse({"--format", "csv"}).error, QString("--format goes with --measure only"));
}

void OptionsTest::plan_files() {
    const Options out = parse({"--export-plan", "Roof=my=plan.tsv", "--overwrite"});
    QCOMPARE(out.error, QString());
    QCOMPARE(out.export_plan.plan, QString("Roof"));
    QCOMPARE(out.export_plan.file, QString("my=plan.tsv"));
    QVERIFY(out.overwrite);
    QVERIFY(out.unattended());
    const Options in = parse({"--import-plan", "Roof=a.csv", "--create-database"});
    QCOMPARE(in.error, QString());
    QCOMPARE(in.import_plan.plan, QString("Roof"));
    QCOMPARE(in.import_plan.file, QString("a.csv"));
    QVERIFY(in.unattended());
    for (const char* option : {"--export-plan", "--import-plan"}) {
        const auto told = [option](const char* value) {
            return parse({QLatin1String(option), QLatin1String(value)}).error;
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
            QCOMPARE(parse(QStringList{option, "A=b"} + other).error,
                     QStringLiteral("%1 does not go with %2").arg(option, other.constFirst()));
        QCOMPARE(parse(measuring({option, "A=b"})).error,
                 QStringLiteral("%1 does not go with --measure").arg(option));
        QCOMPARE(parse({"--import-database", "x", option, "A=b"}).error,
                 QStringLiteral("--import-database does not go with %1").arg(option));
    }
    QCOMPARE(parse({"--import-plan", "A=b", "--export-plan", "A=b"}).error,
             QString("--export-plan does not go with --import-plan"));
    for (const QStringList& without : {QStringList(), QStringList{"--import-plan", "A=b"}})
        QCOMPARE(parse(QStringList("--overwrite") + without).error,
                 QString("--overwrite goes with --export-plan only"));
}

void OptionsTest::help_names_every_option() {
    const QString help = help_text(remote());
    for (const char* name :
         {"--help",      "--version",    "--directory",    "--port",         "--create-database",
          "--on-port",   "--open",       "--measure",      "--analog",       "--digital",
          "--freq",      "--bandwidth",  "--symbol-rate",  "--alarm",        "--count",
          "--log",       "--screenshot", "--plan",         "--passes",       "--every",
          "--full-tune", "--reconnect",  "--user-data",    "--oscillator",   "--lnb",
          "--tone",      "--diseqc",     "--format",       "--export-plan",  "--import-plan",
          "--overwrite", "--site",       "--resume-visit", "--compare-with", "--worse-than"})
        QVERIFY2(help.contains(QLatin1String(name)), name);
}

void OptionsTest::what_a_probe_takes() {
    const Offer probe{.program = QStringLiteral("m47-probe"), .only_measures = true};
    const Options good = parse_options({"--on-port", "1", "--plan", "ROOF", "--every", "60",
                                        "--reconnect", "--site", "Roof", "--log", "r.log"},
                                       probe);
    QCOMPARE(good.error, QString());
    QVERIFY(good.measure && good.unattended());
    // It goes without saying, and may be said.
    QCOMPARE(parse_options({"--measure", "--on-port", "1"}, probe).error, QString());
    QCOMPARE(parse_options({}, probe).error, QStringLiteral("m47-probe needs --on-port"));
    for (const QStringList& more : {QStringList{"--screenshot", "s.png"},
                                    {"--open", "asl"},
                                    {"--replay", "a.trace"},
                                    {"--sweep", "920:2150"},
                                    {"--peak", "5"},
                                    {"--identify"},
                                    {"--import-database", "a.mdb"},
                                    {"--export-plan", "A=b"},
                                    {"--scan-tables", "d"},
                                    {"--overwrite"}})
        QCOMPARE(parse_options(QStringList{"--on-port", "1"} + more, probe).error,
                 more[0] + " does not go with m47-probe");
    const QString help = help_text(probe);
    for (const char* name : {"--plan", "--every", "--site", "--config", "--check-config", "--log"})
        QVERIFY2(help.contains(QString::fromLatin1(name) + ' '), name);
    for (const char* name : {"--screenshot", "--open", "--sweep", "--identify", "--measure "})
        QVERIFY2(!help.contains("  " + QString::fromLatin1(name)), name);
}

}  // namespace m47::unattended

QTEST_GUILESS_MAIN(m47::unattended::OptionsTest)
