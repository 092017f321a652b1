// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>
#include <memory>

#include "answer_before.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link.h"
#include "virtual_clock.h"
#include "work.h"

namespace m47 {

/// The tick of the virtual clock's time of day, 10:00.
constexpr double kTick = 1 / 256.0;

/// One transaction after the other with a meter that the test scripts.
class TransactionTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void without_a_link_nothing_is_sent();
    void suspended_commands_are_not_sent();
    void a_query();
    void a_setting();
    void a_refused_argument_is_zero();
    void the_error_rate_keeps_one_character_more();
    void text_is_latin_1();
    void one_tick_behind_each_character();
    void the_answer_is_split_at_any_byte_data();
    void the_answer_is_split_at_any_byte();
    void byte_by_byte();
    void an_error_is_repeated_data();
    void an_error_is_repeated();
    void limits_data();
    void limits();
    void the_limit_counts_from_before_sending();
    void an_answer_seen_behind_the_limit_is_late();
    void a_sleeping_meter_is_woken();
    void an_echo_just_in_time_needs_no_waking();
    void a_late_answer_is_dropped_with_its_exchange_data();
    void a_late_answer_is_dropped_with_its_exchange();
    void a_late_answer_is_known_by_its_echo();
    void the_same_question_waits_for_the_late_answer();
    void a_wait_for_a_late_answer_can_be_interrupted();
    void an_answer_to_something_else_is_doubtful_data();
    void an_answer_to_something_else_is_doubtful();
    void old_input_is_dropped();
    void a_silent_meter_loses_the_link();
    void progress_steps_and_wraps();
    void the_bytes_that_have_arrived_are_told();
    void the_hourglass_stands_meanwhile();
    void windows_are_pumped_while_waiting();
    void a_wait_ends_on_the_first_reading_beyond_it();
    void waiting_for_a_tick();
    void an_interruption_ends_waits_and_the_next_transaction();
    void a_transaction_that_has_begun_goes_on();
    void what_is_undivided_is_sent_to_its_end();
    void a_transaction_is_cut_off_when_told_again();
    void work_that_is_broken_off_says_how_far_it_came();
    void each_wait_and_transaction_is_one_span();
    void midnight_within_a_transaction();
    void midnight_within_a_wait();
    void send_tells_whether_there_is_an_answer();
    void no_transaction_starts_inside_another();

  private:
    void make(double time_of_day = 36000.0);
    void run(const QString& command);
    void answer_with(const QByteArray& value);

    std::unique_ptr<VirtualClock> clock_;
    std::unique_ptr<FakePort> port_;
    std::unique_ptr<FakeLinkView> view_;
    std::unique_ptr<Link> link_;
    std::optional<QString> last_;
};

void TransactionTest::init() {
    make();
}

void TransactionTest::make(double time_of_day) {
    clock_ = std::make_unique<VirtualClock>(time_of_day);
    port_ = std::make_unique<FakePort>(*clock_);
    view_ = std::make_unique<FakeLinkView>();
    link_ = std::make_unique<Link>(*port_, *clock_, *view_);
    link_->port_connected = true;
    link_->port_number = 2;
}

void TransactionTest::run(const QString& command) {
    last_ = link_->ask(command);
}

void TransactionTest::answer_with(const QByteArray& value) {
    port_->answer = [value](const QByteArray& command) { return FakePort::good(command, value); };
}

void TransactionTest::without_a_link_nothing_is_sent() {
    link_->port_connected = false;
    leave_answer(*link_, *port_, "as it was");
    const double before = clock_->elapsed();
    view_->set_progress(7);
    run("LEVANL?");
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

void TransactionTest::suspended_commands_are_not_sent() {
    link_->commands_suspended = true;
    leave_answer(*link_, *port_, "as it was");
    const double before = clock_->elapsed();
    QVERIFY(!link_->can_send());
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("as it was"));
    QCOMPARE(port_->opens, 0);
    QCOMPARE(last_, std::optional<QString>());
    QCOMPARE(clock_->elapsed(), before);
    QVERIFY(link_->port_connected);
    QVERIFY(view_->bar_shown);
}

void TransactionTest::a_query() {
    answer_with("73.5");
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QCOMPARE(last_, std::optional<QString>("73.5"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r"));
    QVERIFY(link_->port_connected);
    QVERIFY(!port_->is_open());
    QCOMPARE(port_->opens, 1);
    QCOMPARE(port_->closes, 1);
    QCOMPARE(view_->progress(), 0);
    QVERIFY(!view_->hourglass);
    QVERIFY(view_->state_text.isEmpty());
}

void TransactionTest::a_setting() {
    answer_with({});
    run("FREQ 1234.5");
    QCOMPARE(link_->last_answer(), QString("OK"));
    QCOMPARE(port_->written, QByteArray("FREQ 1234.5\r"));
}

void TransactionTest::a_refused_argument_is_zero() {
    answer_with("Invalid Parameter(s)");
    run("MASTERCOPY 6?");
    QCOMPARE(link_->last_answer(), QString("0"));
    QVERIFY(link_->port_connected);
    QCOMPARE(view_->progress(), 0);
    QVERIFY(!view_->hourglass);
}

void TransactionTest::the_error_rate_keeps_one_character_more() {
    port_->answer = [](const QByteArray& command) { return command + "\r1.2E-4OK\r"; };
    run("BERQPSK?");
    QCOMPARE(link_->last_answer(), QString("1.2E-4"));
    run("BERQAM?");
    QCOMPARE(link_->last_answer(), QString("1.2E-"));
}

void TransactionTest::text_is_latin_1() {
    answer_with("\xB0");
    run(QStringLiteral("LOGO \u00e8\u20ac?"));
    QCOMPARE(port_->written, QByteArray("LOGO \xE8??\r"));
    QCOMPARE(link_->last_answer(), QStringLiteral("\u00b0"));
}

void TransactionTest::one_tick_behind_each_character() {
    QList<double> times;
    clock_->sleep(kTick / 4);
    view_->on_pump = [] {};
    port_->answer = [&](const QByteArray& command) {
        times += clock_->elapsed();
        return FakePort::good(command, "1");
    };
    port_->answer_delay = 0;
    run("LEVANL?");
    // The first wait ends at the next tick, six whole ones lie between it and the CR.
    QCOMPARE(times, QList<double>{7 * kTick});
    QCOMPARE(clock_->elapsed(), 8 * kTick);
}

void TransactionTest::the_answer_is_split_at_any_byte_data() {
    QTest::addColumn<int>("place");
    const int length = static_cast<int>(FakePort::good("LEVANL?", "73.5").size());
    for (int place = 0; place <= length; ++place) QTest::addRow("at %d", place) << place;
}

void TransactionTest::the_answer_is_split_at_any_byte() {
    QFETCH(int, place);
    const QByteArray whole = FakePort::good("LEVANL?", "73.5");
    port_->answer = [&](const QByteArray&) {
        port_->feed(whole.mid(place), 1.5);
        return whole.left(place);
    };
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r"));
}

void TransactionTest::byte_by_byte() {
    port_->answer = [&](const QByteArray& command) {
        const QByteArray whole = FakePort::good(command, "73.5");
        for (qsizetype i = 0; i < whole.size(); ++i)
            port_->feed(whole.mid(i, 1), 0.1 + static_cast<double>(i) * 0.1);
        return QByteArray();
    };
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r"));
}

void TransactionTest::an_error_is_repeated_data() {
    QTest::addColumn<int>("errors");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reply");
    QTest::newRow("one") << 1 << QByteArray("COMMAND ERROR\r") << "73.5";
    QTest::newRow("two") << 2 << QByteArray("LEVANL?\rERROR 3\r") << "73.5";
    QTest::newRow("three") << 3 << QByteArray("LEVANL?\rCOMMAND ERROR\r") << "";
    QTest::newRow("three, then OK") << 3 << QByteArray("LEVANL?\rERROR\rOK\r") << "";
    QTest::newRow("in the echo") << 3 << QByteArray("ERROR") << "";
}

void TransactionTest::an_error_is_repeated() {
    QFETCH(int, errors);
    QFETCH(QByteArray, text);
    QFETCH(QString, reply);
    int asked = 0;
    port_->answer = [&](const QByteArray& command) {
        return asked++ < errors ? text : FakePort::good(command, "73.5");
    };
    run("LEVANL?");
    const int attempts = std::min(errors + 1, 3);
    QCOMPARE(link_->last_answer(), reply);
    QCOMPARE(port_->written, QByteArray("LEVANL?\r").repeated(attempts));
    QCOMPARE(port_->opens, attempts);
    QCOMPARE(port_->closes, attempts);
    QCOMPARE(link_->port_connected, errors < 3);
    QCOMPARE(view_->state_text, errors < 3 ? QString() : QString("RS232 ComPort 2 NOT Connected"));
    QVERIFY(!view_->state_connected);
    QVERIFY(!view_->hourglass);
    QVERIFY(clock_->elapsed() < 1.0);
}

void TransactionTest::limits_data() {
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<double>("limit");
    QTest::newRow("usual") << QByteArray("FREQ 1000.0") << 15.0;
    QTest::newRow("satellites") << QByteArray("ASLDEL 3") << 60.0;
    QTest::newRow("master copy") << QByteArray("MASTERCOPY 6?") << 120.0;
    QTest::newRow("data") << QByteArray("DATAOUT") << 240.0;
    QTest::newRow("delete data") << QByteArray("DATADELALL") << 240.0;
    QTest::newRow("delete") << QByteArray("DELETE 1") << 240.0;
}

void TransactionTest::limits() {
    QFETCH(QByteArray, command);
    QFETCH(double, limit);
    const auto answer_after = [&](double seconds) {
        make();
        port_->feed(command, 0.5);
        port_->feed("\rOK\r", seconds);
        run(QString::fromLatin1(command));
        return link_->port_connected;
    };
    QVERIFY(answer_after(limit - kTick));
    QVERIFY(std::abs(clock_->elapsed() - limit) < 2 * kTick);
    QVERIFY(!answer_after(limit + 3 * kTick));
    QVERIFY(clock_->elapsed() > limit);
    QVERIFY(clock_->elapsed() < limit + 3 * kTick);
    QCOMPARE(link_->last_answer(), QString());
    QCOMPARE(view_->state_text, QString("RS232 ComPort 2 NOT Connected"));
    // No further attempt after a limit.
    QCOMPARE(port_->written, command + '\r');
    QCOMPARE(port_->opens, 1);
}

void TransactionTest::the_limit_counts_from_before_sending() {
    // 1000 characters take 3.9 s of the 15.
    const QString command = "LOGO " + QString(995, u'X');
    port_->answer = [](const QByteArray& sent) { return sent; };
    run(command);
    QVERIFY(!link_->port_connected);
    QVERIFY(clock_->elapsed() < 15 + 3 * kTick);
}

void TransactionTest::an_answer_seen_behind_the_limit_is_late() {
    const auto slow_window = [&](const QByteArray& end) {
        make();
        view_->on_pump = [&] {
            if (clock_->elapsed() > 14 && clock_->elapsed() < 15) clock_->sleep(2);
        };
        port_->feed("FREQ 1", 0.5);
        port_->feed(end, 14.5);
        run("FREQ 1");
    };
    slow_window("\rOK\r");
    QVERIFY(!link_->port_connected);
    QCOMPARE(port_->opens, 1);
    // An error is looked for before the limit, and so repeated.
    slow_window("\rERROR");
    QCOMPARE(port_->written.left(14), QByteArray("FREQ 1\rFREQ 1\r"));
}

void TransactionTest::a_sleeping_meter_is_woken() {
    bool awake = false;
    port_->answer = [&](const QByteArray& command) {
        const bool heard = awake;
        if (command.isEmpty()) awake = true;
        return heard ? FakePort::good(command, "73.5") : QByteArray();
    };
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r\rLEVANL?\r"));
    QCOMPARE(port_->opens, 3);
    QCOMPARE(port_->closes, 3);
    // The first answer took 2 s; the meter is left as long for a second one.
    QVERIFY(clock_->elapsed() > 4.3 && clock_->elapsed() < 4.6);
}

void TransactionTest::an_echo_just_in_time_needs_no_waking() {
    const auto written_with_echo_after = [&](double seconds, const QByteArray& echo) {
        make();
        bool first = true;
        port_->answer = [&, first](const QByteArray&) mutable {
            if (std::exchange(first, false)) {
                port_->feed(echo, seconds);
                port_->feed("LEVANL?\r73.5\rOK\r", 2.5);
            }
            return QByteArray();
        };
        run("LEVANL?");
        return port_->written;
    };
    QCOMPARE(written_with_echo_after(1.99, "LEVANL?"), QByteArray("LEVANL?\r"));
    // One byte short, or too late: the meter is taken to be asleep.
    QVERIFY(written_with_echo_after(1.99, "LEVANL").startsWith("LEVANL?\r\rLEVANL?\r"));
    QVERIFY(written_with_echo_after(2.1, "LEVANL?").startsWith("LEVANL?\r\rLEVANL?\r"));
}

void TransactionTest::a_late_answer_is_dropped_with_its_exchange_data() {
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    QTest::addColumn<double>("lasted");
    // From the first character; the second attempt goes out after 2.03 s.
    QTest::newRow("both late alike") << 2.3 << 4.4 << 4.4;
    QTest::newRow("one behind the other") << 2.3 << 4.6 << 4.6;
    QTest::newRow("in one go") << 2.3 << 2.3 << 2.3;
    QTest::newRow("the second never") << 2.3 << 100.0 << 4.66;
}

void TransactionTest::a_late_answer_is_dropped_with_its_exchange() {
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(double, lasted);
    port_->feed("LEVANL?\r80.0\rOK\r", first);
    port_->feed("LEVANL?\r80.1\rOK\r", second);
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("80.0"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r\rLEVANL?\r"));
    QVERIFY2(std::abs(clock_->elapsed() - lasted) < 0.1,
             qPrintable(QString::number(clock_->elapsed())));
    // Nothing of it is left for the next.
    answer_with({});
    run("MEASURE");
    QCOMPARE(link_->last_answer(), QString("OK"));
    QVERIFY(clock_->elapsed() < lasted + 0.2);
}

/// A whole one, one of which only the end is seen, and one to a command that was given up.
void TransactionTest::a_late_answer_is_known_by_its_echo() {
    for (const char* late : {"LEVANL?\r80.0\rOK\r", "0.0\rOK\r", "LEVANL?\r80.0\rOK\rLEVANL"}) {
        make();
        run("LEVANL?");
        QVERIFY(!link_->port_connected);
        link_->port_connected = true;
        port_->feed(late, 0.02);
        answer_with("3.1");
        port_->answer_delay = 0.5;
        run("VER?");
        QCOMPARE(link_->last_answer(), QString("3.1"));
        QVERIFY(link_->port_connected);
    }
}

/// Only where a value is at stake: a meter that was given up is looked for at once.
void TransactionTest::the_same_question_waits_for_the_late_answer() {
    for (const bool measuring : {false, true}) {
        make();
        run("LEVANL?");
        const double lost = clock_->elapsed();
        link_->port_connected = true;
        link_->refuse_doubtful = measuring;
        port_->written.clear();
        answer_with("40.0");
        run("LEVANL?");
        QCOMPARE(link_->last_answer(), QString("40.0"));
        QCOMPARE(port_->written, QByteArray("LEVANL?\r"));
        // The last of the three went out 2 s before the link was lost.
        const double waited = clock_->elapsed() - lost;
        QVERIFY2(measuring ? waited > 13 && waited < 13.5 : waited < 0.1,
                 qPrintable(QString::number(waited)));
    }
    make();
    run("LEVANL?");
    link_->port_connected = link_->refuse_doubtful = true;
    for (const double late : {1.0, 1.1, 1.2}) port_->feed("LEVANL?\r80.0\rOK\r", late);
    answer_with("40.0");
    const double lost = clock_->elapsed();
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("40.0"));
    QVERIFY(clock_->elapsed() - lost < 1.4);
}

void TransactionTest::a_wait_for_a_late_answer_can_be_interrupted() {
    run("LEVANL?");
    const double lost = clock_->elapsed();
    link_->port_connected = link_->refuse_doubtful = true;
    link_->interrupted = [&] { return clock_->elapsed() > lost + 1; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, run("LEVANL?"));
    QVERIFY(clock_->elapsed() < lost + 1.1);
    QVERIFY(!port_->is_open());
    QVERIFY(!view_->hourglass);
}

void TransactionTest::an_answer_to_something_else_is_doubtful_data() {
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("reply");
    QTest::newRow("no echo") << QByteArray("80.0\rOK\r") << "80.0";
    QTest::newRow("spoilt echo") << QByteArray("LEV#NL?\r80.0\rOK\r") << "80.0";
    QTest::newRow("echo without its end") << QByteArray("LEVANL?80.0\rOK\r") << "0.0";
    QTest::newRow("value without its end") << QByteArray("LEVANL?\r80.0OK\r") << "80.";
    QTest::newRow("more behind it") << QByteArray("LEVANL?\r80.0\rOK\r7") << "80.0";
}

/// It is reduced as ever, and refused where a value is at stake.
void TransactionTest::an_answer_to_something_else_is_doubtful() {
    QFETCH(QByteArray, answer);
    QFETCH(QString, reply);
    port_->answer = [&](const QByteArray&) { return answer; };
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), reply);
    const Measuring measuring(*link_);
    port_->written.clear();
    QVERIFY_THROWS_EXCEPTION(DoubtfulAnswer, run("LEVANL?"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r"));
    QVERIFY(link_->port_connected);
    QVERIFY(!port_->is_open());
    answer_with("80.0");
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("80.0"));
}

void TransactionTest::old_input_is_dropped() {
    port_->feed("FREQ 1\rOK\r");
    port_->feed("LEVANL?\r1.0\rOK\r");
    answer_with("73.5");
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
}

void TransactionTest::a_silent_meter_loses_the_link() {
    run("LEVANL?");
    QCOMPARE(port_->written, QByteArray("LEVANL?\r\rLEVANL?\r\rLEVANL?\r\r"));
    QCOMPARE(port_->opens, 6);
    QCOMPARE(port_->closes, 6);
    QVERIFY(!link_->port_connected);
    QCOMPARE(link_->last_answer(), QString());
    QCOMPARE(view_->state_text, QString("RS232 ComPort 2 NOT Connected"));
    QVERIFY(clock_->elapsed() > 6 && clock_->elapsed() < 6.3);
}

void TransactionTest::progress_steps_and_wraps() {
    port_->answer_delay = 0;
    answer_with({});
    const int characters = kProgressSteps + 3;
    run(QString(characters - 1, u'L'));
    // Start; attempt; a step for each character, at the end of the bar anew; polling starts at 1.
    QList<int> expected{0, 0, 0};
    for (int step = 1; step <= kProgressSteps; ++step) expected += step;
    expected += {1, 2, 3, 1, 2, 0};
    QCOMPARE(view_->progress_values, expected);
}

void TransactionTest::the_bytes_that_have_arrived_are_told() {
    QList<qsizetype> told;
    link_->on_received = [&](qsizetype bytes) {
        QCOMPARE(bytes, link_->last_answer().size());
        if (told.isEmpty() || told.last() != bytes) told += bytes;
    };
    int asked = 0;
    port_->answer = [&](const QByteArray& command) {
        if (++asked == 1) {
            port_->feed("\rERROR\r", 0.5);
            return command;
        }
        port_->feed("73", 0.5);
        port_->feed(".5\rOK", 1);
        port_->feed("\r", 1.5);
        return command + "\r";
    };
    run(QStringLiteral("LEVANL?"));
    QCOMPARE(link_->last_answer(), QStringLiteral("73.5"));
    QCOMPARE(told, QList<qsizetype>({7, 8, 10, 15}));
}

void TransactionTest::the_hourglass_stands_meanwhile() {
    QList<bool> seen;
    port_->answer = [&](const QByteArray& command) {
        seen += view_->hourglass;
        return FakePort::good(command);
    };
    run("FREQ 1");
    QCOMPARE(seen, QList<bool>{true});
    QVERIFY(!view_->hourglass);
}

void TransactionTest::windows_are_pumped_while_waiting() {
    port_->feed("DATAOUT", 0.1);
    run("DATAOUT");
    QVERIFY(view_->pumps > 240 / 0.03);
    QVERIFY(view_->pumps < 240 / 0.019);
    view_->pumps = 0;
    link_->wait_time(10);
    QVERIFY(view_->pumps > 10 / 0.03);
    QVERIFY(view_->pumps < 10 / 0.019);
}

void TransactionTest::a_wait_ends_on_the_first_reading_beyond_it() {
    for (const double seconds : {0.0, 0.001, 0.1, 0.5, 3.0}) {
        make();
        clock_->sleep(kTick / 3);
        link_->wait_time(seconds);
        const double ticks = std::floor(seconds / kTick) + 1;
        QVERIFY(std::abs(clock_->elapsed() - ticks * kTick) < 1e-9);
    }
}

void TransactionTest::waiting_for_a_tick() {
    for (int i = 1; i <= 10; ++i) {
        link_->wait_time(0);
        QCOMPARE(clock_->elapsed(), i * kTick);
    }
    QCOMPARE(view_->pumps, 0);
}

void TransactionTest::an_interruption_ends_waits_and_the_next_transaction() {
    answer_with("73.5");
    link_->interrupted = [&] { return clock_->elapsed() > 1; };
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QVERIFY_THROWS_EXCEPTION(Interrupted, link_->wait_time(100));
    QVERIFY(clock_->elapsed() < 1.1);
    QVERIFY_THROWS_EXCEPTION(Interrupted, link_->wait_time(0));
    port_->written.clear();
    QVERIFY_THROWS_EXCEPTION(Interrupted, run("LEVANL?"));
    QCOMPARE(port_->written, QByteArray());
    QVERIFY(!view_->hourglass);
    QVERIFY(link_->port_connected);
    // With nothing to send there is nothing to end.
    link_->commands_suspended = true;
    run("LEVANL?");
}

void TransactionTest::a_transaction_that_has_begun_goes_on() {
    bool ending = false;
    view_->on_pump = [&] { ending = true; };
    link_->interrupted = [&] { return ending; };
    answer_with("73.5");
    run("LEVANL?");
    QVERIFY(ending);
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QCOMPARE(port_->written, QByteArray("LEVANL?\r"));
}

void TransactionTest::what_is_undivided_is_sent_to_its_end() {
    bool ending = false;
    link_->interrupted = [&] { return ending; };
    port_->answer = [](const QByteArray& command) { return FakePort::good(command); };
    {
        const Undivided whole(*link_);
        run("ASLDEL 3");
        ending = true;
        run("ASLNAME 3 ASTRA");
        link_->wait_time(0.5);
    }
    QCOMPARE(port_->written, QByteArray("ASLDEL 3\rASLNAME 3 ASTRA\r"));
    QVERIFY_THROWS_EXCEPTION(Interrupted, static_cast<void>(Undivided{*link_}));
    QCOMPARE(link_->undivided, 0);
    QVERIFY_THROWS_EXCEPTION(Interrupted, run("MEASURE"));
}

void TransactionTest::a_transaction_is_cut_off_when_told_again() {
    const Undivided whole(*link_);
    link_->interrupted = [&] { return clock_->elapsed() > 1; };
    link_->cut_off = [&] { return clock_->elapsed() > 100; };
    port_->feed("DATAOUT\r", 0.5);
    QVERIFY_THROWS_EXCEPTION(Interrupted, run("DATAOUT"));
    QVERIFY(clock_->elapsed() < 101);
    QVERIFY(!port_->is_open());
}

void TransactionTest::work_that_is_broken_off_says_how_far_it_came() {
    bool ending = false;
    const auto said = [this] { return link_->left_off ? link_->left_off->in(Texts()) : QString(); };
    link_->interrupted = [&] { return ending; };
    port_->answer = [](const QByteArray& command) { return FakePort::good(command); };
    {
        Work outer(*link_, {"%1 of %2", "%1 su %2"}, {"0", "%1"});
        QCOMPARE(said(), QString("0 of %1"));
        Work inner(*link_, {"within", "dentro"});
        outer.at({"%1 of %2", "%1 su %2"}, {"1", "2"});
    }
    QCOMPARE(said(), QString());
    run("FREQ 1");
    QCOMPARE(said(), QString());
    {
        const Work work(*link_, {"half", "metà"});
        ending = true;
    }
    QCOMPARE(said(), QString("half"));
    // Without any work the command tells.
    link_->left_off.reset();
    ending = false;
    view_->on_pump = [&] { ending = true; };
    run("FREQ 2");
    QVERIFY(ending);
    QCOMPARE(said(), QString("nothing was sent behind the command FREQ 2"));
}

void TransactionTest::each_wait_and_transaction_is_one_span() {
    class CountingClock : public VirtualClock {
      public:
        using VirtualClock::VirtualClock;
        void begin_span() override { ++begun, ++open; }
        void end_span() override { --open; }
        int begun = 0;
        int open = 0;
    } clock;
    FakePort port(clock);
    Link link(port, clock, *view_);
    int open_while_answering = 0;
    port.answer = [&](const QByteArray& command) {
        open_while_answering = clock.open;
        return FakePort::good(command);
    };
    link.port_connected = true;
    link.send("FREQ 1");
    QCOMPARE(open_while_answering, 1);
    QCOMPARE(clock.open, 0);
    clock.begun = 0;
    link.wait_time(1);
    QCOMPARE(clock.begun, 1);
    link.interrupted = [] { return true; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, link.wait_time(1));
    QCOMPARE(clock.open, 0);
}

void TransactionTest::midnight_within_a_transaction() {
    // A clock that wraps makes the passed time negative: no limit is reached on the new day.
    make(86395.0);
    port_->feed("LEVANL?\r", 1);
    port_->feed("73.5\rOK\r", 100);
    run("LEVANL?");
    QCOMPARE(link_->last_answer(), QString("73.5"));
    QVERIFY(clock_->elapsed() >= 100);
}

void TransactionTest::midnight_within_a_wait() {
    // Nor does a wait end before the clock has passed its end again.
    make(86399.0);
    link_->interrupted = [&] { return clock_->elapsed() > 3600; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, link_->wait_time(2));
    QVERIFY(clock_->elapsed() > 3600);
}

void TransactionTest::no_transaction_starts_inside_another() {
    port_->answer_delay = 0.5;
    answer_with("73.5");
    int refused = 0;
    view_->on_pump = [&] {
        try {
            link_->send(QStringLiteral("ATTEN?"));
        } catch (const Fault&) {
            ++refused;
        }
    };
    run(QStringLiteral("LEVANL?"));
    QVERIFY(refused > 0);
    QCOMPARE(port_->take_commands(), QStringList{QStringLiteral("LEVANL?")});
    QCOMPARE(link_->last_answer(), QStringLiteral("73.5"));
}

void TransactionTest::send_tells_whether_there_is_an_answer() {
    answer_with("73.5");
    QVERIFY(link_->send("LEVANL?"));
    QCOMPARE(link_->last_answer(), QString("73.5"));
    link_->commands_suspended = true;
    QVERIFY(!link_->send("ATTEN?"));
    QCOMPARE(link_->last_answer(), QString("73.5"));
    link_->commands_suspended = false;
    port_->answer = nullptr;
    QVERIFY(!link_->send("ATTEN?"));
    QVERIFY(!link_->send("ATTEN?"));
}

}  // namespace m47

QTEST_APPLESS_MAIN(m47::TransactionTest)
#include "transaction_test.moc"
