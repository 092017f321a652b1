// SPDX-License-Identifier: GPL-3.0-or-later
#include "problem_option.h"

#include "end_signals.h"
#include "fault.h"
#include "problem_report.h"
#include "say_on_stderr.h"
#include "unattended.h"

namespace m47::unattended {
namespace {

constexpr Bilingual kReportLost{"the report %1 could not be written: %2",
                                "la segnalazione %1 non è stata scritta: %2"};

void look_for_meter(MeterConnection& connection, int port) {
    connection.link().interrupted = [] { return platform::times_told_to_end() > 0; };
    connection.link().cut_off = connection.link().interrupted;
    try {
        connection.identify(port);
    } catch (const Interrupted&) {
        // The report says as much as is known.
    }
}

}  // namespace

int report_problem(ProgramState& state, MeterConnection& connection, const Options& options,
                   int status) {
    if (options.problem_report.isEmpty()) return status;
    if (!options.measure && options.on_port > 0) look_for_meter(connection, options.on_port);
    // They are not kept to without windows, but may be what is wrong with these.
    state.preferences = Preferences(Preferences::usual_file());
    const QString reason = write_problem_report(
        options.problem_report, problem_items(state, connection, options.trace, Person::here()),
        state.texts);
    if (reason.isEmpty()) return status;
    say_on_stderr(Said{kReportLost, {options.problem_report, reason}}.in(state.texts),
                  Subsystem::kFiles);
    return status == kGood ? kOutputLost : status;
}

}  // namespace m47::unattended
