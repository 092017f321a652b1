// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_commands.h"

#include <QTest>

#include "diseqc_commands.h"

namespace m47 {

class ProgramCommandsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void an_oscillator_is_set_then_selected();
    void direct_tuning_selects_none();
    void the_supply_is_switched_then_set();
    void the_tone();
    void diseqc_commands_go_by_their_place();
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

}  // namespace m47

QTEST_APPLESS_MAIN(m47::ProgramCommandsTest)
#include "program_commands_test.moc"
