// SPDX-License-Identifier: GPL-3.0-or-later
// The large display of the level and its tone, without a screen or a sound device.
#include <QTest>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "level_display.h"
#include "level_tone.h"

namespace m47::level {

class LevelTest : public QObject {
    Q_OBJECT

  private:
    static measurement::Measurement measurement(
        const QString& level, measurement::Verdict verdict = measurement::Verdict::none,
        std::optional<LevelUnit> unit = kDbuv) {
        measurement::Measurement made;
        made.reading(measurement::Quantity::level) =
            measurement::reading_of(measurement::Quantity::level, level);
        made.verdict = verdict;
        made.unit = unit;
        made.frequency = 1200.0F;
        return made;
    }
    static Texts texts(int language = kEnglish) {
        Texts made;
        made.language = language;
        return made;
    }
    static std::vector<std::int16_t> samples(double hertz, double seconds) {
        const QByteArray bytes = LevelTone::samples(hertz, seconds);
        std::vector<std::int16_t> made(static_cast<std::size_t>(bytes.size()) / 2);
        std::memcpy(made.data(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
        return made;
    }

  private Q_SLOTS:
    void before_the_first_measurement_there_is_no_value() {
        const LevelDisplay display;
        const LevelPicture picture = display.picture(0, true, texts());
        QCOMPARE(picture.value, QStringLiteral("—"));
        QCOMPARE(picture.age, QStringLiteral("No measurement yet"));
        QVERIFY(picture.colour == LevelColour::stale);
        QVERIFY(!display.heard());
    }

    void a_fresh_value_is_shown_in_the_colour_of_its_outcome() {
        LevelDisplay display;
        measurement::Measurement of_a_plan = measurement("58.3", measurement::Verdict::pass, kDbm);
        of_a_plan.program = {"ASTRA", "007"};
        of_a_plan.frequency = 11778.0F;
        display.measured(of_a_plan, 100);
        LevelPicture picture = display.picture(103.5, true, texts());
        QCOMPARE(picture.value, QStringLiteral("58.3"));
        QCOMPARE(picture.unit, QStringLiteral("dBm"));
        QCOMPARE(picture.name, QStringLiteral("ASTRA  ·  007  ·  11778.0 MHz"));
        QCOMPARE(picture.verdict, QStringLiteral("PASS"));
        QCOMPARE(picture.age, QStringLiteral("Measured 3 s ago"));
        QVERIFY(picture.colour == LevelColour::pass);
        display.measured(measurement("58.3", measurement::Verdict::fail), 105);
        QVERIFY(display.picture(105, true, texts()).colour == LevelColour::fail);
        display.measured(measurement("58.3"), 106);
        QVERIFY(display.picture(106, true, texts()).colour == LevelColour::live);
        QCOMPARE(display.picture(106, true, texts()).name, QStringLiteral("1200.0 MHz"));
    }

    void an_old_value_is_grey_and_says_so() {
        LevelDisplay display;
        display.measured(measurement("58.3", measurement::Verdict::pass), 0);
        QVERIFY(display.live(LevelDisplay::kLiveSeconds, true));
        const double later = LevelDisplay::kLiveSeconds + 0.1;
        QVERIFY(!display.live(later, true));
        QVERIFY(display.picture(later, true, texts()).colour == LevelColour::stale);
        QCOMPARE(display.picture(later, true, texts()).age,
                 QStringLiteral("OLD: measured 10 s ago"));
        QCOMPARE(display.picture(125, true, texts()).age,
                 QStringLiteral("OLD: measured 2:05 min ago"));
        QCOMPARE(display.picture(59, true, texts()).age, QStringLiteral("OLD: measured 59 s ago"));
        QCOMPARE(display.picture(60, true, texts()).age,
                 QStringLiteral("OLD: measured 1:00 min ago"));
        QCOMPARE(display.picture(3599, true, texts()).age,
                 QStringLiteral("OLD: measured 59:59 min ago"));
        QCOMPARE(display.picture(3600, true, texts()).age, QStringLiteral("OLD: measured 1 h ago"));
        QCOMPARE(display.picture(7300, true, texts(kItalian)).age,
                 QStringLiteral("VECCHIO: misurato 2 h fa"));
    }

    void while_a_measurement_runs_the_value_before_it_is_not_live() {
        LevelDisplay display;
        display.measured(measurement("58.3", measurement::Verdict::pass), 0);
        display.begins();
        QVERIFY(display.picture(1, true, texts()).colour == LevelColour::stale);
        QCOMPARE(display.picture(1, true, texts()).age, QStringLiteral("Measuring…"));
        display.measured(measurement("59.0", measurement::Verdict::pass), 2);
        QVERIFY(display.live(2, true));
        display.begins();
        display.ended();
        QVERIFY(display.live(3, true));
    }

    void without_a_link_nothing_is_live() {
        LevelDisplay display;
        display.measured(measurement("58.3", measurement::Verdict::pass), 0);
        QVERIFY(display.picture(0, false, texts()).colour == LevelColour::stale);
        QCOMPARE(display.picture(0, false, texts()).age,
                 QStringLiteral("The meter is not connected"));
    }

    void what_was_not_measured_is_a_dash_and_silent() {
        LevelDisplay display;
        for (const char* level : {"", "ERROR"}) {
            display.measured(measurement(level, measurement::Verdict::fail), 0);
            QCOMPARE(display.picture(0, true, texts()).value, QStringLiteral("—"));
            QVERIFY(!display.heard());
        }
        display.measured(measurement("<20.0"), 0);
        QCOMPARE(display.picture(0, true, texts()).value, QStringLiteral("<20.0"));
        QCOMPARE(*display.heard(), 20.0);
        display.measured(measurement("-50", measurement::Verdict::none, kDbm), 0);
        QCOMPARE(*display.heard(), 59.0);
    }

    void the_age_is_that_of_the_quantity_shown() {
        LevelDisplay display;
        display.measured(measurement("58.3"), 0);
        display.show(measurement::Quantity::cn);
        LevelPicture picture = display.picture(1, true, texts());
        QCOMPARE(picture.value, QStringLiteral("—"));
        QCOMPARE(picture.age, QStringLiteral("No value in the last measurement"));
        QCOMPARE(display.picture(20, true, texts(kItalian)).age,
                 QStringLiteral("Nessun valore nell'ultima misura"));
        QCOMPARE(display.picture(1, false, texts()).age,
                 QStringLiteral("The meter is not connected"));
        display.show(measurement::Quantity::level);
        QCOMPARE(display.picture(1, true, texts()).age, QStringLiteral("Measured 1 s ago"));
    }

    void a_level_of_an_unknown_unit_is_shown_without_one() {
        LevelDisplay display;
        display.measured(measurement("58.3", measurement::Verdict::pass, {}), 0);
        QCOMPARE(display.picture(0, true, texts()).value, QStringLiteral("58.3"));
        QVERIFY(display.picture(0, true, texts()).unit.isEmpty());
        QCOMPARE(std::round(10 * *display.heard()), 583.0);
    }

    void the_peak_is_held_until_it_is_forgotten_or_something_else_is_received() {
        LevelDisplay display;
        QVERIFY(!display.picture(0, true, texts()).bar &&
                !display.picture(0, true, texts()).bar_peak);
        display.measured(measurement("70.0"), 0);
        display.measured(measurement("45.0"), 1);
        LevelPicture picture = display.picture(1, true, texts());
        QCOMPARE(picture.peak, QStringLiteral("Peak 70.0 dBuV"));
        QCOMPARE(*picture.bar, 0.25);
        QCOMPARE(*picture.bar_peak, 0.5);
        display.measured(measurement("ERROR"), 2);
        picture = display.picture(2, true, texts(kItalian));
        QVERIFY(!picture.bar);
        QCOMPARE(picture.peak, QStringLiteral("Massimo 70.0 dBuV"));
        display.forget_peak();
        QVERIFY(display.picture(2, true, texts()).peak.isEmpty());
        display.measured(measurement("45.0"), 3);
        measurement::Measurement elsewhere = measurement("-69.0", {}, kDbm);
        elsewhere.frequency = 1300.0F;
        display.measured(elsewhere, 4);
        QCOMPARE(display.picture(4, true, texts()).peak, QStringLiteral("Peak -69.0 dBm"));
        for (const auto& [level, part] : {std::pair{"<5.0", 0.0}, std::pair{"130.0", 1.0}}) {
            display.measured(measurement(QLatin1String(level)), 5);
            QCOMPARE(*display.picture(5, true, texts()).bar, part);
        }
    }

    void a_repeated_level_is_old_after_two_seconds() {
        LevelDisplay display;
        display.measured(measurement("70.0"), 0);
        display.repeats(true, 0);
        display.measured(measurement("58.3"), 10);
        QVERIFY(display.picture(12, true, texts()).colour == LevelColour::live);
        QCOMPARE(display.picture(12, true, texts()).age, QStringLiteral("Level alone, repeated"));
        QVERIFY(display.picture(12.1, true, texts()).colour == LevelColour::stale);
        QCOMPARE(display.picture(15, true, texts()).age, QStringLiteral("OLD: no level for 5 s"));
        QVERIFY(display.picture(11, false, texts()).colour == LevelColour::stale);
        display.repeats(false, 15);
        QVERIFY(display.picture(15, true, texts()).colour == LevelColour::live);
    }

    /// A meter that answers what cannot be read is not one that measures.
    void a_repeated_level_that_never_comes_is_told() {
        LevelDisplay display;
        display.repeats(true, 100);
        display.begins();
        QCOMPARE(display.picture(105, true, texts()).age, QStringLiteral("Measuring…"));
        QCOMPARE(display.picture(112, true, texts()).age, QStringLiteral("No level for 12 s"));
        display.show(measurement::Quantity::mer);
        QCOMPARE(display.picture(112, true, texts(kItalian)).age,
                 QStringLiteral("Nessun valore da 12 s"));
        display.show(measurement::Quantity::level);
        display.measured(measurement("58.3"), 113);
        display.repeats(true, 200);
        display.begins();
        QCOMPARE(display.picture(202, true, texts()).age, QStringLiteral("Measuring…"));
        QVERIFY(display.picture(202, true, texts()).colour == LevelColour::stale);
        QCOMPARE(display.picture(212, true, texts()).age, QStringLiteral("OLD: no level for 12 s"));
        display.measured(measurement("58.4"), 213);
        QCOMPARE(display.picture(213, true, texts()).age, QStringLiteral("Level alone, repeated"));
    }

    void how_far_below_the_peak_it_is() {
        LevelDisplay display;
        display.measured(measurement("58.3"), 0);
        QCOMPARE(display.picture(0, true, texts()).below, QStringLiteral("at the peak"));
        QVERIFY2(!display.new_peak(), "the first value is none");
        display.measured(measurement("59.1"), 1);
        QVERIFY(display.new_peak());
        display.measured(measurement("58.3"), 2);
        QVERIFY(!display.new_peak());
        QCOMPARE(display.picture(2, true, texts()).below, QStringLiteral("0.8 dB below the peak"));
        QCOMPARE(display.picture(2, true, texts(kItalian)).below,
                 QStringLiteral("0.8 dB sotto il massimo"));
        display.measured(measurement("59.1"), 3);
        QVERIFY2(!display.new_peak(), "as high is no new one");
        display.forget_peak();
        QVERIFY(display.picture(3, true, texts()).below.isEmpty());
        display.measured(measurement("50.0"), 4);
        QVERIFY(!display.new_peak());
    }

    void a_peak_at_the_end_of_the_range_is_marked_data() {
        QTest::addColumn<QStringList>("readings");
        QTest::addColumn<QString>("peak");
        QTest::addColumn<QString>("below");
        QTest::newRow("beyond") << QStringList{">60.0"} << "Peak >60.0 dBuV"
                                << "";
        QTest::newRow("behind it") << QStringList{">60.0", "47.2"} << "Peak >60.0 dBuV"
                                   << ">12.8 dB below the peak";
        QTest::newRow("just at its end") << QStringList{">60.0", "60.0"} << "Peak >60.0 dBuV"
                                         << ">0.0 dB below the peak";
        QTest::newRow("beyond what was measured")
            << QStringList{"60.0", ">60.0"} << "Peak >60.0 dBuV"
            << "";
        QTest::newRow("below the range") << QStringList{"<20.0"} << "Peak <20.0 dBuV"
                                         << "";
        QTest::newRow("risen into it") << QStringList{"<20.0", "20.0"} << "Peak 20.0 dBuV"
                                       << "at the peak";
        QTest::newRow("fallen below it") << QStringList{"58.3", "<20.0"} << "Peak 58.3 dBuV"
                                         << ">38.3 dB below the peak";
        QTest::newRow("above a peak beyond it") << QStringList{">60.0", "71.0"} << "Peak 71.0 dBuV"
                                                << "at the peak";
    }
    void a_peak_at_the_end_of_the_range_is_marked() {
        QFETCH(QStringList, readings);
        QFETCH(QString, peak);
        QFETCH(QString, below);
        LevelDisplay display;
        for (const QString& reading : readings) display.measured(measurement(reading), 0);
        const LevelPicture picture = display.picture(0, true, texts());
        QCOMPARE(picture.value, readings.constLast());
        QCOMPARE(picture.peak, peak);
        QCOMPARE(picture.below, below);
    }

    void another_quantity_has_its_own_peak_and_scale() {
        LevelDisplay display;
        measurement::Measurement all = measurement("58.3");
        all.reading(measurement::Quantity::mer) =
            measurement::reading_of(measurement::Quantity::mer, QString("12.0"));
        display.measured(all, 0);
        display.show(measurement::Quantity::mer);
        LevelPicture picture = display.picture(0, true, texts());
        QCOMPARE(picture.value, QStringLiteral("12.0"));
        QCOMPARE(picture.unit, QStringLiteral("dB"));
        QCOMPARE(picture.name, QStringLiteral("MER  ·  1200.0 MHz"));
        QCOMPARE(picture.peak, QStringLiteral("Peak 12.0 dB"));
        QCOMPARE(picture.bar.value(), 0.3);
        QCOMPARE(display.heard().value(), 57.0);
        display.show(measurement::Quantity::cn);
        picture = display.picture(0, true, texts());
        QCOMPARE(picture.value, QStringLiteral("—"));
        QVERIFY(picture.peak.isEmpty() && picture.below.isEmpty() && !picture.bar);
        QVERIFY(!display.heard());
        display.show(measurement::Quantity::level);
        QCOMPARE(display.picture(0, true, texts()).peak, QStringLiteral("Peak 58.3 dBuV"));
    }

    /// The dish is turned with one eye on the level and one on the MER, with rests between.
    void the_peak_outlives_a_rest_and_a_look_at_another_quantity() {
        LevelDisplay display;
        display.opens();
        measurement::Measurement all = measurement("70.0");
        all.reading(measurement::Quantity::mer) =
            measurement::reading_of(measurement::Quantity::mer, QString("12.0"));
        display.measured(all, 0);
        display.measured(measurement("66.0"), 1);
        display.repeats(true, 2);
        display.measured(measurement("66.5"), 3);
        display.repeats(false, 4);
        QCOMPARE(display.picture(4, true, texts()).below, QStringLiteral("3.5 dB below the peak"));
        display.show(measurement::Quantity::mer);
        QCOMPARE(display.picture(4, true, texts()).peak, QStringLiteral("Peak 12.0 dB"));
        display.forget_peak();
        QVERIFY(display.picture(4, true, texts()).peak.isEmpty());
        display.show(measurement::Quantity::level);
        QCOMPARE(display.picture(4, true, texts()).peak, QStringLiteral("Peak 70.0 dBuV"));
        display.opens();
        QCOMPARE(display.picture(4, true, texts()).peak, QStringLiteral("Peak 66.5 dBuV"));
    }

    /// The meter turns dBuV into dBm by 108.75, the limits by 109: neither is what it would send.
    void another_unit_has_a_peak_of_its_own() {
        LevelDisplay display;
        display.measured(measurement("60.0"), 0);
        display.measured(measurement("-50.6", {}, kDbm), 1);
        QCOMPARE(display.picture(1, true, texts()).peak, QStringLiteral("Peak -50.6 dBm"));
        QCOMPARE(display.picture(1, true, texts()).below, QStringLiteral("at the peak"));
        QVERIFY(!display.new_peak());
        display.measured(measurement("58.2"), 2);
        QCOMPARE(display.picture(2, true, texts()).peak, QStringLiteral("Peak 58.2 dBuV"));
    }

    /// A digit that the line turned into another one is shown as it came, and no peak for ever.
    void what_no_meter_can_read_is_no_peak() {
        LevelDisplay display;
        display.measured(measurement("58.3"), 0);
        display.measured(measurement("999.9"), 1);
        QVERIFY(!display.new_peak());
        LevelPicture picture = display.picture(1, true, texts());
        QCOMPARE(picture.value, QStringLiteral("999.9"));
        QCOMPARE(picture.peak, QStringLiteral("Peak 58.3 dBuV"));
        QVERIFY(picture.below.isEmpty());
        display.measured(measurement("58.0"), 2);
        picture = display.picture(2, true, texts());
        QCOMPARE(picture.below, QStringLiteral("0.3 dB below the peak"));
    }

    void what_is_left_of_the_mer_above_its_limit() {
        LevelDisplay display;
        measurement::Measurement all = measurement("58.3");
        all.reading(measurement::Quantity::mer) =
            measurement::reading_of(measurement::Quantity::mer, QString("11.2"));
        display.measured(all, 0);
        QVERIFY2(display.picture(0, true, texts()).margin.isEmpty(), "no limit is in force");
        all.limits[static_cast<std::size_t>(measurement::Quantity::mer)] =
            measurement::Limits{8.0, 30.0};
        display.measured(all, 1);
        QCOMPARE(display.picture(1, true, texts()).margin, QStringLiteral("MER: 3.2 dB left"));
        display.show(measurement::Quantity::mer);
        QCOMPARE(display.picture(1, true, texts()).margin, QStringLiteral("3.2 dB left"));
        QCOMPARE(display.picture(1, true, texts(kItalian)).margin,
                 QStringLiteral("margine di 3.2 dB"));
        all.reading(measurement::Quantity::mer) = {};
        display.measured(all, 2);
        QVERIFY(display.picture(2, true, texts()).margin.isEmpty());
    }

    void ten_decibels_are_an_octave_within_what_is_heard() {
        QCOMPARE(LevelTone::pitch(60), 440.0);
        QCOMPARE(LevelTone::pitch(70), 880.0);
        QCOMPARE(LevelTone::pitch(50), 220.0);
        QVERIFY(LevelTone::pitch(60.5) > LevelTone::pitch(60));
        QCOMPARE(LevelTone::pitch(-300), LevelTone::kLowestHz);
        QCOMPARE(LevelTone::pitch(300), LevelTone::kHighestHz);
    }

    void the_tone_has_its_pitch_and_its_length() {
        for (const double hertz : {220.0, 880.0}) {
            const auto tone = samples(hertz, 0.5);
            QCOMPARE(tone.size(), std::size_t{22050});
            int rises = 0;
            for (std::size_t k = 1; k < tone.size(); ++k) rises += tone[k - 1] <= 0 && tone[k] > 0;
            QVERIFY(std::abs(rises - hertz / 2) <= 1);
        }
    }

    void the_tone_swells_and_fades() {
        const auto tone = samples(440, 0.4);
        QCOMPARE(int(tone.front()), 0);
        QCOMPARE(int(tone.back()), 0);
        int loudest = 0;
        for (const std::int16_t sample : tone) loudest = std::max(loudest, std::abs(int(sample)));
        QVERIFY(loudest > 11000 && loudest < 13000);
        for (std::size_t k = 0; k < 40; ++k) QVERIFY(std::abs(int(tone[k])) < 1200);
    }
};

}  // namespace m47::level

QTEST_MAIN(m47::level::LevelTest)
#include "level_test.moc"
