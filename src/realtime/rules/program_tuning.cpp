// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_tuning.h"

#include <algorithm>

#include "diseqc_commands.h"
#include "fault.h"
#include "numbers.h"
#include "program_commands.h"
#include "tuning_range.h"

namespace m47 {
namespace {

constexpr Bilingual kNotMeasured{
    "Program %1 was not measured: oscillator %2 of the plan is not set",
    "Il programma %1 non è stato misurato: l'oscillatore %2 del piano non è impostato"};

/// A whole number of the database; unset is 0, and nothing is too long for an int.
int stored_number(const Recordset& set, const char* field) {
    return static_cast<int>(std::clamp(typed_value(set.text(QLatin1String(field))), -1e6, 1e6));
}

}  // namespace

const Recordset& ProgramTuning::row() const {
    if (!modes_.rs_programs) throw Fault("no plan is open");
    return *modes_.rs_programs;
}

bool ProgramTuning::direct() const {
    return stored_number(row(), "loc_osc") != 0;
}

int ProgramTuning::oscillator() const {
    return oscillator_entry(stored_number(row(), "loc_osc0"));
}

bool ProgramTuning::possible() const {
    if (direct()) return true;
    const double mhz = typed_value(modes_.oscillator_of_plan(oscillator()));
    return mhz >= kOscillatorMinimum && mhz <= kOscillatorMaximum;
}

QString ProgramTuning::reason() const {
    const QString number = row().text(QStringLiteral("pg_num")).trimmed();
    return program_.texts.pick(kNotMeasured).arg(number).arg(oscillator() + 1);
}

QStringList ProgramTuning::diseqc() const {
    QStringList commands;
    for (const char* name : {"diseqc_cmd", "diseqc_cmd2"}) {
        const QVariant entry = row().value(QLatin1String(name));
        if (!entry.isNull() && entry.toInt() != kDiseqcNone)
            commands += diseqc_command(entry.toInt());
    }
    return commands;
}

void ProgramTuning::tune_everything() {
    const QString mhz = direct() ? QString() : modes_.oscillator_of_plan(oscillator());
    if (!direct()) panel_.ol_freq = mhz;
    modes_.recall_bandwidth();
    QStringList commands = oscillator_commands(direct(), oscillator(), typed_value(mhz));
    commands += supply_commands(stored_number(row(), "lnb_volt"));
    commands += tone_command(stored_number(row(), "K22"));
    commands += diseqc();
    for (const QString& command : std::as_const(commands)) link_.send(command);
}

}  // namespace m47
