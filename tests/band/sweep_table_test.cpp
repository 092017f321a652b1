// SPDX-License-Identifier: GPL-3.0-or-later
#include "sweep_table.h"
#include "band_test.h"
#include "carrier_names.h"

namespace m47::band {
namespace {

SweepRow row(double mhz, const QString& level, const SweepTerms& terms) {
    return {{mhz, measurement::reading_of(measurement::Quantity::level, level)}, terms};
}

QByteArray table_of(const std::vector<SweepRow>& rows) {
    QByteArray table = sweep_header();
    for (const SweepRow& one : rows) table += sweep_line(one);
    return table;
}

const SweepTerms kHighBand{{18, true}, 10600, kDbuv};

}  // namespace

void BandTest::rows_come_back_as_they_were_written() {
    const std::vector<SweepRow> rows{row(1103, "57.9", kHighBand), row(920, "<20.0", {}),
                                     row(2150, "", {{0, false}, 9750, kDbm}),
                                     row(950.5, ">-10.25", {{13, {}}, 5150, kDbmv})};
    const QByteArray table = table_of(rows);
    QCOMPARE(table, QByteArray("if_mhz\tsky_mhz\tlevel\tlevel_mark\tunit\tlnb\ttone\n"
                               "1103.0\t11703.0\t57.9\t\tdBuV\t18\ton\n"
                               "920.0\t\t20\t<\t\t\t\n"
                               "2150.0\t11900.0\t\t\tdBm\toff\toff\n"
                               "950.5\t4199.5\t-10.25\t>\tdBmV\t13\t\n"));
    const SweepRead read = read_sweep(table);
    QVERIFY(!read.fault);
    QCOMPARE(read.rows.size(), rows.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QCOMPARE(read.rows[k].sample.mhz, rows[k].sample.mhz);
        QVERIFY(read.rows[k].terms.oscillator == rows[k].terms.oscillator);
        QVERIFY(read.rows[k].terms.unit == rows[k].terms.unit);
        QVERIFY(read.rows[k].terms.feed == rows[k].terms.feed);
        QVERIFY(read.rows[k].sample.level.mark == rows[k].sample.level.mark);
    }
    QCOMPARE(table_of(read.rows), table);
    // Another system may have ended the lines its own way.
    QCOMPARE(table_of(read_sweep(QByteArray(table).replace("\n", "\r\n")).rows), table);
}

void BandTest::a_table_is_read_as_far_as_it_is_sound_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("fault");
    const QString unsound =
        QStringLiteral("The table was read up to line 3, which is no row of a band sweep.");
    const auto add = [&](const char* name, const char* line) {
        QTest::newRow(name) << QByteArray(line) << unsound;
    };
    add("empty", "\n");
    add("too few cells", "1000.0\t\t57.9\t\tdBuV\t18\n");
    add("too many cells", "1000.0\t\t57.9\t\tdBuV\t18\ton\t\n");
    add("no frequency", "\t\t57.9\t\tdBuV\t18\ton\n");
    add("outside the band", "919.9\t\t57.9\t\tdBuV\t18\ton\n");
    add("no number", "1e3\t\t57.9\t\tdBuV\t18\ton\n");
    add("more digits than a sweep writes", "1000.05\t\t57.9\t\tdBuV\t18\ton\n");
    add("not a number", "1000.0\t\tnan\t\tdBuV\t18\ton\n");
    add("a line end within", "1000.0\t\t57.9\n\t\tdBuV\t18\ton\n");
    add("blank in front", " 1000.0\t\t57.9\t\tdBuV\t18\ton\n");
    add("mark without a level", "1000.0\t\t\t<\tdBuV\t18\ton\n");
    add("another mark", "1000.0\t\t57.9\t=\tdBuV\t18\ton\n");
    add("another unit", "1000.0\t\t57.9\t\tdBW\t18\ton\n");
    add("another voltage", "1000.0\t\t57.9\t\tdBuV\t14\ton\n");
    add("another tone", "1000.0\t\t57.9\t\tdBuV\t18\tjes\n");
    add("no oscillator fits", "1000.0\t1100.0\t57.9\t\tdBuV\t18\ton\n");
    QTest::newRow("cut off") << QByteArray("1000.0\t\t57.9\t\tdBuV\t18\ton")
                             << "The table was read up to line 3, which is cut off.";
}

void BandTest::a_table_is_read_as_far_as_it_is_sound() {
    QFETCH(QByteArray, line);
    const Texts texts;
    const QByteArray table = sweep_header() + sweep_line(row(1103, "57.9", kHighBand));
    const SweepRead read = read_sweep(table + line);
    QCOMPARE(read.rows.size(), std::size_t{1});
    QVERIFY(read.fault);
    QTEST(read.fault->in(texts), "fault");
    const SweepRead other = read_sweep("MHz\tdB\n1000\t57\n");
    QVERIFY(other.rows.empty());
    QCOMPARE(other.fault->in(texts),
             QString("This is no table of a band sweep: its first line is another."));
    QVERIFY(read_sweep({}).fault);
    QVERIFY(!read_sweep(sweep_header()).fault);
}

void BandTest::carriers_are_written_with_their_names() {
    const Carrier carrier{1103.04, 27.46, 57.93, 21.2, QStringLiteral("RAI\t1")};
    QCOMPARE(
        carrier_header() + carrier_line(carrier, kHighBand) + carrier_line({950, 30, 50, 12}, {}),
        QByteArray("centre_if_mhz\tcentre_sky_mhz\twidth_mhz\tlevel\theight_db\tunit\tlnb\t"
                   "tone\tname\n"
                   "1103.0\t11703.0\t27.5\t57.9\t21.2\tdBuV\t18\ton\tRAI 1\n"
                   "950.0\t\t30.0\t50.0\t12.0\t\t\t\t\n"));
}

void BandTest::carriers_are_named_by_what_fits_data() {
    QTest::addColumn<double>("centre");
    QTest::addColumn<double>("width");
    QTest::addColumn<int>("volts");
    QTest::addColumn<QString>("name");
    QTest::newRow("in its place") << 1178.0 << 27.0 << 13 << "RAI 1";
    QTest::newRow("drifted") << 1181.4 << 27.0 << 13 << "RAI 1";
    QTest::newRow("no name of its own") << 1219.0 << 29.0 << 18 << "11818 H 27500";
    QTest::newRow("too far off") << 1184.0 << 27.0 << 13 << "";
    QTest::newRow("too narrow") << 1178.0 << 10.0 << 13 << "";
    QTest::newRow("the other polarisation") << 1178.0 << 27.0 << 18 << "";
    QTest::newRow("the nearer one") << 1301.0 << 5.0 << 18 << "near";
}

void BandTest::carriers_are_named_by_what_fits() {
    QFETCH(double, centre);
    QFETCH(double, width);
    QFETCH(int, volts);
    const auto listed = listed_transponders(QStringLiteral(
        "[RAI 1]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 11778000\nPOLARIZATION = VERTICAL\n"
        "SYMBOL_RATE = 27500000\n"
        "[CHANNEL]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 11818000\nPOLARIZATION = HORIZONTAL\n"
        "SYMBOL_RATE = 27500000\n"
        "[far]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 11897000\nPOLARIZATION = HORIZONTAL\n"
        "SYMBOL_RATE = 5000000\n"
        "[near]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 11902000\nPOLARIZATION = HORIZONTAL\n"
        "SYMBOL_RATE = 5000000\n"
        "[unread]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = x\n"));
    QCOMPARE(listed.size(), std::size_t{4});
    std::vector<Carrier> carriers{{.centre = centre, .width = width}};
    name_carriers(carriers, listed, {{volts, true}, 10600, kDbuv});
    QTEST(carriers[0].name, "name");
    std::vector<Carrier> nowhere{{.centre = centre, .width = width}};
    name_carriers(nowhere, listed, {{volts, true}, {}, kDbuv});
    QCOMPARE(nowhere[0].name, QString());
}

void BandTest::the_sky_lies_above_or_below_its_oscillator() {
    QCOMPARE(sky_frequency(1100, 10600), 11700.0);
    QCOMPARE(sky_frequency(1100, 5150), 4050.0);
}

}  // namespace m47::band
