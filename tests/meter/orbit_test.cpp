// SPDX-License-Identifier: GPL-3.0-or-later
// The geostationary arc above the simulated meter: what the dish hands down is checked against
// skies of one or two transponders, whose figures can be reckoned by hand.
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

#include "carrier_shape.h"
#include "decibel.h"
#include "dish_beam.h"
#include "orbit_reception.h"
#include "qpsk_waterfall.h"

using meter::ListedPosition;
using meter::ListedTransponder;
using meter::OrbitOptions;
using meter::ScanTables;

namespace {

constexpr double kSkyMhz = 11500.0;
constexpr double kIfMhz = kSkyMhz - 9750.0;

ListedTransponder transponder(double mhz, char polarisation = 'V') {
    return {mhz, 27500, meter::InnerCode::r3_4, polarisation, false};
}

ScanTables one_satellite(double east = 13.0, char polarisation = 'V') {
    return ScanTables({ListedPosition{east, {"A"}, {transponder(kSkyMhz, polarisation)}}});
}

/// A sky without chance: each transponder has this C/N on the axis.
OrbitOptions plain(double cn_db) {
    OrbitOptions options;
    options.cn_db = cn_db;
    options.spread_db = options.off_air_percent = options.unlisted_percent = 0.0;
    options.drift_mhz = options.weather_db = 0.0;
    return options;
}

meter::Settings tuned(double if_mhz, int volt = 13) {
    meter::Settings settings;
    settings.if_mhz = if_mhz;
    settings.lnb_on = true;
    settings.lnb_volt = volt;
    return settings;
}

/// The carriers' power in the meter's filter, without the noise, as a ratio to 1 uV.
double carriers(const meter::Reception& reception, double if_mhz = kIfMhz, int volt = 13) {
    const double all =
        meter::linear(reception.band_power(tuned(if_mhz, volt), if_mhz - 4, if_mhz + 4));
    return all - 8.0 * meter::linear(meter::orbit_noise_density(if_mhz));
}

bool near(double value, double wanted, double tolerance) {
    if (std::abs(value - wanted) <= tolerance) return true;
    qWarning("%g instead of %g", value, wanted);
    return false;
}

/// A hundred transponders with room between them.
ScanTables hundred() {
    ListedPosition position{0.0, {"A"}, {}};
    for (int i = 0; i < 100; ++i)
        position.transponders.push_back(transponder(10710.0 + 40.0 * (i / 2), i % 2 ? 'H' : 'V'));
    return ScanTables({position});
}

QByteArray drawn(const ScanTables& tables, std::uint64_t seed, double east) {
    OrbitOptions options;
    options.seed = seed;
    const meter::Orbit orbit(tables, options);
    meter::OrbitReception reception(orbit);
    reception.point(east);
    QByteArray text;
    for (double mhz = 950.0; mhz < 2150.0; mhz += 7.0)
        text += QByteArray::number(reception.band_power(tuned(mhz), mhz - 4, mhz + 4), 'f', 6);
    return text;
}

}  // namespace

class TestOrbit : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_table_is_read();
    void positions_of_names_data();
    void positions_of_names();
    void the_same_position_is_one();
    void a_folder_without_tables();
    void the_installed_tables();
    void a_carrier_has_a_plateau_and_edges();
    void half_a_beam_off_costs_3_db();
    void the_beam_is_as_wide_as_the_dish_makes_it();
    void the_link_budget();
    void satellites_in_the_beam_add_up();
    void the_other_polarisation_leaks();
    void circular_and_linear_share_half();
    void converters();
    void the_channel_ber();
    void the_waterfall_goes_through_the_standard();
    void lock_begins_at_its_threshold();
    void what_is_not_qpsk_of_the_first_generation_has_power_alone();
    void a_neighbour_on_the_same_frequency_spoils_the_lock();
    void drift();
    void chance_takes_and_gives();
    void what_cannot_be_there_at_once_is_not();
    void the_same_seed_is_the_same_sky();
    void the_sky_does_not_depend_on_the_way_there();
    void fading_is_slow_and_bounded();
};

void TestOrbit::a_table_is_read() {
    const auto list = meter::transponders_of(
        "# comment\n[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 10719500\n"
        "\tPOLARIZATION = HORIZONTAL\n\tSYMBOL_RATE = 29900000\n\tINNER_FEC = 5/6\n"
        "[Sky UK]\r\n  DELIVERY_SYSTEM = DVBS2\r\n  FREQUENCY = 11778000\r\n"
        "  POLARIZATION = LEFT\r\n  SYMBOL_RATE = 27500000\r\n  INNER_FEC = AUTO\r\n"
        "[no frequency]\n\tSYMBOL_RATE = 27500000\n[no rate]\n\tFREQUENCY = 11000000\n");
    QCOMPARE(list.size(), std::size_t{2});
    QCOMPARE(list[0].mhz, 10719.5);
    QCOMPARE(list[0].symbol_rate, 29900);
    QVERIFY(list[0].code == meter::InnerCode::r5_6 && list[0].polarisation == 'H');
    QVERIFY(!list[0].second_generation && !list[0].circular());
    QVERIFY(list[1].second_generation && list[1].circular());
    QCOMPARE(list[1].mhz, 11778.0);
}

void TestOrbit::positions_of_names_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("good");
    QTest::addColumn<double>("east");
    QTest::newRow("east") << QByteArray("13.0E") << true << 13.0;
    QTest::newRow("west") << QByteArray("5W") << true << -5.0;
    QTest::newRow("no letter") << QByteArray("13.0") << false << 0.0;
    QTest::newRow("too far") << QByteArray("190E") << false << 0.0;
    QTest::newRow("nothing") << QByteArray("") << false << 0.0;
    QTest::newRow("letter alone") << QByteArray("E") << false << 0.0;
}

void TestOrbit::positions_of_names() {
    QFETCH(QByteArray, text);
    QFETCH(bool, good);
    QFETCH(double, east);
    double found = 0.0;
    QCOMPARE(meter::parse_position(text.toStdString(), found), good);
    QCOMPARE(found, east);
}

void TestOrbit::the_same_position_is_one() {
    const ScanTables tables({ListedPosition{19.2, {"B"}, {transponder(11000)}},
                             ListedPosition{-5.0, {"C"}, {transponder(11000)}},
                             ListedPosition{19.21, {"A"}, {transponder(11100)}}});
    QCOMPARE(tables.positions().size(), std::size_t{2});
    QCOMPARE(tables.positions()[0].east, -5.0);
    QCOMPARE(tables.positions()[1].names, (std::vector<std::string>{"B", "A"}));
    QCOMPARE(tables.positions()[1].transponders.size(), std::size_t{2});
}

void TestOrbit::a_folder_without_tables() {
    const QTemporaryDir folder;
    QVERIFY_EXCEPTION_THROWN((void)ScanTables::read(folder.path().toStdString()),
                             std::runtime_error);
    QVERIFY_EXCEPTION_THROWN((void)ScanTables::read("/nonexistent/folder"), std::runtime_error);
}

void TestOrbit::the_installed_tables() {
    // Install dtv-scan-tables where this fails.
    const ScanTables tables = ScanTables::read("/usr/share/dvb/dvb-s");
    QVERIFY(tables.positions().size() > 150);
    std::size_t transponders = 0;
    for (const ListedPosition& position : tables.positions()) {
        transponders += position.transponders.size();
        QVERIFY(!position.names.empty() && !position.transponders.empty());
    }
    QVERIFY2(transponders > 9000, qPrintable(QString::number(transponders)));
    const meter::Orbit orbit(tables, {});
    QVERIFY2(orbit.around(13.0, 0.0).size() > 50, "a crowded position");
    QVERIFY2(orbit.around(-155.0, 3.0).empty(), "the middle of the ocean");
}

void TestOrbit::a_carrier_has_a_plateau_and_edges() {
    QVERIFY(near(meter::shape_between(27.5, -100, 100), 27.5, 1e-9));
    QVERIFY(near(meter::shape_between(27.5, -4, 4), 8.0, 1e-9));
    const double end = 27.5 * 1.35 / 2;
    QCOMPARE(meter::shape_between(27.5, end, end + 10), 0.0);
    // At half the symbol rate off the centre the edge is at half its density.
    QVERIFY(near(meter::shape_between(27.5, 13.75 - 0.01, 13.75 + 0.01), 0.01, 1e-5));
    const ScanTables tables = one_satellite();
    const meter::Orbit orbit(tables, plain(15.0));
    meter::OrbitReception reception(orbit);
    reception.point(13.0);
    const double noise = meter::orbit_noise_density(kIfMhz);
    QVERIFY(near(reception.band_power(tuned(kIfMhz), kIfMhz - 4, kIfMhz + 4),
                 noise + meter::decibel(8.0 * (1.0 + meter::linear(15.0))), 0.01));
    QVERIFY(near(carriers(reception, kIfMhz + end + 4.1), 0.0, 1e-3));
}

void TestOrbit::half_a_beam_off_costs_3_db() {
    const ScanTables tables = one_satellite();
    const meter::Orbit orbit(tables, plain(15.0));
    meter::OrbitReception reception(orbit);
    reception.point(13.0);
    const double peak = carriers(reception);
    const double half = meter::beam_width(80.0, kSkyMhz) / 2.0;
    for (const double east : {13.0 + half, 13.0 - half}) {
        reception.point(east);
        QVERIFY(near(meter::decibel(carriers(reception) / peak), -3.0, 0.01));
    }
    reception.point(13.0 + 2 * half);
    QVERIFY(near(meter::decibel(carriers(reception) / peak), -12.0, 0.01));
    reception.point(-167.0);
    QVERIFY(near(carriers(reception), 0.0, 1e-6));
}

void TestOrbit::the_beam_is_as_wide_as_the_dish_makes_it() {
    QVERIFY(near(meter::beam_width(80.0, 11700.0), 2.242, 0.001));
    QVERIFY(near(meter::beam_width(160.0, 11700.0), 1.121, 0.001));
    QVERIFY(near(meter::dish_gain(80.0, 11700.0), 37.96, 0.02));
    QCOMPARE(meter::arc_between(179.0, -179.0), 2.0);
}

void TestOrbit::the_link_budget() {
    // 50 dBW - 205.5 dB of path + 37.96 dBi - (-228.6 + 21.8 + 74.4) dBW of noise
    QVERIFY(near(meter::link_cn(50.0, 80.0, 11700.0, 27.5), 14.85, 0.1));
    const double wider = meter::link_cn(50.0, 160.0, 11700.0, 27.5);
    QVERIFY(near(wider - meter::link_cn(50.0, 80.0, 11700.0, 27.5), 6.02, 0.01));
}

void TestOrbit::satellites_in_the_beam_add_up() {
    const ScanTables tables({ListedPosition{13.0, {"A"}, {transponder(kSkyMhz)}},
                             ListedPosition{14.0, {"B"}, {transponder(kSkyMhz)}}});
    const meter::Orbit orbit(tables, plain(15.0));
    meter::OrbitReception both(orbit);
    both.point(13.5);
    const ScanTables alone = one_satellite();
    const meter::Orbit one_orbit(alone, plain(15.0));
    meter::OrbitReception one(one_orbit);
    one.point(13.5);
    QVERIFY(near(carriers(both) / carriers(one), 2.0, 1e-9));
}

void TestOrbit::the_other_polarisation_leaks() {
    const ScanTables tables = one_satellite();
    const meter::Orbit orbit(tables, plain(30.0));
    meter::OrbitReception reception(orbit);
    reception.point(13.0);
    const double leak = carriers(reception, kIfMhz, 18) / carriers(reception, kIfMhz, 13);
    QVERIFY(near(meter::decibel(leak), -22.0, 0.01));
}

void TestOrbit::circular_and_linear_share_half() {
    const meter::Lnb universal;
    QCOMPARE(meter::polarisation_loss(universal, false, 'L'), -3.0);
    QCOMPARE(meter::polarisation_loss(universal, true, 'L'), -3.0);
    const auto circular = meter::lnb_of_name("circular").value();
    QCOMPARE(meter::polarisation_loss(circular, true, 'L'), 0.0);
    QCOMPARE(meter::polarisation_loss(circular, false, 'L'), -22.0);
    QCOMPARE(meter::polarisation_loss(circular, false, 'H'), -3.0);
}

void TestOrbit::converters() {
    const meter::Lnb universal;
    QCOMPARE(meter::converted(universal, false, 11500.0).value(), 1750.0);
    QCOMPARE(meter::converted(universal, true, 11700.0).value(), 1100.0);
    QVERIFY(!meter::converted(universal, true, 11000.0));
    const auto c_band = meter::lnb_of_name("c-band").value();
    QCOMPARE(meter::converted(c_band, false, 3700.0).value(), 1450.0);
    QVERIFY(!meter::lnb_of_name("ka"));
    meter::Settings settings = tuned(1000.0, 18);
    settings.tone_on = true;
    QVERIFY(meter::lnb_state(settings).high_voltage && meter::lnb_state(settings).tone);
    settings.lnb_on = false;
    QVERIFY(!meter::lnb_state(settings).high_voltage && !meter::lnb_state(settings).tone);
}

void TestOrbit::the_channel_ber() {
    // QPSK in theory: 7.8E-4 where Es/N0 is 10 dB, which the receiver reaches 0.8 dB later.
    QVERIFY(near(meter::ber_of_channel(10.8), 7.83e-4, 0.01e-4));
    QVERIFY(near(meter::ber_of_channel(7.4), 1.6e-2, 0.1e-2));
}

void TestOrbit::the_waterfall_goes_through_the_standard() {
    const std::pair<meter::InnerCode, double> points[] = {{meter::InnerCode::r1_2, 4.5},
                                                          {meter::InnerCode::r2_3, 5.0},
                                                          {meter::InnerCode::r3_4, 5.5},
                                                          {meter::InnerCode::r5_6, 6.0},
                                                          {meter::InnerCode::r7_8, 6.4}};
    for (const auto& [code, ebn0] : points) {
        const double cn = meter::cn_of_ebn0(ebn0, code);
        QVERIFY(near(meter::ber_behind_viterbi(cn, code), 2.0e-4, 1e-8));
        QVERIFY(meter::ber_behind_viterbi(cn + 1.0, code) < 5.0e-5);
        QVERIFY(meter::ber_behind_viterbi(cn + 3.0, code) < 5.0e-7);
        QVERIFY(meter::ber_behind_viterbi(cn - 1.0, code) > 5.0e-4);
        QVERIFY(meter::ber_behind_viterbi(-20.0, code) <= 0.5);
    }
    // 3/4: 5.5 dB and two times 3/4 times 188/204 bits in a symbol
    QVERIFY(near(meter::cn_of_ebn0(5.5, meter::InnerCode::r3_4), 6.91, 0.01));
    QCOMPARE(
        meter::ebn0_of_cn(meter::cn_of_ebn0(5.5, meter::InnerCode::r3_4), meter::InnerCode::r3_4),
        5.5);
}

void TestOrbit::lock_begins_at_its_threshold() {
    const double lowest = meter::lowest_lock_cn(meter::InnerCode::r3_4);
    QVERIFY(near(lowest, 5.91, 0.01));
    const ScanTables tables = one_satellite();
    for (const double more : {-0.1, 0.1}) {
        const meter::Orbit orbit(tables, plain(lowest + more));
        meter::OrbitReception reception(orbit);
        reception.point(13.0);
        const meter::QpskQuality quality = reception.qpsk(tuned(kIfMhz), 0.0);
        QCOMPARE(quality.locked, more > 0);
        QCOMPARE(quality.mer_db > 1.0, more > 0);
        QVERIFY2(!reception.qpsk(tuned(kIfMhz + 3.5), 0.0).locked, "too far from the centre");
        meter::Settings slower = tuned(kIfMhz);
        slower.symbol_rate = 27000;
        QVERIFY(!reception.qpsk(slower, 0.0).locked);
        QVERIFY(!reception.qpsk(tuned(kIfMhz, 18), 0.0).locked);
    }
}

void TestOrbit::what_is_not_qpsk_of_the_first_generation_has_power_alone() {
    ListedTransponder second = transponder(kSkyMhz);
    second.second_generation = true;
    const ScanTables tables({ListedPosition{13.0, {"A"}, {second}}});
    const meter::Orbit orbit(tables, plain(15.0));
    meter::OrbitReception reception(orbit);
    reception.point(13.0);
    QVERIFY(carriers(reception) > 1.0e4);
    QVERIFY(!reception.qpsk(tuned(kIfMhz), 0.0).locked);
    QVERIFY(near(reception.channel_cn(tuned(kIfMhz), 8.0), 15.0, 0.01));
}

void TestOrbit::a_neighbour_on_the_same_frequency_spoils_the_lock() {
    const ScanTables tables({ListedPosition{13.0, {"A"}, {transponder(kSkyMhz)}},
                             ListedPosition{14.0, {"B"}, {transponder(kSkyMhz)}}});
    OrbitOptions options = plain(15.0);
    options.dish_cm = 120.0;
    const meter::Orbit orbit(tables, options);
    meter::OrbitReception reception(orbit);
    reception.point(13.4);
    QVERIFY(!reception.qpsk(tuned(kIfMhz), 0.0).locked);
    reception.point(12.6);
    QVERIFY(reception.qpsk(tuned(kIfMhz), 0.0).locked);
}

void TestOrbit::drift() {
    const ScanTables tables = one_satellite();
    OrbitOptions options = plain(15.0);
    options.drift_mhz = 3.0;
    double farthest = 0.0;
    for (options.seed = 1; options.seed <= 200; ++options.seed) {
        const meter::Orbit orbit(tables, options);
        farthest = std::max(farthest, std::abs(orbit.drift_mhz()));
        meter::OrbitReception reception(orbit);
        reception.point(13.0);
        const meter::QpskQuality quality = reception.qpsk(tuned(kIfMhz), 0.0);
        QVERIFY(quality.locked);
        QVERIFY(near(quality.offset_mhz, orbit.drift_mhz(), 1e-9));
    }
    QVERIFY(farthest > 2.8 && farthest <= 3.0);
}

void TestOrbit::chance_takes_and_gives() {
    const ScanTables tables = hundred();
    OrbitOptions options;
    std::size_t differing = 0;
    std::size_t unlisted = 0;
    for (options.seed = 1; options.seed <= 20; ++options.seed) {
        const auto on_air = meter::Orbit(tables, options).around(0.0, 1.0);
        const auto listed =
            std::count_if(on_air.begin(), on_air.end(), [](const auto& t) { return t.listed; });
        QCOMPARE(listed, 80);
        unlisted += on_air.size() - 80;
        const auto usual = [](const meter::OnAir& t) { return t.cn_db; };
        differing += usual(on_air[0]) != usual(on_air[1]);
    }
    QVERIFY2(unlisted > 100 && unlisted <= 200, qPrintable(QString::number(unlisted)));
    QCOMPARE(differing, std::size_t{20});
    options.off_air_percent = options.unlisted_percent = 0.0;
    QCOMPARE(meter::Orbit(tables, options).around(0.0, 1.0).size(), std::size_t{100});
}

void TestOrbit::what_cannot_be_there_at_once_is_not() {
    ListedTransponder other_year = transponder(kSkyMhz + 3.0);
    other_year.second_generation = true;
    const ScanTables tables({ListedPosition{28.2, {"A"}, {transponder(kSkyMhz)}},
                             ListedPosition{28.5, {"B"}, {other_year}},
                             ListedPosition{29.5, {"C"}, {transponder(kSkyMhz)}}});
    QCOMPARE(meter::neighbourhoods_of(tables).size(), std::size_t{2});
    bool first = false;
    bool second = false;
    OrbitOptions options = plain(15.0);
    for (options.seed = 1; options.seed <= 20; ++options.seed) {
        const meter::Orbit orbit(tables, options);
        QCOMPARE(orbit.around(28.3, 0.3).size(), std::size_t{1});
        QCOMPARE(orbit.around(28.3, 2.0).size(), std::size_t{2});
        (orbit.around(28.3, 0.3)[0].east < 28.4 ? first : second) = true;
    }
    QVERIFY(first && second);
}

void TestOrbit::the_same_seed_is_the_same_sky() {
    const ScanTables tables = hundred();
    QCOMPARE(drawn(tables, 3, 0.4), drawn(tables, 3, 0.4));
    QVERIFY(drawn(tables, 3, 0.4) != drawn(tables, 4, 0.4));
}

void TestOrbit::the_sky_does_not_depend_on_the_way_there() {
    const ScanTables tables({ListedPosition{0.0, {"A"}, hundred().positions()[0].transponders},
                             ListedPosition{20.0, {"B"}, hundred().positions()[0].transponders}});
    const meter::Orbit orbit(tables, {});
    meter::OrbitReception straight(orbit);
    straight.point(20.0);
    meter::OrbitReception around(orbit);
    for (double east = 0.0; east < 40.0; east += 0.1) around.point(east);
    around.point(20.0);
    for (double mhz = 950.0; mhz < 2150.0; mhz += 10.0)
        QCOMPARE(around.band_power(tuned(mhz), mhz - 4, mhz + 4),
                 straight.band_power(tuned(mhz), mhz - 4, mhz + 4));
}

void TestOrbit::fading_is_slow_and_bounded() {
    const ScanTables tables = one_satellite();
    OrbitOptions options;
    options.weather_db = 2.0;
    const meter::Orbit orbit(tables, options);
    double deepest = 0.0;
    for (double second = 0.0; second < 7200.0; ++second) {
        const double fade = orbit.fade_db(second);
        QVERIFY(fade <= 0.0 && fade >= -2.0);
        QVERIFY(std::abs(orbit.fade_db(second + 1.0) - fade) < 0.02);
        deepest = std::min(deepest, fade);
    }
    QVERIFY(deepest < -1.5);
}

QTEST_GUILESS_MAIN(TestOrbit)
#include "orbit_test.moc"
