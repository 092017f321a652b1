// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_replies.h"

#include <QLocale>
#include <QTest>

#include "fault.h"

namespace m47::link {

class MeasureRepliesTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void range_mark_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("number");
        QTest::newRow("below") << "<20.5" << 20.5;
        QTest::newRow("above") << ">20.5" << 20.5;
        QTest::newRow("in range") << "20.5" << 20.5;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("mark alone") << "<" << 0.0;
        QTest::newRow("blank behind the mark") << "< 20.5" << 20.5;
        QTest::newRow("negative") << ">-20.5" << -20.5;
        QTest::newRow("exponent") << "<1.0E-8" << 1.0e-8;
        QTest::newRow("unit behind it") << "20.5dBuV" << 20.5;
        QTest::newRow("comma ends it") << "20,5" << 20.0;
        QTest::newRow("no number") << "ERROR" << 0.0;
        QTest::newRow("one mark only") << "<<20.5" << 0.0;
    }

    void range_mark() {
        QFETCH(QString, text);
        QFETCH(double, number);
        QCOMPARE(delete_segno(text), number);
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::Italian));
        const double in_italian = delete_segno(text);
        QLocale::setDefault(before);
        QCOMPARE(in_italian, number);
    }

    void what_can_be_a_value_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("possible");
        for (const char* text : {"61.9", " 61.9 ", "<20.5", "> 20.5", "-47.5", "60", "0.1",
                                 "61.9dBuV", "61.9 dBuV", "", "----", "NO LOCK"})
            QTest::newRow(text) << text << true;
        for (const char* text :
             {"6#.9", "6 1.9", "61.", "61,9", "61.9.3", "#61.9", "<<61.9", "12.2E", "2.0E-",
              "2.07-4", "057.7", "57E7", "6x1.9", "61.9\r7", "61.\xe9"})
            QTest::newRow(text) << QString::fromLatin1(text) << false;
    }

    void what_can_be_a_value() {
        QFETCH(QString, text);
        QFETCH(bool, possible);
        QCOMPARE(can_be_value(text), possible);
    }

    void what_can_be_a_rate_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("possible");
        for (const char* text : {"2.0E-4", " <1.0E-8", "1", "1.0", "0", "1E-8", "", "NO LOCK"})
            QTest::newRow(text) << text << true;
        for (const char* text : {"1.1", "2", "2.0E-#", "2.0E4", "20E-4", "2.0E-4x"})
            QTest::newRow(text) << text << false;
    }

    void what_can_be_a_rate() {
        QFETCH(QString, text);
        QFETCH(bool, possible);
        QCOMPARE(can_be_rate(text), possible);
    }

    void labelled_field_data() {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("field");
        const QString four("CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   :  1.25 \rMER   : 12.3");
        QTest::newRow("first line") << "CHBER :" << four << " 2.0E-4";
        QTest::newRow("range mark kept") << "PvBER :" << four << " <1.0E-8";
        QTest::newRow("blanks kept") << "CFO   :" << four << "  1.25 ";
        QTest::newRow("to the end of the answer") << "MER   :" << four << " 12.3";
        QTest::newRow("line end behind the last") << "MER   :" << four + '\r' << " 12.3";
        QTest::newRow("empty field") << "CFO   :"
                                     << "CFO   :\rMER   : 1"
                                     << "";
        QTest::newRow("label at the very end") << "CFO   :"
                                               << "CFO   :"
                                               << "";
        QTest::newRow("line ends before the label") << "CFO   :"
                                                    << "\r\rCFO   :1\r2"
                                                    << "1";
        QTest::newRow("first of two") << "CFO   :"
                                      << "CFO   :1\rCFO   :2"
                                      << "1";
        QTest::newRow("within a line") << "CFO   :"
                                       << "and CFO   :1\r2"
                                       << "1";
    }

    void labelled_field() {
        QFETCH(QString, label);
        QFETCH(QString, answer);
        QFETCH(QString, field);
        QCOMPARE(delete_cr(label, answer), field);
    }

    void missing_label_data() {
        QTest::addColumn<QString>("answer");
        QTest::newRow("empty") << "";
        QTest::newRow("another one") << "CHBER : 2.0E-4\r";
        QTest::newRow("one blank before the colon") << "MER : 12.3\r";
        QTest::newRow("other letters") << "Mer   : 12.3\r";
        QTest::newRow("broken off") << "MER   ";
    }

    void missing_label() {
        QFETCH(QString, answer);
        QVERIFY_THROWS_EXCEPTION(Fault, delete_cr("MER   :", answer));
    }

    void shown_from_a_character_on() {
        QCOMPARE(trimmed_from("S 58.3 ", 2), QString("58.3"));
        QCOMPARE(trimmed_from(" <58.3", 2), QString("<58.3"));
        QCOMPARE(trimmed_from("58.3", 2), QString("8.3"));
        QCOMPARE(trimmed_from(" 58.3 ", 1), QString("58.3"));
        QCOMPARE(trimmed_from("5", 2), QString());
        QCOMPARE(trimmed_from("", 2), QString());
    }

    void level_for_the_attenuator_data() {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<double>("level");
        QTest::newRow("letter and blank") << "L 80.1" << true << 80.1;
        QTest::newRow("two blanks") << "  80.1" << true << 80.1;
        QTest::newRow("nothing behind the blank") << "L " << true << 0.0;
        QTest::newRow("no number behind it") << "L what" << true << 0.0;
        QTest::newRow("range mark") << "L>80.1" << false << -1.0;
        QTest::newRow("digit") << " 80.1" << false << -1.0;
        QTest::newRow("one character") << "L" << false << -1.0;
        QTest::newRow("empty") << "" << false << -1.0;
    }

    void level_for_the_attenuator() {
        QFETCH(QString, reply);
        QFETCH(bool, taken);
        QFETCH(double, level);
        double found = -1;
        QCOMPARE(level_for_attenuator(reply, found), taken);
        QCOMPARE(found, level);
    }

    void noise_answer_data() {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("shown");
        QTest::newRow("with the word") << "LEVDCP? 58.3\rOK"
                                       << "CP? 58.3";
        QTest::newRow("word further on") << "xLEVDCP?58\rOK"
                                         << "CP?58";
        QTest::newRow("without the word") << "ABC58.3\rOK"
                                          << "58.3";
        QTest::newRow("nothing between") << "abc\rOK"
                                         << "";
        QTest::newRow("first line end counts") << "ABC58.3\r59.4\r"
                                               << "58.3";
    }

    void noise_answer() {
        QFETCH(QString, reply);
        QFETCH(QString, shown);
        QCOMPARE(noise_power(reply), shown);
    }

    void noise_answer_that_faults_data() {
        QTest::addColumn<QString>("reply");
        QTest::newRow("empty") << "";
        QTest::newRow("no line end") << "ABC58.3";
        QTest::newRow("no line end behind the word") << "LEVDCP? 58.3";
        QTest::newRow("line end too early") << "ab\rOK";
        QTest::newRow("line end before the word") << "12345\rLEVDCP?";
    }

    void noise_answer_that_faults() {
        QFETCH(QString, reply);
        QVERIFY_THROWS_EXCEPTION(Fault, noise_power(reply));
    }
};

}  // namespace m47::link

QTEST_GUILESS_MAIN(m47::link::MeasureRepliesTest)
#include "measure_replies_test.moc"
