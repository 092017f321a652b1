// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_state.h"

namespace m47 {

namespace {

constexpr Bilingual kSimulated{"Measured by a simulated meter: no real measurements",
                               "Misurato da uno strumento simulato: misure non reali"};
constexpr Bilingual kReplayed{"From the recording %1: not measured now",
                              "Dalla registrazione %1: misure non attuali"};
constexpr Bilingual kPerhapsSimulated{"What a simulated meter has measured may be among this",
                                      "Può contenere misure di uno strumento simulato"};
constexpr Bilingual kSimulatedMeter{"%1 (simulated, no real measurements)",
                                    "%1 (simulato, misure non reali)"};
constexpr Bilingual kReplayedMeter{"%1 (recording %2, not measured now)",
                                   "%1 (registrazione %2, misure non attuali)"};
constexpr Bilingual kSimulatedBefore{"%1 (rows of a simulated meter may be among them)",
                                     "%1 (possono esserci righe di uno strumento simulato)"};

}  // namespace

QString simulated_mark(const ProgramState& program) {
    if (!program.simulated_before) return {};
    if (program.simulated_meter && !program.replayed.isEmpty())
        return Said{kReplayed, {program.replayed}}.in(program.texts);
    return program.texts.pick(program.simulated_meter ? kSimulated : kPerhapsSimulated);
}

QString meter_text(const ProgramState& program) {
    if (!program.simulated_before) return program.meter_version;
    const bool replayed = !program.replayed.isEmpty();
    const Bilingual& now = replayed ? kReplayedMeter : kSimulatedMeter;
    const Bilingual& words = program.simulated_meter ? now : kSimulatedBefore;
    QStringList values{program.meter_version};
    if (program.simulated_meter && replayed) values += program.replayed;
    return Said{words, values}.in(program.texts);
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
