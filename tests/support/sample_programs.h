// SPDX-License-Identifier: GPL-3.0-or-later
// Two programs of a plan, its oscillators and what is sent to store them in the meter.
#pragma once

#include <QStringList>

#include "program_record.h"

namespace m47 {

inline programme::ProgramRecord direct_program() {
    programme::ProgramRecord program;
    program.pg_num = QStringLiteral("007");
    program.frequenza = QStringLiteral("1234.5");
    program.loc_osc = true;
    program.satchbw = QStringLiteral("36");
    program.diseqc_cmd = 73;
    program.logger_pos = QStringLiteral("03");
    return program;
}

inline programme::ProgramRecord digital_program() {
    programme::ProgramRecord program = direct_program();
    program.pg_num = QStringLiteral("008");
    program.frequenza = QStringLiteral("11778");
    program.loc_osc = false;
    program.loc_osc0 = 1;
    program.sat_ad = true;
    program.qpsk_symbolrate = QStringLiteral("27500");
    program.diseqc_cmd = 5;
    program.lnb_volt = 2;
    program.K22 = 1;
    program.logger_pos = QStringLiteral("04");
    program.logger_state = true;
    return program;
}

inline const programme::Oscillators kKu{QStringLiteral("9750"), QStringLiteral("10600"), QString(),
                                        QString()};
inline const QStringList kDigitalCommands{
    "PROGRAM 08", "LOCOSC 2 10600",      "LOCOSC 2",  "FREQ 11778",
    "MARKER 1 1", "SYMBRATEQPSK 27500",  "DISEQC 05", "LNB 01",
    "LNVOLT 18",  "TONE22K 01",          "STORE",     "LNB 00",
    "TONE22K 00", "DATAPROGRAM 04 08 01"};
inline const QStringList kDirectCommands{"PROGRAM 07", "LOCOSC 0", "FREQ 1234.5", "MARKER 1 0",
                                         "DISEQC 73",  "LNB 00",   "TONE22K 00",  "STORE"};

}  // namespace m47
