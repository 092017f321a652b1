// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_commands.h"

#include <QTest>

#include "diseqc_commands.h"
#include "meter_settings.h"

namespace m47 {

class ProgramCommandsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void an_oscillator_is_set_then_selected();
    void direct_tuning_selects_none();
    void the_supply_is_switched_then_set();
    void the_tone();
    void diseqc_commands_go_by_their_place();
    void what_the_meter_was_told_is_known_data();
    void what_the_meter_was_told_is_known();
    void another_meter_is_not_known();
};

void ProgramCommandsTest::an_oscillator_is_set_then_selected() {
    QCOMPARE(oscillator_commands(false, 0, 9750), QStringList({"LOCOSC 1 09750", "LOCOSC 1"}));
    QCOMPARE(oscillator_commands(false, 3, 10599.6), QStringList({"LOCOSC 4 10600", "LOCOSC 4"}));
    QCOMPARE(oscillator_commands(false, 0, 0), QStringList({"LOCOSC 1 00000", "LOCOSC 1"}));
}

void ProgramCommandsTest::direct_tuning_selects_none() {
    QCOMPARE(oscillator_commands(true, 2, 9750), QStringList({"LOCOSC 0"}));
}

void ProgramCommandsTest::the_supply_is_switched_then_set() {
    QCOMPARE(supply_commands(0), QStringList({"LNB 00"}));
    QCOMPARE(supply_commands(1), QStringList({"LNB 01", "LNVOLT 13"}));
    QCOMPARE(supply_commands(2), QStringList({"LNB 01", "LNVOLT 18"}));
}

void ProgramCommandsTest::the_tone() {
    QCOMPARE(tone_command(0), QStringLiteral("TONE22K 00"));
    QCOMPARE(tone_command(1), QStringLiteral("TONE22K 01"));
}

void ProgramCommandsTest::diseqc_commands_go_by_their_place() {
    QCOMPARE(diseqc_command(3), QStringLiteral("DISEQC 03"));
    QCOMPARE(diseqc_command(kDiseqcNone), QStringLiteral("DISEQC 73"));
    QCOMPARE(kDiseqcCommands[8], "SW2 ON  V");
    QCOMPARE(kDiseqcCommands[37], "Po 1-V-l LO");
    QCOMPARE(kDiseqcCommands[52], "Po 4-H-h LO");
    QCOMPARE(kDiseqcCommands[53], "Po 1-V-l LO");
    QCOMPARE(kDiseqcCommands[kDiseqcNone], "NONE");
}

void ProgramCommandsTest::what_the_meter_was_told_is_known_data() {
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("known");
    const auto add = [](const char* name, const QStringList& commands, const char* known) {
        QTest::newRow(name) << commands << QString::fromLatin1(known);
    };
    add("nothing", {}, "- - -");
    add("unit", {"UNIT 02"}, "2 - -");
    add("unit asked", {"UNIT? 1"}, "1 - -");
    add("unit of no meter", {"UNIT 02", "UNIT? 7"}, "- - -");
    add("unit that is no number", {"UNIT 02", "UNIT? x"}, "- - -");
    add("frequency", {"FREQ 1000.0", "FREQ 11778"}, "- 11778 -");
    add("frequency asked", {"FREQ? 1177.5"}, "- 1177.5 -");
    add("frequency that was lost", {"FREQ 1000.0", "FREQ?"}, "- - -");
    add("oscillator of the plan", {"LOCOSC 1 09750", "LOCOSC 1"}, "- - 9750");
    add("of two", {"LOCOSC 1 09750", "LOCOSC 2 10600", "LOCOSC 2"}, "- - 10600");
    add("of the option", {"LOCOSC 1 A 10600", "LOCOSC 1 A"}, "- - 10600");
    add("of the box", {"LOCOSC0110600", "LOCOSC01"}, "- - 10600");
    add("stored, not in use", {"LOCOSC 1 09750"}, "- - -");
    add("in use, never stored", {"LOCOSC 3"}, "- - -");
    add("none", {"LOCOSC 1 09750", "LOCOSC 1", "LOCOSC 00"}, "- - -");
    add("none, of the plan", {"LOCOSC 1 09750", "LOCOSC 1", "LOCOSC 0"}, "- - -");
}

void ProgramCommandsTest::what_the_meter_was_told_is_known() {
    QFETCH(QStringList, commands);
    MeterSettings settings;
    for (const QString& command : commands) {
        const qsizetype query = command.indexOf(u'?') + 1;
        const QString sent = query > 0 ? command.left(query) : command;
        settings.take(sent, query > 0 ? command.mid(query + 1) : QStringLiteral("OK"));
    }
    const auto text = [](auto value) {
        return value ? QString::number(*value) : QStringLiteral("-");
    };
    QTEST(text(settings.unit()) + u' ' + text(settings.frequency()) + u' ' +
              text(settings.oscillator()),
          "known");
}

void ProgramCommandsTest::another_meter_is_not_known() {
    MeterSettings settings;
    settings.take(QStringLiteral("UNIT 02"), QStringLiteral("OK"));
    settings.forget();
    QVERIFY(!settings.unit());
}

}  // namespace m47

QTEST_APPLESS_MAIN(m47::ProgramCommandsTest)
#include "program_commands_test.moc"
