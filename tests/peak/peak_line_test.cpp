// SPDX-License-Identifier: GPL-3.0-or-later
// The search for the peak over the line to a meter.
#include <QHash>
#include <QSet>
#include <cmath>

#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link_antenna.h"
#include "meter_in_process.h"
#include "peak_run.h"
#include "peak_search.h"
#include "peak_test.h"
#include "virtual_clock.h"

namespace m47::peak {
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

/// A dish on the line, under one satellite that is so many steps east of where it looks at first.
struct DishOnLine : Line {
    explicit DishOnLine(double satellite) : satellite_(satellite) {
        answers["ATTEN?"] = " 03";
        answers["UNIT?"] = " 00";
        answers["BERQPSK?"] = "CHBER : 3.0E-2\rPvBER : 3.0E-2\rCFO   : 0.00\rMER   : 1.0";
        port.answer = [this](const QByteArray& command) { return answer(command); };
    }

    QByteArray answer(const QByteArray& command) {
        if (command == spoilt) return {};
        if (command.startsWith("DISEQCMOT 08 ")) shaft += command.mid(13, 2).toInt();
        if (command.startsWith("DISEQCMOT 09 ")) shaft -= command.mid(13, 2).toInt();
        shaft = std::clamp(shaft, western_limit, eastern_limit);
        farthest = std::max(farthest, std::abs(shaft));
        if (command.startsWith("DISEQCMOT") && on_drive) on_drive();
        const double widths = (shaft - satellite_) / 22.4;
        const double level =
            other_unit_ + 45.0 + 10 * std::log10(1 + 20 * std::pow(10.0, -1.2 * widths * widths));
        answers["LEVANL?"] = "  " + QByteArray::number(level, 'f', 1);
        return FakePort::good(command, answers.value(command));
    }

    PeakOutcome search() { return PeakRun(link, {}, {"FREQ 1000.0"}).run(); }

    /// By a key of the meter.
    void change_unit() {
        answers["UNIT?"] = " 02";
        other_unit_ = -48.75;
    }

    int shaft = 0;
    int farthest = 0;
    int western_limit = -1000;  ///< beyond which the motor takes a drive and does not turn
    int eastern_limit = 1000;
    QByteArray spoilt;  ///< a command without any answer
    std::function<void()> on_drive;

  private:
    double satellite_;
    double other_unit_ = 0;  ///< dB
};

QString said(const PeakOutcome& outcome, int language = kEnglish) {
    Texts texts;
    texts.language = language;
    return end_sentence(outcome, texts);
}

const QStringList kBegin{"ATTEN?",  "UNIT?",   "MEASURE", "FREQ 1000.0",
                         "ATTEN 6", "LEVANL?", "LEVANL?"};
const QStringList kEnd{"DISEQCMOT 00", "ATTEN 03"};

}  // namespace

void PeakTest::a_whole_search_over_the_line() {
    DishOnLine dish(12.0);
    const PeakOutcome outcome = dish.search();
    QVERIFY(outcome.search.end == SearchEnd::found);
    QVERIFY(outcome.linked && outcome.motor_stopped && outcome.attenuator_back);
    QVERIFY(std::abs(dish.shaft - 12) <= 1);
    QCOMPARE(outcome.search.shaft, dish.shaft);
    QVERIFY(dish.farthest <= 50);
    const QStringList sent = dish.port.take_commands();
    QCOMPARE(sent.mid(0, 9), kBegin + QStringList({"DISEQCMOT 09 04 01", "DISEQCMOT 08 04 01"}));
    QCOMPARE(sent.mid(sent.size() - 2), kEnd);
    QCOMPARE(said(outcome), QString("The peak is found: 1.2° east of the start, 3.2 dB better than "
                                    "there."));
    QCOMPARE(dish.link.activity.working(), false);
}

/// What is out of the span is no peak, but no reason to look elsewhere either.
void PeakTest::a_level_that_rises_to_the_end_of_the_span_is_told() {
    for (const double peak : {66.0, -66.0}) {
        DishOnLine dish(peak);
        const PeakOutcome outcome = dish.search();
        QVERIFY(outcome.search.end == SearchEnd::nothing_better);
        QCOMPARE(dish.shaft, 0);
        const QString text = said(outcome);
        QVERIFY2(
            text.startsWith("No peak within the span, but the level rises towards its end: ") &&
                text.contains(peak > 0 ? "° east of the start" : "° west of the start") &&
                text.endsWith(" The dish is back at its start."),
            qPrintable(text));
    }
}

/// It takes a drive beyond and stands: what is counted from then on is not where the dish is.
void PeakTest::a_motor_at_its_limit_is_noticed_where_the_level_shows_it() {
    for (const int limit : {0, 7, 13, 24})
        for (const int side : {1, -1}) {
            DishOnLine dish(-15.0 * side);
            (side > 0 ? dish.eastern_limit : dish.western_limit) = limit * side;
            const PeakOutcome outcome = dish.search();
            const QString where = QStringLiteral("limit %1: ").arg(limit * side) + said(outcome);
            QVERIFY2(dish.farthest <= 50, qPrintable(where));
            if (outcome.search.end == SearchEnd::found)
                QVERIFY2(std::abs(outcome.search.shaft - dish.shaft) <= 4, qPrintable(where));
            else
                QVERIFY2(outcome.search.end == SearchEnd::held && outcome.motor_stopped,
                         qPrintable(where));
        }
}

void PeakTest::nothing_better_over_the_line() {
    DishOnLine dish(400.0);
    const PeakOutcome outcome = dish.search();
    QCOMPARE(dish.shaft, 0);
    QCOMPARE(said(outcome), QString("Nothing better was found within the span: the dish is back at "
                                    "its start."));
    const QStringList sent = dish.port.take_commands();
    QCOMPARE(sent.mid(sent.size() - 2), kEnd);
}

void PeakTest::readings_are_told_with_their_place() {
    DishOnLine dish(0.0);
    dish.answers["BERQPSK?"] = "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 1.25\rMER   : >30.0";
    PeakRun run(dish.link, {});
    QList<Taken> taken;
    run.on_reading = [&](const Taken& one) {
        QCOMPARE(one.steps, dish.shaft);
        taken.append(one);
    };
    const PeakOutcome outcome = run.run();
    QVERIFY(outcome.search.by_carrier);
    QCOMPARE(taken.size(), outcome.search.readings);
    const auto of_mer = [](const Taken& one) {
        return one.quantity == measurement::Quantity::mer &&
               one.reading.mark == measurement::RangeMark::above;
    };
    QVERIFY(std::ranges::count_if(taken, of_mer) >= 3);
}

void PeakTest::stopped_while_it_turns_data() {
    QTest::addColumn<bool>("program_ends");
    QTest::newRow("by the user") << false;
    QTest::newRow("with the program") << true;
}

/// The stop goes out at once, not when the drive has ended.
void PeakTest::stopped_while_it_turns() {
    QFETCH(bool, program_ends);
    DishOnLine dish(12.0);
    double turned_at = 0;
    bool ends = false;
    dish.link.interrupted = [&] { return ends; };
    dish.on_drive = [&] {
        if (dish.shaft > -10 || turned_at > 0) return;
        turned_at = dish.clock.elapsed();
        program_ends ? void(ends = true) : dish.link.activity.stop();
    };
    const PeakOutcome outcome = dish.search();
    QVERIFY(outcome.search.end == SearchEnd::cancelled && outcome.motor_stopped);
    QVERIFY(turned_at > 0);
    QVERIFY2(dish.clock.elapsed() - turned_at < 0.5, "a degree takes longer");
    const QStringList sent = dish.port.take_commands();
    QCOMPARE(
        sent.mid(7),
        QStringList({"DISEQCMOT 09 04 01", "DISEQCMOT 08 04 01", "DISEQCMOT 09 10 01"}) + kEnd);
    QCOMPARE(said(outcome), QString("Stopped: the motor was told to stop, and the dish stays where "
                                    "it is."));
    QVERIFY(!dish.link.activity.stop_asked());
}

void PeakTest::lost_while_it_turns() {
    DishOnLine dish(12.0);
    dish.on_drive = [&] { dish.port.vanish_in(0.3); };
    const PeakOutcome outcome = dish.search();
    QVERIFY(!outcome.linked && !outcome.motor_stopped);
    QCOMPARE(said(outcome),
             QString("The link to the meter was lost and the motor could not be told to stop; its "
                     "last drive, 1° at most, ends by itself. The attenuator was not set back."));
    QVERIFY(said(outcome, kItalian).startsWith("Il collegamento con lo strumento è caduto"));
    QCOMPARE(dish.port.take_commands().mid(7, 1), QStringList("DISEQCMOT 09 04 01"));
}

/// A meter that refuses has not gone: it is told to stop, and who reads on knows where the dish is.
void PeakTest::a_level_refused_three_times_leaves_the_dish_where_it_says() {
    DishOnLine dish(12.0);
    int unsent = 0;
    dish.link.on_unsent = [&unsent] { ++unsent; };
    PeakRun run(dish.link, {});
    run.on_reading = [&](const Taken& taken) {
        if (taken.steps == -20)
            dish.port.answer = [&dish](const QByteArray& command) {
                return command == "LEVANL?" ? command + "\rERROR\r" : dish.answer(command);
            };
    };
    const PeakOutcome outcome = run.run();
    QVERIFY(!outcome.linked && outcome.motor_stopped && outcome.attenuator_back);
    QCOMPARE(unsent, 0);
    const QStringList sent = dish.port.take_commands();
    QCOMPARE(sent.mid(sent.size() - 5), QStringList(3, "LEVANL?") + kEnd);
    QCOMPARE(outcome.place.value(), dish.shaft);
    QCOMPARE(said(outcome),
             QString("The meter refused LEVANL? three times, which ends the link: the motor was "
                     "told to stop, and the dish stays 1.0° west of its start."));
    QVERIFY(said(outcome, kItalian).endsWith("l'antenna resta 1.0° a ovest dell'inizio."));
}

void PeakTest::a_refused_stop_is_told() {
    DishOnLine dish(12.0);
    dish.port.answer = [&dish](const QByteArray& command) {
        return command == "DISEQCMOT 00" ? command + "\rERROR\r" : dish.answer(command);
    };
    const PeakOutcome outcome = dish.search();
    QVERIFY(!outcome.linked && !outcome.motor_stopped);
    QVERIFY(said(outcome).startsWith("The meter did not take the stop of the motor"));
}

/// A drive that was repeated could have turned the dish twice.
void PeakTest::a_drive_goes_out_once() {
    DishOnLine dish(12.0);
    dish.spoilt = "DISEQCMOT 08 04 01";
    const PeakOutcome outcome = dish.search();
    QVERIFY(outcome.search.end == SearchEnd::astray && outcome.linked && outcome.motor_stopped);
    const QStringList sent = dish.port.take_commands();
    QCOMPARE(sent.count("DISEQCMOT 08 04 01"), 1);
    QCOMPARE(sent.mid(sent.size() - 2), kEnd);
    QCOMPARE(said(outcome), QString("The meter did not surely take a drive: the motor was told to "
                                    "stop, and nobody knows how far it has turned."));
}

void PeakTest::a_unit_changed_at_the_meter_has_no_peak_data() {
    QTest::addColumn<int>("at");
    QTest::newRow("before the first drive") << 4;
    QTest::newRow("in the look around") << -20;
    QTest::newRow("near the peak") << 12;
}

/// What is higher by the other unit alone is no peak, and no reason to leave the dish there.
void PeakTest::a_unit_changed_at_the_meter_has_no_peak() {
    QFETCH(int, at);
    DishOnLine dish(12.0);
    dish.on_drive = [&] {
        if (dish.shaft + 4 == at || dish.shaft == at) dish.change_unit();
    };
    PeakRun run(dish.link, {}, {"FREQ 1000.0"});
    double least = 200;
    run.on_reading = [&](const Taken& taken) {
        if (taken.quantity == measurement::Quantity::level)
            least = std::min<double>(least, taken.reading.value);
    };
    const PeakOutcome outcome = run.run();
    QVERIFY2(least > 30, "a level of the other unit was told as one of this");
    QVERIFY(outcome.search.end == SearchEnd::unit_changed && outcome.linked);
    QVERIFY(outcome.motor_stopped && outcome.attenuator_back && !outcome.gain());
    QCOMPARE(dish.shaft, 0);
    QVERIFY(dish.farthest <= 50);
    QVERIFY(dish.port.take_commands().contains("UNIT?"));
    QCOMPARE(said(outcome),
             QString("The unit was changed at the meter meanwhile, so its levels cannot be "
                     "compared: the dish is back at its start."));
    QVERIFY(said(outcome, kItalian).endsWith("l'antenna è di nuovo all'inizio."));
    // The second time it has one unit again.
    dish.on_drive = nullptr;
    QVERIFY(dish.search().search.end == SearchEnd::found);
    QVERIFY(std::abs(dish.shaft - 12) <= 1);
}

void PeakTest::without_levels_it_goes_back() {
    DishOnLine dish(12.0);

    PeakRun run(dish.link, {});
    run.on_reading = [&](const Taken& taken) {
        if (taken.steps == -20)
            dish.port.answer = [&dish](const QByteArray& command) {
                return command == "LEVANL?" ? FakePort::good(command, " what")
                                            : dish.answer(command);
            };
    };
    const PeakOutcome outcome = run.run();
    QVERIFY(outcome.search.end == SearchEnd::lost && outcome.linked);
    QCOMPARE(dish.shaft, 0);
    QCOMPARE(said(outcome),
             QString("The meter gave no sure level any more: the dish is back at its "
                     "start."));
}

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
    QVERIFY2(peak_search.run().end == SearchEnd::astray, "the way back cannot be told");
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
/// line does to it; and it says how, with the motor stopped and the meter as it was.
void PeakTest::every_kind_of_fault() {
    QSet<QString> kinds;
    QSet<QString> sentences;
    int whole = 0;
    for (quint64 seed = 1; seed <= 60; ++seed) {
        Line line;
        MeterInProcess meter(line.port, seed);
        meter.bad_in = seed % 4 == 0 ? 0 : 12;
        QStringList sent;
        int shaft = 0;
        meter.on_command = [&](const QByteArray& command, const QString& kind) {
            sent += command;
            if (command.startsWith("DISEQCMOT 08 ")) shaft += command.mid(13, 2).toInt();
            if (command.startsWith("DISEQCMOT 09 ")) shaft -= command.mid(13, 2).toInt();
            QVERIFY2(std::abs(shaft) <= 50, "outside of the span");
            if (!kind.isEmpty()) kinds += kind;
        };
        const PeakOutcome outcome = PeakRun(line.link, {}).run();
        const SearchEnd end = outcome.search.end;
        QVERIFY(end != SearchEnd::found && end != SearchEnd::cancelled);
        QCOMPARE(line.link.port_connected, outcome.linked);
        whole += end == SearchEnd::nothing_better && outcome.linked;
        if (end == SearchEnd::nothing_better) QCOMPARE(shaft, 0);
        if (outcome.linked && outcome.attenuator_back) QCOMPARE(sent.last(), QString("ATTEN 06"));
        if (outcome.linked) QVERIFY(sent.indexOf("DISEQCMOT 00") >= sent.size() - 5);
        sentences += said(outcome);
    }
    QVERIFY2(kinds.size() > 10, qPrintable(QString::number(kinds.size())));
    QVERIFY2(whole >= 15, "what no fault hits, and more");
    QVERIFY2(sentences.size() >= 3, qPrintable(QStringList(sentences.values()).join('\n')));
}

}  // namespace m47::peak
