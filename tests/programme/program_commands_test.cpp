// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_commands.h"

#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

#include "db_support.h"
#include "diseqc_commands.h"
#include "sample_programs.h"

namespace m47::programme {

class ProgramCommandsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale::c()); }

    void an_oscillator_is_set_then_selected();
    void direct_tuning_selects_none();
    void the_supply_is_switched_then_set();
    void the_tone();
    void diseqc_commands_go_by_their_place();
    void a_program_tuned_directly();
    void a_program_through_an_oscillator();
    void the_first_oscillator_has_number_one();
    void an_oscillator_entry_that_is_not_there_counts_as_the_first();
    void thirteen_volts_and_no_tone();
    void a_frequency_goes_out_with_a_full_stop_and_one_decimal();
    void empty_fields_go_out_as_zero();
    void an_active_program_without_a_position_takes_line_0();
    void a_row_switches_what_it_says();
    void a_row_tuned_directly_needs_no_oscillator();
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

void ProgramCommandsTest::a_program_tuned_directly() {
    QCOMPARE(commands_of_program(direct_program(), kKu), kDirectCommands);
}

void ProgramCommandsTest::a_program_through_an_oscillator() {
    QCOMPARE(commands_of_program(digital_program(), kKu), kDigitalCommands);
}

void ProgramCommandsTest::the_first_oscillator_has_number_one() {
    ProgramRecord program = digital_program();
    program.loc_osc0 = 0;
    QCOMPARE(commands_of_program(program, kKu).mid(1, 2),
             QStringList({"LOCOSC 1 09750", "LOCOSC 1"}));
}

void ProgramCommandsTest::an_oscillator_entry_that_is_not_there_counts_as_the_first() {
    ProgramRecord program = digital_program();
    for (const int none : {-1, 4, 7}) {
        program.loc_osc0 = none;
        QCOMPARE(commands_of_program(program, kKu).mid(1, 2),
                 QStringList({"LOCOSC 1 09750", "LOCOSC 1"}));
    }
}

void ProgramCommandsTest::thirteen_volts_and_no_tone() {
    ProgramRecord program = digital_program();
    program.lnb_volt = 1;
    program.K22 = 0;
    QCOMPARE(commands_of_program(program, kKu).mid(7),
             QStringList(
                 {"LNB 01", "LNVOLT 13", "TONE22K 00", "STORE", "LNB 00", "DATAPROGRAM 04 08 01"}));
}

void ProgramCommandsTest::a_frequency_goes_out_with_a_full_stop_and_one_decimal() {
    QLocale::setDefault(QLocale(QLocale::Italian));
    ProgramRecord program = direct_program();
    program.frequenza = QStringLiteral("503.25");
    QCOMPARE(commands_of_program(program, kKu)[2], QStringLiteral("FREQ 0503.3"));
    program.frequenza = QStringLiteral("503,2");
    QCOMPARE(commands_of_program(program, kKu)[2], QStringLiteral("FREQ 0503.2"));
}

void ProgramCommandsTest::empty_fields_go_out_as_zero() {
    QCOMPARE(commands_of_program(ProgramRecord(), Oscillators()),
             QStringList({"PROGRAM 00", "LOCOSC 1 00000", "LOCOSC 1", "FREQ 00000", "MARKER 1 0",
                          "DISEQC 00", "LNB 00", "TONE22K 00", "STORE"}));
}

void ProgramCommandsTest::an_active_program_without_a_position_takes_line_0() {
    ProgramRecord program = digital_program();
    program.logger_pos.clear();
    QCOMPARE(commands_of_program(program, kKu).constLast(), QStringLiteral("DATAPROGRAM 00 08 01"));
}

/// The one row of a new plan, with `program` stored in it.
class StoredRow {
  public:
    explicit StoredRow(const ProgramRecord& program)
        : database_(db::made_in(folder_.path())), set_(database_->programmi()) {
        set_.move_first();
        set_.edit();
        write_program(set_, program);
        set_.update();
        set_.move_first();
    }
    ProgramRow row() const { return ProgramRow(set_); }

  private:
    QTemporaryDir folder_;
    std::unique_ptr<db::Database> database_;
    db::Recordset set_;
};

void ProgramCommandsTest::a_row_switches_what_it_says() {
    ProgramRecord program = digital_program();
    program.diseqc_cmd2 = kDiseqcNone;
    const QStringList commands{"LOCOSC 2 10600", "LOCOSC 2",   "LNB 01",
                               "LNVOLT 18",      "TONE22K 01", "DISEQC 05"};
    QCOMPARE(switching_commands(StoredRow(program).row(), kKu), commands);
    program.diseqc_cmd2 = 0;
    QCOMPARE(switching_commands(StoredRow(program).row(), kKu),
             commands + QStringList{"DISEQC 00"});
}

void ProgramCommandsTest::a_row_tuned_directly_needs_no_oscillator() {
    ProgramRecord program = direct_program();
    program.diseqc_cmd2 = kDiseqcNone;
    QCOMPARE(switching_commands(StoredRow(program).row(), Oscillators()),
             QStringList({"LOCOSC 0", "LNB 00", "TONE22K 00"}));
}

}  // namespace m47::programme

M47_DB_TEST_MAIN(m47::programme::ProgramCommandsTest)
#include "program_commands_test.moc"
