// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "database.h"
#include "exit_status.h"
#include "meter_connection.h"
#include "options.h"
#include "realtime_rules.h"

namespace m47::unattended {

/// Why no meter answers on port `number`, for whoever reads what a run says.
QString no_meter_text(const MeterConnection& connection, int number);

/// Writes a picture of the real-time screen as it would show the rules into a file. Why there is
/// none; empty when it was written.
using WritePicture =
    std::function<QString(std::unique_ptr<realtime::RealtimeRules> rules, const QString& file)>;

/// Measures without a window: connects, runs the rules that the buttons run and prints each row of
/// the page on stdout as it comes. SIGINT, SIGTERM and SIGHUP end it after the running transaction.
/// `write_picture` is asked for what --screenshot names. Returns the exit status.
int run_unattended(ProgramState& state, db::Database& database, MeterConnection& connection,
                   const Options& options, const WritePicture& write_picture);

}  // namespace m47::unattended
