// SPDX-License-Identifier: GPL-3.0-or-later
#include <QRegularExpression>
#include <QTest>
#include <cmath>

#include "asking.h"
#include "sky.h"

namespace {

double field(const std::string& reply, const std::string& label) {
    const auto at = reply.find(label);
    return at == std::string::npos ? -1.0e9 : number(reply.substr(at + label.size()));
}

}  // namespace

class TestMeasures : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void answer_layouts();
    void carrier_on_the_default_frequency();
    void detuning_shows_in_every_value();
    void far_off_there_is_no_lock();
    void wrong_symbol_rate_loses_lock();
    void analog_carrier_has_no_lock();
    void supply_and_tone_choose_the_spectrum();
    void sky_frequency_through_an_oscillator_data();
    void sky_frequency_through_an_oscillator();
    void bandwidth_narrows_the_power();
    void level_units();
    void range_marks();
    void marks_follow_the_attenuator();
    void ratio_marks();
    void same_seed_same_answers();
    void jitter_is_small();
    void skies_of_installations_with_a_fault();
    void a_fade_weakens_level_and_quality_alike();
    void spectra_are_plausible();
};

void TestMeasures::answer_layouts() {
    meter::Instrument instrument{meter::Options{}};
    const auto matches = [&](const std::string& command, const char* pattern) {
        const QString text = QString::fromStdString(value(instrument, command));
        const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
        return expression.match(text).hasMatch();
    };
    QVERIFY(matches("LEVANL?", "  \\d\\d\\.\\d"));
    QVERIFY(matches("LEVDCP?", "   \\d\\d\\.\\d"));
    QVERIFY(matches("LEVDCP?1000.0", "   \\d\\d\\.\\d"));
    QVERIFY(matches("LEVDCP? 1060", "   \\d\\d\\.\\d"));
    QVERIFY(matches("LEVCND?", " \\d\\d\\.\\d"));
    QVERIFY(matches("LEVCNA?", "CN \\d\\d\\.\\d"));
    QVERIFY(matches("BERQPSK?",
                    "CHBER : \\d\\.\\dE-\\d\\rPvBER : <1\\.0E-8\\rCFO   : \\d\\.\\d\\d\\r"
                    "MER   : \\d\\d\\.\\d"));
}

void TestMeasures::carrier_on_the_default_frequency() {
    meter::Instrument instrument{meter::Options{}};
    QVERIFY(std::abs(number(value(instrument, "LEVDCP?")) - 66.0) < 0.5);
    QVERIFY(std::abs(number(value(instrument, "LEVCND?")) - 13.1) < 0.5);
    const std::string quality = value(instrument, "BERQPSK?");
    QVERIFY(field(quality, "CHBER :") > 1.0e-6 && field(quality, "CHBER :") < 1.0e-3);
    QVERIFY(std::abs(field(quality, "MER   :") - 12.8) < 0.5);
    QVERIFY(std::abs(field(quality, "CFO   :") - 0.3) < 0.05);
}

void TestMeasures::detuning_shows_in_every_value() {
    meter::Instrument instrument{meter::Options{}};
    const std::string before = value(instrument, "BERQPSK?");
    ask(instrument, "FREQ 1003.2");
    const std::string after = value(instrument, "BERQPSK?");
    QVERIFY(field(after, "CHBER :") > 3 * field(before, "CHBER :"));
    QVERIFY(field(after, "MER   :") < field(before, "MER   :") - 1.0);
    QVERIFY(std::abs(field(after, "CFO   :") + 2.9) < 0.05);
    ask(instrument, "FREQ 1017");
    QVERIFY(number(value(instrument, "LEVDCP?")) < 65.0);
    QVERIFY(number(value(instrument, "LEVCND?")) < 11.5);
    QVERIFY(number(value(instrument, "LEVANL?")) < 59.0);
}

void TestMeasures::far_off_there_is_no_lock() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "FREQ 1060");
    QVERIFY(number(value(instrument, "LEVANL?")) < 33.0);
    QVERIFY(number(value(instrument, "LEVDCP?")) < 40.0);
    QCOMPARE(value(instrument, "BERQPSK?"),
             std::string("CHBER : 3.0E-2\rPvBER : 3.0E-2\rCFO   : 0.00\rMER   : 1.0"));
}

void TestMeasures::wrong_symbol_rate_loses_lock() {
    meter::Instrument instrument{meter::Options{}};
    const std::string lost = "CHBER : 3.0E-2\rPvBER : 3.0E-2\rCFO   : 0.00\rMER   : 1.0";
    ask(instrument, "SYMBRATEQPSK 27000");
    QCOMPARE(value(instrument, "BERQPSK?"), lost);
    ask(instrument, "SYMBRATEQPSK 27490");
    QVERIFY(value(instrument, "BERQPSK?") != lost);
}

void TestMeasures::analog_carrier_has_no_lock() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "FREQ 1190");
    QVERIFY(std::abs(number(value(instrument, "LEVCNA?")) - 12.5) < 1.0);
    QCOMPARE(field(value(instrument, "BERQPSK?"), "MER   :"), 1.0);
}

void TestMeasures::supply_and_tone_choose_the_spectrum() {
    meter::Instrument instrument{meter::Options{}};
    const auto power = [&](const std::string& frequency) {
        return number(value(instrument, "LEVDCP?" + frequency));
    };
    ask(instrument, "LNVOLT 18");
    ask(instrument, "TONE22K 01");
    QVERIFY2(power("1000") > 64, "with the supply off, voltage and tone have no effect");
    QVERIFY(power("1127") < 55);
    ask(instrument, "LNB 01");
    QVERIFY(power("1127") > 84);
    ask(instrument, "TONE22K 00");
    QVERIFY(power("1377") > 77 && power("1127") < 75);
    ask(instrument, "LNVOLT 15");
    QVERIFY(power("1000") > 64);
    ask(instrument, "TONE22K 01");
    QVERIFY(power("1197.5") > 70 && power("1000") < 62);
    ask(instrument, "LNVOLT 24");
    QVERIFY(power("1127") > 84);
}

void TestMeasures::sky_frequency_through_an_oscillator_data() {
    QTest::addColumn<QByteArray>("oscillator");
    QTest::addColumn<QByteArray>("frequency");
    QTest::newRow("below") << QByteArray("09750") << QByteArray("11560");
    QTest::newRow("above") << QByteArray("05150") << QByteArray("03340");
}

void TestMeasures::sky_frequency_through_an_oscillator() {
    QFETCH(QByteArray, oscillator);
    QFETCH(QByteArray, frequency);
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "LOCOSC 1 " + oscillator.toStdString());
    ask(instrument, "LOCOSC 1");
    ask(instrument, "FREQ " + frequency.toStdString());
    QVERIFY(std::abs(number(value(instrument, "LEVDCP?")) - 74.0) < 0.5);
    QVERIFY(std::abs(number(value(instrument, "LEVDCP?" + frequency.toStdString())) - 74.0) < 0.5);
}

void TestMeasures::bandwidth_narrows_the_power() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "CHBW 08");
    const double narrow = number(value(instrument, "LEVDCP?"));
    QVERIFY2(std::abs(narrow - (66.0 - 6.15)) < 0.5, qPrintable(QString::number(narrow)));
}

void TestMeasures::level_units() {
    meter::Instrument instrument{meter::Options{}};
    const double microvolt = number(value(instrument, "LEVDCP?"));
    ask(instrument, "UNIT 01");
    const double millivolt = number(value(instrument, "LEVDCP?"));
    ask(instrument, "UNIT 02");
    const double milliwatt = number(value(instrument, "LEVDCP?"));
    QVERIFY(std::abs(microvolt - millivolt - 60.0) < 0.5);
    QVERIFY(std::abs(microvolt - milliwatt - 109.0) < 0.5);
}

void TestMeasures::range_marks() {
    meter::Settings settings;
    const auto text = [&](double level) {
        const auto reading = meter::level_reading(level, settings);
        return QString("%1%2").arg(QChar(reading.mark)).arg(reading.value, 0, 'f', 1);
    };
    QCOMPARE(text(20.0), QString(" 20.0"));
    QCOMPARE(text(19.99), QString("<20.0"));
    QCOMPARE(text(120.0), QString(" 120.0"));
    QCOMPARE(text(120.01), QString(">120.0"));
    settings.unit = 1;
    QCOMPARE(text(10.0), QString("<-40.0"));
    QCOMPARE(text(130.0), QString(">60.0"));
    settings.unit = 2;
    QCOMPARE(text(10.0), QString("<-89.0"));
    QCOMPARE(text(130.0), QString(">11.0"));
}

void TestMeasures::marks_follow_the_attenuator() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "FREQ 1538");
    ask(instrument, "ATTEN 1");
    QCOMPARE(value(instrument, "LEVANL?"), std::string(" >70.0"));
    QCOMPARE(value(instrument, "LEVDCP?"), std::string("   >70.0"));
    ask(instrument, "ATTEN 2");
    QVERIFY(value(instrument, "LEVANL?").starts_with("  7"));
    ask(instrument, "FREQ 0503.2");
    QCOMPARE(value(instrument, "LEVANL?"), std::string(" <20.0"));
}

void TestMeasures::ratio_marks() {
    QCOMPARE(meter::ratio_reading(0.9).mark, '<');
    QCOMPARE(meter::ratio_reading(0.9).value, 1.0);
    QCOMPARE(meter::ratio_reading(1.0).mark, ' ');
    QCOMPARE(meter::ratio_reading(40.0).mark, ' ');
    QCOMPARE(meter::ratio_reading(40.1).mark, '>');
    QCOMPARE(meter::ratio_reading(40.1).value, 40.0);
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "FREQ 1060");
    QCOMPARE(value(instrument, "LEVCND?"), std::string("<1.0"));
    QCOMPARE(value(instrument, "LEVCNA?"), std::string("CN<1.0"));
}

void TestMeasures::same_seed_same_answers() {
    const auto run = [](std::uint64_t seed) {
        meter::Options options;
        options.seed = seed;
        meter::Instrument instrument(options);
        QByteArray all;
        for (int i = 0; i < 5; ++i)
            for (const char* command :
                 {"LEVANL?", "LEVDCP?", "LEVCND?", "LEVCNA?", "BERQPSK?", "DATAIN", "DATAOUT"})
                all += ask(instrument, command);
        return all;
    };
    QCOMPARE(run(7), run(7));
    QVERIFY(run(7) != run(8));
}

void TestMeasures::jitter_is_small() {
    meter::Instrument instrument{meter::Options{}};
    double lowest = 1000.0;
    double highest = 0.0;
    for (int i = 0; i < 200; ++i) {
        const double level = number(value(instrument, "LEVANL?"));
        lowest = std::min(lowest, level);
        highest = std::max(highest, level);
    }
    QVERIFY(highest - lowest >= 0.2);
    QVERIFY(highest - lowest <= 0.5);
}

/// What is wrong shows where it is wrong, and nowhere else.
void TestMeasures::skies_of_installations_with_a_fault() {
    const auto asked = [](const char* sky, bool high_band) {
        meter::Options options;
        options.sky.kind = meter::sky_kind(sky).value();
        meter::Instrument instrument(options);
        for (const char* command : {"LNB 01", "LNVOLT 13", high_band ? "TONE22K 01" : "TONE22K 00",
                                    high_band ? "FREQ 1560" : "FREQ 1000", "SYMBRATEQPSK 27500"})
            instrument.handle(command);
        const double level = number(value(instrument, "LEVDCP?"));
        instrument.handle("BERQPSK");
        const std::string quality = value(instrument, "BERQPSK?");
        const auto after = [&](const char* name) {
            return number(quality.substr(quality.find(name) + 7));
        };
        return std::array{level, after("MER   :"), after("CFO   :")};
    };
    for (const bool high_band : {false, true}) {
        const auto good = asked("good", high_band);
        const auto aside = asked("off-peak", high_band);
        QVERIFY(good[0] - aside[0] > 4.5 && good[1] - aside[1] > 3.5);
        QVERIFY(std::abs(good[2] - aside[2]) < 0.2);
        const auto failing = asked("failing-lnb", high_band);
        QCOMPARE(good[0] - failing[0] > 10, high_band);
        QCOMPARE(good[1] - failing[1] > 3, high_band);
        QCOMPARE(failing[2] - good[2] > 1.5, high_band);
    }
}

void TestMeasures::a_fade_weakens_level_and_quality_alike() {
    meter::Options options;
    meter::Instrument clear(options);
    options.sky.fade_db = 3.5;
    meter::Instrument faded(options);
    const auto fell = [&](const std::string& command, const std::string& label) {
        const auto read = [&](meter::Instrument& instrument) {
            const std::string text = value(instrument, command);
            return label.empty() ? number(text) : field(text, label);
        };
        return read(clear) - read(faded);
    };
    QVERIFY(std::abs(fell("LEVDCP?", "") - 3.5) < 0.3);
    QVERIFY(std::abs(fell("LEVCND?", "") - 3.5) < 0.3);
    QVERIFY(std::abs(fell("BERQPSK?", "MER   :") - 3.5) < 0.3);
    options.sky.orbit = false;
    options.sky.kind = meter::SkyKind::off_peak;
    meter::Instrument both(options);
    QVERIFY(std::abs(number(value(faded, "LEVDCP?")) - number(value(both, "LEVDCP?")) - 5.5) < 0.5);
}

void TestMeasures::spectra_are_plausible() {
    for (const bool high : {false, true}) {
        for (const bool tone : {false, true}) {
            const meter::Spectrum& spectrum = meter::satellite_spectrum(high, tone);
            QVERIFY(spectrum.carriers.size() >= 12);
            double last_end = 0.0;
            for (const meter::Carrier& carrier : spectrum.carriers) {
                QVERIFY(carrier.if_mhz >= 920.0 && carrier.if_mhz <= 2150.0);
                QVERIFY(carrier.level_dbuv >= 45.0 && carrier.level_dbuv <= 85.0);
                QVERIFY(carrier.if_mhz - carrier.bandwidth_mhz / 2 > last_end);
                last_end = carrier.if_mhz + carrier.bandwidth_mhz / 2;
            }
        }
    }
}

QTEST_GUILESS_MAIN(TestMeasures)
#include "measures_test.moc"
