// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_peak.h"

#include <cmath>

#include "commands.h"
#include "exit_status.h"
#include "fault.h"
#include "numbers.h"
#include "peak_table.h"
#include "say_on_stderr.h"
#include "set_back.h"
#include "unattended_search.h"

namespace m47::unattended {
namespace {

struct PeakedRun {
    UnattendedSearch& search;
    band::MeterLevels levels{search.link()};
    peak::PeakOutcome outcome{};
    bool not_set_back = false;
};

/// The intermediate frequency of what was asked for, as the meter is told it.
QString tuning_of(const Options& options) {
    const double mhz = link::typed_value(options.frequency);
    const double tuned = std::abs(mhz - options.antenna.oscillator.value_or(0));
    return link::command::kFrequency + u' ' + link::format_number(tuned, "0000.0");
}

/// Without its symbol rate a carrier does not lock, and its level is followed instead of the MER.
void send_symbol_rate(PeakedRun& run) {
    const QString& asked = run.search.options.symbol_rate;
    if (asked.isEmpty()) return;
    const auto rate = static_cast<int>(std::lround(link::typed_value(asked)));
    if (!run.levels.change_symbol_rate(rate) && !run.levels.lost())
        say_of_run(QStringLiteral("the meter has not taken the symbol rate %1 kS/s").arg(rate));
}

void search_peak(PeakedRun& run) {
    link::Link& link = run.search.link();
    run.levels.prepare(feed_of(run.search.options.antenna));
    send_symbol_rate(run);
    run.search.output.write(peak::peak_header());
    peak::SearchOptions options;
    options.span = *run.search.options.peak_span;
    peak::PeakRun search(link, options, {tuning_of(run.search.options)});
    search.cancelled = [&run] { return run.search.output.closed(); };
    search.on_reading = [&run, &link](const peak::Taken& taken) {
        run.search.output.write(
            peak::peak_line(taken, measurement::unit_of_index(link.settings.unit())));
    };
    run.outcome = search.run();
    // All of the meter is set back behind it, told together.
    run.outcome.attenuator_back = true;
    const QByteArray gain = peak::gain_line(run.outcome);
    if (!gain.isEmpty()) run.search.output.write(gain);
}

/// A signal in the preparation ends it like one in the search: nothing has moved.
void search_until_told(PeakedRun& run) {
    try {
        search_peak(run);
    } catch (const Interrupted&) {
        run.outcome.linked = run.search.link().port_connected;
        run.outcome.motor_stopped = true;
    }
}

/// One line about how it ended, where the dish is not on a peak or the meter not as it was.
void tell_end(PeakedRun& run) {
    const bool told = !run.outcome.linked && !run.outcome.came_to_its_end();
    const QString left = set_meter_back(run.levels, run.search.texts, told);
    run.not_set_back = !left.isEmpty();
    const bool good = run.outcome.search.end == peak::SearchEnd::found && run.outcome.linked &&
                      run.outcome.motor_stopped;
    QString said = good ? QString() : peak::end_sentence(run.outcome, run.search.texts);
    if (!said.isEmpty() && run.not_set_back) said.replace(said.size() - 1, 1, QStringLiteral("; "));
    said += left;
    if (!said.isEmpty()) say_of_run(said);
}

int status_of(const PeakedRun& run) {
    if (!run.search.link().port_connected) return kNoLink;
    if (run.search.output_lost()) return kOutputLost;
    const bool found = run.outcome.search.end == peak::SearchEnd::found;
    return found && run.outcome.motor_stopped && !run.not_set_back ? kGood : kIncomplete;
}

}  // namespace

int run_peak(Texts& texts, MeterConnection& connection, const Options& options) {
    UnattendedSearch search(texts, connection, options);
    search.record();
    PeakedRun run{search};
    const auto peak = [&run] {
        search_until_told(run);
        tell_end(run);
    };
    return search.run(peak, [&run] { return status_of(run); });
}

}  // namespace m47::unattended
