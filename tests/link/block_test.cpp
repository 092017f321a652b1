// SPDX-License-Identifier: GPL-3.0-or-later
// A long text sent in one piece: its own rules, byte for byte and second for second.
#include <QTest>
#include <algorithm>
#include <cmath>
#include <memory>

#include "answer_before.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link.h"
#include "virtual_clock.h"

namespace m47::link {
namespace {

/// The tick of the virtual clock's time of day, 10:00.
constexpr double kTick = 1 / 256.0;
/// The pause behind a block ends on the first reading beyond half a second.
constexpr double kPause = 0.5 + kTick;

const QString kBlock = QStringLiteral("S00A0000\rS1130000\rS9030000FC");

}  // namespace

class BlockTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void without_a_link_nothing_is_sent();
    void suspended_commands_are_not_sent();
    void the_text_goes_out_unchanged();
    void the_first_cr_completes_the_answer();
    void an_echo_during_sending_completes_it();
    void an_error_is_the_callers();
    void one_tick_behind_each_character();
    void what_arrives_in_the_pause_is_not_read();
    void old_input_is_dropped();
    void no_cr_within_the_limit_loses_the_link();
    void the_limit_counts_from_before_sending();
    void a_block_that_takes_longer_than_the_limit();
    void a_silent_meter_is_not_woken();
    void a_missing_port_loses_the_link_at_once();
    void an_unplugged_line_loses_the_link_at_once();
    void a_line_that_takes_nothing_waits_for_the_limit();
    void progress_steps_and_wraps();
    void the_hourglass_stands_through_the_pause();
    void windows_are_pumped_meanwhile();
    void an_interruption_waits_for_the_end();
    void nothing_starts_inside();
    void it_is_one_span_of_the_clock();
    void a_command_follows();
    void a_late_answer_is_not_the_blocks();

  private:
    void make(double time_of_day = 36000.0);
    void run(const QString& block = kBlock);

    std::unique_ptr<VirtualClock> clock_;
    std::unique_ptr<FakePort> port_;
    std::unique_ptr<FakeLinkView> view_;
    std::unique_ptr<Link> link_;
    std::optional<QString> last_;
};

void BlockTest::init() {
    make();
}

void BlockTest::make(double time_of_day) {
    clock_ = std::make_unique<VirtualClock>(time_of_day);
    port_ = std::make_unique<FakePort>(*clock_);
    view_ = std::make_unique<FakeLinkView>();
    link_ = std::make_unique<Link>(*port_, *clock_, *view_);
    link_->port_connected = true;
    link_->port_number = 2;
}

void BlockTest::run(const QString& block) {
    last_ = link_->send_block(block);
}

void BlockTest::without_a_link_nothing_is_sent() {
    link_->port_connected = false;
    leave_answer(*link_, *port_, "as it was");
    const double before = clock_->elapsed();
    view_->set_progress(7);
    run();
    QCOMPARE(link_->last_answer(), QString("as it was"));
    QVERIFY(view_->bar_shown);
    QCOMPARE(view_->progress(), 0);
    QVERIFY(!view_->hourglass);
    QVERIFY(view_->state_text.isEmpty());
    QCOMPARE(port_->opens, 0);
    QCOMPARE(port_->written, QByteArray());
    QCOMPARE(last_, std::optional<QString>());
    QCOMPARE(clock_->elapsed(), before);
}

void BlockTest::suspended_commands_are_not_sent() {
    link_->commands_suspended = true;
    leave_answer(*link_, *port_, "as it was");
    const double before = clock_->elapsed();
    run();
    QCOMPARE(link_->last_answer(), QString("as it was"));
    QVERIFY(view_->bar_shown);
    QCOMPARE(port_->opens, 0);
    QCOMPARE(last_, std::optional<QString>());
    QCOMPARE(clock_->elapsed(), before);
}

void BlockTest::the_text_goes_out_unchanged() {
    port_->answer = [](const QByteArray& line) { return line + "\rOK\r"; };
    run();
    QCOMPARE(port_->written, kBlock.toLatin1() + '\r');
    QCOMPARE(port_->opens, 1);
    QCOMPARE(port_->closes, 1);
    QVERIFY(link_->port_connected);
    QVERIFY(view_->state_text.isEmpty());
}

void BlockTest::the_first_cr_completes_the_answer() {
    port_->feed("ec", 0.2);
    port_->feed("ho\r", 0.3);
    port_->feed("OK\r", 0.5);
    run("echo");
    QCOMPARE(link_->last_answer(), QString("echo\r"));
    QVERIFY(!port_->is_open());
    QVERIFY(std::abs(clock_->elapsed() - 0.3 - kPause) <= 2 * kTick);
}

void BlockTest::an_echo_during_sending_completes_it() {
    // The meter echoes line by line; by the end of the block all but the last echo is there.
    port_->answer_delay = kTick / 2;
    port_->answer = [](const QByteArray& line) { return line + "\rOK\r"; };
    run();
    QCOMPARE(link_->last_answer(), QString("S00A0000\rOK\rS1130000\rOK\rS9030000FC\rOK\r"));
    const double sending = static_cast<double>(kBlock.size() + 1) * kTick;
    QVERIFY(std::abs(clock_->elapsed() - sending - kPause) < 1e-9);
}

void BlockTest::an_error_is_the_callers() {
    port_->answer = [](const QByteArray&) { return QByteArray("COMMAND ERROR\rOK\r"); };
    run("S1");
    QCOMPARE(link_->last_answer(), QString("COMMAND ERROR\rOK\r"));
    QCOMPARE(port_->written, QByteArray("S1\r"));
    QCOMPARE(port_->opens, 1);
    QVERIFY(link_->port_connected);
}

void BlockTest::one_tick_behind_each_character() {
    QList<double> times;
    clock_->sleep(kTick / 4);
    port_->answer = [&](const QByteArray& line) {
        times += clock_->elapsed();
        return line + "\r";
    };
    run("AB\rC");
    // The first wait ends at the next tick, whole ones lie between it and each CR.
    QCOMPARE(times, (QList<double>{2 * kTick, 4 * kTick}));
}

void BlockTest::what_arrives_in_the_pause_is_not_read() {
    port_->answer = [&](const QByteArray& line) {
        port_->feed("late\r", 0.4);
        return line + "\r";
    };
    run("S1");
    QCOMPARE(link_->last_answer(), QString("S1\r"));
    port_->answer = [](const QByteArray& command) { return FakePort::good(command, "73.5"); };
    QVERIFY(link_->send("LEVANL?"));
    QCOMPARE(link_->last_answer(), QString("73.5"));
}

void BlockTest::old_input_is_dropped() {
    port_->feed("old\r");
    port_->answer = [](const QByteArray& line) { return line + "\r"; };
    run("S1");
    QCOMPARE(link_->last_answer(), QString("S1\r"));
}

void BlockTest::no_cr_within_the_limit_loses_the_link() {
    port_->feed("S1130000 and no end", 1);
    run();
    QVERIFY(!link_->port_connected);
    QCOMPARE(link_->last_answer(), QString());
    QCOMPARE(view_->state_text, QString("RS232 ComPort 2 NOT Connected"));
    QVERIFY(!view_->state_connected);
    QVERIFY(!view_->hourglass);
    QCOMPARE(view_->progress(), 0);
    QVERIFY(!port_->is_open());
    QCOMPARE(port_->opens, 1);
    QVERIFY(clock_->elapsed() > 60 + kPause);
    QVERIFY(clock_->elapsed() < 60 + kPause + 3 * kTick);
}

void BlockTest::the_limit_counts_from_before_sending() {
    const auto answered_after = [&](double seconds) {
        make();
        port_->feed("\r", seconds);
        // 1000 characters take 3.9 s of the 60.
        run(QString(999, u'X'));
        return link_->port_connected;
    };
    QVERIFY(answered_after(60 - kTick));
    QVERIFY(!answered_after(60 + 3 * kTick));
    QVERIFY(clock_->elapsed() < 60 + kPause + 3 * kTick);
}

void BlockTest::a_block_that_takes_longer_than_the_limit() {
    // 15,400 characters take 60.2 s. Every one goes out, and the answer that is there comes late.
    port_->answer_delay = 0;
    port_->answer = [](const QByteArray& line) { return line.left(3) + "\r"; };
    const QString block(15399, u'X');
    run(block);
    QCOMPARE(port_->written, block.toLatin1() + '\r');
    QVERIFY(!link_->port_connected);
    QCOMPARE(link_->last_answer(), QString());
    QVERIFY(std::abs(clock_->elapsed() - 15400 * kTick - kPause) < 1e-9);
    make();
    port_->answer_delay = 0;
    port_->answer = [](const QByteArray& line) { return line.left(3) + "\r"; };
    run(QString(15299, u'Y'));
    QVERIFY(link_->port_connected);
    QCOMPARE(link_->last_answer(), QString("YYY\r"));
}

void BlockTest::a_silent_meter_is_not_woken() {
    run();
    QCOMPARE(port_->written, kBlock.toLatin1() + '\r');
    QCOMPARE(port_->opens, 1);
    QVERIFY(!link_->port_connected);
}

void BlockTest::a_missing_port_loses_the_link_at_once() {
    port_->open_fault = PortFault::missing;
    run();
    QVERIFY(!link_->port_connected);
    QCOMPARE(link_->last_answer(), QString());
    QCOMPARE(port_->written, QByteArray());
    QVERIFY(clock_->elapsed() <= kPause);
}

void BlockTest::an_unplugged_line_loses_the_link_at_once() {
    port_->vanish_in(0.05);
    run();
    QVERIFY(!link_->port_connected);
    QCOMPARE(view_->state_text, QString("RS232 ComPort 2 NOT Connected"));
    QVERIFY(clock_->elapsed() < 1);
    // Behind the last character: the answer does not come any more.
    make();
    port_->vanish_in(2);
    run();
    QCOMPARE(port_->written, kBlock.toLatin1() + '\r');
    QVERIFY(!link_->port_connected);
    QVERIFY(clock_->elapsed() < 3);
}

void BlockTest::a_line_that_takes_nothing_waits_for_the_limit() {
    port_->stalled = true;
    run();
    QCOMPARE(port_->written, QByteArray());
    QVERIFY(!link_->port_connected);
    QVERIFY(clock_->elapsed() > 60);
}

void BlockTest::progress_steps_and_wraps() {
    port_->answer_delay = 0;
    port_->answer = [](const QByteArray& line) { return line + "\r"; };
    const int characters = kProgressSteps + 3;
    run(QString(characters - 1, u'S'));
    // Start; frame; a step for each character, at the end of the bar anew; polling starts at 1.
    QList<int> expected{0, 0, 0};
    for (int step = 1; step <= kProgressSteps; ++step) expected += step;
    expected += {1, 2, 3, 1, 2, 0};
    QCOMPARE(view_->progress_values, expected);
}

void BlockTest::the_hourglass_stands_through_the_pause() {
    QList<bool> seen;
    view_->on_pump = [&] { seen += view_->hourglass; };
    port_->answer = [](const QByteArray& line) { return line + "\r"; };
    run("S1");
    QVERIFY(seen.size() > 20);
    QVERIFY(!seen.contains(false));
    QVERIFY(!view_->hourglass);
}

void BlockTest::windows_are_pumped_meanwhile() {
    run(QString(2559, u'X'));
    QVERIFY(view_->pumps > 60 / 0.03);
    QVERIFY(view_->pumps < 61 / 0.019);
}

void BlockTest::an_interruption_waits_for_the_end() {
    bool ending = false;
    link_->interrupted = [&] { return ending; };
    port_->answer = [&](const QByteArray& line) {
        ending = true;
        return line + "\r";
    };
    run();
    QCOMPARE(port_->written, kBlock.toLatin1() + '\r');
    QVERIFY(!port_->is_open());
    QVERIFY(!view_->hourglass);
    QVERIFY(clock_->elapsed() > 0.5);
    QVERIFY_THROWS_EXCEPTION(Interrupted, run());
    QCOMPARE(port_->opens, 1);
}

void BlockTest::nothing_starts_inside() {
    int refused = 0;
    const auto attempt = [&](const auto& start) {
        try {
            start();
        } catch (const Fault&) {
            ++refused;
        }
    };
    view_->on_pump = [&] {
        attempt([this] { link_->send(QStringLiteral("LEVANL?")); });
        attempt([this] { link_->send_block(kBlock); });
    };
    port_->answer = [](const QByteArray& line) { return line + "\r"; };
    run("S1");
    QVERIFY(refused > 20);
    QCOMPARE(port_->written, QByteArray("S1\r"));
    view_->on_pump = [] {};
    run("S9");
    QCOMPARE(link_->last_answer(), QString("S9\r"));
}

void BlockTest::it_is_one_span_of_the_clock() {
    class CountingClock : public VirtualClock {
      public:
        void begin_span() override { ++open; }
        void end_span() override { --open; }
        int open = 0;
    } clock;
    FakePort port(clock);
    Link link(port, clock, *view_);
    int least_open = 99;
    view_->on_pump = [&] { least_open = std::min(least_open, clock.open); };
    port.answer = [](const QByteArray& line) { return line + "\r"; };
    link.port_connected = true;
    link.send_block(kBlock);
    // Neither midnight nor a clock set by hand gets in between sending, answer and pause.
    QCOMPARE(least_open, 1);
    QCOMPARE(clock.open, 0);
}

void BlockTest::a_command_follows() {
    port_->answer = [](const QByteArray& line) { return FakePort::good(line); };
    run();
    QVERIFY(link_->send("ASLNAME 3 NOVA"));
    QCOMPARE(link_->last_answer(), QString("OK"));
    QCOMPARE(port_->take_commands().last(), QString("ASLNAME 3 NOVA"));
}

/// The name of the slot was asked for in vain; its answer comes when the block has gone out.
void BlockTest::a_late_answer_is_not_the_blocks() {
    link_->send("ASLNAME?");
    QVERIFY(!link_->port_connected);
    link_->port_connected = true;
    port_->answer = nullptr;
    port_->feed("ASLNAME?\rSOLE 16E\rOK\r", 0.2);
    port_->feed(kBlock.toLatin1() + "\rOK\r", 0.4);
    run();
    QVERIFY(link_->last_answer().startsWith(QLatin1String("S00A")));
    QVERIFY(link_->port_connected);
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::BlockTest)
#include "block_test.moc"
