// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_test.h"

namespace m47::trend {

void TrendTest::a_cell_is_read_as_the_limits_read_it_data() {
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<int>("quantity");
    QTest::addColumn<QString>("shown");
    const auto add = [](const char* cell, measurement::Quantity quantity, const char* shown) {
        QTest::addRow("%d %s", static_cast<int>(quantity), cell)
            << QByteArray(cell) << static_cast<int>(quantity) << QString::fromUtf8(shown);
    };
    add("58.3", measurement::Quantity::level, "58.3");
    add(" -12.5", measurement::Quantity::level, "-12.5");
    add("<20.5", measurement::Quantity::level, "<20.5");
    add("> 99", measurement::Quantity::level, ">99.0");
    add("+7.5dB", measurement::Quantity::mer, "7.5");
    add("2.0E-4", measurement::Quantity::ber, "2.0E-4");
    add("<1.0E-8", measurement::Quantity::ber, "<1.0E-8");
    add("0", measurement::Quantity::ber, "0");
    add("0.0E+0", measurement::Quantity::ber, "0");
    for (const char* nothing : {"", "   ", "ERROR", "<", "-", "inf", "nan", "1E999", "--3"})
        add(nothing, measurement::Quantity::level, "–");
    add("-1.0E-4", measurement::Quantity::ber, "–");
}

void TrendTest::a_cell_is_read_as_the_limits_read_it() {
    QFETCH(QByteArray, cell);
    QFETCH(int, quantity);
    const auto which = static_cast<measurement::Quantity>(quantity);
    const measurement::Reading reading =
        measurement::reading_of(which, {cell.data(), std::size_t(cell.size())});
    QTEST(measurement::reading_text(which, reading), "shown");
}

void TrendTest::dates_and_times_are_those_of_the_row() {
    QCOMPARE(measurement::row_midnight("01/01/70").value(),
             36525 * kDay);  // 2070: a century of its own
    QCOMPARE(measurement::row_midnight("21/11/2026").value(),
             measurement::row_midnight("21/11/26").value());
    QCOMPARE(measurement::row_midnight("29/02/28").value() + kDay,
             measurement::row_midnight("01/03/28").value());
    QCOMPARE(measurement::row_clock("23:59:59").value(), kDay - 1);
    for (const char* no_date : {"", "21/11", "29/02/27", "00/11/26", "a/b/c", "21/11/26 "})
        QVERIFY2(!measurement::row_midnight(no_date), no_date);
    for (const char* no_time : {"", "10:00", "24:00:00", "10:60:00", "10:00:60", "x"})
        QVERIFY2(!measurement::row_clock(no_time), no_time);
    QCOMPARE(QString::fromStdString(
                 measurement::time_text(*measurement::row_midnight("21/11/26") + 36061)),
             QStringLiteral("2026-11-21 10:01:01"));
}

void TrendTest::midnight_and_the_turn_of_the_year_are_no_gap() {
    measurement::PageStore page;
    Cells cells;
    for (const char* stamp : {"31/12/26 23:59:40", "31/12/26 23:59:50", "01/01/27 00:00:00",
                              "01/01/27 00:00:10", "01/01/27 00:00:20"}) {
        const QStringList parts = QString::fromLatin1(stamp).split(u' ');
        cells.date = parts[0];
        cells.time = parts[1];
        page.append(row(cells));
    }
    const TrendData data = data_of(page);
    QCOMPARE(data.time().span(), 40.0);
    QCOMPARE(drawn(all_of(data, measurement::Quantity::level).line),
             QStringLiteral("58.3 58.3 58.3 58.3 58.3"));
}

void TrendTest::what_was_not_measured_is_a_gap() {
    const TrendData data = data_of(
        page_of_levels({QStringLiteral("1"), QStringLiteral("2"), QString(), QStringLiteral("4"),
                        QStringLiteral("5"), QStringLiteral("ERROR"), QStringLiteral("7")}));
    const TrendSamples samples = all_of(data, measurement::Quantity::level);
    // The last point has no neighbour to be joined with: it is a dot.
    QCOMPARE(drawn(samples.line), QStringLiteral("1 2 | 4 5"));
    QCOMPARE(drawn(samples.dots), QStringLiteral("1 2 4 5 7"));
    QVERIFY(!samples.dense);
    // The other quantities of those rows were measured.
    QCOMPARE(all_of(data, measurement::Quantity::mer).line.size(), std::size_t(7));
}

void TrendTest::a_quantity_that_was_never_measured_draws_nothing() {
    measurement::PageStore page;
    Cells analog;
    analog.ber = analog.mer = QString();
    page.append(row(analog));
    const TrendData data = data_of(page);
    const TrendSamples samples = all_of(data, measurement::Quantity::ber);
    QVERIFY(samples.line.empty() && samples.dots.empty() && samples.failed.empty());
    QVERIFY(!samples.values);
    QVERIFY(!data.series()[0]->minimum(measurement::Quantity::ber).measured());
}

void TrendTest::a_long_pause_is_a_gap_and_a_short_one_is_not() {
    measurement::PageStore page;
    Cells cells;
    for (const int second : {0, 10, 20, 30, 50, 60, 200, 210}) {
        cells.time = clock_text(36000 + second);
        cells.lev = QString::number(second);
        page.append(row(cells));
    }
    QCOMPARE(drawn(all_of(data_of(page), measurement::Quantity::level).line),
             QStringLiteral("0 10 20 30 50 60 | 200 210"));
}

void TrendTest::two_rows_days_apart_are_joined_when_nothing_is_usual_yet() {
    measurement::PageStore page;
    Cells cells;
    page.append(row(cells));
    cells.date = QStringLiteral("25/11/26");
    page.append(row(cells));
    QCOMPARE(drawn(all_of(data_of(page), measurement::Quantity::level).line),
             QStringLiteral("58.3 58.3"));
}

void TrendTest::a_pass_that_left_a_program_out_is_a_gap() {
    measurement::PageStore page;
    int second = 36000;
    // Three programs; the second pass goes without B, the third and fourth are whole.
    for (const char program : std::string_view("ABCACABCABC")) {
        Cells cells;
        cells.time = clock_text(second += 10);
        cells.fr = QString::number(1000 + program);
        page.append(row(cells));
    }
    const TrendData data = data_of(page);
    QCOMPARE(data.series().size(), std::size_t(3));
    const auto line = [&](std::size_t program) {
        return drawn(
            sample_trend(*data.series()[program], measurement::Quantity::level, data.time(), 1000)
                .line);
    };
    QCOMPARE(line(0), QStringLiteral("58.3 58.3 58.3 58.3"));
    QCOMPARE(line(1), QStringLiteral("58.3 58.3"));  // its first point is a dot
    QCOMPARE(line(2), QStringLiteral("58.3 58.3 58.3 58.3"));
}

void TrendTest::programs_are_told_apart_by_frequency_and_oscillator() {
    measurement::PageStore page;
    Cells cells;
    page.append(row(cells));
    cells.osc = QStringLiteral("9750");
    page.append(row(cells));
    cells.osc = QString();
    page.append(row(cells));
    cells = {};
    cells.lev = QStringLiteral("61.0");
    page.append(row(cells));
    const TrendData data = data_of(page);
    QCOMPARE(data.series().size(), std::size_t(3));
    QCOMPARE(data.series()[0]->name(), QStringLiteral("11778.0 / 10600"));
    QCOMPARE(data.series()[1]->name(), QStringLiteral("11778.0 / 9750"));
    QCOMPARE(data.series()[2]->name(), QStringLiteral("11778.0"));
    QCOMPARE(data.series()[0]->points().size(), std::size_t(2));
}

void TrendTest::rows_without_a_place_are_left_out() {
    measurement::PageStore page;
    Cells cells;
    cells.date = QStringLiteral("yesterday");
    page.append(row(cells));
    cells = {};
    cells.fr = QString();
    page.append(row(cells));
    page.append_line("a\tb");
    page.append_line("");
    QVERIFY(data_of(page).empty());
}

void TrendTest::extremes_keep_their_marks_and_last_is_never_stale() {
    measurement::PageStore page;
    Cells cells;
    for (const char* ber : {"2.0E-4", "<1.0E-8", "3.0E-3", ""}) {
        cells.ber = QString::fromLatin1(ber);
        page.append(row(cells));
    }
    const TrendData data = data_of(page);
    const TrendSeries& series = *data.series()[0];
    QCOMPARE(measurement::reading_text(measurement::Quantity::ber,
                                       series.minimum(measurement::Quantity::ber)),
             QStringLiteral("<1.0E-8"));
    QCOMPARE(measurement::reading_text(measurement::Quantity::ber,
                                       series.maximum(measurement::Quantity::ber)),
             QStringLiteral("3.0E-3"));
    QCOMPARE(measurement::reading_text(measurement::Quantity::ber,
                                       series.last(measurement::Quantity::ber)),
             QStringLiteral("–"));
    QCOMPARE(measurement::reading_text(measurement::Quantity::mer,
                                       series.last(measurement::Quantity::mer)),
             QStringLiteral("14.2"));
}

void TrendTest::a_count_without_errors_lies_at_the_foot_of_the_logarithmic_axis() {
    measurement::PageStore page;
    Cells cells;
    for (const char* ber : {"0", "<1.0E-8", "1.0E-3"}) {
        cells.ber = QString::fromLatin1(ber);
        page.append(row(cells));
    }
    const TrendData data = data_of(page);
    QCOMPARE(drawn(all_of(data, measurement::Quantity::ber).line),
             QStringLiteral("1e-09 1e-08 0.001"));
    QCOMPARE(measurement::reading_text(measurement::Quantity::ber,
                                       data.series()[0]->minimum(measurement::Quantity::ber)),
             QStringLiteral("0"));
    const TrendRange axis = value_axis(measurement::Quantity::ber, TrendRange{1e-9, 1e-3}, {});
    QVERIFY(axis.lower > 1e-10 && axis.lower < 1e-9);
    QVERIFY(axis.upper > 1e-3 && axis.upper < 1e-2);
}

void TrendTest::failed_rows_are_marked_where_they_have_a_value() {
    measurement::PageStore page;
    Cells cells;
    int second = 36000;
    for (const char* status : {"PASS", "FAIL", "", "FAIL", "PASS"}) {
        cells.time = clock_text(second += 10);
        cells.lev = QString::number(second);
        cells.mer = second == 36040 ? QString() : QStringLiteral("9.0");
        cells.status = QString::fromLatin1(status);
        page.append(row(cells));
    }
    const TrendData data = data_of(page);
    QCOMPARE(drawn(all_of(data, measurement::Quantity::level).failed),
             QStringLiteral("36020 36040"));
    QCOMPARE(drawn(all_of(data, measurement::Quantity::mer).failed), QStringLiteral("9"));
}

void TrendTest::rows_are_taken_as_they_come() {
    measurement::PageStore page;
    TrendData data;
    data.update(page);
    QVERIFY(data.empty());
    Cells cells;
    for (int k = 0; k < 5; ++k) {
        cells.time = clock_text(36000 + k);
        page.append(row(cells));
        data.update(page);
        QCOMPARE(data.series()[0]->points().size(), std::size_t(k + 1));
        QCOMPARE(data.newest() - data.time().lower, double(k));
    }
    data.clear();
    QVERIFY(data.empty());
    data.update(page);
    QCOMPARE(data.series()[0]->points().size(), std::size_t(5));
}

void TrendTest::a_clock_that_was_set_back_keeps_the_curve_in_order() {
    measurement::PageStore page;
    TrendData data;
    Cells cells;
    for (const int second : {100, 110, 120, 60, 70, 115, 130}) {
        cells.time = clock_text(36000 + second);
        cells.lev = QString::number(second);
        page.append(row(cells));
        data.update(page);
        QCOMPARE(data.newest(), *measurement::row_midnight("21/11/26") + 36000 + second);
    }
    QCOMPARE(drawn(all_of(data, measurement::Quantity::level).line),
             QStringLiteral("60 70 100 110 115 120 130"));
    TrendData at_once;
    at_once.update(page);
    QCOMPARE(drawn(all_of(at_once, measurement::Quantity::level).line),
             drawn(all_of(data, measurement::Quantity::level).line));
}

void TrendTest::a_reloaded_log_plots_as_the_run_that_wrote_it() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("run.log"));
    measurement::PageModel live;
    measurement::MeasurementLog log;
    log.open(path, live);
    for (int k = 0; k < 30; ++k) {
        Cells cells;
        cells.time = clock_text(36000 + k);
        cells.lev = k % 7 == 3 ? QString() : QString::number(50 + k % 5);
        cells.fr = QString::number(11000 + k % 3);
        live.append(row(cells));
        QVERIFY(log.append(live.store().line(k)));
    }
    measurement::PageModel reloaded;
    measurement::MeasurementLog again;
    again.open(path, reloaded);
    const auto table = [](const measurement::PageModel& page) {
        const TrendData data = data_of(page.store());
        std::vector<const TrendSeries*> series;
        for (const auto& each : data.series()) series.push_back(each.get());
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        return write_trend_table(buffer, series) ? buffer.data() : QByteArray();
    };
    QVERIFY(table(live).size() > 30 * 40);
    QCOMPARE(table(reloaded), table(live));
}

}  // namespace m47::trend

QTEST_MAIN(m47::trend::TrendTest)
