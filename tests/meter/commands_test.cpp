// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include "asking.h"

class TestCommands : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void exact_answers_data();
    void exact_answers();
    void settings_are_kept_data();
    void settings_are_kept();
    void refused_settings_change_nothing_data();
    void refused_settings_change_nothing();
    void oscillator_forms_data();
    void oscillator_forms();
    void oscillators_move_the_frequency();
    void frequency_limits_follow_the_oscillator();
    void programs_are_stored_and_deleted();
    void logger_table();
    void logs_are_sent_and_deleted();
    void log_of_present_tuning();
    void prefilled_log_size();
    void motor();
    void logo_is_cut();
    void span_lines();
    void version_text();
    void state_report();
};

void TestCommands::exact_answers_data() {
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");
    const auto row = [](const char* command, const char* rest) {
        QTest::newRow(command) << QByteArray(command) << QByteArray(command) + '\r' + rest;
    };
    row("ATTEN 6", "OK\r");
    row("ATTEN 00", "OK\r");
    row("ATTEN?", "6\rOK\r");
    row("VER?", "V3.1.0 PLUS\rOK\r");
    row("FREQ?", "1000.0\rOK\r");
    row("FREQ 1000", "OK\r");
    row("FREQ   1234.5", "OK\r");
    row("FREQ 1234,5", "OK\r");
    row("FREQ1234.5", "OK\r");
    row(" FREQ ? ", "1000.0\rOK\r");
    row("FREQ 0503.2", "OK\r");
    row("FREQ 00000", "ERROR\r");
    row("FREQ 900", "ERROR\r");
    row("FREQ 3000", "ERROR\r");
    row("FREQ abc", "ERROR\r");
    row("FREQ", "ERROR\r");
    row("FREQ? 3", "Invalid Parameter(s)\rOK\r");
    row("UNIT?", "00\rOK\r");
    row("LNB?", "00\rOK\r");
    row("LNVOLT?", "13\rOK\r");
    row("TONE22K?", "00\rOK\r");
    row("SYMBRATEQPSK?", "27500\rOK\r");
    row("CHBW?", "36\rOK\r");
    row("MARKER?", "1 0\rOK\r");
    row("LOCOSC?", "00\rOK\r");
    row("DISEQC?", "73\rOK\r");
    row("DEVICE 0", "OK\r");
    row("DEVICE?", "0\rOK\r");
    row("MEASURE", "OK\r");
    row("BERQPSK", "OK\r");
    row("MEASURE 1", "ERROR\r");
    row("STORE", "OK\r");
    row("PROGRAM?", "00\rOK\r");
    row("LOGO?", "M47 FIELD METER\rOK\r");
    row("outputmode 1", "OK\r");
    row("outputmode?", "0\rOK\r");
    row("outputmode 2", "ERROR\r");
    row("spanout 3", "ERROR\r");
    row("DATAPROGRAM?", "01 01 01\r02 02 01\r03 03 00\r04 04 01\r05 05 01\r06 06 00\rOK\r");
    row("LEVDCP?x", "Invalid Parameter(s)\rOK\r");
    row("LEVDCP?3000", "Invalid Parameter(s)\rOK\r");
    row("LEVANL? 1", "Invalid Parameter(s)\rOK\r");
    row("MASTERCOPY 5?", "Invalid Parameter(s)\rOK\r");
    row("MASTERCOPY 6", "ERROR\r");
    row("?", "COMMAND ERROR\r");
    row("TIME?", "COMMAND ERROR\r");
    row("FREQUENCY 1000", "COMMAND ERROR\r");
    row("LEVANL", "COMMAND ERROR\r");
    row("STORE?", "COMMAND ERROR\r");
    row("   ", "COMMAND ERROR\r");
}

void TestCommands::exact_answers() {
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, answer);
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(ask(instrument, command.toStdString()), answer);
}

void TestCommands::settings_are_kept_data() {
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QByteArray>("kept");
    const auto row = [](const char* command, const char* query, const char* kept) {
        QTest::newRow(command) << QByteArray(command) << QByteArray(query) << QByteArray(kept);
    };
    row("ATTEN 3", "ATTEN?", "3");
    row("UNIT 01", "UNIT?", "01");
    row("UNIT 02", "UNIT?", "02");
    row("LNB 01", "LNB?", "01");
    row("LNVOLT 15", "LNVOLT?", "15");
    row("LNVOLT 18", "LNVOLT?", "18");
    row("LNVOLT 24", "LNVOLT?", "24");
    row("TONE22K 01", "TONE22K?", "01");
    row("SYMBRATEQPSK 01500", "SYMBRATEQPSK?", "01500");
    row("CHBW 05", "CHBW?", "05");
    row("MARKER 1 1", "MARKER?", "1 1");
    row("DISEQC 03", "DISEQC?", "03");
    row("PROGRAM 07", "PROGRAM?", "07");
    row("DEVICE 1", "DEVICE?", "1");
    row("outputmode 1", "OUTPUTMODE?", "1");
    row("LOGO  ABC DEF ", "LOGO?", "ABC DEF");
    row("LOGO ", "LOGO?", "");
    row("LOGO REALLY? YES", "LOGO?", "REALLY? YES");
    row("FREQ 2150.0", "FREQ?", "2150.0");
    row("FREQ 0503.2", "FREQ?", "0503.2");
    row("FREQ 00474", "FREQ?", "00474");
}

void TestCommands::settings_are_kept() {
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, query);
    QFETCH(QByteArray, kept);
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(ask(instrument, command.toStdString()), command + "\rOK\r");
    QCOMPARE(ask(instrument, query.toStdString()), query + "\r" + kept + "\rOK\r");
}

void TestCommands::refused_settings_change_nothing_data() {
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("query");
    const auto row = [](const char* command, const char* query) {
        QTest::newRow(command) << QByteArray(command) << QByteArray(query);
    };
    row("ATTEN 7", "ATTEN?");
    row("UNIT 03", "UNIT?");
    row("LNB 02", "LNB?");
    row("LNVOLT 14", "LNVOLT?");
    row("TONE22K 2", "TONE22K?");
    row("SYMBRATEQPSK 01499", "SYMBRATEQPSK?");
    row("SYMBRATEQPSK 45001", "SYMBRATEQPSK?");
    row("CHBW 00", "CHBW?");
    row("CHBW 41", "CHBW?");
    row("MARKER 1 2", "MARKER?");
    row("MARKER 1", "MARKER?");
    row("DISEQC 74", "DISEQC?");
    row("PROGRAM 100", "PROGRAM?");
    row("LOCOSC 5", "LOCOSC?");
    row("LOCOSC 1 00000", "LOCOSC?");
    row("LOCOSC 0 09750", "LOCOSC?");
    row("LOCOSC 1 C", "LOCOSC?");
    row("LOCOSC 1 A 09750 1", "LOCOSC?");
    row("LOCOSC", "LOCOSC?");
    row("DATAPROGRAM 42 01 01", "DATAPROGRAM?");
    row("DATAPROGRAM 01 01 02", "DATAPROGRAM?");
    row("DATAPROGRAM 01 01", "DATAPROGRAM?");
    row("ASLDEL 20", "ASLNAME?");
    row("ASLLEARN 20", "ASLNAME?");
    row("ASLNAME 20 X", "ASLNAME?");
    row("ASLNAME 3", "ASLNAME?");
}

void TestCommands::refused_settings_change_nothing() {
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, query);
    meter::Instrument instrument{meter::Options{}};
    const QByteArray before = ask(instrument, query.toStdString());
    QCOMPARE(ask(instrument, command.toStdString()), command + "\rERROR\r");
    QCOMPARE(ask(instrument, query.toStdString()), before);
}

void TestCommands::oscillator_forms_data() {
    QTest::addColumn<QByteArray>("store");
    QTest::addColumn<QByteArray>("select");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const char* store, const char* select, const char* shown) {
        QTest::newRow(store) << QByteArray(store) << QByteArray(select) << QByteArray(shown);
    };
    row("LOCOSC 1 09750", "LOCOSC 1", "01 A 09750");
    row("LOCOSC 4 05150", "LOCOSC 4", "04 A 05150");
    row("LOCOSC 1 A 09750", "LOCOSC 1 A", "01 A 09750");
    row("LOCOSC 2 B 11300", "LOCOSC 2 B", "02 B 11300");
    row("LOCOSC0103070", "LOCOSC01", "01 A 03070");
    row("LOCOSC0112000", "LOCOSC01", "01 A 12000");
    row("LOCOSC 1 09750", "LOCOSC 00", "00");
    row("LOCOSC0109750", "LOCOSC 0", "00");
}

void TestCommands::oscillator_forms() {
    QFETCH(QByteArray, store);
    QFETCH(QByteArray, select);
    QFETCH(QByteArray, shown);
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(ask(instrument, store.toStdString()), store + "\rOK\r");
    QCOMPARE(ask(instrument, "LOCOSC?"), QByteArray("LOCOSC?\r00\rOK\r"));
    QCOMPARE(ask(instrument, select.toStdString()), select + "\rOK\r");
    QCOMPARE(ask(instrument, "LOCOSC?"), "LOCOSC?\r" + shown + "\rOK\r");
}

void TestCommands::oscillators_move_the_frequency() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "LOCOSC 1 A 10600");
    ask(instrument, "LOCOSC 1 A");
    QCOMPARE(value(instrument, "FREQ?"), std::string("11600"));
    ask(instrument, "LOCOSC0109750");
    QCOMPARE(value(instrument, "FREQ?"), std::string("10750"));
    ask(instrument, "LOCOSC 3 05150");
    ask(instrument, "LOCOSC 3");
    QCOMPARE(value(instrument, "FREQ?"), std::string("04150"));
    ask(instrument, "LOCOSC 00");
    QCOMPARE(value(instrument, "FREQ?"), std::string("1000.0"));
    ask(instrument, "FREQ 0503.2");
    ask(instrument, "LOCOSC 2 10600");
    ask(instrument, "LOCOSC 2");
    QCOMPARE(value(instrument, "FREQ?"), std::string("11600"));
}

void TestCommands::frequency_limits_follow_the_oscillator() {
    meter::Instrument instrument{meter::Options{}};
    const auto accepted = [&](const std::string& command) {
        return ask(instrument, command).endsWith("\rOK\r");
    };
    QVERIFY(accepted("FREQ 920") && accepted("FREQ 2150"));
    QVERIFY(!accepted("FREQ 919.9") && !accepted("FREQ 2150.1"));
    accepted("LOCOSC 1 10600");
    accepted("LOCOSC 1");
    QVERIFY(accepted("FREQ 11520") && accepted("FREQ 12750"));
    QVERIFY(!accepted("FREQ 11519") && !accepted("FREQ 12751") && !accepted("FREQ 919"));
    // A frequency of the intermediate band is taken as one.
    QVERIFY(accepted("FREQ 1000"));
    QCOMPARE(value(instrument, "FREQ?"), std::string("11600"));
    accepted("LOCOSC 3 05150");
    accepted("LOCOSC 3");
    QVERIFY(accepted("FREQ 3000") && accepted("FREQ 4230"));
    QVERIFY(!accepted("FREQ 2999") && !accepted("FREQ 4231"));
}

void TestCommands::programs_are_stored_and_deleted() {
    meter::Instrument instrument{meter::Options{}};
    for (const char* command : {"CHBW 20", "PROGRAM 07", "LOCOSC 1 09750", "LOCOSC 1", "FREQ 11778",
                                "MARKER 1 1", "SYMBRATEQPSK 22000", "DISEQC 05", "LNB 01",
                                "LNVOLT 18", "TONE22K 01", "STORE", "LNB 00"})
        QVERIFY2(ask(instrument, command).endsWith("\rOK\r"), command);
    const auto& programs = instrument.state().programs;
    QVERIFY(programs.contains(7));
    const meter::Settings& stored = programs.at(7);
    QCOMPARE(stored.shown_mhz(), 11778.0);
    QCOMPARE(stored.oscillator.mhz, 9750);
    QCOMPARE(stored.symbol_rate, 22000);
    QCOMPARE(stored.channel_bandwidth, 20);
    QCOMPARE(stored.diseqc, 5);
    QCOMPARE(stored.lnb_volt, 18);
    QVERIFY(stored.digital && stored.lnb_on && stored.tone_on);
    QVERIFY(!instrument.state().settings.lnb_on);

    QCOMPARE(ask(instrument, "DELETE 02 03"), QByteArray("DELETE 02 03\rOK\r"));
    QVERIFY(!programs.contains(2) && !programs.contains(3) && programs.contains(4));
    QCOMPARE(ask(instrument, "DELETE 03 02"), QByteArray("DELETE 03 02\rERROR\r"));
    ask(instrument, "DELETE 7");
    QVERIFY(!programs.contains(7));
    ask(instrument, "DELETE 00 99");
    QVERIFY(programs.empty());
}

void TestCommands::logger_table() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "DATAPROGRAM *");
    QCOMPARE(ask(instrument, "DATAPROGRAM?"), QByteArray("DATAPROGRAM?\r\rOK\r"));
    ask(instrument, "DATAPROGRAM 03 07 01");
    ask(instrument, "DATAPROGRAM 41 99 00");
    ask(instrument, "DATAPROGRAM 00 01 01");
    QCOMPARE(value(instrument, "DATAPROGRAM?"), std::string("00 01 01\r03 07 01\r41 99 00"));
    ask(instrument, "DATAPROGRAM 03 07 00");
    QCOMPARE(value(instrument, "DATAPROGRAM?"), std::string("00 01 01\r03 07 00\r41 99 00"));
}

void TestCommands::logs_are_sent_and_deleted() {
    meter::Instrument instrument{meter::Options{}};
    const QByteArray all = ask(instrument, "DATAOUT");
    QCOMPARE(all.count("LOG "), 3);
    QVERIFY(
        all.startsWith("DATAOUT\rLOG 0001 01/03/06 08:00\r\nDPR MHz CH  (dBuV)   BER    CN\r\n"
                       "D01  1000.0 S01 "));
    QVERIFY(all.contains("\r\nAPR MHz CH  dBuV   VA VA2 CN\r\nA02  1190.0 S02 "));
    QVERIFY(all.endsWith("\r\nOK\r"));

    ask(instrument, "DATAIN");
    const QByteArray last = ask(instrument, "DATALASTOUT");
    QVERIFY(last.startsWith("DATALASTOUT\rLOG 0004 01/03/06 08:45\r\n"));
    QCOMPARE(last.count("LOG "), 1);
    QCOMPARE(last.count("\r\n"), 7);
    QCOMPARE(ask(instrument, "DATAOUT").count("LOG "), 4);

    ask(instrument, "DATADELLAST");
    QCOMPARE(ask(instrument, "DATAOUT"), all);
    ask(instrument, "DATADELALL");
    QCOMPARE(ask(instrument, "DATAOUT"), QByteArray("DATAOUT\rOK\r"));
    QCOMPARE(ask(instrument, "DATALASTOUT"), QByteArray("DATALASTOUT\rOK\r"));
    QCOMPARE(ask(instrument, "DATADELLAST"), QByteArray("DATADELLAST\rOK\r"));
}

void TestCommands::log_of_present_tuning() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "DATAPROGRAM *");
    ask(instrument, "PROGRAM 12");
    ask(instrument, "UNIT 02");
    ask(instrument, "DATAIN");
    const QByteArray last = ask(instrument, "DATALASTOUT");
    QVERIFY(last.contains("\r\nAPR MHz CH  dBm   VA VA2 CN\r\nA12  1000.0 S12  -"));
    QCOMPARE(last.count("\r\n"), 3);

    // Stored programs are logged in the unit chosen now, not in the one they were stored with.
    ask(instrument, "DATAPROGRAM 01 01 01");
    ask(instrument, "DATAIN");
    QVERIFY(ask(instrument, "DATALASTOUT").contains("\r\nDPR MHz CH  (dBm)   BER    CN\r\n"));
}

void TestCommands::prefilled_log_size() {
    meter::Options options;
    options.logger_bytes = 20000;
    meter::Instrument large(options);
    const auto size = ask(large, "DATAOUT").size();
    QVERIFY2(size >= 20000 && size < 20600, qPrintable(QString::number(size)));
    options.logger_bytes = 0;
    meter::Instrument empty(options);
    QCOMPARE(ask(empty, "DATAOUT"), QByteArray("DATAOUT\rOK\r"));
}

void TestCommands::motor() {
    meter::Instrument instrument{meter::Options{}};
    const auto drive = [&](const std::string& argument) {
        return ask(instrument, "DISEQCMOT" + argument).endsWith("\rOK\r")
                   ? instrument.state().motor.position()
                   : -9999;
    };
    QCOMPARE(drive(" 08 12 01"), 12);
    QCOMPARE(drive(" 0605"), 12);
    QCOMPARE(drive(" 09 02 00"), -8);
    QCOMPARE(drive(" 0705"), 12);
    QCOMPARE(drive(" 07 09"), 12);
    QCOMPARE(drive(" 01"), 12);
    QCOMPARE(drive(" 00"), 13);
    QCOMPARE(drive(" 02"), 13);
    QCOMPARE(drive(" 00"), 12);
    QCOMPARE(drive(" 08 99 00"), 700);
    QCOMPARE(drive(" 04"), 700);
    QCOMPARE(drive(" 08 01 01"), 701);
    QCOMPARE(drive(" 03"), 701);
    QCOMPARE(drive(" 05"), 701);
    QCOMPARE(drive(" 10"), 0);
    QCOMPARE(drive(" 0705"), -689);
    QCOMPARE(drive(" 11"), 0);
    for (const char* bad :
         {"", " 12", " 06", " 0600", " 08 12", " 08 00 01", " 08 12 02", " 00 01", " xx"})
        QCOMPARE(drive(bad), -9999);
    QCOMPARE(ask(instrument, "DISEQCMOT?"), QByteArray("DISEQCMOT?\rCOMMAND ERROR\r"));
}

void TestCommands::logo_is_cut() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "LOGO ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    QCOMPARE(value(instrument, "LOGO?"), std::string("ABCDEFGHIJKLMNOP"));
}

void TestCommands::span_lines() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "outputmode 1");
    const QByteArray span = ask(instrument, "spanout");
    QVERIFY(span.startsWith("spanout\r920.0\t"));
    QVERIFY(span.endsWith("\r\nOK\r"));
    QCOMPARE(span.count('\t'), 100);
    QCOMPARE(span.count("\r\n"), 100);
    const auto at = span.indexOf("\r\n1007.0\t") + 9;
    const double level = span.mid(at, 4).toDouble() - 30.0;
    QVERIFY2(level > 58.0 && level < 62.0, qPrintable(QString::number(level)));
    ask(instrument, "LOCOSC 1 09750");
    ask(instrument, "LOCOSC 1");
    ask(instrument, "outputmode 0");
    QVERIFY(ask(instrument, "SPANOUT").startsWith("SPANOUT\r10670.0 "));
}

void TestCommands::version_text() {
    meter::Options options;
    options.version_text = "V2.9.9";
    meter::Instrument instrument(options);
    QCOMPARE(ask(instrument, "VER?"), QByteArray("VER?\rV2.9.9\rOK\r"));
}

void TestCommands::state_report() {
    meter::Instrument instrument{meter::Options{}};
    for (const char* command :
         {"PROGRAM 33", "FREQ 1810", "STORE", "LOGO OUR METER", "BERQPSK", "DATAPROGRAM 20 33 01",
          "ASLNAME 03 NOVA 7W", "DISEQC 10", "DISEQCMOT 08 05 01", "LOCOSC 4 B 11111"})
        QVERIFY2(ask(instrument, command).endsWith("\rOK\r"), command);
    const QString report = QString::fromStdString(instrument.state().report());
    for (const char* line :
         {"version V3.1.0 PLUS", "mode ber", "oscillators B 10600 09750 05150 11111",
          "logo OUR METER", "selected-program 33", "logger-line 20 33 01",
          "slot 03 name NOVA 7W   ", "S00A000041534C2030303362", "S10D00304E4F564120375720202080",
          "diseqc-sent 1", "motor position 5 stopped east-limit 700 west-limit -700"}) {
        QVERIFY2(report.contains(QString("\n%1\n").arg(line)) ||
                     report.startsWith(QString("%1\n").arg(line)),
                 line);
    }
    QVERIFY(
        report.contains("\nprogram 33 freq 1810.0 if 1810.0 osc 0A 00000 lnb off volt 13 tone "
                        "off mode analog symbolrate 27500 chbw 36 diseqc 73 unit dBuV atten "
                        "6\n"));
    QVERIFY(report.contains("\nLOG 0001 01/03/06 08:00\n"));
}

QTEST_GUILESS_MAIN(TestCommands)
#include "commands_test.moc"
