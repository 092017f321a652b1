// SPDX-License-Identifier: GPL-3.0-or-later
// Answers that are refused, late or of something else.
#include "transaction_test.h"

namespace m47::link {

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
    int refusals = 0;
    link_->on_refused = [&] { ++refusals; };
    run("LEVANL?");
    const int attempts = std::min(errors + 1, 3);
    QCOMPARE(link_->last_answer(), reply);
    QCOMPARE(port_->written, QByteArray("LEVANL?\r").repeated(attempts));
    QCOMPARE(port_->opens, attempts);
    QCOMPARE(port_->closes, attempts);
    QCOMPARE(link_->port_connected, errors < 3);
    QCOMPARE(link_->refused(), errors < 3 ? QString() : QString("LEVANL?"));
    QCOMPARE(refusals, errors < 3 ? 0 : 1);
    QCOMPARE(view_->state_text, errors < 3 ? QString() : QString("RS232 ComPort 2 NOT Connected"));
    QVERIFY(!view_->state_connected);
    QVERIFY(!view_->hourglass);
    QVERIFY(clock_->elapsed() < 1.0);
    // Not of the next exchange, which a meter that says nothing loses.
    link_->port_connected = true;
    port_->answer = [](const QByteArray&) { return QByteArray(); };
    QVERIFY(!link_->send("LEVANL?"));
    QVERIFY(!link_->port_connected && link_->refused().isEmpty());
}

void TransactionTest::what_must_not_be_done_twice_goes_out_once_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("taken");
    QTest::newRow("taken") << FakePort::good("DISEQCMOT 08 10 01") << true;
    QTest::newRow("nothing at all") << QByteArray() << false;
    QTest::newRow("an error") << QByteArray("DISEQCMOT 08 10 01\rERROR\r") << false;
    QTest::newRow("no echo") << QByteArray("OK\r") << false;
    QTest::newRow("a half echo") << QByteArray("DISEQCMOT 08\r") << false;
    QTest::newRow("no end") << QByteArray("DISEQCMOT 08 10 01\rO") << false;
}

/// Nobody knows then whether it was done; the line is there for the next command all the same.
void TransactionTest::what_must_not_be_done_twice_goes_out_once() {
    QFETCH(QByteArray, text);
    QFETCH(bool, taken);
    port_->answer = [&](const QByteArray& command) {
        return command.startsWith("DISEQCMOT") ? text : FakePort::good(command, "73.5");
    };
    const auto answer = link_->ask_once("DISEQCMOT 08 10 01");
    QCOMPARE(answer.has_value(), taken);
    QCOMPARE(port_->take_commands().count("DISEQCMOT 08 10 01"), 1);
    QVERIFY(link_->port_connected && !link_->refuse_doubtful);
    // The next command goes out as ever.
    int asked = 0;
    port_->answer = [&](const QByteArray& command) {
        return asked++ < 2 ? QByteArray("ERROR\r") : FakePort::good(command, "73.5");
    };
    QCOMPARE(link_->ask("LEVANL?").value_or("none"), QString("73.5"));
    QCOMPARE(asked, 3);
    port_->vanish_in(0);
    QVERIFY(!link_->ask_once("DISEQCMOT 08 10 01"));
    QVERIFY(!link_->port_connected);
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

}  // namespace m47::link
