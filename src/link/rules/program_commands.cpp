// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_commands.h"

#include "commands.h"
#include "numbers.h"

namespace m47 {

QStringList oscillator_commands(bool direct, int loc_osc0, double mhz) {
    if (direct) return {command::kOscillator + QStringLiteral(" 0")};
    const QString number = command::kOscillator + format_number(loc_osc0 + 1, " 0");
    return {number + format_number(mhz, " 00000"), number};
}

QStringList supply_commands(int lnb_volt) {
    if (lnb_volt == 0) return {command::kSupplyOff};
    QStringList commands{command::kSupplyOn};
    if (lnb_volt == 1) commands.append(command::kSupplyVoltage + QStringLiteral(" 13"));
    if (lnb_volt == 2) commands.append(command::kSupplyVoltage + QStringLiteral(" 18"));
    return commands;
}

QString tone_command(int k22) {
    return command::kTone + format_number(k22, " 00");
}

QString diseqc_command(int index) {
    return command::kDiseqc + format_number(index, " 00");
}

}  // namespace m47
