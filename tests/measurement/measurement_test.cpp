// SPDX-License-Identifier: GPL-3.0-or-later
// A measurement as a thing of its own: from a line of a log, packed beside a row, told apart.
#include <QTest>

#include "ask_twice.h"
#include "measurement_line.h"
#include "measurement_record.h"
#include "page_store.h"
#include "row_time.h"
#include "series_key.h"

namespace m47::measurement {

class MeasurementTest : public QObject {
    Q_OBJECT

  private:
    static Measurement whole() {
        Measurement made;
        made.instant = row_midnight("21/11/26").value() + 36001;
        made.program = {"ASTRA", "007"};
        made.mode = MeasureMode::digital;
        made.frequency = 11778.0F;
        made.oscillator = 10600.0F;
        made.reading(Quantity::level) = {-50.5F, RangeMark::none};
        made.reading(Quantity::ber) = {1e-8F, RangeMark::below};
        made.reading(Quantity::noise) = {20.0F, RangeMark::above};
        made.unit = kDbm;
        made.limits[static_cast<std::size_t>(Quantity::level)] = Limits{-89, 11};
        made.verdict = Verdict::fail;
        return made;
    }
    static bool same(const Measurement& one, const Measurement& other) {
        for (std::size_t k = 0; k < kAllQuantities; ++k) {
            const Reading& a = one.readings[k];
            const Reading& b = other.readings[k];
            if (a.measured() != b.measured() || a.mark != b.mark) return false;
            if (a.measured() && a.value != b.value) return false;
        }
        return one.instant == other.instant && one.program == other.program &&
               one.mode == other.mode && one.frequency == other.frequency &&
               one.oscillator == other.oscillator && one.unit == other.unit &&
               one.limits == other.limits && one.verdict == other.verdict;
    }
    /// What `program` was measured to have, one after another.
    static Scatter known(AskedFor asked, const QList<double>& values,
                         const QString& program = QStringLiteral("A")) {
        Scatter scatter;
        for (const double value : values) scatter.add(program, {asked, value, {}});
        return scatter;
    }
    static QStringList cells() {
        return {"21/11/26", "10:00:01", "11778", "9750", "", "", "", "", "", "", "FAIL"};
    }

  private Q_SLOTS:
    void a_line_of_a_log_says_what_it_says() {
        const Measurement read = measurement_of_line(
            "21/11/26\t10:00:01\t11778.0\t10600\t>61.0\t2.0E-4\t<1.0E-8\t-0.1\t14.2\t\tPASS");
        QCOMPARE(*read.instant, *row_midnight("21/11/26") + 36001);
        QCOMPARE(*read.frequency, 11778.0F);
        QCOMPARE(*read.oscillator, 10600.0F);
        const auto shown = [&read](Quantity quantity) {
            return reading_text(quantity, read.reading(quantity));
        };
        QCOMPARE(shown(Quantity::level), QStringLiteral(">61.0"));
        QCOMPARE(shown(Quantity::ber), QStringLiteral("2.0E-4"));
        QCOMPARE(shown(Quantity::pvber), QStringLiteral("<1.0E-8"));
        QCOMPARE(shown(Quantity::cfo), QStringLiteral("-0.1"));
        QCOMPARE(shown(Quantity::mer), QStringLiteral("14.2"));
        QVERIFY(!read.reading(Quantity::cn).measured());
        QVERIFY(read.verdict == Verdict::pass);
        QVERIFY(!read.unit && !read.program.known() && read.mode == MeasureMode::none);
    }

    void a_line_that_says_nothing_is_a_measurement_of_nothing() {
        for (const char* line : {"", "a\tb", "\t\t\t\t\t\t\t\t\t\t", "99/99/99\t10:00:00\tx\ty",
                                 "\t\t-1e300\t1e300\t-1e300\t-1\t\t\t\t\t"}) {
            const Measurement read = measurement_of_line(line);
            QVERIFY2(same(read, Measurement()), line);
        }
    }

    void a_row_keeps_its_measurement_whatever_its_text_says() {
        PageStore page;
        QVERIFY(page.append_line("21/11/26\t09:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS"));
        page.append(cells(), whole());
        page.append({"21/11/26", "10:00:02", "1000.0"});
        QCOMPARE(QString::fromStdString(std::string(page.line(1))), cells().join(u'\t'));
        QVERIFY(same(page.measurement(1), whole()));
        QCOMPARE(*page.measurement(0).frequency, 950.0F);
        QCOMPARE(*page.measurement(2).frequency, 1000.0F);
        QVERIFY(!page.measurement(0).unit && !page.measurement(2).unit);
    }

    void only_a_row_without_a_unit_takes_the_one_given() {
        PageStore page;
        page.append(cells());
        page.append(cells(), whole());
        QVERIFY(page.measurement(0, kDbmv).unit == kDbmv);
        QVERIFY(page.measurement(1, kDbmv).unit == kDbm);
    }

    void programs_and_limits_come_again_over_many_rows() {
        PageStore page;
        for (int k = 0; k < 5000; ++k) {
            Measurement made = whole();
            made.program.number = QString::number(k % 30);
            made.limits[0] = Limits{static_cast<double>(k % 7), 100};
            page.append(cells(), made);
        }
        for (const int row : {0, 1023, 1024, 4999}) {
            Measurement expected = whole();
            expected.program.number = QString::number(row % 30);
            expected.limits[0] = Limits{static_cast<double>(row % 7), 100};
            QVERIFY(same(page.measurement(row), expected));
        }
        // The text, its end, and the record; nothing of what comes again.
        QVERIFY(page.memory_bytes() < 5000 * 150);
    }

    void what_comes_again_is_kept_once() {
        MeasurementRecords records;
        Measurement one = whole();
        Measurement other = whole();
        other.program.number = QStringLiteral("008");
        other.limits[0] = Limits{1, 2};
        const MeasurementRecord first = records.pack(one);
        const MeasurementRecord second = records.pack(other);
        QVERIFY(first.program != second.program && first.limits != second.limits);
        const MeasurementRecord again = records.pack(one);
        QCOMPARE(again.program, first.program);
        QCOMPARE(again.limits, first.limits);
        one.instant.reset();
        QVERIFY(same(records.unpack(again), one));
    }

    void a_range_mark_may_stand_between_blanks() {
        for (const char* text : {"<20.5", " <20.5", "< 20.5", "  <  20.5"}) {
            const Reading read = reading_of(Quantity::level, std::string_view(text));
            QVERIFY2(read.mark == RangeMark::below && read.value == 20.5F, text);
        }
    }

    void limits_with_one_bound_are_kept_as_such() {
        PageStore page;
        std::vector<Limits> all{{30, 80}, {30, {}}, {{}, 80}, {0, 80}};
        for (const Limits& limits : all) {
            Measurement made = whole();
            made.limits[0] = limits;
            page.append(cells(), made);
        }
        for (std::size_t k = 0; k < all.size(); ++k)
            QVERIFY(page.measurement(static_cast<int>(k)).limits[0] == all[k]);
    }

    void a_unit_has_an_index_from_0_to_2() {
        QVERIFY(!unit_of_index(std::nullopt));
        QVERIFY(!unit_of_index(-1));
        QVERIFY(unit_of_index(0) == kDbuv);
        QVERIFY(unit_of_index(1) == kDbmv);
        QVERIFY(unit_of_index(2) == kDbm);
        QVERIFY(!unit_of_index(3));
        QVERIFY(ProgramIdentity({"A", {}}).known());
        QVERIFY(ProgramIdentity({{}, "007"}).known());
        QVERIFY(!ProgramIdentity().known());
    }

    void each_unit_mark_and_verdict_comes_back() {
        PageStore page;
        QList<Measurement> made;
        for (const auto unit : {std::optional<LevelUnit>(), std::optional(kDbuv),
                                std::optional(kDbmv), std::optional(kDbm)})
            for (const RangeMark mark : {RangeMark::none, RangeMark::below, RangeMark::above})
                for (const Verdict verdict : {Verdict::none, Verdict::pass, Verdict::fail}) {
                    Measurement one = whole();
                    one.unit = unit;
                    one.verdict = verdict;
                    for (std::size_t k = 0; k < kAllQuantities; ++k)
                        one.readings[k] = {static_cast<float>(k) + 0.5F,
                                           k % 2 == 0 ? mark : RangeMark::none};
                    page.append(cells(), one);
                    made += one;
                }
        for (int row = 0; row < made.size(); ++row) QVERIFY(same(page.measurement(row), made[row]));
    }

    void the_memory_of_a_page_counts_its_measurements() {
        constexpr int kRows = 10'000;
        PageStore page;
        for (int row = 0; row < kRows; ++row) page.append(cells(), whole());
        const auto text = static_cast<std::size_t>(cells().join(u'\t').size());
        QVERIFY(page.memory_bytes() > kRows * (text + 48));
        QVERIFY(page.memory_bytes() < 3 * kRows * (text + 48));
    }

    void what_is_no_date_or_time_is_none() {
        QCOMPARE(*row_clock("23:59:59"), 86399.0);
        QCOMPARE(*row_clock("0:0:0"), 0.0);
        for (const char* time : {"24:00:00", "23:60:00", "23:59:60", "1:2", "1::2",
                                 "1:2:", "1:2:3:", ":1:2:3", "", "a:b:c", "00001:2:3"})
            QVERIFY2(!row_clock(time), time);
        QCOMPARE(*row_midnight("1-2.2026"), *row_midnight("01/02/26"));
        QCOMPARE(*row_midnight("01/01/1970"), 0.0);
        QCOMPARE(*row_midnight("01/01/99"), *row_midnight("01/01/2099"));
        QCOMPARE(*row_midnight("01/01/00"), *row_midnight("01/01/2000"));
        QCOMPARE(*row_midnight("02/01/99") - *row_midnight("01/01/99"), 86400.0);
        for (const char* date : {"00/01/26", "32/01/26", "29/02/26", "1/13/26", "1/2", "1//2"})
            QVERIFY2(!row_midnight(date), date);
        QVERIFY(row_midnight("29/02/28"));
        QCOMPARE(time_text(*row_midnight("09/08/26") + 3723), std::string("2026-08-09 01:02:03"));
        QCOMPARE(time_text(-1), std::string("1969-12-31 23:59:59"));
    }

    void verdicts_are_the_words_of_the_rows() {
        QCOMPARE(verdict_text(Verdict::pass), QStringLiteral("PASS"));
        QCOMPARE(verdict_text(Verdict::fail), QStringLiteral("FAIL"));
        QCOMPARE(verdict_text(Verdict::none), QString());
    }

    void a_number_at_the_edge_of_its_form() {
        QCOMPARE(leading_value("5"), std::optional<double>(5));
        QCOMPARE(leading_value("+1.5x"), std::optional<double>(1.5));
        QCOMPARE(leading_value("-.5"), std::optional<double>(-0.5));
        for (const char* none : {"", "-", ".", "-.", "inf", "x1", "+-"})
            QVERIFY2(!leading_value(none), none);
    }

    void the_instant_of_a_row_is_that_of_its_text() {
        const QDateTime moment({2026, 11, 21}, {10, 0, 1, 700});
        QCOMPARE(row_instant(moment), *row_midnight("21/11/26") + 36001);
    }

    void two_readings_of_a_steady_signal_agree_data() {
        QTest::addColumn<int>("asked");
        QTest::addColumn<double>("one");
        QTest::addColumn<double>("near");
        QTest::addColumn<double>("far");
        const auto row = [](const char* name, AskedFor asked, double one, double near, double far) {
            QTest::newRow(name) << static_cast<int>(asked) << one << near << far;
        };
        row("level", AskedFor::level, 50, 51, 51.1);
        row("level below", AskedFor::level, 50, 49, 48.9);
        row("level at the pole", AskedFor::ranging_level, -0.5, 0.5, 0.6);
        row("channel power", AskedFor::channel_power, -60, -61, -61.1);
        row("C/N", AskedFor::cn, 10, 11, 11.1);
        row("MER", AskedFor::mer, 14, 15, 15.1);
        row("offset in MHz", AskedFor::offset, 0.25, 0.75, 0.8);
        row("attenuation in steps", AskedFor::attenuation, 2, 2, 3);
        row("rate by its exponent", AskedFor::channel_ber, 1e-4, 3e-4, 3.3e-4);
        row("corrected rate", AskedFor::corrected_ber, 1e-8, 3.3e-9, 3e-9);
        row("no error at all", AskedFor::corrected_ber, 0, 3e-12, 4e-12);
    }
    void two_readings_of_a_steady_signal_agree() {
        QFETCH(int, asked);
        QFETCH(double, one);
        QFETCH(double, near);
        QFETCH(double, far);
        const auto what = static_cast<AskedFor>(asked);
        const AskedValue reading{what, one, {}};
        QVERIFY(agree(reading, AskedValue{what, near, {}}));
        QVERIFY(agree(AskedValue{what, near, {}}, reading));
        QVERIFY(!agree(reading, AskedValue{what, far, {}}));
        QVERIFY(!agree(AskedValue{what, far, {}}, reading));
        // The first two are what is usual for a program.
        const Scatter scatter = known(what, {one, one});
        QVERIFY(!scatter.surprises("A", {what, near, {}}));
        QVERIFY(scatter.surprises("A", {what, far, {}}));
    }

    void readings_agree_in_kind_mark_and_number() {
        const AskedValue level{AskedFor::level, 50, {}};
        QVERIFY(!agree(level, AskedValue{AskedFor::cn, 50, {}}));
        QVERIFY(!agree(level, AskedValue{AskedFor::level, 50, u'<'}));
        QVERIFY(
            agree(AskedValue{AskedFor::level, 50, u'<'}, AskedValue{AskedFor::level, 50, u'<'}));
        const AskedValue mer{AskedFor::mer, 14, {}};
        QVERIFY(agree(AskedValues{level, mer}, AskedValues{level, mer}));
        QVERIFY(!agree(AskedValues{level, mer}, AskedValues{mer, level}));
        QVERIFY(!agree(AskedValues{level, mer}, AskedValues{level}));
        QVERIFY(!agree(AskedValues{level}, AskedValues{level, mer}));
        QVERIFY(!agree(AskedValues{level, mer}, AskedValues{level, {AskedFor::mer, 18, {}}}));
    }

    void what_a_program_scatters_does_not_surprise() {
        constexpr auto kLevel = AskedFor::level;
        // The middle is 52, and half of them lie within 2 of it.
        const Scatter wide = known(kLevel, {54, 50, 52, 48, 52});
        for (const double value : {44.0, 52.0, 60.0})
            QVERIFY(!wide.surprises("A", {kLevel, value, {}}));
        for (const double value : {43.9, 60.1}) QVERIFY(wide.surprises("A", {kLevel, value, {}}));
        // One that was spoilt and taken moves neither the middle nor the room.
        const Scatter spoilt = known(kLevel, {50, 50, 999, 50, 50});
        QVERIFY(!spoilt.surprises("A", {kLevel, 51, {}}));
        QVERIFY(spoilt.surprises("A", {kLevel, 52, {}}));
    }

    void what_is_not_known_of_a_program_surprises() {
        constexpr auto kLevel = AskedFor::level;
        QVERIFY(Scatter().surprises("A", {kLevel, 50, {}}));
        QVERIFY(known(kLevel, {50}).surprises("A", {kLevel, 50, {}}));
        const Scatter scatter = known(kLevel, {50, 50});
        QVERIFY(!scatter.surprises("A", {kLevel, 50, {}}));
        QVERIFY(scatter.surprises("B", {kLevel, 50, {}}));
        QVERIFY(scatter.surprises("A", {AskedFor::mer, 50, {}}));
        QVERIFY(scatter.surprises("A", {kLevel, 50, u'>'}));
    }

    void the_last_eight_readings_are_what_is_known() {
        constexpr auto kLevel = AskedFor::level;
        // Four and four: nobody can say which is usual.
        Scatter scatter = known(kLevel, {50, 50, 50, 50, 50, 80, 80, 80, 80});
        QVERIFY(!scatter.surprises("A", {kLevel, 50, {}}));
        QVERIFY(!scatter.surprises("A", {kLevel, 80, {}}));
        scatter.add("A", {kLevel, 80, {}});
        QVERIFY(scatter.surprises("A", {kLevel, 50, {}}));
        QVERIFY(!scatter.surprises("A", {kLevel, 80, {}}));
        // Only the last one's mark counts.
        scatter.add("A", {kLevel, 80, u'>'});
        QVERIFY(scatter.surprises("A", {kLevel, 80, {}}));
        QVERIFY(!scatter.surprises("A", {kLevel, 80, u'>'}));
    }

    void measurements_are_told_apart_by_program_tuning_and_unit() {
        const SeriesKey key = series_key(whole());
        Measurement other = whole();
        other.frequency = 11000.0F;
        QVERIFY(series_key(other) == key);  // a program that was tuned anew is the same program
        other.program.number = "008";
        QVERIFY(!(series_key(other) == key));
        other = whole();
        other.unit = kDbuv;
        QVERIFY(!(series_key(other) == key));
        Measurement single = whole();
        single.program = {};
        QVERIFY(!(series_key(single) == key));
        other = single;
        QVERIFY(series_key(single) == series_key(other));
        other.oscillator.reset();
        QVERIFY(!(series_key(single) == series_key(other)));
        // Tables of series rely on keys that differ in any of these having other places.
        const SeriesKeyHash hash;
        QVERIFY(hash(key) == hash(series_key(whole())));
        Measurement tuned_anew = whole();
        tuned_anew.frequency = 11000.0F;
        QVERIFY(hash(series_key(tuned_anew)) == hash(key));
        Measurement next = whole();
        next.unit = kDbuv;
        QVERIFY(hash(series_key(next)) != hash(key));
        next.unit.reset();
        QVERIFY(hash(series_key(next)) != hash(key));
        Measurement in_dbuv = whole();
        in_dbuv.unit = kDbuv;
        QVERIFY(hash(series_key(next)) != hash(series_key(in_dbuv)));
        QVERIFY(hash(series_key(single)) != hash(key));
        QCOMPARE(series_key(single).oscillator_text(), QStringLiteral("10600"));
        next = single;
        next.oscillator = 950.12345F;
        QCOMPARE(series_key(next).oscillator_text(), QStringLiteral("950.1235"));
        QCOMPARE(key.name(), QStringLiteral("ASTRA 007 · 11778.0 / 10600"));
        QCOMPARE(series_key(single).name(), QStringLiteral("11778.0 / 10600"));
        QCOMPARE(series_key(other).name(), QStringLiteral("11778.0"));
    }
};

}  // namespace m47::measurement

QTEST_GUILESS_MAIN(m47::measurement::MeasurementTest)
#include "measurement_test.moc"
