// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_meter.h"

#include "commands.h"
#include "end_signals.h"
#include "fault.h"

namespace m47::unattended {
namespace {

/// Prepares the meter and the panel, as opening the screen does. A signal in it ends the part that
/// runs; the run ends with the next command.
void prepare_meter(Run& run) {
    for (const auto part : {&realtime::Modes::Form_Load, &realtime::Modes::Form_Activate}) {
        try {
            (run.rules->modes.*part)();
        } catch (const Interrupted&) {
            continue;
        }
    }
}

/// What the meter says of itself is part of the visit.
bool begin_visit(Run& run) {
    if (!run.visit.wanted()) return true;
    link::Link& link = run.connection.link();
    const QString logo = link.ask(link::command::query(link::command::kLogo)).value_or(QString());
    return run.visit.begin({.instrument = run.state.meter_version,
                            .logo = logo,
                            .plan = run.options.plan.trimmed().toUpper()},
                           link.clock().date_time());
}

}  // namespace

void tell_other_device(const Run& run) {
    if (run.connection.other_device()) complain(run.connection.fault());
}

void stop_when_told(Run& run, int times) {
    run.connection.link().interrupted = [&run, times] {
        run.service.alive();
        return platform::times_told_to_end() >= times;
    };
}

bool identify_meter(Run& run) {
    if (run.link_found)
        run.connection.reconnect();
    else
        run.connection.identify(run.options.on_port);
    run.publishing.link_is(run.connection.link().port_connected);
    if (!run.connection.link().port_connected) return false;
    run.link_found = true;
    run.service.ready();
    prepare_meter(run);
    run.unit.begin();
    run.visit_refused = !begin_visit(run);
    return true;
}

bool connect_again(Run& run) {
    run.publishing.link_is(false);
    const bool told = run.connection.other_device();
    tell_other_device(run);
    // A loss within an exchange does not show what came behind it.
    run.connection.identification().on_another_device = [&run, told] {
        if (!told) tell_other_device(run);
    };
    const bool was_there = run.link_found;
    stop_when_told(run, 1);
    identify_meter(run);
    run.connection.identification().on_another_device = nullptr;
    stop_when_told(run, 2);
    if (was_there && run.connection.link().port_connected) run.publishing.reconnected();
    return run.connection.link().port_connected;
}

}  // namespace m47::unattended
