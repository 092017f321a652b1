// SPDX-License-Identifier: GPL-3.0-or-later
#include "alone.h"

#include <QDir>
#include <utility>

#include "file_options.h"
#include "meter_connection.h"
#include "no_view.h"
#include "problem_option.h"
#include "real_clock.h"
#include "real_port.h"
#include "say_on_stderr.h"
#include "system_time.h"
#include "work_folder.h"

namespace m47::unattended {
namespace {

constexpr Bilingual kNoFolder{"Cannot work in the folder %1.",
                              "Non si può lavorare nella cartella %1."};

int measure_part(ProgramState& state, db::Database* database, const Options& options,
                 const WritePicture& write_picture, RunSoFar& so_far) {
    NoView view;
    MeterConnection connection(state, ports_of(options),
                               std::make_unique<link::RealClock>(platform::local_time_of_day),
                               std::make_unique<link::RealPort>(), view, view);
    const int status =
        database ? run_part(state, *database, connection, options, write_picture, so_far) : kGood;
    return so_far.next ? status : report_problem(state, connection, options, status);
}

}  // namespace

std::optional<StartFault> take_files(ProgramState& state, const Options& options) {
    if (!enter_folder(options))
        return StartFault{kDatabase, state.texts.pick(kNoFolder).arg(asked_folder(options))};
    work_in(QDir::currentPath(), state);
    const QString wrong_file = file_option_fault(options, state.base_dir);
    if (wrong_file.isEmpty()) return std::nullopt;
    return StartFault{kUsage, wrong_file};
}

void choose(ProgramState& state, const Options& options) {
    if (options.corrected) choose_all(state.corrected, true);
    if (options.full_tune) state.corrected.full_tune = true;
    if (options.confirm) state.corrected.ask_twice = true;
}

link::PortList ports_of(const Options& options) {
    link::PortList ports;
    for (const QString& entry : options.ports) ports.add(entry);
    return ports;
}

int measure_alone(ProgramState& state, db::Database* database, const Options& options,
                  const WritePicture& write_picture) {
    RunSoFar so_far;
    Options present = options;
    for (;;) {
        const int status = measure_part(state, database, present, write_picture, so_far);
        if (!so_far.next) return status;
        present = *std::exchange(so_far.next, std::nullopt);
        state.corrected = {};
        choose(state, present);
    }
}

int tell_faults(const Options& options) {
    for (const QString& fault : options.faults) say_on_stderr(fault, Subsystem::kStart);
    return options.faults.isEmpty() ? kGood : 1;
}

}  // namespace m47::unattended
