// SPDX-License-Identifier: GPL-3.0-or-later
// The search for the peak on made-up skies, on the simulated one, and over the line.
#include <QHash>
#include <QSet>
#include <QTest>
#include <cmath>
#include <stdexcept>

#include "dish.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link_antenna.h"
#include "meter_in_process.h"
#include "motor.h"
#include "orbit_reception.h"
#include "peak_search.h"
#include "receiver.h"
#include "virtual_clock.h"

namespace m47::peak {
namespace {

constexpr double kBeamSteps = 22.4;
constexpr double kNoiseDb = 47.0;

/// A dish on a motor with play, under satellites without chance.
class MadeUpSky : public Antenna {
  public:
    struct Satellite {
        double steps;  ///< east of where the dish looks at first
        double db;     ///< above the noise, on the axis
    };

    explicit MadeUpSky(std::vector<Satellite> satellites, int backlash = 0)
        : satellites_(std::move(satellites)), dish_(0.0, backlash, 0) {}

    bool drive(int steps) override {
        if (steps == 0) throw std::logic_error("a drive by nothing");
        drives.push_back(steps);
        if (drives_left == 0) return false;
        --drives_left;
        shaft += steps;
        farthest = std::max(farthest, std::abs(shaft));
        dish_.follow(shaft);
        return true;
    }
    void stop() noexcept override {
        ++stops;
        drives_before_stop = drives.size();
    }
    std::optional<double> level() override {
        if (fault) throw std::runtime_error("the line");
        came_from_west &= drives.empty() || drives.back() > 0;
        if (silent > 0) {
            --silent;
            return std::nullopt;
        }
        return 10.0 * std::log10(std::pow(10.0, kNoiseDb / 10.0) * (1.0 + carriers()));
    }
    std::optional<double> mer() override {
        if (!locks) return std::nullopt;
        return 10.0 * std::log10(carriers());
    }

    double looks_at() const { return dish_.east() * 10.0; }

    bool locks = false;
    bool fault = false;
    int silent = 0;  ///< so many questions for the level are not answered
    int drives_left = 1000;
    std::vector<int> drives;
    std::size_t drives_before_stop = 0;
    int stops = 0;
    int shaft = 0;
    int farthest = 0;
    bool came_from_west = true;

  private:
    double carriers() const {
        double sum = 0.0;
        for (const Satellite& satellite : satellites_) {
            const double widths = (looks_at() - satellite.steps) / kBeamSteps;
            sum += std::pow(10.0, (satellite.db - 12.0 * widths * widths) / 10.0);
        }
        return sum;
    }

    std::vector<Satellite> satellites_;
    meter::Dish dish_;
};

SearchResult search(Antenna& antenna, int span = 50) {
    SearchOptions options;
    options.span = span;
    return PeakSearch(antenna, options).run();
}

/// The simulated sky, a satellite every 3 degrees; the readings as the meter writes them.
class SimulatedSky : public Antenna {
  public:
    SimulatedSky(const meter::Orbit& orbit, double east, int backlash, std::uint64_t seed)
        : reception_(orbit),
          dish_(east, backlash, 0),
          jitter_(seed),
          receiver_(jitter_, reception_) {
        settings_.if_mhz = 1750.0;
        settings_.lnb_on = true;
        reception_.point(east);
    }
    bool drive(int steps) override {
        shaft_ += steps;
        dish_.follow(shaft_);
        reception_.point(dish_.east());
        return true;
    }
    void stop() noexcept override {}
    std::optional<double> level() override {
        return std::round(receiver_.level(settings_) * 10.0) / 10.0;
    }
    std::optional<double> mer() override {
        const meter::QpskQuality quality = receiver_.qpsk(settings_);
        if (!quality.locked) return std::nullopt;
        return std::round(quality.mer_db * 10.0) / 10.0;
    }
    double east() const { return dish_.east(); }

  private:
    meter::OrbitReception reception_;
    meter::Dish dish_;
    meter::Jitter jitter_;
    meter::Receiver receiver_;
    meter::Settings settings_;
    int shaft_ = 0;
};

}  // namespace

class PeakTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_parabola_has_its_summit();
    void what_has_no_summit();
    void satellites_along_the_arc();
    void the_carrier_alone();

    void the_peak_is_found_data();
    void the_peak_is_found();
    void the_nearest_of_two_is_taken();
    void a_strong_neighbour_does_not_draw_the_carrier();
    void on_the_peak_already();
    void the_span_is_never_left();
    void nothing_there();
    void nothing_better_goes_back();
    void cancelled_at_any_step();
    void an_exception_stops_the_motor();
    void a_motor_that_cannot_be_told();
    void a_lost_answer_is_asked_again();
    void a_silent_meter_ends_it();
    void points_are_told();
    void under_the_simulated_sky();

    void drives_over_the_line();
    void levels_over_the_line_data();
    void levels_over_the_line();
    void mer_over_the_line();
    void the_line_is_lost();
    void told_to_end_the_motor_is_stopped();
    void told_to_end_the_meter_measures_again();
    void every_kind_of_fault();
};

void PeakTest::a_parabola_has_its_summit() {
    std::vector<Point> points;
    for (const int steps : {-7, 1, 4, 12}) {
        const double away = steps - 2.5;
        points.push_back({steps, 60.0 - 0.02 * away * away});
    }
    QVERIFY(std::abs(summit(points).value() - 2.5) < 1e-9);
}

void PeakTest::what_has_no_summit() {
    QVERIFY(!summit({{0, 50.0}, {6, 55.0}}));
    QVERIFY(!summit({{0, 50.0}, {6, 49.0}, {12, 50.0}}));
    QVERIFY(!summit({{0, 50.0}, {0, 51.0}, {0, 50.0}}));
}

void PeakTest::satellites_along_the_arc() {
    const std::vector<Point> points{{-20, 55.0}, {-10, 50.0}, {0, 52.0},  {10, 52.0},
                                    {20, 50.0},  {30, 60.0},  {40, 55.0}, {50, 54.9}};
    const auto found = satellites_in(points, 0.5);
    QCOMPARE(found.size(), std::size_t{2});
    QVERIFY(std::abs(found[0] - 5.0) < 1e-9);
    QVERIFY(found[1] > 28.0 && found[1] < 34.0);
    QVERIFY(satellites_in(points, 11.0).empty());
    QVERIFY(satellites_in({{0, 50.0}, {10, 60.0}}, 0.5).empty());
}

void PeakTest::the_carrier_alone() {
    // Ten times the rest: 10/11 of all power.
    QVERIFY(std::abs(carrier_level(60.0, 10.0) - (60.0 - 0.414)) < 0.001);
    QVERIFY(std::abs(carrier_level(60.0, 0.0) - (60.0 - 3.010)) < 0.001);
}

void PeakTest::the_peak_is_found_data() {
    QTest::addColumn<double>("satellite");
    QTest::addColumn<int>("backlash");
    QTest::addColumn<bool>("locks");
    for (const double satellite : {-30.0, -14.6, -3.2, 0.0, 7.5, 21.0, 30.0})
        for (const int backlash : {0, 3})
            for (const bool locks : {false, true})
                QTest::addRow("%g, play %d, %s", satellite, backlash, locks ? "lock" : "no lock")
                    << satellite << backlash << locks;
}

void PeakTest::the_peak_is_found() {
    QFETCH(double, satellite);
    QFETCH(int, backlash);
    QFETCH(bool, locks);
    MadeUpSky sky({{satellite, 13.0}}, backlash);
    sky.locks = locks;
    const SearchResult result = search(sky);
    QVERIFY(result.end == SearchEnd::found);
    QCOMPARE(result.by_carrier, locks);
    QVERIFY2(std::abs(sky.looks_at() - satellite) <= 1.0,
             qPrintable(QString::number(sky.looks_at())));
    QCOMPARE(result.shaft, sky.shaft);
    QVERIFY(sky.came_from_west);
    QVERIFY(sky.farthest <= 50);
    QVERIFY(result.readings <= 35);
    QVERIFY2(sky.stops == 1 && sky.drives_before_stop == sky.drives.size(), "the last word");
    for (const int drive : sky.drives) QVERIFY(std::abs(drive) <= 10);
}

void PeakTest::the_nearest_of_two_is_taken() {
    MadeUpSky sky({{-17.0, 14.0}, {13.0, 12.0}});
    QVERIFY(search(sky).end == SearchEnd::found);
    // Without a lock the stronger one draws the peak of all power towards itself.
    QVERIFY2(std::abs(sky.looks_at() - 13.0) <= 2.0, qPrintable(QString::number(sky.looks_at())));
}

void PeakTest::a_strong_neighbour_does_not_draw_the_carrier() {
    const meter::ScanTables tables(
        {{0.0, {"A"}, {{11500.0, 27500, meter::InnerCode::r3_4, 'V', false}}},
         {3.0, {"B"}, {{11500.0, 22000, meter::InnerCode::r3_4, 'V', true}}}});
    meter::OrbitOptions options;
    options.cn_db = 14.0;
    options.off_air_percent = options.unlisted_percent = options.drift_mhz = 0.0;
    for (options.seed = 1; options.seed <= 10; ++options.seed) {
        const meter::Orbit orbit(tables, options);
        SimulatedSky sky(orbit, -0.73, 2, options.seed);
        const SearchResult result = search(sky);
        QVERIFY(result.end == SearchEnd::found && result.by_carrier);
        QVERIFY(std::abs(sky.east()) <= 0.1);
    }
}

void PeakTest::on_the_peak_already() {
    MadeUpSky sky({{0.0, 13.0}});
    const SearchResult result = search(sky);
    QVERIFY(result.end == SearchEnd::found);
    QVERIFY(std::abs(result.peak.value()) < 0.1);
    QCOMPARE(sky.shaft, 0);
}

void PeakTest::the_span_is_never_left() {
    for (const int span : {10, 13, 20, 35, 50}) {
        for (const double satellite : {-60.0, -40.0, 40.0, 60.0}) {
            MadeUpSky sky({{satellite, 20.0}}, 3);
            search(sky, span);
            QVERIFY2(sky.farthest <= span, qPrintable(QString::number(span)));
        }
    }
}

void PeakTest::nothing_there() {
    MadeUpSky sky({}, 2);
    const SearchResult result = search(sky);
    QVERIFY(result.end == SearchEnd::nothing_better && !result.peak);
    QCOMPARE(sky.shaft, 0);
    QCOMPARE(sky.stops, 1);
    QVERIFY2(result.looked.size() == 10, "all of the span");
}

void PeakTest::nothing_better_goes_back() {
    // The start is on the slope of a strong one that is out of reach; the faint one is fainter.
    MadeUpSky sky({{-24.0, 25.0}, {9.0, 1.0}});
    const SearchResult result = search(sky, 15);
    QVERIFY(result.end == SearchEnd::nothing_better);
    QCOMPARE(sky.shaft, 0);
}

void PeakTest::cancelled_at_any_step() {
    for (int allowed = 0; allowed < 30; allowed += 4) {
        MadeUpSky sky({{12.0, 13.0}}, 1);
        PeakSearch peak_search(sky, {});
        int asked = 0;
        peak_search.cancelled = [&] { return asked++ >= allowed; };
        const SearchResult result = peak_search.run();
        QVERIFY(result.end == SearchEnd::cancelled);
        QCOMPARE(asked, allowed + 1);
        QCOMPARE(result.shaft, sky.shaft);
        QVERIFY(sky.stops == 1 && sky.drives_before_stop == sky.drives.size());
    }
}

void PeakTest::an_exception_stops_the_motor() {
    MadeUpSky sky({{12.0, 13.0}});
    PeakSearch peak_search(sky, {});
    peak_search.on_point = [&](const Point&, bool) { sky.fault = true; };
    QVERIFY_EXCEPTION_THROWN((void)peak_search.run(), std::runtime_error);
    QCOMPARE(sky.stops, 1);
}

void PeakTest::a_motor_that_cannot_be_told() {
    MadeUpSky sky({{12.0, 13.0}});
    sky.drives_left = 3;
    QVERIFY(search(sky).end == SearchEnd::lost);
    QCOMPARE(sky.drives.size(), std::size_t{4});
    QCOMPARE(sky.stops, 1);
}

void PeakTest::a_lost_answer_is_asked_again() {
    MadeUpSky sky({{12.0, 13.0}});
    sky.silent = 1;
    QVERIFY(search(sky).end == SearchEnd::found);
}

void PeakTest::a_silent_meter_ends_it() {
    MadeUpSky sky({{12.0, 13.0}});
    sky.silent = 2;
    QVERIFY(search(sky).end == SearchEnd::lost);
    QVERIFY(sky.drives.empty() && sky.stops == 1);
}

void PeakTest::points_are_told() {
    MadeUpSky sky({{12.0, 13.0}});
    PeakSearch peak_search(sky, {});
    std::vector<Point> looked;
    int close = 0;
    peak_search.on_point = [&](const Point& point, bool looking) {
        if (looking)
            looked.push_back(point);
        else
            ++close;
    };
    const SearchResult result = peak_search.run();
    QCOMPARE(looked.size(), result.looked.size());
    QCOMPARE(close, static_cast<int>(result.curve.size()));
}

void PeakTest::under_the_simulated_sky() {
    std::vector<meter::ListedPosition> positions;
    for (int k = -3; k <= 3; ++k)
        positions.push_back(
            {3.0 * k, {"A"}, {{11500.0, 27500, meter::InnerCode::r3_4, 'V', false}}});
    const meter::ScanTables tables(std::move(positions));
    meter::OrbitOptions options;
    options.cn_db = 12.0;
    options.off_air_percent = options.unlisted_percent = 0.0;
    for (options.seed = 1; options.seed <= 30; ++options.seed) {
        const meter::Orbit orbit(tables, options);
        const double start = -1.3 + 2.6 * static_cast<double>(options.seed - 1) / 29.0;
        SimulatedSky sky(orbit, start, static_cast<int>(options.seed % 4), options.seed);
        QVERIFY(search(sky).end == SearchEnd::found);
        QVERIFY2(std::abs(sky.east()) <= 0.1 + 1e-9, qPrintable(QString::number(options.seed)));
    }
}

namespace {

/// A line to a meter that answers as told.
struct Line {
    Line() {
        link.port_connected = true;
        port.answer = [this](const QByteArray& command) {
            return FakePort::good(command, answers.value(command));
        };
    }

    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};
    QHash<QByteArray, QByteArray> answers;
};

}  // namespace

void PeakTest::drives_over_the_line() {
    Line line;
    LinkAntenna antenna(line.link);
    const double before = line.clock.elapsed();
    QVERIFY(antenna.drive(10));
    QVERIFY2(line.clock.elapsed() - before > 10 / 15.0 + 0.4, "until it has turned");
    QVERIFY(antenna.drive(-4));
    antenna.stop();
    QCOMPARE(line.port.take_commands(),
             (QStringList{"DISEQCMOT 08 10 01", "DISEQCMOT 09 04 01", "DISEQCMOT 00"}));
}

void PeakTest::levels_over_the_line_data() {
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("measured");
    QTest::addColumn<double>("level");
    QTest::newRow("good") << QByteArray("  61.5") << true << 61.5;
    QTest::newRow("below the range") << QByteArray(" <20.0") << true << 20.0;
    QTest::newRow("above the range") << QByteArray(" >70.0") << false << 0.0;
    QTest::newRow("no number") << QByteArray(" what") << false << 0.0;
}

void PeakTest::levels_over_the_line() {
    QFETCH(QByteArray, answer);
    QFETCH(bool, measured);
    QFETCH(double, level);
    Line line;
    line.answers["LEVANL?"] = answer;
    LinkAntenna antenna(line.link);
    QCOMPARE(antenna.level().has_value(), measured);
    QCOMPARE(antenna.level().value_or(0.0), level);
    QCOMPARE(line.port.take_commands(), (QStringList{"ATTEN 6", "LEVANL?", "LEVANL?"}));
}

void PeakTest::mer_over_the_line() {
    Line line;
    line.answers["LEVANL?"] = "  61.5";
    line.answers["BERQPSK?"] = "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 1.25\rMER   : 12.3";
    LinkAntenna antenna(line.link);
    QVERIFY(std::abs(antenna.mer().value() - 12.3) < 1e-5);
    QCOMPARE(line.port.take_commands(),
             (QStringList{"ATTEN 00", "BERQPSK", "BERQPSK?", "MEASURE"}));
    // The level needs its attenuation again.
    QVERIFY(antenna.level());
    QCOMPARE(line.port.take_commands(), (QStringList{"ATTEN 6", "LEVANL?"}));
    line.answers["BERQPSK?"] = "CHBER : 3.0E-2\rPvBER : 3.0E-2\rCFO   : 0.00\rMER   : 1.0";
    QVERIFY2(!antenna.mer(), "no lock");
    line.answers["BERQPSK?"] = "CHBER : 3.0E-2";
    QVERIFY(!antenna.mer());
}

void PeakTest::the_line_is_lost() {
    Line line;
    line.answers["LEVANL?"] = "  61.5";
    LinkAntenna antenna(line.link);
    PeakSearch peak_search(antenna, {});
    peak_search.on_point = [&](const Point&, bool) { line.port.vanish_in(0); };
    QVERIFY(peak_search.run().end == SearchEnd::lost);
    QVERIFY(!line.link.port_connected);
}

void PeakTest::told_to_end_the_motor_is_stopped() {
    Line line;
    line.answers["LEVANL?"] = "  61.5";
    LinkAntenna antenna(line.link);
    PeakSearch peak_search(antenna, {});
    bool told = false;
    line.link.interrupted = [&] { return told; };
    peak_search.on_point = [&](const Point&, bool) { told = true; };
    QVERIFY_EXCEPTION_THROWN((void)peak_search.run(), m47::Interrupted);
    QCOMPARE(line.port.take_commands().last(), QString("DISEQCMOT 00"));
    QCOMPARE(line.link.undivided, 0);
}

void PeakTest::told_to_end_the_meter_measures_again() {
    Line line;
    LinkAntenna antenna(line.link);
    line.link.interrupted = [&] { return line.port.written.endsWith("BERQPSK\r"); };
    QVERIFY_EXCEPTION_THROWN((void)antenna.mer(), m47::Interrupted);
    QCOMPARE(line.port.take_commands(), (QStringList{"ATTEN 00", "BERQPSK", "MEASURE"}));
}

/// Under the fixed sky the level is the same everywhere: a search ends where it began, whatever the
/// line does to it.
void PeakTest::every_kind_of_fault() {
    QSet<QString> kinds;
    int whole = 0;
    for (quint64 seed = 1; seed <= 60; ++seed) {
        Line line;
        MeterInProcess meter(line.port, seed);
        meter.bad_in = seed % 4 == 0 ? 0 : 12;
        QByteArray last;
        meter.on_command = [&](const QByteArray& command, const QString& kind) {
            last = command;
            if (!kind.isEmpty()) kinds += kind;
        };
        LinkAntenna antenna(line.link);
        PeakSearch peak_search(antenna, {});
        try {
            const SearchEnd end = peak_search.run().end;
            QVERIFY(end == SearchEnd::lost || end == SearchEnd::nothing_better);
            whole += end == SearchEnd::nothing_better;
            QVERIFY2(line.link.port_connected || end == SearchEnd::lost, "told as it is");
        } catch (const Fault&) {
            // A doubtful answer is told as such.
        }
        if (line.link.port_connected) QCOMPARE(last, QByteArray("DISEQCMOT 00"));
    }
    QVERIFY2(kinds.size() > 10, qPrintable(QString::number(kinds.size())));
    QVERIFY2(whole >= 15, "what no fault hits, and more");
}

}  // namespace m47::peak

QTEST_GUILESS_MAIN(m47::peak::PeakTest)
#include "peak_test.moc"
