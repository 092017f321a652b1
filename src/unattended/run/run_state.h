// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "line_recording.h"
#include "measurement.h"
#include "publishing.h"
#include "realtime_rules.h"
#include "row_output.h"
#include "service_notes.h"
#include "standard_streams.h"
#include "unattended.h"
#include "unattended_visit.h"
#include "unit_guard.h"

namespace m47::unattended {

/// One line on stderr, whatever `text` is made of; the line that tells how far the run is goes
/// first.
void complain(const QString& text);

/// Shows on a terminal how far the run is, and takes that away.
void show_progress(const QString& text);
void clear_progress();

/// A run over the line, or a part of one, with all that it works with.
struct Run : RunSoFar {
    Run(const RunSoFar& before, ProgramState& of_program, MeterConnection& way,
        const Options& of_options, const WritePicture& picture)
        : RunSoFar(before),
          state(of_program),
          connection(way),
          options(of_options),
          write_picture(picture) {}

    ProgramState& state;
    MeterConnection& connection;
    const Options& options;
    const WritePicture& write_picture;
    std::unique_ptr<realtime::RealtimeRules> rules;
    RowOutput output{platform::kStandardOutput};
    LineRecording recording{connection.recorder(), state.texts};
    UnattendedVisit visit{options.visit, state.texts};
    ServiceNotes service{connection.link().clock(), ServiceNotes::found()};
    Publishing publishing{options, state.texts};
    UnitGuard unit{connection.link()};
    measurement::Measurement measured{};  ///< of the row that comes next
    bool unit_unknown = false;            ///< that of the row that comes next
    bool link_found = false;              ///< the meter has answered once
    bool wrong_limits = false;
    bool visit_refused = false;  ///< it could not be begun

    /// Nobody gets to see another row.
    bool pointless() const { return output.closed() && options.log.isEmpty(); }
};

}  // namespace m47::unattended
