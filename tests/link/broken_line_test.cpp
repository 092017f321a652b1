// SPDX-License-Identifier: GPL-3.0-or-later
#include <QRandomGenerator>
#include <QTest>

#include "fake_link_view.h"
#include "fake_port.h"
#include "link.h"
#include "virtual_clock.h"

namespace m47::link {

/// What a meter out of order, a bad cable or a wrong device does to a transaction.
class BrokenLineTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_port_that_does_not_open_data();
    void a_port_that_does_not_open();
    void unplugged_while_sending();
    void unplugged_while_waiting();
    void unplugged_behind_the_answer();
    void unplugged_before_the_wake_up();
    void the_other_side_does_not_read();
    void a_trickle_for_ever();
    void an_endless_answer_takes_bounded_memory();
    void a_long_answer_arrives_whole();
    void noise();
    void an_answer_to_something_else();
    void the_state_names_the_port_in_use();
};

namespace {

struct Setup {
    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    Link link{port, clock, view};

    Setup() {
        link.port_connected = true;
        link.port_number = 10;
    }
    bool lost() const {
        return !link.port_connected && link.last_answer().isEmpty() && !port.is_open() &&
               view.state_text == QLatin1String("RS232 ComPort 10 NOT Connected") &&
               !view.state_connected && !view.hourglass && view.progress() == 0;
    }
};

}  // namespace

void BrokenLineTest::a_port_that_does_not_open_data() {
    QTest::addColumn<int>("fault");
    QTest::newRow("missing") << static_cast<int>(PortFault::missing);
    QTest::newRow("no permission") << static_cast<int>(PortFault::no_permission);
    QTest::newRow("busy") << static_cast<int>(PortFault::busy);
    QTest::newRow("no port") << static_cast<int>(PortFault::not_a_port);
}

void BrokenLineTest::a_port_that_does_not_open() {
    QFETCH(int, fault);
    Setup s;
    s.port.open_fault = static_cast<PortFault>(fault);
    s.link.send("LEVANL?");
    QVERIFY(s.lost());
    QCOMPARE(s.clock.elapsed(), 0.0);
    QCOMPARE(s.port.fault(), static_cast<PortFault>(fault));
    QCOMPARE(s.port.written, QByteArray());
}

void BrokenLineTest::unplugged_while_sending() {
    Setup s;
    s.port.vanish_in(0.01);
    s.link.send("FREQ 1234.5");
    QVERIFY(s.lost());
    QVERIFY(s.clock.elapsed() < 0.1);
    QCOMPARE(s.port.fault(), PortFault::vanished);
    QCOMPARE(s.port.written, QByteArray("FRE"));
}

void BrokenLineTest::unplugged_while_waiting() {
    Setup s;
    s.port.feed("DATAOUT", 0.1);
    s.port.vanish_in(100);
    s.link.send("DATAOUT");
    QVERIFY(s.lost());
    QVERIFY(s.clock.elapsed() >= 100 && s.clock.elapsed() < 100.1);
    QCOMPARE(s.port.fault(), PortFault::vanished);
    // And the next choice of the port finds it missing.
    s.link.port_connected = true;
    s.link.send("ATTEN?");
    QVERIFY(s.lost());
    QCOMPARE(s.port.fault(), PortFault::missing);
}

void BrokenLineTest::unplugged_behind_the_answer() {
    Setup s;
    s.port.answer = [](const QByteArray& command) { return FakePort::good(command, "73.5"); };
    s.port.vanish_in(1);
    QVERIFY(s.link.send("LEVANL?"));
    QCOMPARE(s.link.last_answer(), QString("73.5"));
}

void BrokenLineTest::unplugged_before_the_wake_up() {
    Setup s;
    s.port.open_fault = PortFault::none;
    s.view.on_pump = [&] {
        if (s.clock.elapsed() > 1.9) s.port.open_fault = PortFault::missing;
    };
    s.link.send("LEVANL?");
    QVERIFY(s.lost());
    QCOMPARE(s.port.written, QByteArray("LEVANL?\r"));
    QVERIFY(s.clock.elapsed() < 2.2);
}

void BrokenLineTest::the_other_side_does_not_read() {
    Setup s;
    s.port.stalled = true;
    s.link.send("LEVANL?");
    QVERIFY(s.lost());
    QVERIFY(s.clock.elapsed() > 6 && s.clock.elapsed() < 6.3);
    QCOMPARE(s.port.opens, 6);
    QCOMPARE(s.port.fault(), PortFault::none);
}

void BrokenLineTest::a_trickle_for_ever() {
    Setup s;
    for (int i = 0; i < 400; ++i) s.port.feed("7", i * 0.05);
    s.link.send("LEVANL?");
    QVERIFY(s.lost());
    QVERIFY(s.clock.elapsed() > 15 && s.clock.elapsed() < 15.02);
    QCOMPARE(s.port.written, QByteArray("LEVANL?\r"));
}

void BrokenLineTest::an_endless_answer_takes_bounded_memory() {
    Setup s;
    const QByteArray piece(16 * 1024, 'x');
    for (int i = 0; i < 800; ++i) s.port.feed(piece, i * 0.02);
    qsizetype longest = 0;
    s.view.on_pump = [&] { longest = std::max(longest, s.link.last_answer().size()); };
    s.link.send("LEVANL?");
    QVERIFY(s.lost());
    QVERIFY(s.clock.elapsed() > 15 && s.clock.elapsed() < 15.02);
    QCOMPARE(longest, 4 * 1024 * 1024);
}

void BrokenLineTest::a_long_answer_arrives_whole() {
    Setup s;
    QByteArray value;
    for (int i = 0; value.size() < 1'000'000; ++i) value += QByteArray::number(i) + ' ';
    s.port.answer = [&](const QByteArray& command) {
        const QByteArray answer = FakePort::good(command, value);
        constexpr qsizetype kSlice = 19;
        for (qsizetype at = 0; at < answer.size(); at += kSlice)
            s.port.feed(answer.mid(at, kSlice), 0.001 + static_cast<double>(at) * 2e-4);
        return QByteArray();
    };
    QVERIFY(s.link.send("DATAOUT?"));
    QCOMPARE(s.link.last_answer(), QString::fromLatin1(value));
}

void BrokenLineTest::noise() {
    QRandomGenerator random(47);
    for (int run = 0; run < 20; ++run) {
        Setup s;
        for (int i = 0; i < 2000; ++i) {
            // No letter O: neither of the two ends can come up by chance.
            char byte = 'O';
            while (byte == 'O') byte = static_cast<char>(random.bounded(256));
            s.port.feed(QByteArray(1, byte), 0.05 + random.generateDouble() * 15);
        }
        s.link.send("LEVANL?");
        QVERIFY(s.lost());
        QVERIFY(s.clock.elapsed() > 15 && s.clock.elapsed() < 15.02);
    }
}

void BrokenLineTest::an_answer_to_something_else() {
    Setup s;
    s.port.answer = [](const QByteArray&) { return QByteArray("OK\r"); };
    QVERIFY(s.link.send("FREQ 1234.5"));
    QCOMPARE(s.link.last_answer(), QString("OK"));
    QVERIFY(s.link.send("LEVANL?"));
    QCOMPARE(s.link.last_answer(), QString());
}

void BrokenLineTest::the_state_names_the_port_in_use() {
    QCOMPARE(port_state_text(2, true), QString("RS232 ComPort 2 Connected"));
    QCOMPARE(port_state_text(2, false), QString("RS232 ComPort 2 NOT Connected"));
    QCOMPARE(port_state_text(10, true), QString("RS232 ComPort 10 Connected"));
    QCOMPARE(port_state_text(0, false), QString("RS232 ComPort NOT Connected"));
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::BrokenLineTest)
#include "broken_line_test.moc"
