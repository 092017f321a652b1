// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

#include "options.h"
#include "port_list.h"
#include "program_state.h"
#include "unattended.h"

namespace m47::unattended {

/// Why a program cannot begin its work.
struct StartFault {
    int status;
    QString text;
};

/// The folder that is asked for becomes that of the process and of `state`; no file that is asked
/// for may be written over. What is wrong with them, nothing where all is good.
std::optional<StartFault> take_files(ProgramState& state, const Options& options);

/// Takes over into `state` what it keeps of the command line.
void choose(ProgramState& state, const Options& options);

/// The ports of this machine, with those that were named.
link::PortList ports_of(const Options& options);

/// Measures as `options` say and writes the report of a problem where they ask for one; without
/// `database` only that. Returns the exit status.
int measure_alone(ProgramState& state, db::Database* database, const Options& options,
                  const WritePicture& write_picture);

/// Tells the faults of a checked configuration file on stderr. Returns the exit status.
int tell_faults(const Options& options);

}  // namespace m47::unattended
