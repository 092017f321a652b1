// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_output.h"

#include <utility>

namespace m47::unattended {
namespace {

void print_row(Run& run, const QStringList& row) {
    if (platform::is_terminal(platform::kStandardOutput)) clear_progress();
    ++run.rows;
    if (!run.options.format) {
        run.output.write(row.join(run.rules->state.field_separator).toUtf8() + '\n');
        return;
    }
    const int offset = run.connection.link().clock().date_time().offsetFromUtc();
    run.output.write(measurement::output_line(*run.options.format, run.measured, offset));
}

void tell_log(Run& run, const QString& reason) {
    if (reason.isEmpty()) return;
    // Told once: a full disk must not bury the rows under its complaints.
    if (!run.file_lost)
        complain(QStringLiteral("the log %1 is not complete: %2").arg(run.options.log, reason));
    run.file_lost = true;
}

/// Each time, with the frequency: the row may come yet.
void tell_doubt(const Run& run, const QString& command) {
    complain(QStringLiteral("no row at %1 MHz: the answer to %2 came late or was spoilt")
                 .arg(run.rules->panel.fsat, command));
}

/// What outlives the run as a number, in an engine or with a visit, is to have the right unit.
measurement::Measurement with_its_unit(const Run& run, measurement::Measurement measurement) {
    if (run.unit_unknown) measurement.unit.reset();
    return measurement;
}

}  // namespace

void print_names(Run& run) {
    if (!run.options.format || std::exchange(run.names_printed, true)) return;
    const QByteArray names = measurement::output_header(*run.options.format);
    if (!names.isEmpty()) run.output.write(names);
}

void listen_to_rules(Run& run) {
    run.output.on_remark = complain;
    run.visit.on_remark = complain;
    run.publishing.on_remark = complain;
    run.unit.on_remark = complain;
    realtime::MeasureCycle& cycle = run.rules->cycle;
    cycle.on_row = [&run](const QStringList& row) { print_row(run, row); };
    cycle.before_row = [&run](const measurement::Measurement& measurement, std::string_view line,
                              const QDateTime& moment) {
        const bool lasts = run.publishing.wanted() || run.visit.wanted();
        run.unit_unknown = lasts && run.unit.has_strayed();
        run.publishing.before_row(with_its_unit(run, measurement), line, moment);
    };
    cycle.on_measured = [&run](const measurement::Measurement& measurement) {
        run.publishing.after_row();
        run.measured = with_its_unit(run, measurement);
        run.visit.take(run.measured, run.connection.link().clock().date_time().offsetFromUtc());
        if (measurement.verdict == measurement::Verdict::fail) run.alarm_failed = true;
    };
    cycle.on_log_written = [&run](const QString& reason) { tell_log(run, reason); };
    cycle.on_doubt = [&run](const QString& command) {
        run.publishing.taken_again();
        tell_doubt(run, command);
    };
    run.state.costs.on_cost = [&state = run.state](const Bilingual& text) {
        complain(state.texts.pick(text));
    };
}

void record_line(Run& run) {
    run.recording.on_lost = complain;
    if (!run.options.trace.isEmpty()) run.recording.start(run.options.trace);
}

}  // namespace m47::unattended
