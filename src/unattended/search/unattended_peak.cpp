// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_peak.h"

#include <cmath>

#include "commands.h"
#include "end_signals.h"
#include "fault.h"
#include "line_recording.h"
#include "numbers.h"
#include "peak_table.h"
#include "row_output.h"
#include "say_on_stderr.h"
#include "set_back.h"
#include "standard_streams.h"
#include "unattended.h"

namespace m47::unattended {
namespace {

struct PeakedRun {
    const Texts& texts;
    MeterConnection& connection;
    const Options& options;
    band::MeterLevels levels{connection.link()};
    RowOutput output{platform::kStandardOutput};
    LineRecording recording{connection.recorder(), texts};
    peak::PeakOutcome outcome{};
    bool not_set_back = false;
};

/// The intermediate frequency of what was asked for, as the meter is told it.
QString tuning_of(const Options& options) {
    const double mhz = link::typed_value(options.frequency);
    const double tuned = std::abs(mhz - options.antenna.oscillator.value_or(0));
    return link::command::kFrequency + u' ' + link::format_number(tuned, "0000.0");
}

void search_peak(PeakedRun& run) {
    link::Link& link = run.connection.link();
    run.levels.prepare(feed_of(run.options.antenna));
    run.output.write(peak::peak_header());
    peak::SearchOptions options;
    options.span = *run.options.peak_span;
    peak::PeakRun search(link, options, {tuning_of(run.options)});
    search.cancelled = [&run] { return run.output.closed(); };
    search.on_reading = [&run, &link](const peak::Taken& taken) {
        run.output.write(peak::peak_line(taken, measurement::unit_of_index(link.settings.unit())));
    };
    run.outcome = search.run();
    // All of the meter is set back behind it, told together.
    run.outcome.attenuator_back = true;
    const QByteArray gain = peak::gain_line(run.outcome);
    if (!gain.isEmpty()) run.output.write(gain);
}

/// A signal in the preparation ends it like one in the search: nothing has moved.
void search_until_told(PeakedRun& run) {
    try {
        search_peak(run);
    } catch (const Interrupted&) {
        run.outcome.linked = run.connection.link().port_connected;
        run.outcome.motor_stopped = true;
    }
}

/// One line about how it ended, where the dish is not on a peak or the meter not as it was.
void tell_end(PeakedRun& run) {
    const QString left = set_meter_back(run.levels, run.texts);
    run.not_set_back = !left.isEmpty();
    const bool good = run.outcome.search.end == peak::SearchEnd::found && run.outcome.linked &&
                      run.outcome.motor_stopped;
    QString said = good ? QString() : peak::end_sentence(run.outcome, run.texts);
    if (!said.isEmpty() && run.not_set_back) said.replace(said.size() - 1, 1, QStringLiteral("; "));
    said += left;
    if (!said.isEmpty()) say_of_run(said);
}

int status_of(const PeakedRun& run) {
    if (!run.connection.link().port_connected) return kNoLink;
    if (run.output.lost() || run.recording.lost()) return kOutputLost;
    const bool found = run.outcome.search.end == peak::SearchEnd::found;
    return found && run.outcome.motor_stopped && !run.not_set_back ? kGood : kIncomplete;
}

}  // namespace

int run_peak(Texts& texts, MeterConnection& connection, const Options& options) {
    begin_run(texts, connection);
    PeakedRun run{texts, connection, options};
    run.recording.on_lost = say_of_run;
    if (!options.trace.isEmpty()) run.recording.start(options.trace);
    run.output.on_remark = say_of_run;
    try {
        if (!meter_answers(connection, options.on_port)) return kNoLink;
        search_until_told(run);
        tell_end(run);
    } catch (const Interrupted&) {
        say_of_run(QStringLiteral("ended without a link to the meter"));
        return kNoLink;
    }
    run.output.finish(kLongestReaderWait, [] { return platform::times_told_to_end() > 1; });
    return status_of(run);
}

}  // namespace m47::unattended
