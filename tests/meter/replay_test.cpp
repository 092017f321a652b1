// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>
#include <sstream>
#include <vector>

#include "replay.h"
#include "text.h"

using namespace std::chrono_literals;

namespace {

/// A recording of the program: each exchange opens and closes the port.
const std::string kRecording =
    "M47TRACE 1 2026-11-22T14:00:00+01:00 m47-remote 1.0.0 Qt 6.4.2\n"
    "NOTE 0.000 0.000 recording began\n"
    "PORT 10.000 10.000 open /dev/ttyUSB0 38400,n,8,2\n"
    "RX 11.000 30.000 ATTEN?<CR>\n"
    "TX 34.000 34.000 ATTEN?<CR>\n"
    "TX 36.500 36.500 6<CR>OK<CR>\n"
    "PORT 37.000 37.000 close\n"
    "USER 40.000 40.000 single_acq_Click\n"
    "RX 41.000 60.000 FREQ 1000.0<CR>\n"
    "TX 65.000 65.000 FREQ 1000.0<CR>OK<CR>\n"
    "RX 71.000 90.000 LEVANL?<CR>\n"
    "TX 95.000 97.000 LEVANL?<CR>  66.1<CR>OK<CR>\n"
    "RX 101.000 120.000 FREQ 1190.0<CR>\n"
    "TX 125.000 125.000 FREQ 1190.0<CR>OK<CR>\n"
    "RX 131.000 150.000 LEVANL?<CR>\n"
    "RX 2151.000 2151.000 <CR>\n"
    "RX 2161.000 2180.000 LEVANL?<CR>\n"
    "TX 2185.000 2185.000 LEVANL?<CR>  58.2<CR>OK<CR>\n";

/// The meter of a recording.
struct Player {
    explicit Player(const std::string& text, double speed = 1.0, bool strict = false)
        : file(text), replay(file, speed, strict) {}
    std::istringstream file;
    meter::Replay replay;

    std::string ask(const std::string& command) { return replay.handle(command).bytes; }
    std::vector<std::string> ask_all(const std::vector<std::string>& commands) {
        std::vector<std::string> answers;
        for (const std::string& command : commands) answers.push_back(ask(command));
        return answers;
    }
};

const std::vector<std::string> kCommands{
    "ATTEN?", "FREQ 1000.0", "LEVANL?", "FREQ 1190.0", "LEVANL?", "", "LEVANL?"};
const std::vector<std::string> kAnswers{"ATTEN?\r6\rOK\r",
                                        "FREQ 1000.0\rOK\r",
                                        "LEVANL?\r  66.1\rOK\r",
                                        "FREQ 1190.0\rOK\r",
                                        "",
                                        "",
                                        "LEVANL?\r  58.2\rOK\r"};

}  // namespace

class TestReplay : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void every_byte_is_read_as_it_is_written();
    void answers_as_recorded();
    void goes_round_at_the_end();
    void another_order();
    void pieces_and_their_times();
    void at_another_speed();
    void a_command_in_pieces();
    void a_late_answer_in_the_meters_own_order();
    void what_comes_much_later_is_no_answer();
    void a_lost_line();
    void never_recorded();
    void spoilt_lines_data();
    void spoilt_lines();
    void an_answer_to_a_spoilt_command();
    void each_line_spoilt();
    void cut_at_every_byte();
    void heads_data();
    void heads();
    void a_line_without_end();
};

void TestReplay::every_byte_is_read_as_it_is_written() {
    std::string all;
    for (int code = 0; code < 256; ++code) all += static_cast<char>(code);
    std::string read;
    QVERIFY(meter::unescape(meter::escaped(all), read));
    QVERIFY(read == all);
    for (const char* wrong : {"<", "<CR", "<XX>", "<0d>", "<>", "a\rb", "\x80", "<CRLF>"})
        QVERIFY2(!meter::unescape(wrong, read), wrong);
}

void TestReplay::answers_as_recorded() {
    Player player(kRecording);
    QCOMPARE(player.replay.fault(), std::string());
    QCOMPARE(player.replay.remark(), std::string());
    QVERIFY(player.ask_all(kCommands) == kAnswers);
    QCOMPARE(player.replay.never_recorded(), std::string());
}

void TestReplay::goes_round_at_the_end() {
    Player player(kRecording);
    for (int round = 0; round < 3; ++round) QVERIFY(player.ask_all(kCommands) == kAnswers);
    for (const std::size_t k : {0U, 0U}) QCOMPARE(player.ask(kCommands[k]), kAnswers[k]);
}

/// The answer behind the place where the recording is: the level belongs to its frequency.
void TestReplay::another_order() {
    Player player(kRecording);
    player.ask("FREQ 1190.0");
    QCOMPARE(player.ask("LEVANL?"), std::string());
    QCOMPARE(player.ask("LEVANL?"), kAnswers[6]);
    player.ask("FREQ 1000.0");
    QCOMPARE(player.ask("LEVANL?"), kAnswers[2]);
}

void TestReplay::pieces_and_their_times() {
    Player player(kRecording);
    const meter::Delivery identified = player.replay.handle("ATTEN?");
    const auto& pieces = identified.recorded.value().pieces;
    QCOMPARE(pieces.size(), std::size_t{2});
    QCOMPARE(pieces[0].end, std::size_t{7});
    QVERIFY(pieces[0].first == 4ms && pieces[0].last == 4ms);
    QCOMPARE(pieces[1].end, identified.bytes.size());
    QVERIFY(pieces[1].first == 6500us);
    const auto level = player.replay.handle("LEVANL?").recorded.value().pieces;
    QCOMPARE(level.size(), std::size_t{1});
    QVERIFY(level[0].first == 5ms && level[0].last == 7ms);
    QVERIFY(player.replay.handle("").recorded.value().pieces.empty());
}

void TestReplay::at_another_speed() {
    Player twice(kRecording, 2.0);
    const auto pieces = twice.replay.handle("ATTEN?").recorded.value().pieces;
    QVERIFY(pieces[0].first == 2ms && pieces[1].last == 3250us);
    Player at_once(kRecording, 0.0);
    const meter::Delivery delivery = at_once.replay.handle("ATTEN?");
    for (const auto& piece : delivery.recorded.value().pieces)
        QVERIFY(piece.first == 0ms && piece.last == 0ms);
}

/// The program writes what has gone when something comes in the middle of a command.
void TestReplay::a_command_in_pieces() {
    Player player(
        "RX 1.000 2.000 LEVANL?<CR>\n"
        "RX 2002.000 2003.000 LEV\n"
        "TX 2004.000 2004.000 LEVANL?<CR>\n"
        "RX 2005.000 2006.000 ANL?<CR>\n"
        "TX 2008.000 2008.000 LEVANL?<CR>  58.2<CR>OK<CR>\n");
    const meter::Delivery late = player.replay.handle("LEVANL?");
    QCOMPARE(late.bytes, std::string("LEVANL?\r"));
    QVERIFY(late.recorded.value().pieces.at(0).first == 2002ms);
    const meter::Delivery second = player.replay.handle("LEVANL?");
    QCOMPARE(second.bytes, kAnswers[6]);
    QVERIFY(second.recorded.value().pieces.at(0).first == 2ms);
}

/// The meter's own trace has the answer beside its command, whatever came between them.
void TestReplay::a_late_answer_in_the_meters_own_order() {
    Player player(
        "RX 1.000 2.000 LEVANL?<CR>\n"
        "TX 3000.000 3005.000 LEVANL?<CR>  58.1<CR>OK<CR>\n"
        "RX 2002.000 2003.000 LEVANL?<CR>\n"
        "TX 3006.000 3012.000 LEVANL?<CR>  58.2<CR>OK<CR>\n");
    QVERIFY(player.replay.handle("LEVANL?").recorded.value().pieces.at(0).first == 2998ms);
    QVERIFY(player.replay.handle("LEVANL?").recorded.value().pieces.at(0).first == 1003ms);
}

void TestReplay::what_comes_much_later_is_no_answer() {
    Player player(
        "TX 0.100 0.100 noise before all\n"
        "RX 1.000 2.000 UNIT?<CR>\n"
        "TX 4.000 4.000 UNIT?<CR>\n"
        "TX 900000.000 900000.000 noise\n");
    QCOMPARE(player.ask("UNIT?"), std::string("UNIT?\r"));
}

void TestReplay::a_lost_line() {
    Player player(
        "RX 1.000 2.000 UNIT?<CR>\n"
        "TX 4.000 4.000 UNIT\n"
        "PORT 6.000 6.000 lost unplugged\n"
        "PORT 2000.000 2000.000 open-failed no such device\n"
        "PORT 4002.000 4002.000 open /dev/ttyUSB0 38400,n,8,2\n"
        "RX 4005.000 4010.000 ATTEN?<CR>\n"
        "TX 4015.000 4015.000 ATTEN?<CR>6<CR>OK<CR>\n"
        "PORT 4020.000 4020.000 close\n"
        "PORT 9000.000 9000.000 open-failed no such device\n");
    const auto lost = player.replay.handle("UNIT?").recorded.value();
    QVERIFY(lost.lost == 3ms && lost.back == 4000ms);
    // A command that was still on its way tells of no return.
    Player own(
        "RX 1.000 2.000 UNIT?<CR>\n"
        "TX 4.000 4.000 UNIT?<CR>00<CR>OK<CR>\n"
        "PORT 300.000 300.000 lost unplugged\n"
        "RX 8.000 9.000 ATTEN?<CR>\n"
        "TX 301.000 1300.000 \n");
    QVERIFY(!own.replay.handle("UNIT?").recorded.value().back);
    const auto pulled = player.replay.handle("ATTEN?").recorded.value();
    QVERIFY(pulled.lost == 12ms && !pulled.back);
}

void TestReplay::never_recorded() {
    Player player(kRecording);
    QCOMPARE(player.ask("LOGO?"), std::string("LOGO?\rInvalid Parameter(s)\rOK\r"));
    QCOMPARE(player.ask("UNIT 01"), std::string("UNIT 01\rOK\r"));
    QCOMPARE(player.ask("UNIT 01"), std::string("UNIT 01\rOK\r"));
    QCOMPARE(player.ask("UNIT <\x01"), std::string("UNIT <\x01\rOK\r"));
    QCOMPARE(player.replay.never_recorded(),
             std::string("m47-meter: never recorded, asked once: LOGO?\n"
                         "m47-meter: never recorded, asked 2 times: UNIT 01\n"
                         "m47-meter: never recorded, asked once: UNIT <LT><01>\n"));
    Player strict("RX 1.000 2.000 UNIT?<CR>\n", 1.0, true);
    QCOMPARE(strict.ask("LOGO?"), std::string("LOGO?\rCOMMAND ERROR\r"));
    QCOMPARE(strict.ask(""), std::string());
    QCOMPARE(strict.replay.never_recorded(),
             std::string("m47-meter: never recorded, asked once: LOGO?\n"));
}

void TestReplay::spoilt_lines_data() {
    QTest::addColumn<QByteArray>("line");
    for (const char* line :
         {"", "RX", "RX 1.000", "RX 1.000 2.000", "rx 1.000 2.000 A<CR>", "RX 1 2 A<CR>",
          "RX 1.0000 2.000 A<CR>", "RX -1.000 2.000 A<CR>", "RX 1.000 2.x00 A<CR>",
          "RX 1.000 2.000 A<C", "RX 1.000 2.000 A<CR>B<CR>", "TX 1.000 2.000 \xC3\xA8",
          "TX 1.000 99999999999999.000 A", " TX 1.000 2.000 A"})
        QTest::newRow(line) << QByteArray(line);
}

void TestReplay::spoilt_lines() {
    QFETCH(QByteArray, line);
    Player player("RX 1.000 2.000 UNIT?<CR>\nTX 2.500 2.500 UNIT?<CR>\n" + line.toStdString() +
                  "\nLATER 1.000 1.000 of another day\nTX 3.000 3.000 good\r\n");
    QCOMPARE(player.replay.remark(), std::string("1 line cannot be read and is left out, line 3"));
    QCOMPARE(player.ask("UNIT?"), std::string("UNIT?\rgood"));
    QCOMPARE(player.ask("A"), std::string("A\rOK\r"));
}

/// It is not taken for one to the command before.
void TestReplay::an_answer_to_a_spoilt_command() {
    for (const char* before : {"", "TX 2.500 2.500 UNIT?<CR>00<CR>OK<CR>\n"}) {
        const std::string begin = std::string("RX 1.000 2.000 UNIT?<CR>\n") + before;
        Player player(begin +
                      "RX 3.000 3.1\x7F"
                      "00 LEVANL?<CR>\nTX 4.000 4.000 LEVANL?<CR>\n");
        QCOMPARE(player.ask("UNIT?"), std::string(*before ? "UNIT?\r00\rOK\r" : ""));
    }
}

/// Alone what the line said is missing.
void TestReplay::each_line_spoilt() {
    const QList<QByteArray> lines = QByteArray::fromStdString(kRecording).split('\n');
    for (qsizetype k = 0; k + 1 < lines.size(); ++k) {
        QList<QByteArray> spoilt = lines;
        spoilt[k] = "\x7F" + spoilt[k].mid(1);
        Player player(spoilt.join('\n').toStdString());
        QCOMPARE(player.replay.fault(), std::string());
        QCOMPARE(player.replay.remark(),
                 "1 line cannot be read and is left out, line " + std::to_string(k + 1));
        const bool of_first = k == 3 || k == 4 || k == 5;
        QCOMPARE(player.ask("ATTEN?") == kAnswers[0], !of_first);
        const bool of_last = k == 16 || k == 17;
        player.ask("");
        QCOMPARE(player.ask("LEVANL?") == kAnswers[6], !of_last && k != 15);
    }
}

void TestReplay::cut_at_every_byte() {
    const std::size_t head = kRecording.find('\n') + 1;
    std::size_t answered = 0;
    for (std::size_t size = 0; size <= kRecording.size(); ++size) {
        Player player(kRecording.substr(0, size), 1.0, true);
        const bool between = size == 0 || kRecording[size - 1] == '\n';
        QCOMPARE(player.replay.remark().empty(), between);
        if (!between)
            QCOMPARE(player.replay.remark(), std::string("the last line is cut off and left out"));
        if (size < head) QVERIFY(!player.replay.fault().empty());
        if (!player.replay.fault().empty()) continue;
        // As many of the answers as there are; the last one may be half.
        std::size_t good = 0;
        while (good < kCommands.size() && player.ask(kCommands[good]) == kAnswers[good]) ++good;
        QVERIFY(good >= answered);
        answered = good;
    }
    QCOMPARE(answered, kCommands.size());
}

void TestReplay::heads_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("fault");
    const QByteArray exchange = "RX 1.000 2.000 UNIT?<CR>\n";
    QTest::newRow("none") << exchange << QByteArray();
    QTest::newRow("this version") << "M47TRACE 1 x y\n" + exchange << QByteArray();
    QTest::newRow("a later one")
        << "M47TRACE 2 x y\n" + exchange
        << QByteArray("is a recording of version 2, and only version 1 can be read here");
    QTest::newRow("an unreadable one") << "M47TRACE I x y\n" + exchange << QByteArray();
    QTest::newRow("nothing") << QByteArray() << QByteArray("holds no command to the meter");
    QTest::newRow("something else") << QByteArray(
                                           "\x7F"
                                           "ELF\0\n\n")
                                    << QByteArray("holds no command to the meter");
}

void TestReplay::heads() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, fault);
    Player player(text.toStdString());
    QCOMPARE(QByteArray::fromStdString(player.replay.fault()), fault);
}

/// It is not kept in memory to be found too long.
void TestReplay::a_line_without_end() {
    const std::string flood(meter::LineSource::longest_line + 200000, '0');
    Player player("RX 1.000 2.000 UNIT?<CR>\nTX 2.500 2.500 UNIT?<CR>\nTX 3.000 3.000 " + flood +
                  "\nTX 4.000 4.000 good\nTX 5.000 5.000 " + flood);
    QCOMPARE(player.replay.remark(),
             std::string("2 lines cannot be read and are left out, the first is line 3, the last "
                         "is cut off"));
    QCOMPARE(player.ask("UNIT?"), std::string("UNIT?\rgood"));
}

QTEST_GUILESS_MAIN(TestReplay)
#include "replay_test.moc"
