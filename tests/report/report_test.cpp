// SPDX-License-Identifier: GPL-3.0-or-later
// What the report for the customer says, without a screen or paper.
#include <QTest>

#include "customer_report.h"
#include "panel_limits.h"
#include "plan_pass.h"
#include "realtime_fixture.h"
#include "report_summary.h"
#include "trend_data.h"

namespace m47::report {

class ReportTest : public QObject {
    Q_OBJECT

  private:
    static void add(measurement::PageStore& page, const char* line) {
        QVERIFY(page.append_line(line));
    }
    static measurement::PageStore three_rows() {
        measurement::PageStore page;
        add(page, "21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS");
        add(page, "21/11/26\t10:00:10\t11778.0\t10600\t>61.0\t2.0E-4\t<1.0E-8\t0.1\t14.2\t\tFAIL");
        add(page, "21/11/26\t10:00:20\t950.0\t10600\t59.1\t\t\t\t\t\t");
        return page;
    }
    static ReportContext context() {
        return {.entry = {"Via Roma 1", "A. Rossi", "Second dish", kDbuv},
                .meter = "PLUS V3.0.5",
                .made = QDateTime({2026, 11, 21}, {16, 30}),
                .plan = "ASTRA",
                .limits = {{"7", "950", "45 … 80", "", "", ""}}};
    }
    static Texts texts(int language) {
        Texts made;
        made.language = language;
        return made;
    }
    static QString fact(const CustomerReport& report, const QString& caption) {
        for (const auto& [name, value] : report.facts)
            if (name == caption) return value;
        return QStringLiteral("no ") + caption;
    }

  private Q_SLOTS:
    void the_facts_stand_in_the_order_they_are_read() {
        const CustomerReport report = compose_report(three_rows(), context(), texts(kEnglish));
        QStringList captions, values;
        for (const auto& [caption, value] : report.facts) {
            captions += caption;
            values += value;
        }
        QCOMPARE(captions, QStringList({"Site", "Technician", "Meter", "Date", "Plan", "Level unit",
                                        "Result"}));
        QCOMPARE(values,
                 QStringList({"Via Roma 1", "A. Rossi", "PLUS V3.0.5", "21/11/2026 16:30", "ASTRA",
                              "dBuV",
                              "FAIL — Measurements: 3, of them 1 PASS, 1 FAIL, 1 without limits"}));
        QCOMPARE(report.notes, QStringLiteral("Second dish"));
    }

    void the_plans_are_those_of_the_rows_each_once() {
        measurement::PageStore page;
        for (const char* plan : {"ROOF", "ATTIC", "ROOF", ""}) {
            measurement::Measurement measured;
            measured.program = {QString::fromLatin1(plan), QStringLiteral("001")};
            measured.frequency = 1000.0F;
            page.append({"21/11/26", "10:00:00", "1000.0"}, measured);
        }
        const CustomerReport report = compose_report(page, context(), texts(kEnglish));
        QCOMPARE(fact(report, "Plan"), QStringLiteral("ROOF, ATTIC"));
    }

    void it_speaks_the_language_in_use() {
        const CustomerReport report = compose_report(three_rows(), context(), texts(kItalian));
        QCOMPARE(report.title, QStringLiteral("Rapporto di misura"));
        QCOMPARE(fact(report, "Tecnico"), QStringLiteral("A. Rossi"));
        QCOMPARE(report.measurements.remark, QStringLiteral("Tutte le misure: 3."));
        QCOMPARE(report.limits.header[0], QStringLiteral("Programma"));
        const CustomerReport english = compose_report(three_rows(), context(), texts(kEnglish));
        QVERIFY(report.limits.remark != english.limits.remark);
        QVERIFY(report.trend_caption != english.trend_caption);
        QVERIFY(report.no_trend != english.no_trend);
        QVERIFY(report.page_number != english.page_number);
    }

    void the_table_is_the_page() {
        const ReportTable table =
            compose_report(three_rows(), context(), texts(kEnglish)).measurements;
        QCOMPARE(table.header.join(u' '), QStringLiteral("DATE TIME FR OSC LEV BER PVBER CFO MER "
                                                         "RU STATUS UNIT"));
        QCOMPARE(table.rows.size(), 3);
        QCOMPARE(table.rows[1],
                 QStringList({"21/11/26", "10:00:10", "11778.0", "10600", ">61.0", "2.0E-4",
                              "<1.0E-8", "0.1", "14.2", "", "FAIL", "dBuV"}));
        QCOMPARE(table.remark, QStringLiteral("All measurements: 3."));
    }

    void the_summary_counts_every_program_with_its_extremes() {
        const ReportTable table = compose_report(three_rows(), context(), texts(kEnglish)).summary;
        QCOMPARE(table.rows.size(), 2);
        QCOMPARE(table.rows[0], QStringList({"—", "950.0", "10600", "2", "1", "0", "58.3 … 59.1",
                                             "dBuV", "—", "—"}));
        QCOMPARE(table.rows[1],
                 QStringList({"—", "11778.0", "10600", "1", "0", "1", ">61.0 … >61.0", "dBuV",
                              "2.0E-4 … 2.0E-4", "14.2 … 14.2"}));
        QCOMPARE(table.remark, QStringLiteral("Over all measurements: 3."));
        for (const QStringList& row : table.rows) QCOMPARE(row.size(), table.header.size());
    }

    void an_empty_page_and_an_unknown_meter_are_said() {
        ReportContext unknown;
        const CustomerReport report =
            compose_report(measurement::PageStore(), unknown, texts(kEnglish));
        QCOMPARE(fact(report, "Meter"), QStringLiteral("not connected"));
        QCOMPARE(fact(report, "Plan"), QStringLiteral("none (single elements)"));
        QCOMPARE(fact(report, "Site"), QStringLiteral("—"));
        QCOMPARE(fact(report, "Result"), QStringLiteral("No measurement"));
        QVERIFY(report.measurements.rows.isEmpty());
        QVERIFY(report.summary.rows.isEmpty());
    }

    void rows_of_a_log_have_no_unit_unless_one_is_given() {
        ReportContext unknown = context();
        unknown.entry.unit.reset();
        const CustomerReport report = compose_report(three_rows(), unknown, texts(kEnglish));
        QCOMPARE(fact(report, "Level unit"), QStringLiteral("not known"));
        QVERIFY(report.measurements.rows[0].last().isEmpty());
        QCOMPARE(report.summary.rows[0][7], QStringLiteral("—"));
        unknown.entry.unit = kDbmv;
        QCOMPARE(fact(compose_report(three_rows(), unknown, texts(kEnglish)), "Level unit"),
                 QStringLiteral("dBmV"));
    }

    void a_result_without_any_alarm_is_no_pass() {
        measurement::PageStore page;
        add(page, "21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\t");
        QCOMPARE(fact(compose_report(page, context(), texts(kEnglish)), "Result"),
                 QStringLiteral("Measurements: 1, of them 0 PASS, 0 FAIL, 1 without limits"));
        add(page, "21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS");
        QVERIFY(fact(compose_report(page, context(), texts(kEnglish)), "Result")
                    .startsWith(QStringLiteral("PASS — ")));
    }

    void a_page_of_many_rows_prints_the_newest_and_says_so() {
        measurement::PageStore page;
        for (int row = 0; row < kReportRows; ++row)
            add(page, "21/11/26\t10:00:00\t950.0\t10600\t1.0\t\t\t\t\t\tPASS");
        QCOMPARE(compose_report(page, context(), texts(kEnglish)).measurements.remark,
                 QStringLiteral("All measurements: 1000."));
        add(page, "21/11/26\t10:00:00\t950.0\t10600\t2.0\t\t\t\t\t\tFAIL");
        const CustomerReport report = compose_report(page, context(), texts(kEnglish));
        QCOMPARE(report.measurements.rows.size(), kReportRows);
        QCOMPARE(report.measurements.rows.last()[4], QStringLiteral("2.0"));
        QCOMPARE(report.measurements.remark,
                 QStringLiteral("The newest 1000 of 1001 measurements. Before them and not printed "
                                "here, but counted in the summary: 1."));
        QCOMPARE(report.summary.rows[0][3], QStringLiteral("1001"));
        QCOMPARE(report.summary.rows[0][4], QStringLiteral("1000"));
    }

    void many_programs_are_cut_off_in_words() {
        measurement::PageStore page;
        for (int k = 0; k < kReportPrograms + 5; ++k)
            QVERIFY(page.append_line(
                QStringLiteral("21/11/26\t10:00:00\t%1\t10600\t1.0").arg(1000 + k).toStdString()));
        const CustomerReport report = compose_report(page, context(), texts(kEnglish));
        QCOMPARE(report.summary.rows.size(), kReportPrograms);
        QCOMPARE(report.summary.remark, QStringLiteral("Over all measurements: 205. Listed are "
                                                       "the first 200 of 205 programs."));
    }

    void programs_of_one_frequency_are_told_apart_by_their_number() {
        realtime::RealtimeFixture fixture;
        fixture.values["LEVANL?"] = "L 58.3";
        db::Recordset programs = fixture.database().of_plan("programmi", "PLAN 1");
        fixture.change_row(programs, {{"pg_num", "001"},
                                      {"frequenza", "1200"},
                                      {"loc_osc", true},
                                      {"lnb_volt", 1},
                                      {"monitor_state", 1}});
        fixture.add_row(programs, {{"nome", "PLAN 1"},
                                   {"pg_num", "002"},
                                   {"frequenza", "1200"},
                                   {"loc_osc", true},
                                   {"lnb_volt", 2},
                                   {"monitor_state", 1}});
        fixture.panel().meas_statea[realtime::kLevel] = true;
        realtime::RealtimeRules& rules = fixture.rules;
        QVERIFY(rules.plans.choose_plan("PLAN 1"));
        acquisition::PlanPass pass(rules, {});
        for (int number = 0; number < 3; ++number)
            for (pass.begin(); pass.running();) pass.step();
        QCOMPARE(rules.page.measurements(), 6);
        trend::TrendData trend;
        trend.update(rules.page.store());
        QCOMPARE(trend.series().size(), std::size_t(2));
        for (const auto& series : trend.series()) {
            QCOMPARE(series->points().size(), std::size_t(3));
            for (const trend::TrendPoint& point : series->points()) QVERIFY(!point.apart);
        }
        QVERIFY(trend.series()[0]->name() != trend.series()[1]->name());
        const ReportTable summary =
            compose_report(rules.page.store(), context(), texts(kEnglish)).summary;
        QCOMPARE(summary.rows.size(), 2);
        QVERIFY(summary.rows[0].join(u'|').contains("PLAN 1 001"));
        QVERIFY(summary.rows[1].join(u'|').contains("PLAN 1 002"));
    }

    void levels_of_two_units_are_kept_apart() {
        realtime::RealtimeFixture fixture;
        fixture.values["LEVANL?"] = "L 58.3";
        fixture.panel().meas_statea[realtime::kLevel] = true;
        realtime::RealtimeRules& rules = fixture.rules;
        const auto measure = [&fixture](int unit) {
            fixture.rules.modes.cmdlev_Click(unit);
            fixture.rules.measure_once();
        };
        measure(kDbuv);
        fixture.values["LEVANL?"] = "L -50.7";
        measure(kDbm);
        const CustomerReport report =
            compose_report(rules.page.store(), context(), texts(kEnglish));
        QCOMPARE(report.summary.rows.size(), 2);
        QVERIFY(report.summary.rows[0].contains("58.3 … 58.3"));
        QVERIFY(report.summary.rows[0].contains("dBuV"));
        QVERIFY(report.summary.rows[1].contains("-50.7 … -50.7"));
        QVERIFY(report.summary.rows[1].contains("dBm"));
        QCOMPARE(report.measurements.rows[0].last(), QStringLiteral("dBuV"));
        QCOMPARE(report.measurements.rows[1].last(), QStringLiteral("dBm"));
        QCOMPARE(fact(report, "Level unit"),
                 QStringLiteral("dBuV, dBm: each row in its own, none is converted"));
        trend::TrendData trend;
        trend.update(rules.page.store());
        QCOMPARE(trend.series().size(), std::size_t(2));
    }

    void limits_are_those_of_the_ticked_alarms() {
        realtime::RealtimePanel panel;
        realtime::RealtimeState state;
        panel.lev_mina = QStringLiteral("40");
        panel.lev_maxa = QStringLiteral("80");
        panel.lev_mind = QStringLiteral("45");
        panel.lev_maxd = QStringLiteral("75");
        for (const measurement::Quantity quantity : measurement::kQuantities)
            QVERIFY(!realtime::trend_limits(quantity, panel, state));
        panel.alarm_statea[0] = panel.alarm_stated[0] = panel.alarm_stated[2] = true;
        QCOMPARE(realtime::trend_limits(measurement::Quantity::level, panel, state)->lower, 40.0);
        state.meas_mode = realtime::kDigitalMode;
        QCOMPARE(realtime::trend_limits(measurement::Quantity::level, panel, state)->lower, 45.0);
        QCOMPARE(realtime::trend_limits(measurement::Quantity::level, panel, state)->upper, 75.0);
        QCOMPARE(realtime::trend_limits(measurement::Quantity::ber, panel, state)->lower, 1e-8);
        QCOMPARE(realtime::trend_limits(measurement::Quantity::ber, panel, state)->upper, 3e-2);
        QVERIFY(!realtime::trend_limits(measurement::Quantity::mer, panel, state));
    }

    void an_empty_limit_is_no_band_where_it_checks_nothing() {
        realtime::RealtimePanel panel;
        const realtime::RealtimeState state;
        panel.alarm_statea[0] = true;
        for (const char* minimum : {"", "40"}) {
            panel.lev_mina = QString::fromLatin1(minimum);
            QVERIFY(realtime::trend_limits(measurement::Quantity::level, panel, state));
            QVERIFY(!realtime::trend_limits(measurement::Quantity::level, panel, state,
                                            realtime::EmptyLimits::none));
        }
        panel.lev_maxa = QStringLiteral("80");
        QCOMPARE(realtime::trend_limits(measurement::Quantity::level, panel, state,
                                        realtime::EmptyLimits::none)
                     ->upper,
                 80.0);
    }

    void the_limits_of_the_screen_are_those_of_the_presentation() {
        realtime::RealtimePanel panel;
        realtime::RealtimeState state;
        panel.fsat = "1200.0";
        panel.alarm_statea = {true, false};
        panel.lev_mina = "45";
        panel.lev_maxa = "";
        panel.alarm_stated = {false, false, true, true};
        panel.mer_mind = "12";
        panel.mer_maxd = "30";
        ReportLimits limits = realtime::limits_of_panel(panel, state);
        QCOMPARE(limits.frequency, QStringLiteral("1200.0"));
        QCOMPARE(limits.level, QStringLiteral("45 … 0"));
        QVERIFY(limits.cn.isEmpty() && limits.ber.isEmpty() && limits.mer.isEmpty());
        state.meas_mode = realtime::kDigitalMode;
        limits = realtime::limits_of_panel(panel, state);
        QVERIFY(limits.level.isEmpty());
        QCOMPARE(limits.ber, QStringLiteral("1E-8 … 3E-2"));
        QCOMPARE(limits.mer, QStringLiteral("12 … 30"));
    }

    void an_empty_limit_is_none_where_it_checks_nothing() {
        realtime::RealtimePanel panel;
        const realtime::RealtimeState state;
        panel.alarm_statea = {true, true};
        panel.lev_mina = "45";
        QCOMPARE(realtime::limits_of_panel(panel, state).cn, QStringLiteral("0 … 0"));
        const ReportLimits limits =
            realtime::limits_of_panel(panel, state, realtime::EmptyLimits::none);
        QCOMPARE(limits.level, QStringLiteral("45 … –"));
        QVERIFY(limits.cn.isEmpty());
        realtime::RealtimeFixture fixture;
        fixture.panel().alarm_statea = {true, true};
        db::Recordset programs = fixture.database().of_plan("programmi", "PLAN 1");
        fixture.change_row(programs, {{"monitor_state", 1}, {"sat_ad", 0}, {"lev_max", "80"}});
        const ReportLimits of_plan =
            realtime::limits_of_plan(programs, fixture.panel(), realtime::EmptyLimits::none)
                .value(0);
        QCOMPARE(of_plan.level, QStringLiteral("– … 80"));
        QVERIFY(of_plan.cn.isEmpty());
    }

    void the_limits_of_a_plan_are_those_of_its_monitored_programs() {
        realtime::RealtimeFixture fixture;
        fixture.panel().alarm_stated = {true, false, false, true};
        db::Recordset programs = fixture.database().of_plan("programmi", "PLAN 1");
        fixture.change_row(programs, {{"pg_num", "1"}, {"monitor_state", 0}});
        fixture.add_row(programs, {{"nome", "PLAN 1"},
                                   {"pg_num", "2"},
                                   {"frequenza", "11778"},
                                   {"monitor_state", 1},
                                   {"sat_ad", 1},
                                   {"lev_min", "45"},
                                   {"lev_max", "80"},
                                   {"mer_min", "10"},
                                   {"mer_max", "20"}});
        fixture.add_row(programs, {{"nome", "PLAN 1"},
                                   {"pg_num", "3"},
                                   {"frequenza", "950"},
                                   {"monitor_state", 1},
                                   {"sat_ad", 0},
                                   {"lev_min", "50"}});
        const QList<ReportLimits> limits = realtime::limits_of_plan(programs, fixture.panel());
        QCOMPARE(limits.size(), 2);
        QCOMPARE(limits[0].program, QStringLiteral("2"));
        QCOMPARE(limits[0].frequency, QStringLiteral("11778"));
        QCOMPARE(limits[0].level, QStringLiteral("45 … 80"));
        QCOMPARE(limits[0].mer, QStringLiteral("10 … 20"));
        QVERIFY(limits[0].ber.isEmpty());
        QCOMPARE(limits[1].program, QStringLiteral("3"));
        QVERIFY(limits[1].level.isEmpty());  // no analog alarm is on
    }
};

}  // namespace m47::report

QTEST_MAIN(m47::report::ReportTest)
#include "report_test.moc"
