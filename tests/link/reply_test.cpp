// SPDX-License-Identifier: GPL-3.0-or-later
#include "reply.h"

#include <QTest>

#include "late_answers.h"
#include "meter_settings.h"

namespace m47::link {

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
    void where_an_answer_ends_data();
    void where_an_answer_ends();
    void late_answers_are_counted_until_they_cannot_come();
    void an_echo_tells_whose_answer_it_is();
    void the_settings_follow_what_the_meter_was_told();
    void what_the_meter_may_not_have_done_is_not_known();
    void an_oscillator_is_known_by_its_number();
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

void ReplyTest::where_an_answer_ends_data() {
    QTest::addColumn<QString>("raw");
    QTest::addColumn<int>("end");
    const auto row = [](const char* raw, int end) {
        QTest::newRow(raw) << QString::fromLatin1(raw) << end;
    };
    row("", 0);
    row("VER?\rV3", 0);
    row("A\rOK\r", 5);
    row("A\rOK\rB\rOK\r", 5);
    row("ERROR\r", 6);
    row("OK\r", 3);
    row("OK\rERROR\r", 3);
    row("A\rOK\rERROR\r", 5);
    row("COMMAND ERROR\rA\rOK\r", 14);
    row("ERROR\rA\rOK\r", 6);
}

void ReplyTest::where_an_answer_ends() {
    QFETCH(QString, raw);
    QTEST(static_cast<int>(answer_end(raw)), "end");
}

void ReplyTest::late_answers_are_counted_until_they_cannot_come() {
    LateAnswers late;
    late.expect("A", 1, 0, 10);
    QVERIFY(late.may_come(10));
    QVERIFY(!late.may_come(10.1));
    late.expect("B", 2, 5, 20);
    // Nobody waits for it, whoever else is waited for.
    late.came("C\rOK\r");
    QVERIFY(late.may_come("A", 9));
    QVERIFY(late.may_come("A", 10));
    QVERIFY(!late.may_come("A", 11));
    QVERIFY(late.may_come("B", 11));
    late.came("C\rOK\r");
    late.came("B\rOK\r");
    QVERIFY(late.may_come("B", 11));
    late.came("B\rOK\r");
    QVERIFY(!late.may_come("B", 11));
    QVERIFY(!late.may_come(11));
    // An answer of which nothing but its words has come is none.
    late.expect("D", 1, 11, 12);
    late.came("D");
    QVERIFY(late.may_come("D", 12));
    late.came("D\rOK\r");
    // Neither none nor one too many of them makes the next wait longer.
    late.came("B\rOK\r");
    late.expect("B", 0, 11, 30);
    late.expect("B", -1, 11, 30);
    QVERIFY(!late.may_come(12));
    late.expect("B", 1, 11, 30);
    QVERIFY(late.may_come(12));
}

void ReplyTest::an_echo_tells_whose_answer_it_is() {
    LateAnswers late;
    for (int k = 0; k < 17; ++k) late.asked(QString::number(k));
    QVERIFY(late.is_to_another("16\rOK\r", "5"));
    QVERIFY(!late.is_to_another("5\rOK\r", "5"));
    QVERIFY(late.is_to_another("1\rOK\r", "5"));
    QVERIFY(!late.is_to_another("0\rOK\r", "5"));
    QVERIFY(!late.is_to_another("noise", "5"));
    // Asked again it is the last one, and none is known twice.
    late.asked("1");
    late.asked("17");
    QVERIFY(late.is_to_another("1\rOK\r", "5"));
    QVERIFY(!late.is_to_another("2\rOK\r", "5"));
}

void ReplyTest::the_settings_follow_what_the_meter_was_told() {
    MeterSettings settings;
    QVERIFY(!settings.unit() && !settings.frequency() && !settings.oscillator());
    for (const int unit : {0, 1, 2}) {
        settings.take(QStringLiteral("UNIT 0%1").arg(unit), QString());
        QCOMPARE(settings.unit(), std::optional<int>(unit));
    }
    for (const char* unknown : {"UNIT 03", "UNIT -1", "UNIT", "UNIT x"}) {
        settings.take("UNIT?", "1");
        QCOMPARE(settings.unit(), std::optional<int>(1));
        settings.take(QString::fromLatin1(unknown), QString());
        QVERIFY2(!settings.unit(), unknown);
    }
    settings.take("FREQ 1503.5", QString());
    QCOMPARE(settings.frequency(), std::optional<double>(1503.5));
    settings.take("FREQ?", "0999.0");
    QCOMPARE(settings.frequency(), std::optional<double>(999));
    // Another word begins alike.
    settings.take("UNITS 02", QString());
    QVERIFY(!settings.unit());
}

void ReplyTest::what_the_meter_may_not_have_done_is_not_known() {
    MeterSettings settings;
    const auto known = [&] {
        return QStringLiteral("%1%2%3")
            .arg(settings.unit().has_value())
            .arg(settings.frequency().has_value())
            .arg(settings.oscillator().has_value());
    };
    for (const char* command : {"UNIT 01", "FREQ 1000", "LOCOSC 1 09750", "LOCOSC 1"})
        settings.take(QString::fromLatin1(command), QString());
    for (const char* query : {"UNIT?", "FREQ?", "LOCOSC?", "MEASURE"})
        settings.doubt(QString::fromLatin1(query));
    QCOMPARE(known(), QStringLiteral("111"));
    settings.doubt("FREQ 1100");
    QCOMPARE(known(), QStringLiteral("101"));
    settings.doubt("UNIT 02");
    QCOMPARE(known(), QStringLiteral("001"));
    settings.doubt("LOCOSC 2");
    QCOMPARE(known(), QStringLiteral("000"));
}

void ReplyTest::an_oscillator_is_known_by_its_number() {
    MeterSettings settings;
    for (const char* command : {"LOCOSC 1 09750", "LOCOSC 2 10600", "LOCOSC 0 05150"})
        settings.take(QString::fromLatin1(command), QString());
    QVERIFY(!settings.oscillator());
    settings.take("LOCOSC 2", QString());
    QCOMPARE(settings.oscillator(), std::optional<double>(10600));
    settings.take("LOCOSC 1", QString());
    QCOMPARE(settings.oscillator(), std::optional<double>(9750));
    // Number 0 is none, whatever it was given.
    settings.take("LOCOSC 0", QString());
    QVERIFY(!settings.oscillator());
    settings.take("LOCOSC 1", QString());
    settings.take("LOCOSC 4", QString());
    QVERIFY(!settings.oscillator());
    settings.forget();
    settings.take("LOCOSC 1", QString());
    QVERIFY(!settings.oscillator());
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::ReplyTest)
#include "reply_test.moc"
