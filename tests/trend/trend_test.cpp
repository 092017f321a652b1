// SPDX-License-Identifier: GPL-3.0-or-later
// From the rows of the page to what is plotted of them.
#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

#include "measurement_log.h"
#include "row_time.h"
#include "trend_data.h"
#include "trend_limits.h"
#include "trend_sampling.h"
#include "trend_table.h"
#include "trend_window.h"

namespace m47 {
namespace {

constexpr double kDay = 86400;

struct Cells {
    QString date = QStringLiteral("21/11/26");
    QString time = QStringLiteral("10:00:00");
    QString fr = QStringLiteral("11778.0");
    QString osc = QStringLiteral("10600");
    QString lev = QStringLiteral("58.3");
    QString ber = QStringLiteral("2.0E-4");
    QString mer = QStringLiteral("14.2");
    QString status;
};

QStringList row(const Cells& cells) {
    return {cells.date, cells.time, cells.fr,  cells.osc, cells.lev,   cells.ber,
            QString(),  QString(),  cells.mer, QString(), cells.status};
}

QString clock_text(int seconds) {
    return QTime(0, 0).addSecs(seconds).toString(QStringLiteral("HH:mm:ss"));
}

/// A page of one program with a row every `step` seconds from ten o'clock on.
PageStore page_of_levels(const QStringList& levels, int step = 10) {
    PageStore page;
    for (int k = 0; k < levels.size(); ++k) {
        Cells cells;
        cells.time = clock_text(36000 + k * step);
        cells.lev = levels[k];
        page.append(row(cells));
    }
    return page;
}

TrendData data_of(const PageStore& page) {
    TrendData data;
    data.update(page);
    return data;
}

/// The curve as text, a gap as "|": "58.3 58.4 | 58.6".
QString drawn(const std::vector<TrendSpot>& spots) {
    QStringList texts;
    for (const TrendSpot& spot : spots)
        texts << (std::isnan(spot.value) ? QStringLiteral("|")
                                         : QString::number(spot.value, 'g', 6));
    return texts.join(u' ');
}

TrendSamples all_of(const TrendData& data, Quantity quantity, int columns = 1000) {
    return sample_trend(*data.series().front(), quantity, data.time(), columns);
}

}  // namespace

class TrendTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_cell_is_read_as_the_limits_read_it_data() {
        QTest::addColumn<QByteArray>("cell");
        QTest::addColumn<int>("quantity");
        QTest::addColumn<QString>("shown");
        const auto add = [](const char* cell, Quantity quantity, const char* shown) {
            QTest::addRow("%d %s", static_cast<int>(quantity), cell)
                << QByteArray(cell) << static_cast<int>(quantity) << QString::fromUtf8(shown);
        };
        add("58.3", Quantity::level, "58.3");
        add(" -12.5", Quantity::level, "-12.5");
        add("<20.5", Quantity::level, "<20.5");
        add("> 99", Quantity::level, ">99.0");
        add("+7.5dB", Quantity::mer, "7.5");
        add("2.0E-4", Quantity::ber, "2.0E-4");
        add("<1.0E-8", Quantity::ber, "<1.0E-8");
        add("0", Quantity::ber, "0");
        add("0.0E+0", Quantity::ber, "0");
        for (const char* nothing : {"", "   ", "ERROR", "<", "-", "inf", "nan", "1E999", "--3"})
            add(nothing, Quantity::level, "–");
        add("-1.0E-4", Quantity::ber, "–");
    }
    void a_cell_is_read_as_the_limits_read_it() {
        QFETCH(QByteArray, cell);
        QFETCH(int, quantity);
        const auto which = static_cast<Quantity>(quantity);
        const Reading reading = reading_of(which, {cell.data(), std::size_t(cell.size())});
        QTEST(reading_text(which, reading), "shown");
    }

    void dates_and_times_are_those_of_the_row() {
        QCOMPARE(row_midnight("01/01/70").value(), 36525 * kDay);  // 2070: a century of its own
        QCOMPARE(row_midnight("21/11/2026").value(), row_midnight("21/11/26").value());
        QCOMPARE(row_midnight("29/02/28").value() + kDay, row_midnight("01/03/28").value());
        QCOMPARE(row_clock("23:59:59").value(), kDay - 1);
        for (const char* no_date : {"", "21/11", "29/02/27", "00/11/26", "a/b/c", "21/11/26 "})
            QVERIFY2(!row_midnight(no_date), no_date);
        for (const char* no_time : {"", "10:00", "24:00:00", "10:60:00", "10:00:60", "x"})
            QVERIFY2(!row_clock(no_time), no_time);
        QCOMPARE(QString::fromStdString(time_text(*row_midnight("21/11/26") + 36061)),
                 QStringLiteral("2026-11-21 10:01:01"));
    }

    void midnight_and_the_turn_of_the_year_are_no_gap() {
        PageStore page;
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
        QCOMPARE(drawn(all_of(data, Quantity::level).line),
                 QStringLiteral("58.3 58.3 58.3 58.3 58.3"));
    }

    void what_was_not_measured_is_a_gap() {
        const TrendData data = data_of(page_of_levels(
            {QStringLiteral("1"), QStringLiteral("2"), QString(), QStringLiteral("4"),
             QStringLiteral("5"), QStringLiteral("ERROR"), QStringLiteral("7")}));
        const TrendSamples samples = all_of(data, Quantity::level);
        // The last point has no neighbour to be joined with: it is a dot.
        QCOMPARE(drawn(samples.line), QStringLiteral("1 2 | 4 5"));
        QCOMPARE(drawn(samples.dots), QStringLiteral("1 2 4 5 7"));
        QVERIFY(!samples.dense);
        // The other quantities of those rows were measured.
        QCOMPARE(all_of(data, Quantity::mer).line.size(), std::size_t(7));
    }

    void a_quantity_that_was_never_measured_draws_nothing() {
        PageStore page;
        Cells analog;
        analog.ber = analog.mer = QString();
        page.append(row(analog));
        const TrendData data = data_of(page);
        const TrendSamples samples = all_of(data, Quantity::ber);
        QVERIFY(samples.line.empty() && samples.dots.empty() && samples.failed.empty());
        QVERIFY(!samples.values);
        QVERIFY(!data.series()[0]->minimum(Quantity::ber).measured());
    }

    void a_long_pause_is_a_gap_and_a_short_one_is_not() {
        PageStore page;
        Cells cells;
        for (const int second : {0, 10, 20, 30, 50, 60, 200, 210}) {
            cells.time = clock_text(36000 + second);
            cells.lev = QString::number(second);
            page.append(row(cells));
        }
        QCOMPARE(drawn(all_of(data_of(page), Quantity::level).line),
                 QStringLiteral("0 10 20 30 50 60 | 200 210"));
    }

    void two_rows_days_apart_are_joined_when_nothing_is_usual_yet() {
        PageStore page;
        Cells cells;
        page.append(row(cells));
        cells.date = QStringLiteral("25/11/26");
        page.append(row(cells));
        QCOMPARE(drawn(all_of(data_of(page), Quantity::level).line), QStringLiteral("58.3 58.3"));
    }

    void a_pass_that_left_a_program_out_is_a_gap() {
        PageStore page;
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
                sample_trend(*data.series()[program], Quantity::level, data.time(), 1000).line);
        };
        QCOMPARE(line(0), QStringLiteral("58.3 58.3 58.3 58.3"));
        QCOMPARE(line(1), QStringLiteral("58.3 58.3"));  // its first point is a dot
        QCOMPARE(line(2), QStringLiteral("58.3 58.3 58.3 58.3"));
    }

    void programs_are_told_apart_by_frequency_and_oscillator() {
        PageStore page;
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

    void rows_without_a_place_are_left_out() {
        PageStore page;
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

    void extremes_keep_their_marks_and_last_is_never_stale() {
        PageStore page;
        Cells cells;
        for (const char* ber : {"2.0E-4", "<1.0E-8", "3.0E-3", ""}) {
            cells.ber = QString::fromLatin1(ber);
            page.append(row(cells));
        }
        const TrendData data = data_of(page);
        const TrendSeries& series = *data.series()[0];
        QCOMPARE(reading_text(Quantity::ber, series.minimum(Quantity::ber)),
                 QStringLiteral("<1.0E-8"));
        QCOMPARE(reading_text(Quantity::ber, series.maximum(Quantity::ber)),
                 QStringLiteral("3.0E-3"));
        QCOMPARE(reading_text(Quantity::ber, series.last(Quantity::ber)), QStringLiteral("–"));
        QCOMPARE(reading_text(Quantity::mer, series.last(Quantity::mer)), QStringLiteral("14.2"));
    }

    void a_count_without_errors_lies_at_the_foot_of_the_logarithmic_axis() {
        PageStore page;
        Cells cells;
        for (const char* ber : {"0", "<1.0E-8", "1.0E-3"}) {
            cells.ber = QString::fromLatin1(ber);
            page.append(row(cells));
        }
        const TrendData data = data_of(page);
        QCOMPARE(drawn(all_of(data, Quantity::ber).line), QStringLiteral("1e-09 1e-08 0.001"));
        QCOMPARE(reading_text(Quantity::ber, data.series()[0]->minimum(Quantity::ber)),
                 QStringLiteral("0"));
        const TrendRange axis = value_axis(Quantity::ber, TrendRange{1e-9, 1e-3}, {});
        QVERIFY(axis.lower > 1e-10 && axis.lower < 1e-9);
        QVERIFY(axis.upper > 1e-3 && axis.upper < 1e-2);
    }

    void failed_rows_are_marked_where_they_have_a_value() {
        PageStore page;
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
        QCOMPARE(drawn(all_of(data, Quantity::level).failed), QStringLiteral("36020 36040"));
        QCOMPARE(drawn(all_of(data, Quantity::mer).failed), QStringLiteral("9"));
    }

    void rows_are_taken_as_they_come() {
        PageStore page;
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

    void a_clock_that_was_set_back_keeps_the_curve_in_order() {
        PageStore page;
        TrendData data;
        Cells cells;
        for (const int second : {100, 110, 120, 60, 70, 115, 130}) {
            cells.time = clock_text(36000 + second);
            cells.lev = QString::number(second);
            page.append(row(cells));
            data.update(page);
            QCOMPARE(data.newest(), *row_midnight("21/11/26") + 36000 + second);
        }
        QCOMPARE(drawn(all_of(data, Quantity::level).line),
                 QStringLiteral("60 70 100 110 115 120 130"));
        TrendData at_once;
        at_once.update(page);
        QCOMPARE(drawn(all_of(at_once, Quantity::level).line),
                 drawn(all_of(data, Quantity::level).line));
    }

    void a_reloaded_log_plots_as_the_run_that_wrote_it() {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("run.log"));
        PageModel live;
        MeasurementLog log;
        log.open(path, live);
        for (int k = 0; k < 30; ++k) {
            Cells cells;
            cells.time = clock_text(36000 + k);
            cells.lev = k % 7 == 3 ? QString() : QString::number(50 + k % 5);
            cells.fr = QString::number(11000 + k % 3);
            live.append(row(cells));
            QVERIFY(log.append(live.store().line(k)));
        }
        PageModel reloaded;
        MeasurementLog again;
        again.open(path, reloaded);
        const auto table = [](const PageModel& page) {
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

    void dense_points_keep_extremes_gaps_and_failures() {
        PageStore page;
        Cells cells;
        constexpr int kRows = 20000;
        for (int k = 0; k < kRows; ++k) {
            cells.time = clock_text(k);
            cells.lev = QString::number(50 + k % 3);
            cells.status = QStringLiteral("PASS");
            if (k == 7000) cells.lev = QStringLiteral("99");
            if (k == 9000) cells.lev = QStringLiteral("7");
            if (k == 9000) cells.status = QStringLiteral("FAIL");
            if (k == 12345) cells.lev = QString();
            page.append(row(cells));
        }
        const TrendData data = data_of(page);
        const TrendSamples samples = all_of(data, Quantity::level, 100);
        QVERIFY(samples.dense);
        QVERIFY2(samples.line.size() <= 4 * 102, qPrintable(QString::number(samples.line.size())));
        const QStringList texts = drawn(samples.line).split(u' ');
        QCOMPARE(texts.count(QStringLiteral("99")), 1);
        QCOMPARE(texts.count(QStringLiteral("7")), 1);
        QCOMPARE(texts.count(QStringLiteral("|")), 1);
        QCOMPARE(drawn(samples.failed), QStringLiteral("7"));
        QCOMPARE(samples.values->lower, 7.0);
        QCOMPARE(samples.values->upper, 99.0);
        for (std::size_t k = 1; k < samples.line.size(); ++k)
            QVERIFY(samples.line[k - 1].time <= samples.line[k].time);
    }

    void every_second_row_empty_leaves_no_line_at_all() {
        PageStore page;
        Cells cells;
        for (int k = 0; k < 10000; ++k) {
            cells.time = clock_text(k);
            cells.lev = k % 2 == 0 ? QStringLiteral("55") : QString();
            page.append(row(cells));
        }
        const TrendSamples samples = all_of(data_of(page), Quantity::level, 100);
        QVERIFY(samples.line.empty());
        QVERIFY(samples.dots.size() >= 100);
    }

    void only_what_is_in_sight_is_sampled_with_its_neighbours() {
        QStringList levels;
        for (int k = 0; k < 100; ++k) levels << QString::number(k);
        const TrendData data = data_of(page_of_levels(levels));
        const double start = data.time().lower;
        const TrendSamples samples =
            sample_trend(*data.series()[0], Quantity::level, {start + 305, start + 335}, 1000);
        QCOMPARE(drawn(samples.line), QStringLiteral("30 31 32 33 34"));
        QCOMPARE(samples.values->lower, 31.0);
        QCOMPARE(samples.values->upper, 33.0);
    }

    void the_value_axis_shows_limits_but_never_presses_the_values_flat() {
        const TrendRange values{55, 60};
        const TrendRange near = value_axis(Quantity::level, values, TrendRange{40, 80});
        QVERIFY(near.lower < 40 && near.upper > 80);
        const TrendRange far = value_axis(Quantity::level, values, TrendRange{0, 9999});
        QVERIFY(far.upper < 100);
        const TrendRange flat = value_axis(Quantity::mer, TrendRange{12, 12}, {});
        QVERIFY(flat.span() >= 5);
        QVERIFY(flat.lower < 12 && flat.upper > 12);
        const TrendRange zero = value_axis(Quantity::ber, TrendRange{1e-6, 1e-5}, TrendRange{0, 1});
        QVERIFY(zero.lower > 0 && std::isfinite(zero.upper));
    }

    void the_value_axis_has_its_room_and_its_shortest_length_data() {
        QTest::addColumn<int>("quantity");
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<double>("lower");
        QTest::addColumn<double>("upper");
        const auto row = [](const char* name, Quantity quantity, const QList<double>& values,
                            double lower, double upper) {
            QTest::newRow(name) << static_cast<int>(quantity) << values << lower << upper;
        };
        row("no level", Quantity::level, {}, 12, 128);
        row("one level", Quantity::level, {50, 50}, 44.2, 55.8);
        row("levels far apart", Quantity::level, {40, 70}, 37.6, 72.4);
        row("no MER", Quantity::mer, {}, -2.4, 32.4);
        row("one MER", Quantity::mer, {10, 10}, 7.1, 12.9);
        row("no error rate", Quantity::ber, {}, std::pow(10, -9.64), std::pow(10, -0.36));
        row("one error rate", Quantity::ber, {1e-4, 1e-4}, std::pow(10, -5.16),
            std::pow(10, -2.84));
    }
    void the_value_axis_has_its_room_and_its_shortest_length() {
        QFETCH(int, quantity);
        QFETCH(QList<double>, values);
        std::optional<TrendRange> in_sight;
        if (!values.isEmpty()) in_sight = TrendRange{values[0], values[1]};
        const TrendRange axis = value_axis(static_cast<Quantity>(quantity), in_sight, {});
        QTEST(axis.lower, "lower");
        QTEST(axis.upper, "upper");
    }

    void the_window_shows_all_until_the_user_zooms_and_follows_the_newest_row() {
        TrendWindow window;
        window.rows_came({1000, 2000}, 2000);
        QVERIFY(window.shown().lower < 1000 && window.shown().upper > 2000);
        window.rows_came({1000, 3000}, 3000);
        QVERIFY(window.shown().upper > 3000);
        window.choose({2900, 3010});
        QVERIFY(window.follows());
        window.rows_came({1000, 3100}, 3100);
        QCOMPARE(window.shown().span(), 110.0);
        QVERIFY(window.shown().upper > 3100 && window.shown().lower > 2900);
        window.choose({1500, 1600});
        QVERIFY(!window.follows());
        window.rows_came({1000, 3200}, 3200);
        QCOMPARE(window.shown().lower, 1500.0);
        window.set_follows(true);
        QVERIFY(window.shown().upper > 3200);
        QCOMPARE(window.shown().span(), 100.0);
        window.reset();
        QVERIFY(window.shown().lower < 1000 && window.shown().upper > 3200);
    }

    void a_window_that_does_not_follow_stands_still() {
        TrendWindow window;
        window.set_follows(false);
        window.rows_came({1000, 2000}, 2000);
        const TrendRange before = window.shown();
        window.rows_came({1000, 9000}, 9000);
        QCOMPARE(window.shown().upper, before.upper);
    }

    void zooming_stays_within_what_can_be_shown() {
        TrendWindow window;
        window.rows_came({1000, 2000}, 2000);
        window.choose({1500, 1500.001});
        QVERIFY(window.shown().span() >= 2);
        window.choose({-1e12, 1e12});
        QCOMPARE(window.shown().span(), 1200.0);
        window.choose({1e9, 1e9 + 100});
        QVERIFY(window.shown().lower <= 2000);
    }

    void one_row_alone_has_a_minute_around_it() {
        TrendWindow window;
        window.rows_came({1000, 1000}, 1000);
        QCOMPARE(window.shown().span(), 60.0);
    }

    void the_table_holds_every_row_and_leaves_gaps_empty() {
        PageStore page;
        Cells cells;
        cells.ber = QStringLiteral("<1.0E-8");
        cells.status = QStringLiteral("PASS");
        page.append(row(cells));
        cells.fr = QStringLiteral("950.5");
        cells.osc = QString();
        cells.lev = QStringLiteral(">99.5");
        page.append(row(cells));
        cells = {};
        cells.time = QStringLiteral("10:00:10");
        cells.lev = cells.mer = QString();
        cells.status = QStringLiteral("FAIL");
        page.append(row(cells));
        const TrendData data = data_of(page);
        std::vector<const TrendSeries*> series;
        for (const auto& each : data.series()) series.push_back(each.get());
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(write_trend_table(buffer, series));
        QCOMPARE(
            buffer.data(),
            QByteArray("TIME\tPROGRAM\tLEV\tBER\tMER\tSTATUS\tMARKS\tUNIT\n"
                       "2026-11-21 10:00:00\t11778.0 / 10600\t58.3\t1e-08\t14.2\tPASS\tBER<\t\n"
                       "2026-11-21 10:00:10\t11778.0 / 10600\t\t2e-04\t\tFAIL\t\t\n"
                       "2026-11-21 10:00:00\t950.5\t99.5\t1e-08\t14.2\tPASS\tLEV> BER<\t\n"));
    }

    void a_long_table_that_cannot_be_written_says_so() {
        QStringList levels;
        for (int k = 0; k < 8000; ++k) levels += QString::number(k % 90);
        const TrendData data = data_of(page_of_levels(levels));
        const std::vector<const TrendSeries*> series{data.series()[0].get()};
        QFile full(QStringLiteral("/dev/full"));
        QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QVERIFY(!write_trend_table(full, series));
        QBuffer room;
        QVERIFY(room.open(QIODevice::WriteOnly));
        QVERIFY(write_trend_table(room, series));
        QCOMPARE(room.data().count('\n'), 8001);
    }

    void a_table_that_cannot_be_written_says_so() {
        const TrendData data = data_of(page_of_levels({QStringLiteral("1")}));
        const std::vector<const TrendSeries*> series{data.series()[0].get()};
        QFile full(QStringLiteral("/dev/full"));
        QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QVERIFY(!write_trend_table(full, series));
    }
};

}  // namespace m47

QTEST_MAIN(m47::TrendTest)
#include "trend_test.moc"
