// SPDX-License-Identifier: GPL-3.0-or-later
// Passes over the band in several states of the LNB, what is kept of them, and the programs that
// come of it.
#include "band_run.h"

#include <cmath>

#include "band_store.h"
#include "band_test.h"
#include "carrier_programs.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "program_state.h"
#include "virtual_clock.h"

namespace m47::band {
namespace {

/// A meter that takes everything and has one level.
struct Steady {
    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};
    int levels = 0;
    QByteArray unit = "00";
    /// The same level in each unit.
    const QHash<QByteArray, QByteArray> levels_in{
        {"00", "  57.9"}, {"01", "  -2.1"}, {"02", "  -51.1"}};
    std::function<void()> on_level;

    Steady() {
        link.port_connected = true;
        port.answer = [this](const QByteArray& command) {
            if (command == "LEVANL?") {
                ++levels;
                if (on_level) on_level();
                return FakePort::good(command, levels_in.value(unit));
            }
            if (command == "UNIT?") return FakePort::good(command, unit);
            if (command == "FREQ?") return FakePort::good(command, "1178.0");
            return FakePort::good(command, command.endsWith('?') ? "00" : "");
        };
    }
};

Sample sample(double mhz, float level, measurement::RangeMark mark = measurement::RangeMark::none) {
    return {mhz, {level, mark}};
}

BandChoice choice(bool sky, double from, double to, int feed) {
    return {.in_the_sky = sky, .whole = false, .from = from, .to = to, .feed = feed};
}

QString text_of(const std::vector<BandPass>& passes) {
    QStringList texts;
    for (const BandPass& pass : passes)
        texts += QStringLiteral("%1%2 %3-%4")
                     .arg(pass.feed.volts.value_or(-1))
                     .arg(pass.feed.tone.value_or(false) ? "t" : "")
                     .arg(pass.span.from)
                     .arg(pass.span.to);
    return texts.join(u',');
}

}  // namespace

void BandTest::a_choice_is_the_passes_over_the_band_data() {
    QTest::addColumn<bool>("sky");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<int>("feed");
    QTest::addColumn<double>("low");
    QTest::addColumn<QString>("passes");
    QTest::newRow("as it is") << false << 1000.0 << 1100.0 << 0 << 9750.0 << "-1 1000-1100";
    QTest::newRow("cut") << false << 500.0 << 1100.0 << 1 << 9750.0 << "13 920-1100";
    QTest::newRow("sky") << true << 10700.0 << 10800.0 << 3 << 9750.0 << "18 950-1050";
    QTest::newRow("sky, one band of two")
        << true << 12000.0 << 12100.0 << kAllFeeds << 9750.0 << "13t 1400-1500,18t 1400-1500";
    QTest::newRow("both bands") << true << 11600.0 << 11700.0 << kAllFeeds << 9750.0
                                << "13 1850-1950,13t 1000-1100,18 1850-1950,18t 1000-1100";
    QTest::newRow("turned round") << true << 3600.0 << 3700.0 << 0 << 5150.0 << "-1 1450-1550";
    QTest::newRow("nothing there") << true << 3600.0 << 3700.0 << 0 << 9750.0 << "";
    QTest::newRow("wrong way") << false << 1100.0 << 1000.0 << 0 << 9750.0 << "";
}

void BandTest::a_choice_is_the_passes_over_the_band() {
    QFETCH(bool, sky);
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(int, feed);
    QFETCH(double, low);
    BandChoice wanted = choice(sky, from, to, feed);
    wanted.oscillators[0] = low;
    QTEST(text_of(passes_of(wanted)), "passes");
    wanted.whole = true;
    wanted.step = 10;
    const std::vector<BandPass> whole = passes_of(wanted);
    QCOMPARE(whole.size(), std::size_t(feed == kAllFeeds ? 4 : 1));
    for (const BandPass& pass : whole) {
        QCOMPARE(pass.span.from, 920.0);
        QCOMPARE(pass.span.to, 2150.0);
        QCOMPARE(pass.span.step, std::optional(10.0));
    }
}

void BandTest::traces_hold_the_last_the_highest_and_the_mean() {
    BandTraces traces;
    traces.take(sample(1000, 50));
    traces.take(sample(1010, 60));
    traces.take({1020, {}});
    traces.begin_pass();
    // The pass before stands until the first level of the next.
    QCOMPARE(traces.live().size(), std::size_t{2});
    traces.take(sample(1000, 53));
    QCOMPARE(traces.live().size(), std::size_t{1});
    QCOMPARE(traces.max_hold().size(), std::size_t{2});
    QCOMPARE(traces.max_hold().level(0), 53.0);
    traces.take(sample(1010, 40));
    QCOMPARE(traces.max_hold().level(1), 60.0);
    // Half of the power of 60 dB and a little of 40.
    QVERIFY(std::abs(traces.average().level(1) - 57.03) < 0.01);
    traces.take(sample(1010, 100, measurement::RangeMark::above));
    QVERIFY(std::abs(traces.average().level(1) - 57.03) < 0.01);
    QCOMPARE(traces.max_hold().samples()[1].level.mark, measurement::RangeMark::above);
    const BandCurve apart = difference(traces.live(), traces.max_hold());
    QCOMPARE(apart.level(0), 0.0);
    BandCurve narrow;
    narrow.take(sample(1005, 50));
    QVERIFY(difference(traces.live(), narrow).empty());
}

/// What is asked as needed lies elsewhere in each pass.
void BandTest::a_weaker_pass_cuts_no_notch_into_the_highest() {
    BandTraces traces;
    for (const auto& [mhz, level] : {std::pair(1000.0, 60.0F), {1004.0, 62.0F}, {1002.0, 58.0F}})
        traces.take(sample(mhz, level));
    // Within the first pass what lies lower is the valley that it is.
    QCOMPARE(traces.max_hold().size(), std::size_t{3});
    traces.begin_pass();
    for (const auto& [mhz, level] : {std::pair(1000.0, 50.0F), {1003.0, 48.0F}, {1001.0, 59.5F}})
        traces.take(sample(mhz, level));
    const BandCurve& held = traces.max_hold();
    QCOMPARE(held.size(), std::size_t{4});
    QVERIFY(!held.exactly_at(1003));
    QCOMPARE(held.exactly_at(1001)->value, 59.5F);
    QCOMPARE(held.exactly_at(1000)->value, 60.0F);
    // Beyond what was held nobody knows better.
    traces.take(sample(1010, 40));
    QCOMPARE(held.exactly_at(1010)->value, 40.0F);
}

void BandTest::a_reference_is_that_of_its_feed_and_unit() {
    BandStore store;
    QVERIFY(store.empty());
    store.begin_pass({13, false}, kDbuv);
    store.take(sample(1000, 50));
    store.begin_pass({18, false}, kDbuv);
    store.take(sample(1000, 60));
    store.keep_as_reference();
    QCOMPARE(store.latest(), std::size_t{1});
    QCOMPARE(store.reference_for(store.states()[0])->level(0), 50.0);
    QCOMPARE(store.reference_for(store.states()[1])->level(0), 60.0);
    // The meter has another unit now: what was in the old one goes.
    store.begin_pass({18, false}, kDbm);
    QCOMPARE(store.states().size(), std::size_t{2});
    QVERIFY(store.states()[1].traces.live().empty());
    QCOMPARE(store.reference_for(store.states()[1]), nullptr);
    store.take_reference({{sample(1000, 40), {Feed{13, false}, {}, kDbuv}},
                          {sample(1005, 41), {Feed{13, false}, {}, kDbuv}}});
    QCOMPARE(store.reference_for(store.states()[0])->size(), std::size_t{2});
    // Nobody knows how the LNB was fed for it: of another polarisation it says nothing.
    store.take_reference({{sample(1000, 40), {{}, {}, kDbuv}}});
    QCOMPARE(store.reference_for(store.states()[0]), nullptr);
    store.begin_pass({}, kDbuv);
    QCOMPARE(store.reference_for(store.states()[2])->size(), std::size_t{1});
    store.clear();
    QVERIFY(store.empty() && store.has_reference());
}

void BandTest::a_run_passes_over_all_states_and_sets_back_once() {
    Steady meter;
    BandChoice wanted = choice(false, 1000, 1020, kAllFeeds);
    wanted.step = 10;
    BandRun run(meter.link, passes_of(wanted));
    QStringList told;
    run.on_pass = [&](const BandPass& pass, std::optional<LevelUnit> unit) {
        told += text_of({pass});
        QCOMPARE(unit, std::optional(kDbuv));
    };
    int passed = 0;
    run.on_passed = [&] { ++passed; };
    const BandEnd end = run.run();
    QCOMPARE(told, QStringList({"13 1000-1020", "13t 1000-1020", "18 1000-1020", "18t 1000-1020"}));
    QCOMPARE(passed, 4);
    QCOMPARE(end.levels, 12);
    QVERIFY(!end.stopped && !end.lost && end.not_set_back.empty());
    const QStringList sent = meter.port.take_commands();
    QCOMPARE(sent.filter("LNVOLT?").size(), 1);
    // At the begin and behind each pass.
    QCOMPARE(sent.filter("UNIT?").size(), 5);
    QCOMPARE(sent.last(6), QStringList({"LOCOSC 00", "FREQ 1178.0", "ATTEN 00", "LNVOLT 00",
                                        "LNB 00", "TONE22K 00"}));
}

void BandTest::a_run_that_repeats_goes_on_until_it_is_stopped() {
    Steady meter;
    BandChoice wanted = choice(false, 1000, 1020, 0);
    wanted.step = 10;
    BandRun run(meter.link, passes_of(wanted));
    run.repeats = [] { return true; };
    int passed = 0;
    run.on_passed = [&] { ++passed; };
    meter.on_level = [&] {
        if (meter.levels == 8) meter.link.activity.stop();
    };
    std::optional<Said> told;
    meter.link.activity.on_stopped = [&](const Said& how_far) { told = how_far; };
    const BandEnd end = run.run();
    QCOMPARE(passed, 2);
    QVERIFY(end.stopped);
    QCOMPARE(end.levels, 8);
    QCOMPARE(meter.port.take_commands().last(4),
             QStringList({"UNIT?", "LOCOSC 00", "FREQ 1178.0", "ATTEN 00"}));
    QCOMPARE(told->in(Texts()),
             QString("a sweep of the band came to 8 levels, which were not saved"));
}

void BandTest::levels_in_units_that_nobody_knows_are_left_out_data() {
    QTest::addColumn<int>("changed");
    QTest::addColumn<int>("stopped");
    QTest::addColumn<int>("levels");
    QTest::addColumn<int>("live");
    QTest::addColumn<LevelUnit>("unit");
    QTest::newRow("in the first pass, in the old unit yet") << 2 << 2 << 0 << 0 << kDbuv;
    QTest::newRow("in the first pass, one more behind it") << 2 << 5 << 3 << 3 << kDbmv;
    QTest::newRow("in the second, stopped there") << 5 << 5 << 3 << 3 << kDbuv;
    QTest::newRow("in the second, one more behind it") << 5 << 8 << 6 << 3 << kDbmv;
}

/// 57.9 can be a level in dBuV and in dBmV: which were which nobody knows.
void BandTest::levels_in_units_that_nobody_knows_are_left_out() {
    QFETCH(int, changed);
    QFETCH(int, stopped);
    Steady meter;
    BandChoice wanted = choice(false, 1000, 1020, 0);
    wanted.step = 10;
    BandRun run(meter.link, passes_of(wanted));
    run.repeats = [] { return true; };
    BandStore store;
    run.on_pass = [&](const BandPass& pass, std::optional<LevelUnit> unit) {
        store.begin_pass(pass.feed, unit);
    };
    run.on_level = [&](const Sample& sample) { store.take(sample); };
    run.on_mixed = [&] { store.drop_pass(); };
    meter.on_level = [&] {
        if (meter.levels == changed) meter.unit = "01";
        if (meter.levels == stopped) meter.link.activity.stop();
    };
    const BandEnd end = run.run();
    QVERIFY(end.stopped && end.unit_changed && end.pass_left_out);
    QTEST(end.levels, "levels");
    const BandTraces& traces = store.states().front().traces;
    QTEST(int(traces.live().size()), "live");
    QCOMPARE(traces.max_hold().size(), traces.live().size());
    // Only what is surely in it is told in a unit.
    QFETCH(LevelUnit, unit);
    QCOMPARE(store.states().front().unit, std::optional(unit));
    const QString told = end_text(end, 0, Texts());
    QVERIFY2(told.endsWith("The unit was changed at the meter meanwhile: the levels of that pass "
                           "are left out."),
             qPrintable(told));
}

/// No level in dBuV can be one in dBm: those before the change are what they say.
void BandTest::a_pass_ends_where_the_unit_was_changed() {
    Steady meter;
    BandChoice wanted = choice(false, 1000, 1040, 0);
    wanted.step = 10;
    BandRun run(meter.link, passes_of(wanted));
    std::vector<double> levels;
    run.on_level = [&](const Sample& sample) { levels.push_back(sample.level.value); };
    bool mixed = false;
    run.on_mixed = [&] { mixed = true; };
    int passed = 0;
    run.on_passed = [&] { ++passed; };
    meter.on_level = [&] {
        if (meter.levels == 3) meter.unit = "02";
    };
    const BandEnd end = run.run();
    QVERIFY(end.unit_changed && !mixed && !end.stopped);
    QCOMPARE(end.levels, 2);
    QCOMPARE(passed, 1);
    QVERIFY(std::ranges::all_of(levels, [](double level) { return level > 50; }));
    QCOMPARE(meter.levels, 3);
    QCOMPARE(end_text(end, 0, Texts()),
             QString("Stopped at 2 levels, carriers found: 0. The meter is as it was. The unit was "
                     "changed at the meter meanwhile: that pass ended there."));
}

void BandTest::a_unit_changed_between_two_passes_is_told() {
    Steady meter;
    BandChoice wanted = choice(false, 1000, 1020, 5);
    wanted.step = 10;
    BandRun run(meter.link, passes_of(wanted));
    meter.on_level = [&] {
        if (meter.levels == 4) meter.unit = "02";
    };
    const BandEnd end = run.run();
    QVERIFY(end.unit_changed);
    QCOMPARE(end.levels, 9);
}

/// As by somebody who looks what another unit says and goes back.
void BandTest::a_unit_set_back_within_a_pass_is_noticed() {
    Steady meter;
    BandChoice wanted = choice(false, 1000, 1040, 0);
    wanted.step = 10;
    BandRun run(meter.link, passes_of(wanted));
    bool mixed = false;
    run.on_mixed = [&] { mixed = true; };
    meter.on_level = [&] { meter.unit = meter.levels == 2 || meter.levels == 3 ? "02" : "00"; };
    const BandEnd end = run.run();
    QVERIFY(end.unit_changed && !mixed);
    QCOMPARE(end.levels, 1);
    // Asked once for it, at the first level that told it.
    QCOMPARE(meter.port.take_commands().filter("UNIT?").size(), 2);
}

void BandTest::a_run_tells_each_end_in_one_sentence() {
    const Texts texts;
    const Bilingual supply{"LNB supply", ""};
    QCOMPARE(end_text({.levels = 7}, 2, texts),
             QString("Swept: 7 levels, carriers found: 2. The meter is as it was."));
    QCOMPARE(end_text({.stopped = true, .levels = 7}, 2, texts),
             QString("Stopped at 7 levels, carriers found: 2. The meter is as it was."));
    QVERIFY(end_text({.levels = 7, .without_level = 3}, 2, texts).contains("At 3 frequencies"));
    QVERIFY(end_text({.stopped = true, .levels = 7, .not_set_back = {supply}}, 2, texts)
                .endsWith("these were not set back: LNB supply."));
    QVERIFY(end_text({.lost = true, .levels = 7, .not_set_back = {supply}}, 2, texts)
                .startsWith("The link to the meter was lost at 7 levels, which stay"));
    Steady meter;
    meter.link.port_connected = false;
    bool unsent = false;
    meter.link.on_unsent = [&] { unsent = true; };
    BandRun run(meter.link, passes_of(choice(false, 1000, 1020, 0)));
    QCOMPARE(end_text(run.run(), 0, texts), QString("Nothing was swept: no meter answers."));
    QVERIFY(unsent);
    QCOMPARE(meter.port.take_commands(), QStringList());
}

void BandTest::carriers_become_programs() {
    const Carrier named{1040.5, 26.4, 60, 12, "NEWS", 27.5};
    const Carrier unknown{1500.2, 8.1, 55, 9};
    const auto programs = carrier_programs(
        {{named, {{18, true}, 10600.0, kDbuv}}, {unknown, {{13, false}, {}, kDbuv}}}, 0);
    QCOMPARE(programs.size(), std::size_t{2});
    QCOMPARE(programs[0].name, QString("NEWS"));
    QCOMPARE(programs[0].record.frequenza.toDouble(), 11641.0);
    QCOMPARE(programs[0].oscillator, QString("10600"));
    QVERIFY(!programs[0].record.loc_osc && programs[0].record.sat_ad);
    QCOMPARE(programs[0].record.qpsk_symbolrate, QString("27500"));
    QCOMPARE(programs[0].record.lnb_volt, 2);
    QCOMPARE(programs[0].record.K22, 1);
    // Nobody knows its symbol rate.
    QVERIFY(programs[1].record.loc_osc && !programs[1].record.sat_ad);
    QCOMPARE(programs[1].record.frequenza, QString("1500.2"));
    QCOMPARE(programs[1].record.lnb_volt, 1);
    const plans::ImportPreview preview = plans::preview_import(programs, {}, {}, 0.0);
    QCOMPARE(preview.added(), 2);
}

}  // namespace m47::band
