// SPDX-License-Identifier: GPL-3.0-or-later
#include "transaction_test.h"

namespace m47::link {

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

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::TransactionTest)
