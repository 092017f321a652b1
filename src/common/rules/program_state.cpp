// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_state.h"

namespace m47 {

namespace {

constexpr Bilingual kSimulated{"Measured by a simulated meter: no real measurements",
                               "Misurato da uno strumento simulato: misure non reali"};
constexpr Bilingual kPerhapsSimulated{"What a simulated meter has measured may be among this",
                                      "Può contenere misure di uno strumento simulato"};

}  // namespace

QString simulated_mark(const ProgramState& program) {
    if (!program.simulated_before) return {};
    return program.texts.pick(program.simulated_meter ? kSimulated : kPerhapsSimulated);
}

QString folder_with_separator(const QString& folder) {
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

QString unit_name(int unit) {
    if (unit == kDbmv) return QStringLiteral("dBmV");
    return unit == kDbm ? QStringLiteral("dBm") : QStringLiteral("dBuV");
}

double unit_offset(int unit) {
    switch (unit) {
        case kDbmv:
            return 60;
        case kDbm:
            return 109;
        default:
            return 0;
    }
}

}  // namespace m47
