// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_tuning.h"

#include "fault.h"
#include "numbers.h"
#include "program_commands.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kNotMeasured{
    "Program %1 was not measured: oscillator %2 of the plan is not set",
    "Il programma %1 non è stato misurato: l'oscillatore %2 del piano non è impostato"};

}  // namespace

programme::ProgramRow ProgramTuning::row() const {
    if (!modes_.rs_programs) throw Fault("no plan is open");
    return programme::ProgramRow(*modes_.rs_programs);
}

int ProgramTuning::oscillator() const {
    return row().oscillator().value_or(0);
}

QString ProgramTuning::oscillator_text() const {
    return modes_.oscillators_of_plan()[static_cast<std::size_t>(oscillator())];
}

bool ProgramTuning::possible() const {
    return row().direct() || programme::is_oscillator(link::typed_value(oscillator_text()));
}

QString ProgramTuning::reason() const {
    return program_.texts.pick(kNotMeasured).arg(row().pg_num()).arg(oscillator() + 1);
}

QStringList ProgramTuning::antenna() const {
    const programme::ProgramRow program = row();
    return programme::switching_commands(
        program, program.direct() ? programme::Oscillators() : modes_.oscillators_of_plan());
}

void ProgramTuning::tune_everything() {
    if (!row().direct()) panel_.ol_freq = oscillator_text();
    modes_.recall_bandwidth();
    const QStringList commands = antenna();
    for (const QString& command : commands) link_.send(command);
}

}  // namespace m47::realtime
