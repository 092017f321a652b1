// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_plan.h"

#include <algorithm>

#include "end_signals.h"
#include "plan_run.h"
#include "resident_memory.h"
#include "run_meter.h"
#include "run_output.h"
#include "run_panel.h"
#include "run_reread.h"

namespace m47::unattended {
namespace {

/// Behind so many passes all that only a start needs has been done, the first delivery too.
constexpr int kPassesOfTheStart = 2;

/// Takes over what a run over a plan came to, also where a second signal broke it off.
struct KeepOutcome {
    Run& run;
    const acquisition::PlanRun& plan_run;
    ~KeepOutcome() {
        run.incomplete = plan_run.incomplete() || run.incomplete;
        run.row_missing = plan_run.missing() > 0 || run.row_missing;
    }
};

}  // namespace

bool plan_is_there(Run& run) {
    realtime::PlanWalk& plans = run.rules->plans;
    const QString name = run.options.plan.trimmed().toUpper();
    if (!plans.choose_plan(name)) {
        complain(kNoPlan.arg(name));
        return false;
    }
    if (plans.monitored_programs() > 0) return true;
    complain(kNothingMonitored.arg(name));
    return false;
}

void measure_plan(Run& run) {
    print_names(run);
    set_up(run);
    for (const int mode : {realtime::kAnalogMode, realtime::kDigitalMode})
        run.rules->tick_measures(mode);
    // Told to end once, the running measurement is finished; told twice, not even that.
    stop_when_told(run, 2);
    run.service.ready();
    acquisition::PlanRun plan_run(run.connection.link(), *run.rules,
                                  {.passes = run.options.passes,
                                   .every = run.options.every,
                                   .reconnect = run.options.reconnect});
    plan_run.told_to_stop = [&run] {
        run.service.alive();
        return platform::times_told_to_end() > 0 || run.pointless();
    };
    if (rereads(run)) plan_run.told_to_pause = [&run] { return read_again(run); };
    plan_run.connect = [&run] { return connect_again(run); };
    plan_run.on_progress = [&run](const QString& text) {
        show_progress(text);
        run.service.status(text);
    };
    plan_run.on_remark = [&run](const QString& text) {
        complain(text);
        run.service.status(text, true);
    };
    plan_run.pass_time = [&run](double seconds) { run.publishing.pass_time(seconds); };
    plan_run.on_pass = [&run, starting = kPassesOfTheStart](double seconds) mutable {
        run.publishing.pass_ended(seconds);
        if (starting > 0) platform::give_back_code();
        starting = std::max(0, starting - 1);
    };
    const KeepOutcome outcome{run, plan_run};
    // How it ended shows in the link, the signals and the rows; see status_of().
    static_cast<void>(plan_run.run());
}

}  // namespace m47::unattended
