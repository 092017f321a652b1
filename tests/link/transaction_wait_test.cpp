// SPDX-License-Identifier: GPL-3.0-or-later
// Waits, interruptions and what is told meanwhile.
#include "transaction_test.h"

namespace m47::link {

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
    int told = 0;
    link_->on_waited = [&told] { ++told; };
    link_->wait_time(10);
    QVERIFY(view_->pumps > 10 / 0.03);
    QVERIFY(view_->pumps < 10 / 0.019);
    QCOMPARE(told, view_->pumps);
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

void TransactionTest::work_that_is_stopped_ends_before_its_next_command() {
    QStringList told;
    QStringList shown;
    link_->activity.on_stopped = [&](const Said& how_far) { told += how_far.in(Texts()); };
    link_->activity.on_change = [&] { shown += activity_text(link_->activity, Texts()); };
    link_->activity.stop();  // nothing is done yet
    port_->answer = [&](const QByteArray& command) {
        if (command == "FREQ 2") link_->activity.stop();
        return FakePort::good(command);
    };
    const auto sweep = [&] {
        Work work(*link_, {"none was sent", ""});
        for (int sent = 1; sent <= 4; ++sent) {
            work.doing({"Sending %1 of 4", ""}, {QString::number(sent)});
            link_->send(QStringLiteral("FREQ %1").arg(sent));
            work.at({"%1 were sent", ""}, {QString::number(sent)});
        }
    };
    QVERIFY_THROWS_EXCEPTION(Interrupted, sweep());
    QCOMPARE(port_->take_commands(), QStringList({"FREQ 1", "FREQ 2"}));
    QCOMPARE(told, QStringList{"2 were sent"});
    shown.removeDuplicates();
    QCOMPARE(shown, QStringList({"Sending 1 of 4", "Sending 2 of 4",
                                 "Sending 2 of 4, stops when the answer is whole",
                                 "Sending 3 of 4, stops when the answer is whole", ""}));
    QVERIFY(!view_->hourglass);
    // Nothing of the wish is left for what comes next.
    port_->answer = [](const QByteArray& command) { return FakePort::good(command); };
    QVERIFY(link_->send("FREQ 9"));
    sweep();
    QCOMPARE(told.size(), 1);
}

void TransactionTest::a_stop_waits_for_what_is_undivided() {
    port_->answer = [&](const QByteArray& command) {
        link_->activity.stop();
        return FakePort::good(command);
    };
    const auto send = [&] {
        Work work(*link_, {"", ""});
        work.doing({"Writing", ""});
        {
            const Undivided whole(*link_);
            link_->send("ASLDEL 1");
            link_->send("ASLNAME 1 A");
        }
        link_->send("ASLNAME?");
    };
    QVERIFY_THROWS_EXCEPTION(Interrupted, send());
    QCOMPARE(port_->take_commands(), QStringList({"ASLDEL 1", "ASLNAME 1 A"}));
}

void TransactionTest::the_time_left_follows_from_what_is_done() {
    Work work(*link_, {"", ""});
    work.doing({"Uploading", ""});
    work.reached(0, 40);
    QVERIFY(!link_->activity.seconds_left());
    clock_->sleep(30);
    work.reached(10, 40);
    QVERIFY(link_->activity.seconds_left());
    QCOMPARE(qRound(*link_->activity.seconds_left()), 90);
    QCOMPARE(activity_text(link_->activity, Texts()), QString("Uploading, still 2 min"));
    clock_->sleep(60);
    work.reached(30, 40);
    QCOMPARE(activity_text(link_->activity, Texts()), QString("Uploading, still 30 s"));
    work.reached(40, 40);
    QCOMPARE(activity_text(link_->activity, Texts()), QString("Uploading"));
}

void TransactionTest::a_run_is_stopped_in_its_pauses() {
    QStringList told;
    int stops = 0;
    link_->activity.on_stopped = [&](const Said& how_far) { told += how_far.in(Texts()); };
    link_->activity.set_run(Activity::Run{.what = {{"Program 3 of 12", ""}, {}},
                                          .how_far = {{"between two", ""}, {}},
                                          .stop = [&] { ++stops; }});
    QCOMPARE(activity_text(link_->activity, Texts()), QString("Program 3 of 12"));
    {
        Work work(*link_, {"", ""});
        work.doing({"Measuring MER…", ""});
        QCOMPARE(activity_text(link_->activity, Texts()),
                 QString("Measuring MER… (Program 3 of 12)"));
    }
    link_->activity.stop();
    QCOMPARE(stops, 1);
    QCOMPARE(told, QStringList{"between two"});
}

}  // namespace m47::link
