// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition.h"

#include "engine.h"
#include "fault.h"
#include "time_delays.h"

namespace m47::acquisition {
namespace {

constexpr Bilingual kBetween{"a run was between two measurements, rows on the page: %1",
                             "un ciclo era fra due misure, righe nella pagina: %1"};

constexpr Bilingual kPassGoesOn{"Program %1 of %2", "Programma %1 di %2"};
constexpr Bilingual kPassBegins{"Measuring the plan", "Misura del piano"};
constexpr Bilingual kTimedGoesOn{"Next measurement in %1", "Prossima misura fra %1"};

constexpr Bilingual kNoMeter{
    "Nothing is measured: no meter is connected. Choose its port (Ctrl+6).",
    "Nessuna misura: nessuno strumento collegato. Scegliere la sua porta (Ctrl+6)."};
constexpr Bilingual kNothingTicked{
    "Nothing is measured: no measure is ticked. Tick at least one, such as the level.",
    "Nessuna misura: nessuna è spuntata. Spuntarne almeno una, per esempio il livello."};
constexpr Bilingual kNoPlanOpen{
    "Nothing is measured: no plan is open. Open one with its key, or make one on the plan screen.",
    "Nessuna misura: nessun piano aperto. Aprirne uno con il tasto, o crearlo nella schermata dei "
    "piani."};
constexpr Bilingual kNoneMonitored{
    "Nothing is measured: no program of this plan is monitored. Tick \"Status\" of its monitor "
    "options on the plan screen.",
    "Nessuna misura: nessun programma di questo piano è monitorato. Spuntare \"Status\" nelle "
    "opzioni di monitoraggio della schermata dei piani."};

constexpr Bilingual kNoPlanAtAll{
    "There is no plan to be opened: make one on the plan screen (Ctrl+1).",
    "Non c'è alcun piano da aprire: crearne uno nella schermata dei piani (Ctrl+1)."};
constexpr Bilingual kNoPlanBefore{
    "No plan comes before this one: the plan screen makes another one (Ctrl+1).",
    "Nessun piano precede questo: la schermata dei piani ne crea un altro (Ctrl+1)."};
constexpr Bilingual kNoPlanAfter{
    "No plan comes after this one: the plan screen makes another one (Ctrl+1).",
    "Nessun piano segue questo: la schermata dei piani ne crea un altro (Ctrl+1)."};
constexpr Bilingual kNoProgramBefore{
    "No monitored program comes before this one: tick \"Status\" of others on the plan screen.",
    "Nessun programma monitorato precede questo: spuntare \"Status\" di altri nella schermata dei "
    "piani."};
constexpr Bilingual kNoProgramAfter{
    "No monitored program comes after this one: tick \"Status\" of others on the plan screen.",
    "Nessun programma monitorato segue questo: spuntare \"Status\" di altri nella schermata dei "
    "piani."};

/// With no plan open the record sets cannot move; that ends the handler and needs no message. A
/// database that cannot be read is told.
void quietly(const std::function<void()>& body) {
    try {
        body();
    } catch (const db::EngineFault&) {
        throw;
    } catch (const Fault&) {
        return;
    }
}

}  // namespace

Acquisition::Acquisition(realtime::RealtimeRules& rules, const Ticks& ticks, PassNews news)
    : rules_(rules), ticks_(ticks), pass_(rules, [this, news = std::move(news)] {
          PassNews followed = news;
          followed.progress = [this, tell = news.progress](int place, int monitored) {
              place_ = place;
              monitored_ = monitored;
              if (tell) tell(place, monitored);
          };
          return followed;
      }()) {}

void Acquisition::single() {
    realtime::RealtimePanel& panel = rules_.panel;
    panel.plan_controls_visible = false;
    panel.plan_keys_visible = false;
    panel.single_acq_visible = true;
    panel.sat_opt_enabled = true;
    panel.limits_enabled = true;
    rules_.state.acq_kind = realtime::kSingleElement;
}

void Acquisition::step_plan(Step step, const Bilingual& end) {
    bool moved = false;
    quietly([this, step, &moved] {
        moved = (rules_.plans.*step)();
        pass_.plan_changed();
    });
    if (!moved) tell_no_step(end);
}

void Acquisition::step_program(Step step, const Bilingual& end) {
    bool moved = false;
    quietly([this, step, &moved] { moved = (rules_.plans.*step)(); });
    if (!moved) tell_no_step(end);
}

void Acquisition::tell_no_step(const Bilingual& end) const {
    rules_.program.costs.tell_each(rules_.modes.rs_programs ? end : kNoPlanAtAll);
}

void Acquisition::group() {
    quietly([this] {
        rules_.plans.first_plan();
        pass_.plan_changed();
    });
    if (!rules_.modes.rs_programs) tell_no_step(kNoPlanAtAll);
}

void Acquisition::previous() {
    step_plan(&realtime::PlanWalk::previous_plan, kNoPlanBefore);
}

void Acquisition::next() {
    step_plan(&realtime::PlanWalk::next_plan, kNoPlanAfter);
}

void Acquisition::previous_prog() {
    step_program(&realtime::PlanWalk::previous_program, kNoProgramBefore);
}

void Acquisition::next_prog() {
    step_program(&realtime::PlanWalk::next_program, kNoProgramAfter);
}

void Acquisition::tell_what_lacks() const {
    const CostNotices& notices = rules_.program.costs;
    if (!rules_.link.port_connected)
        notices.tell_each(kNoMeter);
    else if (!realtime::measure_activestate(rules_.panel))
        notices.tell_each(kNothingTicked);
}

void Acquisition::tell_no_program() {
    const CostNotices& notices = rules_.program.costs;
    if (!rules_.modes.rs_programs)
        notices.tell_each(kNoPlanOpen);
    else if (rules_.plans.monitored_programs() == 0)
        notices.tell_each(kNoneMonitored);
}

void Acquisition::single_acq() {
    tell_what_lacks();
    // A timed firing must not stay locked out when the program is told to end in the middle.
    struct Running {
        bool& active;
        ~Running() { active = false; }
    } running{rules_.state.plan_run_active};
    rules_.state.plan_run_active = true;
    or_end_runs([this] { rules_.measure_once(); });
}

void Acquisition::or_end_runs(const std::function<void()>& body) {
    const bool one_goes_on = running().has_value();
    try {
        body();
    } catch (const Interrupted&) {
        if (one_goes_on) end_runs();
        throw;
    }
}

/// As "&Stop", also where the user has gone on to a single element since the pass began.
void Acquisition::end_runs() {
    const bool pass =
        rules_.state.acq_kind != realtime::kPlan && (passing() || rules_.state.plan_run_active);
    stop();
    if (!pass) return;
    ticks_.pass.stop();
    pass_.stop();
}

std::optional<Said> Acquisition::running() const {
    if (!timed() && !passing()) return std::nullopt;
    return Said{kBetween, {QString::number(rules_.cycle.rows())}};
}

std::optional<link::Activity::Run> Acquisition::run() {
    const std::optional<Said> how_far = running();
    if (!how_far) return std::nullopt;
    Said what{kTimedGoesOn, {realtime::time_left_text(rules_.state.ticks_left)}};
    if (passing() && monitored_ > 0)
        what = {kPassGoesOn, {QString::number(place_), QString::number(monitored_)}};
    else if (passing())
        what = {kPassBegins, {}};
    const bool counted = passing() && monitored_ > 0;
    return link::Activity::Run{.what = what,
                               .how_far = *how_far,
                               .done = counted ? place_ : 0,
                               .all = counted ? monitored_ : 0,
                               .stop = [this] { end_runs(); }};
}

void Acquisition::multiple_acq() {
    quietly([this] {
        tell_what_lacks();
        tell_no_program();
        pass_.begin();
        ticks_.pass.start();
    });
}

void Acquisition::start() {
    rules_.panel.timer_opt_visible = true;
    rules_.panel.cmdstart = realtime::kStartCaption;
    ticks_.clock.start();
}

void Acquisition::stop() {
    rules_.state.plan_run_active = false;
    ticks_.interval.stop();
    rules_.panel.time_state = LampColour::grey;
    rules_.panel.timer_opt_visible = false;
    rules_.panel.cmdstart = realtime::kStopCaption;
    show_time_left();
    if (rules_.state.acq_kind != realtime::kPlan) return;
    ticks_.pass.stop();
    pass_.stop();
}

void Acquisition::cmdstart_Click() {
    quietly([this] {
        const bool starts = !timed();
        if (starts) tell_what_lacks();
        if (rules_.state.acq_kind == realtime::kPlan) go_to_first_program(starts);
        if (starts)
            ticks_.interval.start();
        else
            ticks_.interval.stop();
        rules_.panel.time_state = LampColour::grey;
        rules_.panel.cmdstart = timed() ? realtime::kStopCaption : realtime::kStartCaption;
    });
    show_time_left();
}

/// What ends need not wait for a database that cannot be read, nor for a plan that is gone: each
/// firing begins at the first program anyway.
void Acquisition::go_to_first_program(bool starts) {
    try {
        rules_.plans.programs().move_first();
    } catch (const Fault&) {
        if (starts) throw;
    }
}

void Acquisition::time_delay_Click() {
    rules_.modes.time_delay_Click();
    show_time_left();
}

void Acquisition::show_time_left() {
    rules_.panel.time_left =
        timed() ? realtime::time_left_text(rules_.state.ticks_left) : QString();
}

void Acquisition::Timer1_Timer() {
    realtime::RealtimeState& state = rules_.state;
    if (state.plan_run_active) return;
    state.ticks_left -= 1;
    show_time_left();
    if (state.ticks_left != 0) return;
    rules_.panel.time_state = LampColour::red;
    rules_.panel.repaint();
    // The lamp of a firing that could not begin stays red.
    bool fired = false;
    or_end_runs([&] { fired = fire(); });
    if (fired) rules_.panel.time_state = LampColour::green;
    time_delay_Click();
}

bool Acquisition::fire() {
    if (rules_.state.acq_kind == realtime::kSingleElement) {
        rules_.measure_once();
        // The interval runs from the end of a firing: a tick that fell into it does not count.
        ticks_.interval.start();
        return true;
    }
    const bool begun = pass_.begin_unwatched();
    if (begun) ticks_.pass.start();
    return begun;
}

void Acquisition::Timer2_Timer() {
    rules_.panel.time_state = LampColour::red;
    rules_.panel.repaint();
    ticks_.pass.stop();
    or_end_runs([this] { pass_.step(); });
    if (passing()) ticks_.pass.start();
}

void Acquisition::Timer3_Timer() {
    rules_.panel.time_act =
        rules_.link.clock().date_time().toString(QStringLiteral("dd'/'MM hh:mm:ss"));
}

}  // namespace m47::acquisition
