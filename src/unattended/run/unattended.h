// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "database.h"
#include "exit_status.h"
#include "meter_connection.h"
#include "options.h"
#include "publishing.h"
#include "realtime_rules.h"

namespace m47::unattended {

/// Why no meter answers on port `number`, for whoever reads what a run says.
QString no_meter_text(const MeterConnection& connection, int number);

/// What --screenshot asks for: writes a picture of the real-time screen as it would show the rules
/// into a file. Why there is none; empty when it was written.
using WritePicture =
    std::function<QString(std::unique_ptr<realtime::RealtimeRules> rules, const QString& file)>;

/// What a run has come to so far: one whose configuration was read again goes on with it.
struct RunSoFar {
    int rows = 0;
    int parts = 0;  ///< readings of the configuration, the first included
    int asked = 0;  ///< how often it had been asked for at the last of them
    bool names_printed = false;
    bool incomplete = false;  ///< a pass was cut short or measured nothing
    bool alarm_failed = false;
    bool file_lost = false;
    bool row_missing = false;
    PublishedSoFar published{};
    /// The run ended between two passes to go on with these; nothing: it is at its end.
    std::optional<Options> next{};
};

/// Measures without a window: connects, runs the rules that the buttons run and prints each row of
/// the page on stdout as it comes. SIGINT, SIGTERM and SIGHUP end it after the running transaction.
/// Returns the exit status. With a configuration file and a plan SIGHUP has that read again between
/// two passes: `so_far.next` then says how to go on, and what is returned means nothing.
int run_part(ProgramState& state, db::Database& database, MeterConnection& connection,
             const Options& options, const WritePicture& write_picture, RunSoFar& so_far);

/// A run that nobody has read the configuration of again.
int run_unattended(ProgramState& state, db::Database& database, MeterConnection& connection,
                   const Options& options, const WritePicture& write_picture = {});

}  // namespace m47::unattended
