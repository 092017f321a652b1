// SPDX-License-Identifier: GPL-3.0-or-later
// What two visits say of each program, and what became worse since the first one.
#include <QTest>
#include <cmath>

#include "code_rates.h"
#include "db_support.h"
#include "margin.h"
#include "site_samples.h"
#include "site_tables.h"
#include "visit_comparison.h"
#include "what_got_worse.h"

namespace m47::sites {

using measurement::Quantity;

class ComparisonTest : public QObject {
    Q_OBJECT

  private:
    static Texts texts(int language = kEnglish) {
        Texts made;
        made.language = language;
        return made;
    }
    static std::optional<Change> change(Quantity quantity, const char* then, const char* now) {
        return change_between(quantity, measurement::reading_of(quantity, QString(then)),
                              measurement::reading_of(quantity, QString(now)));
    }
    static ProgramComparison only(const VisitMeasurement& then, const VisitMeasurement& now) {
        const auto compared = compare_visits({then}, {now});
        return compared.size() == 1 ? compared.front() : ProgramComparison();
    }
    static QStringList told(const std::vector<ProgramComparison>& compared) {
        QStringList lines;
        for (const ProgramComparison& program : compared)
            lines += program.key.program.number + u' ' + meaning_text(program.meaning, texts());
        return lines;
    }

  private Q_SLOTS:
    void a_change_is_told_as_far_as_it_is_known_data() {
        QTest::addColumn<Quantity>("quantity");
        QTest::addColumn<QString>("then");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("cell");
        QTest::addColumn<QString>("english");
        QTest::addColumn<QString>("italian");
        const auto row = [](const char* name, Quantity quantity, const char* then, const char* now,
                            const char* cell, const char* english, const char* italian) {
            QTest::newRow(name) << quantity << then << now << cell << english << italian;
        };
        row("fallen", Quantity::mer, "12.4", "9.2", "-3.2", "3.2 dB less", "3.2 dB in meno");
        row("risen", Quantity::cn, "9.0", "10.5", "+1.5", "1.5 dB more", "1.5 dB in più");
        row("same", Quantity::level, "58.3", "58.3", "0.0", "unchanged", "invariato");
        row("to the last tenth", Quantity::level, "58.3", "56.3", "-2.0", "2.0 dB less",
            "2.0 dB in meno");
        row("decades", Quantity::ber, "1.0E-6", "1.0E-4", "+2.0", "2.0 decades worse",
            "peggiore di 2.0 decadi");
        row("better", Quantity::pvber, "1.0E-4", "1.0E-6", "-2.0", "2.0 decades better",
            "migliore di 2.0 decadi");
        row("from below the range", Quantity::ber, "<1.0E-8", "1.0E-6", "≥+2.0",
            "at least 2.0 decades worse", "almeno peggiore di 2.0 decadi");
        row("to below the range", Quantity::ber, "1.0E-6", "<1.0E-8", "≤-2.0",
            "at least 2.0 decades better", "almeno migliore di 2.0 decadi");
        row("below, but the number is less", Quantity::ber, "<1.0E-6", "1.0E-8", "≥-2.0",
            "at most 2.0 decades better", "al più migliore di 2.0 decadi");
        row("above the range", Quantity::level, ">120.0", "100.0", "≤-20.0",
            "at least 20.0 dB less", "almeno 20.0 dB in meno");
        row("across the range", Quantity::mer, "<2.0", ">30.0", "≥+28.0", "at least 28.0 dB more",
            "almeno 28.0 dB in più");
        row("from the edge", Quantity::mer, "<2.0", "2.0", "≥0.0", "no less", "non meno");
        row("both below", Quantity::ber, "<1.0E-8", "<1.0E-8", "–", "", "");
        row("both below, differently", Quantity::level, "<20.0", "<25.0", "–", "", "");
        row("no wrong bit", Quantity::ber, "0", "1.0E-6", "≥+2.0", "at least 2.0 decades worse",
            "almeno peggiore di 2.0 decadi");
        row("no wrong bit twice", Quantity::ber, "0", "<1.0E-8", "–", "", "");
        row("not measured then", Quantity::mer, "", "9.0", "–", "", "");
        row("not measured now", Quantity::mer, "9.0", "ERROR", "–", "", "");
    }
    void a_change_is_told_as_far_as_it_is_known() {
        QFETCH(Quantity, quantity);
        QFETCH(QString, then);
        QFETCH(QString, now);
        QFETCH(QString, cell);
        QFETCH(QString, english);
        QFETCH(QString, italian);
        const auto found = change(quantity, qPrintable(then), qPrintable(now));
        QCOMPARE(change_text(found), cell);
        QCOMPARE(change_words(quantity, found, texts()), english);
        QCOMPARE(change_words(quantity, found, texts(kItalian)), italian);
    }

    void levels_of_two_units_are_compared_at_75_ohm() {
        QCOMPARE(in_dbuv(58.3, kDbuv), 58.3);
        QCOMPARE(in_dbuv(-1.7, kDbmv), 58.3);
        // 1 mW at 75 ohm is sqrt(0.075) V.
        QVERIFY(std::fabs(in_dbuv(0, kDbm) - 20 * std::log10(std::sqrt(0.075) * 1e6)) < 1e-9);
        VisitMeasurement now = measured("001", {{Quantity::level, "-50.45"}});
        now.measurement.unit = kDbm;
        const VisitMeasurement then = measured("001", {{Quantity::level, "58.3"}});
        QCOMPARE(change_text(only(then, now).change(Quantity::level)), QStringLiteral("0.0"));
        QVERIFY(only(then, now).meaning == Meaning::same);
        now.measurement.unit.reset();
        QVERIFY(!only(then, now).change(Quantity::level));
        QVERIFY(only(then, now).meaning == Meaning::incomparable);
        VisitMeasurement analog = then;
        analog.measurement.mode = measurement::MeasureMode::analog;
        QVERIFY(!only(then, analog).change(Quantity::level));
        analog.measurement.mode = measurement::MeasureMode::none;
        QVERIFY(only(then, analog).change(Quantity::level));
    }

    void the_last_measurement_of_a_program_counts() {
        const std::vector<VisitMeasurement> visit{
            measured("001", {{Quantity::mer, "6.0"}}), measured("002", {{Quantity::mer, "9.0"}}),
            measured("001", {{Quantity::mer, "12.0"}}), measured("002", {})};
        const auto last = counting(visit);
        QCOMPARE(last.size(), 2U);
        QCOMPARE(last[0].id, visit[2].id);
        QCOMPARE(last[1].id, visit[3].id);
    }

    void what_it_means_by_the_thresholds_the_worst_first() {
        const std::vector<VisitMeasurement> then{
            measured("001", {{Quantity::level, "60"}, {Quantity::mer, "12"}}),
            measured("002", {{Quantity::level, "60"}, {Quantity::mer, "12"}}),
            measured("003", {{Quantity::level, "60"}, {Quantity::mer, "12"}}),
            measured("004", {{Quantity::level, "60"}, {Quantity::mer, "12"}}),
            measured("005", {{Quantity::mer, "12"}}),
            measured("006", {{Quantity::level, "60"}}),
            measured("007", {{Quantity::level, "60"}}),
            measured("009", {}),
            measured("010", {{Quantity::ber, "<1.0E-8"}}),
            measured("011", {{Quantity::level, "60"}, {Quantity::mer, "12"}}),
            measured("012", {{Quantity::level, "58.3"}, {Quantity::ber, "1.0E-7"}}),
        };
        const std::vector<VisitMeasurement> now{
            measured("001", {{Quantity::level, "61.9"}, {Quantity::mer, "11.1"}}),
            measured("002", {{Quantity::level, "59"}, {Quantity::mer, "11"}}),
            measured("003", {{Quantity::level, "55"}, {Quantity::mer, "12"}}),
            measured("004", {{Quantity::level, "62"}, {Quantity::mer, "12"}}),
            measured("005", {}),
            measured("006", {{Quantity::mer, "12"}}),
            measured("008", {{Quantity::mer, "12"}}),
            measured("009", {{Quantity::mer, "12"}}),
            measured("010", {{Quantity::ber, "<1.0E-8"}}),
            measured("011", {{Quantity::level, "70"}, {Quantity::mer, "10.5"}}),
            measured("012", {{Quantity::level, "56.3"}, {Quantity::ber, "1.0E-6"}}),
        };
        QCOMPARE(told(compare_visits(then, now)),
                 QStringList({"005 lost", "003 worse", "011 worse", "002 worse", "012 worse",
                              "006 not comparable", "007 not measured now", "001 same", "010 same",
                              "004 better", "009 new", "008 new"}));
        const auto strict = compare_visits(then, now, {.level = 6, .cn = 1, .mer = 2, .ber = 1.5});
        QCOMPARE(told(strict).mid(0, 2), QStringList({"005 lost", "006 not comparable"}));
    }

    void a_bit_error_rate_alone_can_be_worse() {
        const auto compared =
            only(measured("001", {{Quantity::mer, "12"}, {Quantity::ber, "<1E-8"}}),
                 measured("001", {{Quantity::mer, "12"}, {Quantity::ber, "1E-6"}}));
        QVERIFY(compared.meaning == Meaning::worse);
        QCOMPARE(compared.badness, 2.0);
        QVERIFY(!fall_of(compared));
    }

    void a_program_is_told_by_its_number_and_else_by_its_frequency() {
        const VisitMeasurement plan = measured("001", {{Quantity::mer, "12"}});
        const VisitMeasurement tuned = measured("001", {{Quantity::mer, "12"}}, 11836.0F);
        QVERIFY(only(plan, tuned).meaning == Meaning::elsewhere);
        QVERIFY(only(plan, plan).meaning == Meaning::same);
        const VisitMeasurement log = measured("", {{Quantity::mer, "10"}});
        for (const auto& [then, now] : {std::pair{log, plan}, std::pair{plan, log}}) {
            const auto found = only(then, now);
            QCOMPARE(found.key.program.number, QStringLiteral("001"));
            QVERIFY(found.earlier && found.later);
        }
        QVERIFY(only(log, measured("", {{Quantity::mer, "10"}})).meaning == Meaning::same);
        // Two polarisations share the frequency: which one the log meant nobody knows.
        const VisitMeasurement other = measured("002", {{Quantity::mer, "12"}});
        QCOMPARE(told(compare_visits({log}, {plan, other})),
                 QStringList({" not measured now", "001 new", "002 new"}));
    }

    /// The plan has changed: what its number was then says nothing of what it is now.
    void another_transponder_under_the_number_is_not_compared() {
        const auto row = [](const char* number, const char* mer, float mhz) {
            return measured(number, {{Quantity::level, mer}, {Quantity::mer, mer}}, mhz);
        };
        const auto swapped = compare_visits({row("001", "14", 11778), row("002", "9", 11300)},
                                            {row("001", "9", 11300), row("002", "14", 11778)});
        QCOMPARE(told(swapped),
                 QStringList({"001 another transponder", "002 another transponder"}));
        QVERIFY(!swapped[0].change(Quantity::mer) && !fall_of(swapped[0]));
        // A drift of the LNB is none.
        QVERIFY(only(row("001", "14", 11778), row("001", "9", 11780.5F)).meaning == Meaning::worse);
        // One of two under a number in one visit counts beside the other, and is found again.
        const std::vector<VisitMeasurement> both{row("001", "14", 11778), row("001", "9", 11300),
                                                 row("001", "13.9", 11778)};
        const std::vector<VisitMeasurement> last = counting(both);
        QCOMPARE(last.size(), std::size_t{2});
        QCOMPARE(last[0].id, both[2].id);
        QCOMPARE(last[1].id, both[1].id);
        QCOMPARE(told(compare_visits(both, {row("001", "9", 11300), row("001", "10", 11778)})),
                 QStringList({"001 worse", "001 same"}));
        QCOMPARE(told(compare_visits({row("001", "9", 11300)}, both)),
                 QStringList({"001 same", "001 new"}));
    }

    void what_is_not_comparable_now_is_known_as_that() {
        VisitMeasurement now = measured("001", {{Quantity::level, "40"}, {Quantity::mer, "12"}});
        const auto then = measured(
            "001", {{Quantity::level, "60"}, {Quantity::mer, "12"}, {Quantity::ber, "1E-6"}});
        now.measurement.unit.reset();
        const ProgramComparison found = only(then, now);
        QVERIFY(found.meaning == Meaning::same);
        QVERIFY(found.is_unknown(Quantity::level) && found.is_unknown(Quantity::ber));
        QVERIFY(!found.is_unknown(Quantity::mer) && !found.is_unknown(Quantity::cn));
        QVERIFY(!only(then, then).is_unknown(Quantity::level));
    }

    void the_margin_above_the_alarm_minimum() {
        VisitMeasurement one = measured("001", {{Quantity::mer, "11.2"}});
        const auto said = [&](const char* mer, int language = kEnglish) {
            one.measurement.reading(Quantity::mer) =
                measurement::reading_of(Quantity::mer, QString(mer));
            const auto margin = margins_of(one.measurement, {}).alarm;
            return measurement::margin_text(margin) + u'|' +
                   measurement::margin_words(margin, texts(language));
        };
        QCOMPARE(said("11.2"), QStringLiteral("–|"));
        auto& limits = one.measurement.limits[static_cast<std::size_t>(Quantity::mer)];
        limits = measurement::Limits{{}, 30.0};
        QCOMPARE(said("11.2"), QStringLiteral("–|"));
        limits = measurement::Limits{8.0, {}};
        QCOMPARE(said("11.2"), QStringLiteral("3.2|3.2 dB left"));
        QCOMPARE(said("11.2", kItalian), QStringLiteral("3.2|margine di 3.2 dB"));
        QCOMPARE(said("8.0"), QStringLiteral("0.0|0.0 dB left"));
        QCOMPARE(said("6.7"), QStringLiteral("-1.3|1.3 dB too little"));
        QCOMPARE(said("6.7", kItalian), QStringLiteral("-1.3|mancano 1.3 dB"));
        QCOMPARE(said(">30.0"), QStringLiteral(">22.0|at least 22.0 dB left"));
        QCOMPARE(said("<1.0"), QStringLiteral("<-7.0|at least 7.0 dB too little"));
        QCOMPARE(said(">7.0"), QStringLiteral(">-1.0|at most 1.0 dB too little"));
        QCOMPARE(said("<9.0"), QStringLiteral("<1.0|at most 1.0 dB left"));
        QCOMPARE(said(""), QStringLiteral("–|"));
    }

    void the_margin_above_what_the_code_needs() {
        // C/N in dB that EN 300 421 comes to for each code rate.
        const std::array needed{std::pair{"1/2", 4.1}, std::pair{"2/3", 5.9}, std::pair{"3/4", 6.9},
                                std::pair{"5/6", 7.9}, std::pair{"7/8", 8.5}};
        for (const auto& [text, cn] : needed) {
            const auto rate = programme::code_rate_of(QString(text));
            QVERIFY(rate && std::fabs(quasi_error_free_mer(*rate) - cn) < 0.06);
            QCOMPARE(programme::code_rate_text(*rate), QString(text));
        }
        for (const char* other : {"AUTO", "", "9/10", "3/4 "})
            QVERIFY(!programme::code_rate_of(QString(other)));
        VisitMeasurement one = measured("001", {{Quantity::mer, "10.1"}});
        const auto rate = programme::CodeRate::three_quarters;
        QCOMPARE(measurement::margin_text(margins_of(one.measurement, rate).quasi_error_free),
                 QStringLiteral("3.2"));
        QVERIFY(!margins_of(one.measurement, {}).quasi_error_free);
        one.measurement.mode = measurement::MeasureMode::analog;
        QVERIFY(!margins_of(one.measurement, rate).quasi_error_free);
    }

    void the_code_rate_is_that_of_the_transponder_in_the_plan() {
        const QTemporaryDir folder;
        const auto plans = db::made_in(folder.path());
        db::run_sql(db::database_in(folder.path()),
                    {"INSERT INTO programmi (nome, pg_num, lnb_volt) VALUES ('ASTRA', '001', 2), "
                     "('ASTRA', '002', 1)"});
        CodeRates nothing_kept(*plans);
        QVERIFY(!nothing_kept.of(measured("001", {}).measurement));
        db::write_names(plans->connection(), QStringLiteral("ASTRA"),
                        {{11778, 2, QStringLiteral("A"), QStringLiteral("3/4")},
                         {11778, 1, QString(), QStringLiteral("5/6")},
                         {12000, 1, QStringLiteral("B"), QString()}});
        CodeRates rates(*plans);
        QVERIFY(rates.of(measured("001", {}).measurement) == programme::CodeRate::three_quarters);
        QVERIFY(rates.of(measured("002", {}, 11776.5F).measurement) ==
                programme::CodeRate::five_sixths);
        QVERIFY(!rates.of(measured("002", {}, 11786.0F).measurement));
        QVERIFY(!rates.of(measured("002", {}, 12000.0F).measurement));
        QVERIFY(!rates.of(measured("003", {}).measurement));
        QVERIFY(!rates.of(measured("", {}).measurement));
    }

    void a_table_is_handed_on_as_it_is_shown() {
        VisitMeasurement then =
            measured("001", {{Quantity::level, "58.3"}, {Quantity::mer, "12.0"}});
        VisitMeasurement now = measured("001", {{Quantity::level, "54.0"}, {Quantity::mer, "8.1"}});
        now.measurement.limits[static_cast<std::size_t>(Quantity::mer)] =
            measurement::Limits{7.0, {}};
        const auto rate = [](const measurement::Measurement&) {
            return std::optional(programme::CodeRate::three_quarters);
        };
        const auto table = comparison_table(compare_visits({then}, {now}), rate, texts());
        QCOMPARE(table.heading.mid(0, 5).join(u'|'),
                 QStringLiteral("Program|Meaning|Level before|Level now|Level change"));
        QCOMPARE(table.rows.size(), 1);
        QCOMPARE(table.rows[0].join(u'|'),
                 QStringLiteral("ASTRA 001 · 11778.0 / 10600|worse|58.3 dBuV|54.0 dBuV|-4.3|–|–|–|"
                                "12.0|8.1|-3.9|–|–|–|–|–|–|1.1|1.2"));
        Site site{.id = QUuid::createUuid(), .name = QStringLiteral("Via\tRoma\n7")};
        const auto worse = worse_table({{site, compare_visits({then}, {now})[0]}}, texts(kItalian));
        QCOMPARE(QString::fromUtf8(worse.tsv()),
                 QStringLiteral("Sito\tProgramma\tSignificato\tLivello diff.\tMER diff.\t"
                                "Dal\tAl\nVia Roma 7\tASTRA 001 · 11778.0 / 10600\tpeggiore\t-4.3\t"
                                "-3.9\t2001-09-09 02:46:40\t2001-09-09 02:46:40\n"));
        const auto rows = rows_table({then, now}, {}, texts());
        QCOMPARE(rows.rows[1].join(u'|'),
                 QStringLiteral("2001-09-09 02:46:40|ASTRA 001|11778.0|10600||dBuV|54.0|–|8.1|–|"
                                "–|–|–|1.1|–|MER > 7"));
        for (const ShownTable& each : {table, worse, rows})
            for (const QStringList& row : each.rows) QCOMPARE(row.size(), each.heading.size());
    }

    void what_got_worse_since_the_first_visit() {
        std::vector<Visit> visits(4);
        for (Visit& visit : visits) visit.id = QUuid::createUuid();
        // The latest first.
        const std::vector<std::vector<VisitMeasurement>> rows{
            {measured("001", {{Quantity::mer, "9.0"}}), measured("003", {{Quantity::level, "50"}}),
             measured("005", {})},
            {measured("001", {{Quantity::mer, "2.0"}}), measured("002", {{Quantity::mer, "7.0"}})},
            {measured("003", {{Quantity::level, "55"}}), measured("002", {{Quantity::mer, "1.0"}})},
            {measured("001", {{Quantity::mer, "11.5"}}), measured("002", {{Quantity::mer, "12.0"}}),
             measured("004", {{Quantity::mer, "12.0"}}),
             measured("005", {{Quantity::mer, "1.0"}})}};
        const auto history = [&](const QString& name) {
            return SiteHistory{.site = {.id = QUuid::createUuid(), .name = name},
                               .visits = visits,
                               .measurements = [&](const Visit& visit) {
                                   for (std::size_t k = 0; k < visits.size(); ++k)
                                       if (visits[k].id == visit.id) return rows[k];
                                   return rows[0];
                               }};
        };
        QCOMPARE(told(worse_since_first(history("A"), 2)),
                 QStringList({"005 lost", "002 worse", "003 worse", "001 worse"}));
        QCOMPARE(told(worse_since_first(history("A"), 2.5)),
                 QStringList({"005 lost", "002 worse", "003 worse"}));
        QCOMPARE(told(worse_since_first(history("A"), 5)), QStringList({"005 lost"}));
        const auto all = what_got_worse({history("A"), history("B")}, 4.9);
        QCOMPARE(all.size(), 6U);
        QCOMPARE(all[0].site.name + all[1].site.name + all[2].site.name, QStringLiteral("ABA"));
        QCOMPARE(fall_of(all[4].program), std::optional(5.0));
        visits.resize(1);
        QVERIFY(worse_since_first(history("A"), 0).empty());
    }
};

}  // namespace m47::sites

QTEST_GUILESS_MAIN(m47::sites::ComparisonTest)
#include "comparison_test.moc"
