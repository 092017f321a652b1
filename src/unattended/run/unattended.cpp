// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended.h"

#include "end_signals.h"
#include "enter_key.h"
#include "fault.h"
#include "plan_run.h"
#include "port_diagnosis.h"
#include "run_meter.h"
#include "run_output.h"
#include "run_panel.h"
#include "run_plan.h"
#include "run_reread.h"

namespace m47::unattended {
namespace {

/// One measurement, taken again where an answer was doubtful. False when its row is missing.
bool take_row(Run& run) {
    for (int tried = 0; tried < acquisition::PlanRun::kMostTries; ++tried) {
        run.rules->measure_once();
        if (run.rules->cycle.doubt().isEmpty()) return true;
    }
    return false;
}

void measure_rows(Run& run) {
    run.wrong_limits = !level_limits_fit(run);
    if (run.wrong_limits) return;
    print_names(run);
    realtime::RealtimeRules& rules = *run.rules;
    if (run.options.digital)
        rules.modes.digitalmode();
    else
        rules.modes.analogmode();
    set_up(run);
    if (!run.options.symbol_rate.isEmpty()) rules.panel.srqpsk_txt = run.options.symbol_rate;
    set_antenna(rules, run.options.antenna);
    if (!run.options.frequency.isEmpty()) {
        rules.panel.fsat = run.options.frequency;
        rules.tuning.fsat_KeyPress(kEnterKey);
    }
    rules.tick_measures(rules.state.meas_mode);
    for (int taken = 0; taken < run.options.count; ++taken) {
        if (!run.connection.link().port_connected || run.pointless()) return;
        run.row_missing = !take_row(run) || run.row_missing;
    }
}

void write_screenshot(Run& run) {
    const QString& name = run.options.screenshot;
    if (name.isEmpty()) return;
    const QString reason = run.write_picture(std::move(run.rules), name);
    if (reason.isEmpty()) return;
    complain(QStringLiteral("cannot write the picture %1: %2").arg(name, reason));
    run.file_lost = true;
}

/// What the meter refused until the link counted as lost; empty where it was lost otherwise.
QString refusal_of(const Run& run) {
    const QString& refused = run.connection.link().refused();
    return refused.isEmpty() ? QString()
                             : QStringLiteral(": ") + link::refusal_text(refused, run.state.texts);
}

/// A run that was told to end is good for what it has measured.
int status_of(const Run& run) {
    if (run.wrong_limits) return kUsage;
    if (!run.connection.link().port_connected) {
        tell_other_device(run);
        complain(platform::times_told_to_end() > 0
                     ? QStringLiteral("ended without a link to the meter")
                     : QStringLiteral("the link to the meter was lost") + refusal_of(run));
        return kNoLink;
    }
    if (run.file_lost || run.row_missing) return kOutputLost;
    if (run.visit.unreadable()) return kDatabase;
    if (run.rows == 0) complain(QStringLiteral("nothing was measured"));
    if (run.incomplete || run.rows == 0 || run.visit.not_compared()) return kIncomplete;
    return run.alarm_failed ? kAlarmFailed : kGood;
}

/// False, with a complaint, where nothing can be measured: `status` says why then.
bool prepare(Run& run, int& status) {
    if (!run.options.plan.isEmpty() && !plan_is_there(run)) {
        status = kDatabase;
        return false;
    }
    if (!run.visit.look_at(run.state.base_dir + QLatin1String(sites::kSitesFile))) {
        status = kDatabase;
        return false;
    }
    if (identify_meter(run)) {
        status = run.visit_refused ? kDatabase : kGood;
        return !run.visit_refused;
    }
    complain(no_meter_text(run.connection, run.options.on_port));
    status = kNoLink;
    return run.options.reconnect;
}

/// One that goes on opens its outbox again: nothing is left in another one without a word.
void end_publishing(Run& run) {
    const auto told = [] { return platform::times_told_to_end() > 1; };
    if (!run.next) return run.publishing.finish(kLongestEngineWait, told);
    const QString& folder = run.state.base_dir;
    const bool same = outbox_file(*run.next, folder) == outbox_file(run.options, folder);
    if (!same) run.publishing.finish(kLongestHandover, told);
    run.published = run.publishing.so_far(same);
}

int end_part(Run& run, RunSoFar& so_far) {
    clear_progress();
    if (!run.next) run.service.stopping();
    // One that goes on with the same site is not at its end.
    if (!run.next || run.next->visit.site != run.options.visit.site)
        run.visit.end(run.connection.link().clock().date_time());
    if (!run.next) write_screenshot(run);
    end_publishing(run);
    run.output.finish(kLongestReaderWait, [] { return platform::times_told_to_end() > 1; });
    run.file_lost = run.file_lost || run.output.lost() || run.recording.lost() ||
                    run.visit.lost() || run.publishing.lost();
    run.alarm_failed = run.alarm_failed || run.visit.worse();
    so_far = run;
    return run.next ? kGood : status_of(run);
}

}  // namespace

QString no_meter_text(const MeterConnection& connection, int number) {
    const QString reason = connection.fault();
    return reason.isEmpty() ? QStringLiteral("no meter answers on port %1").arg(number) : reason;
}

int run_part(ProgramState& state, db::Database& database, MeterConnection& connection,
             const Options& options, const WritePicture& write_picture, RunSoFar& so_far) {
    state.texts.language = kEnglish;
    Run run(so_far, state, connection, options, write_picture);
    run.rules = std::make_unique<realtime::RealtimeRules>(connection.link(), state, database);
    stop_when_told(run, 1);
    connection.link().cut_off = [] { return platform::times_told_to_end() > 1; };
    platform::let_hangups_ask(rereads(run));
    // Whoever watches was told so before and goes on watching.
    if (run.parts++ > 0) run.service.ready();
    listen_to_rules(run);
    tell_rounded(options);
    record_line(run);
    run.publishing.open(connection.link().clock(), state.base_dir);
    run.publishing.go_on(std::exchange(run.published, {}));
    try {
        int status = kGood;
        if (!prepare(run, status)) {
            run.next.reset();
            end_publishing(run);
            return status;
        }
        if (options.plan.isEmpty())
            measure_rows(run);
        else
            measure_plan(run);
    } catch (const Interrupted&) {
        // The rows that were printed stand; a measurement that was not finished is none.
        run.next.reset();
    } catch (const Fault& fault) {
        complain(fault.text(state.texts));
        run.visit.end(connection.link().clock().date_time());
        run.next.reset();
        end_publishing(run);
        return kDatabase;
    }
    return end_part(run, so_far);
}

int run_unattended(ProgramState& state, db::Database& database, MeterConnection& connection,
                   const Options& options, const WritePicture& write_picture) {
    RunSoFar so_far;
    return run_part(state, database, connection, options, write_picture, so_far);
}

}  // namespace m47::unattended
