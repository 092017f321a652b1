// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_levels.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

#include "band_test.h"
#include "carriers.h"
#include "fake_link_view.h"
#include "fault.h"
#include "meter_in_process.h"
#include "sweep.h"

namespace m47::band {
namespace {

/// A meter that answers from a table, and everything between it and a sweep.
struct Scripted {
    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};
    MeterLevels levels{link};
    std::map<QByteArray, QByteArray> values{
        {"FREQ?", "11778"}, {"LOCOSC?", "02 A 10600"}, {"ATTEN?", "3"},    {"UNIT?", "00"},
        {"LNB?", "01"},     {"LNVOLT?", "15"},         {"TONE22K?", "00"}, {"LEVANL?", "  57.9"}};
    std::function<void(const QByteArray&)> on_command;

    Scripted() {
        link.port_connected = true;
        port.answer = [this](const QByteArray& command) {
            if (on_command) on_command(command);
            return FakePort::good(command, values[command]);
        };
    }

    /// How many levels there were.
    int sweep(const SweepSpan& span, const Feed& feed) {
        int levels_taken = 0;
        levels.prepare(feed);
        Sweep sweep(levels, span);
        while (const auto sample = sweep.step())
            if (sample->level.measured()) ++levels_taken;
        return levels_taken;
    }
};

const QStringList kNoted{"FREQ?", "LOCOSC?", "ATTEN?", "UNIT?"};
const SweepSpan kThree{1000, 1010, 5.0};

}  // namespace

void BandTest::a_sweep_sends_no_more_than_it_needs() {
    Scripted meter;
    QCOMPARE(meter.sweep(kThree, {}), 3);
    QCOMPARE(meter.port.take_commands(),
             kNoted + QStringList({"MEASURE", "LOCOSC 00", "ATTEN 6", "FREQ 1000.0", "LEVANL?",
                                   "FREQ 1005.0", "LEVANL?", "FREQ 1010.0", "LEVANL?"}));
    QVERIFY(meter.levels.set_back().empty());
    QCOMPARE(meter.port.take_commands(), QStringList({"LOCOSC 2 A", "FREQ 11778", "ATTEN 03"}));
    // There is nothing to set back a second time.
    QVERIFY(meter.levels.set_back().empty());
    QCOMPARE(meter.port.take_commands(), QStringList());
}

void BandTest::the_meter_is_left_as_it_was() {
    Scripted meter;
    meter.values["LOCOSC?"] = "00";
    meter.values["FREQ?"] = "1178.0";
    meter.sweep(kThree, {18, true});
    meter.levels.prepare({0, false});
    const QStringList sent = meter.port.take_commands();
    QCOMPARE(sent.mid(4, 9), QStringList({"LNB?", "LNVOLT?", "TONE22K?", "MEASURE", "LOCOSC 00",
                                          "LNVOLT 18", "LNB 01", "TONE22K 01", "ATTEN 6"}));
    // A second state of the LNB is not taken for what the meter was.
    QCOMPARE(sent.mid(19),
             QStringList({"MEASURE", "LOCOSC 00", "LNB 00", "TONE22K 00", "ATTEN 6"}));
    QVERIFY(meter.levels.set_back().empty());
    QCOMPARE(meter.port.take_commands(), QStringList({"LOCOSC 00", "FREQ 1178.0", "ATTEN 03",
                                                      "LNVOLT 15", "LNB 01", "TONE22K 00"}));
}

void BandTest::what_the_meter_does_not_tell_is_not_set_back() {
    Scripted meter;
    meter.values["LOCOSC?"] = "Invalid Parameter(s)";
    meter.values["LNVOLT?"] = "?!";
    meter.values["FREQ?"] = "";
    meter.sweep(kThree, {13, {}});
    meter.port.take_commands();
    Texts texts;
    // An answer that is no oscillator is none.
    QCOMPARE(names_in(meter.levels.set_back(), texts), QString("tuned frequency, LNB supply"));
    QCOMPARE(meter.port.take_commands(), QStringList({"LOCOSC 00", "ATTEN 03"}));
    texts.language = kItalian;
    meter.values["LOCOSC?"] = "xx";
    meter.sweep(kThree, {});
    QCOMPARE(names_in(meter.levels.set_back(), texts),
             QString("oscillatore locale, frequenza sintonizzata"));
}

void BandTest::a_sweep_that_is_stopped_leaves_the_meter_in_order() {
    Scripted meter;
    bool told = false;
    meter.link.interrupted = [&told] { return told; };
    meter.on_command = [&told](const QByteArray& command) {
        told = told || command == "FREQ 1005.0";
    };
    bool ended = false;
    try {
        meter.sweep(kThree, {13, true});
    } catch (const Interrupted&) {
        ended = true;
    }
    QVERIFY(ended);
    QCOMPARE(meter.port.take_commands().constLast(), QString("FREQ 1005.0"));
    QVERIFY(meter.levels.set_back().empty());
    QCOMPARE(meter.port.take_commands(), QStringList({"LOCOSC 2 A", "FREQ 11778", "ATTEN 03",
                                                      "LNVOLT 15", "LNB 01", "TONE22K 00"}));
    // Told once more, not even that is put through.
    meter.link.interrupted = nullptr;
    meter.sweep(kThree, {});
    meter.port.take_commands();
    meter.link.cut_off = [] { return true; };
    QCOMPARE(names_in(meter.levels.set_back(), Texts()),
             QString("local oscillator, tuned frequency, attenuator"));
}

void BandTest::a_lost_link_ends_a_sweep() {
    Scripted meter;
    meter.on_command = [&meter](const QByteArray& command) {
        if (command == "FREQ 1005.0") meter.port.vanish_in(0);
    };
    QCOMPARE(meter.sweep(kThree, {}), 1);
    QVERIFY(meter.levels.lost());
    meter.port.take_commands();
    QCOMPARE(meter.levels.set_back().size(), std::size_t{3});
    QCOMPARE(meter.port.take_commands(), QStringList());
}

/// A meter that refuses a command has not gone: it is not left fed and at another frequency.
void BandTest::a_meter_that_refuses_is_set_back_all_the_same() {
    for (const QByteArray refused : {"FREQ 1005.0", "LNVOLT 18"}) {
        Scripted meter;
        meter.port.answer = [&meter, refused](const QByteArray& command) {
            return command == refused ? (command + "\rERROR\r")
                                      : FakePort::good(command, meter.values[command]);
        };
        QVERIFY(meter.sweep(kThree, {18, true}) < 3);
        QVERIFY(meter.levels.lost());
        meter.port.take_commands();
        QVERIFY(meter.levels.set_back().empty());
        QCOMPARE(meter.port.take_commands(), QStringList({"LOCOSC 2 A", "FREQ 11778", "ATTEN 03",
                                                          "LNVOLT 15", "LNB 01", "TONE22K 00"}));
        // All else goes by what the link has shown.
        QVERIFY(meter.levels.lost());
        QVERIFY(!meter.link.send("MEASURE"));
    }
}

void BandTest::what_is_refused_in_setting_back_keeps_nothing_else_from_it() {
    Scripted meter;
    meter.sweep(kThree, {18, {}});
    meter.port.take_commands();
    meter.port.answer = [&meter](const QByteArray& command) {
        return command == "FREQ 11778" ? (command + "\rERROR\r")
                                       : FakePort::good(command, meter.values[command]);
    };
    QCOMPARE(names_in(meter.levels.set_back(), Texts()), QString("tuned frequency"));
    const QString again("FREQ 11778");
    QCOMPARE(meter.port.take_commands(),
             QStringList({"LOCOSC 2 A", again, again, again, "ATTEN 03", "LNVOLT 15", "LNB 01"}));
    QVERIFY(meter.levels.lost());
}

void BandTest::what_was_never_changed_is_not_named() {
    Scripted meter;
    meter.port.answer = [&meter](const QByteArray& command) {
        return command == "LOCOSC?" ? (command + "\rERROR\r")
                                    : FakePort::good(command, meter.values[command]);
    };
    meter.sweep(kThree, {18, true});
    QVERIFY(meter.levels.set_back().empty());
    QVERIFY(!meter.port.take_commands().contains("FREQ 11778"));
}

void BandTest::a_frequency_that_is_not_taken_has_no_level() {
    Scripted meter;
    meter.values["FREQ 1005.0"] = "Invalid Parameter(s)";
    QCOMPARE(meter.sweep(kThree, {}), 2);
}

void BandTest::a_doubtful_level_is_asked_again() {
    Scripted meter;
    int asked = 0;
    meter.on_command = [&](const QByteArray& command) {
        if (command == "LEVANL?") meter.values["LEVANL?"] = ++asked == 1 ? "  5x.9" : "  57.9";
    };
    QCOMPARE(meter.sweep(kThree, {}), 3);
    QCOMPARE(asked, 4);
    meter.on_command = nullptr;
    meter.values["LEVANL?"] = "  5x.9";
    QCOMPARE(meter.sweep(kThree, {}), 0);
}

void BandTest::a_sweep_of_the_simulated_sky_finds_its_carriers() {
    Scripted meter;
    const MeterInProcess simulated(meter.port, 47);
    const QByteArray before = simulated.kept();
    meter.levels.prepare({13, false});
    Sweep sweep(meter.levels, {});
    while (sweep.step()) {
    }
    QVERIFY(sweep.whole());
    QVERIFY2(sweep.plan().asked() * 3 < 1231, qPrintable(QString::number(sweep.plan().asked())));
    const std::vector<Carrier> found = find_carriers(sweep.plan().curve());
    for (const double centre :
         {1000.0, 1097.5, 1275.5, 1362.0, 1450.5, 1625.0, 1718.5, 1810.0, 1988.0, 2085.0}) {
        const bool listed = std::ranges::any_of(found, [centre](const Carrier& carrier) {
            return std::abs(carrier.centre - centre) <= 1.5;
        });
        QVERIFY2(listed, qPrintable(QString::number(centre)));
    }
    QVERIFY(found.size() <= 14);
    QVERIFY(meter.levels.set_back().empty());
    QCOMPARE(simulated.kept(), before);
}

/// Whatever the line does to the answers, a level is that of its frequency or none at all.
void BandTest::a_faulty_line_gives_true_levels_or_none() {
    for (quint64 seed = 1; seed <= 12; ++seed) {
        Scripted meter;
        const SweepSpan span{1000, 1180, 5.0};
        std::map<double, float> truth;
        {
            const MeterInProcess good(meter.port, seed);
            meter.levels.prepare({18, true});
            Sweep sweep(meter.levels, span);
            while (const auto sample = sweep.step()) truth[sample->mhz] = sample->level.value;
            meter.levels.set_back();
        }
        QCOMPARE(truth.size(), std::size_t{37});
        MeterInProcess faulty(meter.port, seed);
        faulty.bad_in = 12;
        meter.levels.prepare({18, true});
        Sweep sweep(meter.levels, span);
        while (const auto sample = sweep.step())
            if (sample->level.measured())
                QVERIFY2(std::abs(sample->level.value - truth[sample->mhz]) <= 0.6F,
                         qPrintable(QString::number(sample->mhz)));
        QVERIFY(faulty.faults > 0);
        // Either it came to its end or it says that nobody answers.
        QVERIFY(sweep.whole() || meter.levels.lost());
        const bool left_in_order = meter.levels.set_back().empty();
        QVERIFY(left_in_order || meter.levels.lost());
    }
}

}  // namespace m47::band
