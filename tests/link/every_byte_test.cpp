// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include "fake_link_view.h"
#include "fake_port.h"
#include "link.h"
#include "virtual_clock.h"

namespace m47::link {

/// Every fault of the line at every byte of an exchange, in the first attempt alone and in all of
/// them. What stands at the end is either the meter's value or a link that is told to be lost, in
/// time, and the next exchange over a sound line is not disturbed.
class EveryByteTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void cut();
    void an_error_instead_of_the_rest();
    void a_noise_byte_comes_in();
    void a_byte_is_spoilt();
    void a_byte_is_missing();
    void the_rest_is_late();
    void the_rest_trickles_for_ever();
    void the_rest_never_ends();
    void the_device_vanishes_in_the_answer();
    void the_device_vanishes_in_the_command();
    void the_meter_stops_reading_in_the_command();
    void each_limit_from_both_sides_data();
    void each_limit_from_both_sides();
    void a_block_is_cut();
    void the_device_vanishes_in_a_block();
    void the_meter_stops_reading_in_a_block();
};

namespace {

const QByteArray kCommand = "LEVANL?";
const QByteArray kValue = "  61.9";
const QByteArray kAnswer = FakePort::good(kCommand, kValue);
constexpr qsizetype kEcho = 7;
constexpr double kLimit = 15;
constexpr double kEchoLimit = 2;
constexpr double kSlack = 0.3;
constexpr double kSendingTime = 0.2;  // more than all characters of one attempt take
constexpr int kAlways = 1000;

const QByteArray kBlock = "S00A000041534C20303031";
constexpr double kBlockLimit = 60;
constexpr double kBlockPause = 0.5;

struct Piece {
    double delay = 0.01;
    QByteArray bytes;
};
using Pieces = QList<Piece>;

/// A line that can stop within what is sent.
class BreakingPort : public FakePort {
  public:
    using FakePort::FakePort;

    int stall_behind = -1;   ///< nothing more goes out behind so many characters
    int vanish_behind = -1;  ///< pulled behind so many characters

    bool write(char character) override {
        if (written.size() == stall_behind) stalled = true;
        const bool gone_out = FakePort::write(character);
        if (written.size() == vanish_behind) vanish_in(0);
        return gone_out;
    }
};

struct Exchange {
    VirtualClock clock;
    BreakingPort port{clock};
    FakeLinkView view;
    Link link{port, clock, view};
    int asked = 0;

    /// The first `times` attempts get `pieces`, those behind them the good answer.
    Exchange(const Pieces& pieces, int times) {
        link.port_connected = true;
        link.port_number = 4;
        port.answer = [this, pieces, times](const QByteArray& command) {
            if (command.isEmpty()) return QByteArray();
            if (++asked > times) return FakePort::good(command, kValue);
            for (const Piece& piece : pieces) port.feed(piece.bytes, piece.delay);
            return QByteArray();
        };
    }

    bool answered_with(const QString& value) {
        return link.port_connected && link.last_answer() == value && calm();
    }
    bool good() { return answered_with(QString::fromLatin1(kValue)); }
    bool lost() {
        return !link.port_connected && link.last_answer().isEmpty() && calm() &&
               view.state_text == QLatin1String("RS232 ComPort 4 NOT Connected") &&
               !view.state_connected;
    }
    bool calm() { return !port.is_open() && !view.hourglass && view.progress() == 0; }
    bool lasted(double seconds) {
        const double passed = clock.elapsed();
        return passed >= seconds && passed < seconds + kSendingTime;
    }
    /// What is left of the trouble has come in; then the line is sound.
    bool next_is_good() {
        clock.sleep(300);
        port.open_fault = PortFault::none;
        port.stalled = false;
        port.stall_behind = port.vanish_behind = -1;
        // The beginning of a command that was cut makes the meter refuse the next one once.
        port.answer = [](const QByteArray& command) {
            return command == kCommand ? FakePort::good(command, kValue)
                                       : command + "\rCOMMAND ERROR\r";
        };
        link.port_connected = true;
        return link.send(QString::fromLatin1(kCommand)) && good();
    }
};

/// `reply` to the measurement as it is cut out: by length, whatever stands there.
QString cut_out(const QByteArray& reply) {
    QByteArray value = reply.mid(kCommand.size() + 1).chopped(1).chopped(3);
    if (value.endsWith('\r')) value.chop(1);
    return QString::fromLatin1(value);
}

#define M47_AT(condition, k, times)                                                       \
    QVERIFY2(condition, qPrintable(QStringLiteral("byte %1, %2 times: \"%3\" after %4 s") \
                                       .arg(k)                                            \
                                       .arg(times)                                        \
                                       .arg(e.link.last_answer())                         \
                                       .arg(e.clock.elapsed())))

}  // namespace

void EveryByteTest::cut() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k)
        for (const int times : {1, kAlways}) {
            Exchange e({{0.01, kAnswer.left(k)}}, times);
            e.link.send(kCommand);
            const bool asleep = k < kEcho;
            if (asleep && times == 1) {
                // An answer to the first attempt is waited for as long as the second took to come.
                M47_AT(e.good() && e.lasted(2 * kEchoLimit + kSlack) && e.asked == 2, k, times);
            } else if (asleep) {
                M47_AT(e.lost() && e.lasted(3 * kEchoLimit) && e.asked == 3, k, times);
            } else {
                M47_AT(e.lost() && e.lasted(kLimit) && e.asked == 1, k, times);
            }
            M47_AT(e.next_is_good(), k, times);
        }
}

void EveryByteTest::an_error_instead_of_the_rest() {
    for (const char* error : {"ERROR\r", "COMMAND ERROR\r"})
        for (qsizetype k = 0; k < kAnswer.size(); ++k)
            for (const int times : {1, 2, 3}) {
                Exchange e({{0.01, kAnswer.left(k) + error}}, times);
                e.link.send(kCommand);
                M47_AT(times < 3 ? e.good() : e.lost(), k, times);
                M47_AT(e.asked == std::min(times + 1, 3) && e.lasted(0), k, times);
                M47_AT(e.next_is_good(), k, times);
            }
}

void EveryByteTest::a_noise_byte_comes_in() {
    for (const char noise : {'\0', '\x7f', '\xff', '7'})
        for (qsizetype k = 0; k <= kAnswer.size(); ++k)
            for (const int times : {1, kAlways}) {
                const QByteArray answer = QByteArray(kAnswer).insert(k, noise);
                Exchange e({{0.01, answer}}, times);
                e.link.send(kCommand);
                const bool in_the_end = k > kAnswer.size() - 3 && k < kAnswer.size();
                if (in_the_end) {
                    M47_AT(e.lost() && e.lasted(kLimit), k, times);
                } else {
                    M47_AT(e.answered_with(cut_out(answer)) && e.lasted(0), k, times);
                }
                M47_AT(e.asked == 1 && e.next_is_good(), k, times);
            }
}

void EveryByteTest::a_byte_is_spoilt() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k)
        for (const int times : {1, kAlways}) {
            QByteArray answer = kAnswer;
            answer[k] = '#';
            Exchange e({{0.01, answer}}, times);
            e.link.send(kCommand);
            if (k >= kAnswer.size() - 3) {
                M47_AT(e.lost() && e.lasted(kLimit), k, times);
            } else {
                M47_AT(e.answered_with(cut_out(answer)) && e.lasted(0), k, times);
            }
            // A wrong echo alone never spoils the value.
            if (k <= kEcho) M47_AT(e.good(), k, times);
            M47_AT(e.asked == 1 && e.next_is_good(), k, times);
        }
}

void EveryByteTest::a_byte_is_missing() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k)
        for (const int times : {1, kAlways}) {
            const QByteArray answer = QByteArray(kAnswer).remove(k, 1);
            Exchange e({{0.01, answer}}, times);
            e.link.send(kCommand);
            if (k >= kAnswer.size() - 3) {
                M47_AT(e.lost() && e.lasted(kLimit), k, times);
            } else {
                M47_AT(e.answered_with(cut_out(answer)) && e.lasted(0), k, times);
            }
            M47_AT(e.asked == 1 && e.next_is_good(), k, times);
        }
}

void EveryByteTest::the_rest_is_late() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k)
        for (const double delay : {1.8, 14.8, 15.2}) {
            Exchange e({{0.01, kAnswer.left(k)}, {delay, kAnswer.mid(k)}}, kAlways);
            e.link.send(kCommand);
            const bool asleep = k < kEcho;
            if (delay < kEchoLimit || (!asleep && delay < kLimit)) {
                M47_AT(e.good() && e.asked == 1 && e.lasted(delay), k, delay);
            } else if (asleep) {
                M47_AT(e.lost() && e.asked == 3 && e.lasted(3 * kEchoLimit), k, delay);
            } else {
                M47_AT(e.lost() && e.asked == 1 && e.lasted(kLimit), k, delay);
            }
            M47_AT(e.next_is_good(), k, delay);
        }
}

void EveryByteTest::the_rest_trickles_for_ever() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k) {
        Pieces pieces{{0.01, kAnswer.left(k)}};
        for (int n = 0; n < 200; ++n) pieces += {0.2 + n * 0.2, "7"};
        Exchange e(pieces, kAlways);
        e.link.send(kCommand);
        M47_AT(e.lost() && e.asked == 1 && e.lasted(kLimit), k, kAlways);
        M47_AT(e.next_is_good(), k, kAlways);
    }
}

void EveryByteTest::the_rest_never_ends() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k) {
        Pieces pieces{{0.01, kAnswer.left(k)}};
        for (int n = 0; n < 400; ++n) pieces += {0.05 + n * 0.05, QByteArray(192, '7')};
        Exchange e(pieces, kAlways);
        e.link.send(kCommand);
        M47_AT(e.lost() && e.asked == 1 && e.lasted(kLimit), k, kAlways);
        M47_AT(e.next_is_good(), k, kAlways);
    }
}

void EveryByteTest::the_device_vanishes_in_the_answer() {
    for (qsizetype k = 0; k < kAnswer.size(); ++k) {
        Exchange e({{0.01, kAnswer.left(k)}}, kAlways);
        e.port.vanish_in(1.5);
        e.link.send(kCommand);
        M47_AT(e.lost() && e.asked == 1 && e.lasted(1.5), k, 1);
        QCOMPARE(e.port.fault(), PortFault::vanished);
        M47_AT(e.next_is_good(), k, 1);
    }
}

void EveryByteTest::the_device_vanishes_in_the_command() {
    for (int k = 1; k <= kCommand.size() + 1; ++k) {
        Exchange e({{0.01, kAnswer}}, kAlways);
        e.port.vanish_behind = k;
        e.link.send(kCommand);
        M47_AT(e.lost() && e.lasted(0), k, 1);
        QCOMPARE(e.port.fault(), PortFault::vanished);
        QCOMPARE(e.port.written, (kCommand + '\r').left(k));
        M47_AT(e.next_is_good(), k, 1);
    }
}

/// The line is still there, so nothing is said of a device: the meter is asked three times.
void EveryByteTest::the_meter_stops_reading_in_the_command() {
    for (int k = 0; k <= kCommand.size(); ++k) {
        Exchange e({{0.01, kAnswer}}, kAlways);
        e.port.stall_behind = k;
        e.link.send(kCommand);
        M47_AT(e.lost() && e.lasted(3 * kEchoLimit), k, 1);
        QCOMPARE(e.port.fault(), PortFault::none);
        QCOMPARE(e.port.written, kCommand.left(k));
        e.port.written.clear();
        M47_AT(e.asked == 0, k, 1);
    }
}

void EveryByteTest::each_limit_from_both_sides_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<double>("limit");
    QTest::newRow("usual") << "FREQ 1000.0" << 15.0;
    QTest::newRow("delete") << "DELETE 0 99" << 240.0;
    QTest::newRow("download") << "DATAOUT" << 240.0;
    QTest::newRow("satellite") << "ASLNAME?" << 60.0;
    QTest::newRow("master copy") << "MASTERCOPY 6?" << 120.0;
}

void EveryByteTest::each_limit_from_both_sides() {
    QFETCH(QString, command);
    QFETCH(double, limit);
    for (const double delay : {-0.2, 0.05}) {
        // The limit counts from the first character, the answer's delay from the last.
        const QByteArray bytes = FakePort::good(command.toLatin1(), "7");
        Exchange e({}, kAlways);
        e.port.answer = [&](const QByteArray&) {
            e.port.feed(bytes.left(command.size()), 0.01);
            e.port.feed(bytes.mid(command.size()), limit + delay);
            return QByteArray();
        };
        const bool sent = e.link.send(command);
        QCOMPARE(sent, delay < 0);
        QVERIFY(delay < 0 ? e.calm() : e.lost());
        QVERIFY2(e.clock.elapsed() < limit + 0.05, qPrintable(QString::number(e.clock.elapsed())));
    }
}

void EveryByteTest::a_block_is_cut() {
    const QByteArray answer = kBlock + "\rOK\r";
    for (qsizetype k = 0; k <= answer.size(); ++k) {
        Exchange e({{0.01, answer.left(k)}}, kAlways);
        e.link.send_block(kBlock);
        if (k > kBlock.size()) {
            M47_AT(e.answered_with(QString::fromLatin1(answer.left(k))), k, 1);
            M47_AT(e.lasted(kBlockPause), k, 1);
        } else {
            M47_AT(e.lost() && e.lasted(kBlockLimit + kBlockPause), k, 1);
        }
        M47_AT(e.asked == 1 && e.next_is_good(), k, 1);
    }
}

void EveryByteTest::the_device_vanishes_in_a_block() {
    for (int k = 1; k <= kBlock.size() + 1; ++k) {
        Exchange e({{0.01, kBlock + "\rOK\r"}}, kAlways);
        e.port.vanish_behind = k;
        e.link.send_block(kBlock);
        M47_AT(e.lost() && e.lasted(kBlockPause), k, 1);
        QCOMPARE(e.port.fault(), PortFault::vanished);
        QCOMPARE(e.port.written, (kBlock + '\r').left(k));
        M47_AT(e.next_is_good(), k, 1);
    }
}

void EveryByteTest::the_meter_stops_reading_in_a_block() {
    for (int k = 0; k <= kBlock.size(); ++k) {
        Exchange e({{0.01, kBlock + "\rOK\r"}}, kAlways);
        e.port.stall_behind = k;
        e.link.send_block(kBlock);
        M47_AT(e.lost() && e.lasted(kBlockLimit + kBlockPause), k, 1);
        QCOMPARE(e.port.fault(), PortFault::none);
        QCOMPARE(e.port.written, kBlock.left(k));
    }
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::EveryByteTest)
#include "every_byte_test.moc"
