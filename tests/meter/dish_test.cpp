// SPDX-License-Identifier: GPL-3.0-or-later
// The dish on its motor, as the commands of the simulated meter turn it, with a clock of its own.
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <memory>

#include "asking.h"
#include "dish.h"

namespace {

/// A meter under one satellite at 13 east, with a clock of its own.
class Stand {
  public:
    explicit Stand(int backlash, std::uint64_t seed = 1) {
        QFile table(folder_.filePath("A-13.0E"));
        if (!table.open(QIODevice::WriteOnly)) qFatal("no table");
        table.write(
            "[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 11500000\n"
            "\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = 3/4\n");
        table.close();
        meter::Options options;
        options.seed = seed;
        options.sky.orbit = true;
        options.sky.tables = folder_.path().toStdString();
        meter::OrbitOptions& chance = options.sky.chance;
        chance.cn_db = 20.0;
        chance.spread_db = chance.drift_mhz = chance.weather_db = 0.0;
        chance.off_air_percent = chance.unlisted_percent = 0.0;
        options.sky.backlash = backlash;
        instrument_ = std::make_unique<meter::Instrument>(options, [this] { return now; });
    }

    meter::Instrument& instrument() { return *instrument_; }
    QByteArray send(const std::string& command) { return ask(*instrument_, command); }

    /// Lets time pass and says by how many steps the dish is east of its satellite then.
    int steps_after(double seconds) {
        now += seconds;
        instrument_->handle("VER?");
        return qRound((instrument_->sky()->pointing() - 13.0) * 10.0);
    }

    double now = 1000.0;

  private:
    QTemporaryDir folder_;
    std::unique_ptr<meter::Instrument> instrument_;
};

bool near(double value, double wanted, double tolerance) {
    if (std::abs(value - wanted) <= tolerance) return true;
    qWarning("%g instead of %g", value, wanted);
    return false;
}

}  // namespace

class TestDish : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void the_motor_takes_its_time();
    void the_motor_stops();
    void limits_hold();
    void play_in_the_gear();
    void recounting_does_not_turn_the_dish();
    void reset_turns_back();
    void commands_of_the_meter_see_the_dish_turn();
    void without_time_the_motor_is_as_ever();
};

void TestDish::the_motor_takes_its_time() {
    Stand stand(0);
    QCOMPARE(stand.send("DISEQCMOT 08 30 01"), QByteArray("DISEQCMOT 08 30 01\rOK\r"));
    QCOMPARE(stand.steps_after(0.0), 0);
    QCOMPARE(stand.steps_after(0.5), 7);
    QCOMPARE(stand.steps_after(0.5), 15);
    QCOMPARE(stand.steps_after(60.0), 30);
    stand.send("DISEQCMOT 0605");
    stand.send("DISEQCMOT 09 02 00");
    QCOMPARE(stand.steps_after(10.0), 0);
    stand.send("DISEQCMOT 0705");
    QCOMPARE(stand.steps_after(10.0), 30);
}

void TestDish::the_motor_stops() {
    Stand stand(0);
    stand.send("DISEQCMOT 02");
    QCOMPARE(stand.steps_after(1.0), -15);
    stand.send("DISEQCMOT 00");
    QCOMPARE(stand.steps_after(10.0), -15);
    stand.send("DISEQCMOT 08 99 01");
    QCOMPARE(stand.steps_after(1.0), 0);
    stand.send("DISEQCMOT 00");
    QCOMPARE(stand.steps_after(10.0), 0);
}

void TestDish::limits_hold() {
    Stand stand(0);
    stand.send("DISEQCMOT 01");
    QCOMPARE(stand.steps_after(1000.0), 700);
    QVERIFY(!stand.instrument().state().motor.turning());
    stand.send("DISEQCMOT 04");
    stand.send("DISEQCMOT 01");
    QCOMPARE(stand.steps_after(1.0), 715);
}

void TestDish::play_in_the_gear() {
    meter::Dish dish(0.0, 3, 1);
    const auto at = [&](int shaft) {
        dish.follow(shaft);
        return qRound(dish.east() * 10.0);
    };
    QCOMPARE(at(1), 0);
    QCOMPARE(at(5), 4);
    QCOMPARE(at(3), 4);
    QCOMPARE(at(2), 4);
    QCOMPARE(at(0), 2);
    QCOMPARE(at(-2), 0);
    QCOMPARE(at(1), 0);
    QCOMPARE(at(2), 1);
    for (std::uint64_t seed = 1; seed < 20; ++seed) {
        Stand stand(3, seed);
        stand.send("DISEQCMOT 08 10 01");
        const int there = stand.steps_after(10.0);
        QVERIFY(there >= 7 && there <= 10);
        stand.send("DISEQCMOT 09 03 01");
        QCOMPARE(stand.steps_after(10.0), there);
        stand.send("DISEQCMOT 09 01 01");
        QCOMPARE(stand.steps_after(10.0), there - 1);
    }
}

void TestDish::recounting_does_not_turn_the_dish() {
    Stand stand(0);
    stand.send("DISEQCMOT 08 20 01");
    QCOMPARE(stand.steps_after(10.0), 20);
    stand.send("DISEQCMOT 10");
    QCOMPARE(stand.steps_after(10.0), 20);
    QCOMPARE(stand.instrument().state().motor.position(), 0);
    stand.send("DISEQCMOT 08 05 01");
    QCOMPARE(stand.steps_after(10.0), 25);
}

void TestDish::reset_turns_back() {
    Stand stand(0);
    stand.send("DISEQCMOT 08 20 01");
    stand.steps_after(10.0);
    stand.send("DISEQCMOT 10");
    stand.send("DISEQCMOT 11");
    QCOMPARE(stand.steps_after(0.0), 20);
    QCOMPARE(stand.steps_after(10.0), 0);
}

void TestDish::commands_of_the_meter_see_the_dish_turn() {
    Stand stand(0);
    for (const char* command : {"LNB 01", "LNVOLT 13", "FREQ 1750"}) stand.send(command);
    const auto level = [&] { return number(value(stand.instrument(), "LEVANL?")); };
    const double peak = level();
    QVERIFY(value(stand.instrument(), "BERQPSK?").find("MER   : 1.0") == std::string::npos);
    stand.send("DISEQCMOT 08 23 01");
    QVERIFY(near(level(), peak, 0.5));
    stand.now += 10.0;
    QVERIFY(near(level(), peak - 11.6, 0.7));
    // The span shows the same sky, on a scale that lies 30 dB higher.
    const QByteArray span = stand.send("SPANOUT");
    const auto at = span.indexOf("1752.4 ");
    QVERIFY(at > 0);
    QVERIFY(near(number(span.mid(at + 7, 5).toStdString()), peak + 30.0 - 11.6, 0.7));
}

void TestDish::without_time_the_motor_is_as_ever() {
    meter::Instrument instrument{meter::Options{}};
    const auto position = [&] { return instrument.state().motor.position(); };
    ask(instrument, "DISEQCMOT 08 12 01");
    QCOMPARE(position(), 12);
    ask(instrument, "DISEQCMOT 08 02 00");
    QCOMPARE(position(), 32);
    ask(instrument, "DISEQCMOT 02");
    ask(instrument, "VER?");
    ask(instrument, "VER?");
    QCOMPARE(position(), 30);
    ask(instrument, "DISEQCMOT 11");
    QCOMPARE(position(), 0);
    QVERIFY(instrument.sky() == nullptr);
}

QTEST_GUILESS_MAIN(TestDish)
#include "dish_test.moc"
