// SPDX-License-Identifier: GPL-3.0-or-later
#include "reply.h"

#include <QTest>

namespace m47 {

using Verdict = ReplyWatch::Verdict;

class ReplyTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void limits_data();
    void limits();
    void reduction_data();
    void reduction();
    void verdicts_data();
    void verdicts();
    void verdict_does_not_depend_on_the_pieces();
    void a_long_answer_byte_by_byte();
};

void ReplyTest::limits_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<double>("limit");
    const auto row = [](const char* command, double limit) {
        QTest::newRow(command) << QString::fromLatin1(command) << limit;
    };
    row("FREQ 1000.0", 15);
    row("LEVANL?", 15);
    row("", 15);
    row("DELETE 3", 240);
    row("DATAOUT", 240);
    row("DATADELALL", 240);
    row("ASLDEL 3", 60);
    row("MASTERCOPY 6?", 120);
    row("ASLDATA", 60);
    row("DATAASL", 60);
    row("ASLDELETE", 60);
    row("MASTERDATA", 120);
    row("ASL MASTER DELETE", 120);
    row("dataout", 15);
    row("masteR", 15);
}

void ReplyTest::limits() {
    QFETCH(QString, command);
    QFETCH(double, limit);
    QCOMPARE(answer_limit(command), limit);
}

void ReplyTest::reduction_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("payload");
    const auto row = [](const char* name, const char* command, const char* raw,
                        const char* payload) {
        QTest::newRow(name) << QString::fromLatin1(command) << QString::fromLatin1(raw)
                            << QString::fromLatin1(payload);
    };
    row("query", "LEVANL?", "LEVANL?\r73.5\rOK\r", "73.5");
    row("setting", "FREQ 1234.5", "FREQ 1234.5\rOK\r", "OK");
    row("refused argument", "MASTERCOPY 6?", "MASTERCOPY 6?\rInvalid Parameter(s)\rOK\r", "0");
    row("refused, bare", "X?", "Invalid Parameter(s)", "0");
    row("refused setting", "FREQ 1", "FREQ 1\rInvalid Parameter(s)\rOK\r",
        "Invalid Parameter(s)\rOK");
    row("error rate", "BERQPSK?", "BERQPSK?\r1.2E-4\rOK\r", "1.2E-4");
    row("error rate, no CR before OK", "BERQPSK?", "BERQPSK?\r1.2E-4OK\r", "1.2E-4");
    row("other query, no CR before OK", "BERQAM?", "BERQAM?\r1.2E-4OK\r", "1.2E-");
    row("two CR", "LEVANL?", "LEVANL?\r73.5\r\rOK\r", "73.5");
    row("several lines", "DATAOUT?", "DATAOUT?\rA\rB\rOK\r", "A\rB");
    row("no value", "LEVANL?", "LEVANL?\rOK\r", "OK");
    row("empty value", "LEVANL?", "LEVANL?\r\rOK\r", "");
    row("no echo", "LEVANL?", "OK\r", "");
    row("no echo, setting", "FREQ 1", "OK\r", "OK");
    row("echo alone", "FREQ 1", "FREQ 1\r", "FREQ 1");
    row("echo and one", "FREQ 1", "FREQ 1\rX", "");
    row("nothing", "LEVANL?", "", "");
    row("no command", "", "OK\r", "K");
    row("CR alone", "FREQ 1", "\r", "");
}

void ReplyTest::reduction() {
    QFETCH(QString, command);
    QFETCH(QString, raw);
    QFETCH(QString, payload);
    QCOMPARE(reduce_answer(command, raw), payload);
}

void ReplyTest::verdicts_data() {
    QTest::addColumn<QString>("reply");
    QTest::addColumn<int>("verdict");
    const auto row = [](const char* reply, Verdict verdict) {
        QTest::newRow(reply) << QString::fromLatin1(reply) << static_cast<int>(verdict);
    };
    row("LEVANL?\r73.5\rOK\r", Verdict::complete);
    row("LEVANL?\rCOMMAND ERROR\r", Verdict::error);
    row("LEVANL?\rERROR 3", Verdict::error);
    row("ERROR", Verdict::error);
    row("OK\rERROR", Verdict::error);
    row("OK\r", Verdict::complete);
    row("OK", Verdict::open);
    row("O K\r", Verdict::open);
    row("ok\r", Verdict::open);
    row("error", Verdict::open);
    row("ERRO", Verdict::open);
    row("", Verdict::open);
}

void ReplyTest::verdicts() {
    QFETCH(QString, reply);
    QFETCH(int, verdict);
    QCOMPARE(static_cast<int>(ReplyWatch().look_at(reply)), verdict);
}

void ReplyTest::verdict_does_not_depend_on_the_pieces() {
    for (const QString text :
         {"LEVANL?\r73.5\rOK\r", "LEVANL?\rCOMMAND ERROR", "EERROR", "OOK\r"}) {
        for (qsizetype first = 0; first <= text.size(); ++first) {
            for (qsizetype second = first; second < text.size(); ++second) {
                ReplyWatch watch;
                QCOMPARE(watch.look_at(text.left(first)) == Verdict::open, first < text.size());
                if (second > first) QVERIFY(watch.look_at(text.left(second)) == Verdict::open);
                QVERIFY(watch.look_at(text) != Verdict::open);
            }
        }
    }
}

void ReplyTest::a_long_answer_byte_by_byte() {
    // Searching the whole answer anew at each byte would take hours.
    constexpr int kLength = 1'000'000;
    ReplyWatch watch;
    QString reply;
    for (int i = 0; i < kLength; ++i) {
        reply += u'7';
        QVERIFY(watch.look_at(reply) == Verdict::open);
    }
    reply += "OK\r";
    QVERIFY(watch.look_at(reply) == Verdict::complete);
}

}  // namespace m47

QTEST_APPLESS_MAIN(m47::ReplyTest)
#include "reply_test.moc"
