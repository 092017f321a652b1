// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition.h"

#include <QTime>
#include <algorithm>
#include <utility>

#include "engine.h"
#include "fault.h"
#include "fields.h"
#include "program_row.h"
#include "tables.h"
#include "work.h"

namespace m47 {
namespace {

constexpr Bilingual kNoPlanOpen{"No plan is open.", "Nessun piano è aperto."};
constexpr Bilingual kProgramsGone{
    "Another program deleted or replaced programs of the plan before they were measured.",
    "Un altro programma ha cancellato o sostituito programmi del piano prima della misura."};

constexpr Bilingual kBrokenOff{
    "a measurement was broken off and has no row, %1 rows are on the page",
    "una misura è stata interrotta e non ha riga, %1 righe nella pagina"};
constexpr Bilingual kMeasured{"the measurement was whole, %1 rows are on the page",
                              "la misura era completa, %1 righe nella pagina"};
constexpr Bilingual kBetween{"a run was between two measurements, %1 rows are on the page",
                             "un ciclo era fra due misure, %1 righe nella pagina"};

/// While it lives a recall only refreshes the screen.
class Suspended {
  public:
    explicit Suspended(Link& link) : link_(link) { link_.commands_suspended = true; }
    ~Suspended() { link_.commands_suspended = false; }
    Suspended(const Suspended&) = delete;
    Suspended& operator=(const Suspended&) = delete;

  private:
    Link& link_;
};

/// With no plan open the record sets cannot move; that ends the handler and needs no message. A
/// database that cannot be read is told.
void quietly(const std::function<void()>& body) {
    try {
        body();
    } catch (const EngineFault&) {
        throw;
    } catch (const Fault&) {
        return;
    }
}

bool is_monitored(const Recordset& programs) {
    return ProgramRow(programs).monitored();
}

}  // namespace

QString time_left_text(int seconds) {
    return QTime(0, 0).addSecs(qMax(0, seconds)).toString(QStringLiteral("h:mm:ss"));
}

Recordset& Acquisition::programs() {
    if (!modes_.rs_programs) throw Fault(kNoPlanOpen);
    return *modes_.rs_programs;
}

bool Acquisition::monitored() {
    return is_monitored(programs());
}

void Acquisition::single() {
    panel_.plan_controls_visible = false;
    panel_.plan_keys_visible = false;
    panel_.single_acq_visible = true;
    panel_.sat_opt_enabled = true;
    panel_.limits_enabled = true;
    state_.acq_kind = kSingleElement;
}

void Acquisition::present_plan() {
    panel_.plan_controls_visible = true;
    panel_.plan_keys_visible = true;
    panel_.single_acq_visible = false;
    panel_.sat_opt_enabled = false;
    panel_.limits_enabled = false;
}

/// Opens the programs of the plan at which the set of plans stands. Where they cannot be read the
/// plan before stays open, so that its programs are never measured under another plan's name.
void Acquisition::open_programs() {
    const QString name = panel_.grp_name;
    const auto programs = modes_.rs_programs;
    const auto config = modes_.rs_config;
    try {
        panel_.grp_name = database_.gruppo().text(field::kNome);
        modes_.crea_records_realtime();
    } catch (const EngineFault&) {
        panel_.grp_name = name;
        modes_.rs_programs = programs;
        modes_.rs_config = config;
        throw;
    }
}

/// The same for passes over it.
void Acquisition::open_plan() {
    open_programs();
    state_.acq_kind = kPlan;
    forget_place();
}

void Acquisition::group() {
    present_plan();
    quietly([this] {
        const Suspended suspended(link_);
        database_.gruppo().requery();
        database_.gruppo().move_first();
        open_plan();
    });
}

bool Acquisition::choose_plan(const QString& name) {
    present_plan();
    const Suspended suspended(link_);
    database_.gruppo().requery();
    if (!find_plan(database_.gruppo(), name)) return false;
    open_plan();
    return true;
}

int Acquisition::monitored_programs() {
    list_monitored();
    return static_cast<int>(pass_.size());
}

bool Acquisition::step(Recordset& set, Direction direction) {
    if (direction == Direction::back) {
        set.move_previous();
        if (!set.begin_of_set()) return false;
        set.move_first();
    } else {
        set.move_next();
        if (!set.end_of_set()) return false;
        set.move_last();
    }
    return true;
}

void Acquisition::move_plan(Direction direction) {
    quietly([this, direction] {
        const Suspended suspended(link_);
        Recordset& plans = database_.gruppo();
        const Recordset before = plans;
        try {
            step(plans, direction);
            open_programs();
        } catch (const EngineFault&) {
            // Else the next step would begin at a plan that is not shown.
            plans = before;
            throw;
        }
        forget_place();
    });
}

void Acquisition::previous() {
    move_plan(Direction::back);
}

void Acquisition::next() {
    move_plan(Direction::forward);
}

void Acquisition::move_program(Direction direction) {
    quietly([this, direction] {
        const Suspended suspended(link_);
        // Only a walk that came to its end moves the set: one that failed would leave it beside its
        // rows.
        Recordset set = programs();
        bool at_end = false;
        do {
            at_end = step(set, direction);
        } while (!at_end && !is_monitored(set));
        programs() = std::move(set);
        modes_.mostra_record_realtime();
    });
}

void Acquisition::previous_prog() {
    move_program(Direction::back);
}

void Acquisition::next_prog() {
    move_program(Direction::forward);
}

void Acquisition::single_acq() {
    // A timed firing must not stay locked out when the program is told to end in the middle.
    struct Running {
        bool& active;
        ~Running() { active = false; }
    } running{state_.plan_run_active};
    state_.plan_run_active = true;
    measure_once();
}

void Acquisition::measure_once(const std::function<void()>& prepare,
                               const ProgramIdentity& program) {
    Work work(link_, kBrokenOff, {QString::number(cycle_.rows())});
    costs_.begin();
    cycle_.measure(prepare, program);
    cycle_.storemeas();
    work.at(kMeasured, {QString::number(cycle_.rows())});
    // What is in doubt is no measurement, so nothing of it was lost.
    if (cycle_.doubt().isEmpty()) costs_.end();
}

std::optional<Said> Acquisition::running() const {
    const bool runs = (Timer1 && Timer1->running()) || (Timer2 && Timer2->running());
    if (!runs) return std::nullopt;
    return Said{kBetween, {QString::number(cycle_.rows())}};
}

/// Over the rows that the plan has now: another program may have replaced them since the last pass.
void Acquisition::begin_pass() {
    modes_.reread_plan();
    programs().move_first();
    list_monitored();
    rows_of_pass_ = programs().count();
    state_.plan_run_active = true;
    Timer2->start();
}

void Acquisition::multiple_acq() {
    quietly([this] { begin_pass(); });
}

bool Acquisition::unwatched_pass() {
    try {
        begin_pass();
        return true;
    } catch (const Fault& fault) {
        tell_cut_short(fault);
        return false;
    }
}

void Acquisition::start() {
    panel_.timer_opt_visible = true;
    panel_.cmdstart = kStartCaption;
    Timer3->start();
}

void Acquisition::stop() {
    state_.plan_run_active = false;
    Timer1->stop();
    panel_.time_state = LampColour::grey;
    panel_.timer_opt_visible = false;
    panel_.cmdstart = kStopCaption;
    show_time_left();
    if (state_.acq_kind != kPlan) return;
    Timer2->stop();
    report_progress(0, 0);
    try {
        programs().move_last();
    } catch (const Fault&) {
        // The pass has ended whatever the database does; the next one begins at the first program.
        return;
    }
}

void Acquisition::cmdstart_Click() {
    quietly([this] {
        const bool starts = !Timer1->running();
        if (state_.acq_kind == kPlan) go_to_first_program(starts);
        if (starts)
            Timer1->start();
        else
            Timer1->stop();
        panel_.time_state = LampColour::grey;
        panel_.cmdstart = Timer1->running() ? kStopCaption : kStartCaption;
    });
    show_time_left();
}

/// What ends need not wait for a database that cannot be read, nor for a plan that is gone: each
/// firing begins at the first program anyway.
void Acquisition::go_to_first_program(bool starts) {
    try {
        programs().move_first();
    } catch (const Fault&) {
        if (starts) throw;
    }
}

void Acquisition::time_delay_Click() {
    modes_.time_delay_Click();
    show_time_left();
}

void Acquisition::show_time_left() {
    panel_.time_left = Timer1->running() ? time_left_text(state_.ticks_left) : QString();
}

void Acquisition::Timer1_Timer() {
    if (state_.plan_run_active) return;
    state_.ticks_left -= 1;
    show_time_left();
    if (state_.ticks_left != 0) return;
    panel_.time_state = LampColour::red;
    panel_.repaint();
    bool fired = true;
    if (state_.acq_kind == kSingleElement) {
        measure_once();
        // The interval runs from the end of a firing: a tick that fell into it does not count.
        Timer1->start();
    } else {
        fired = unwatched_pass();
    }
    // The lamp of a firing that could not begin stays red.
    if (fired) panel_.time_state = LampColour::green;
    time_delay_Click();
}

void Acquisition::Timer2_Timer() {
    panel_.time_state = LampColour::red;
    panel_.repaint();
    Timer2->stop();
    bool goes_on = false;
    try {
        goes_on = acq_multi();
    } catch (const Fault& fault) {
        // A plan that was deleted meanwhile ends its pass; the timed firings go on.
        end_pass();
        tell_cut_short(fault);
    }
    if (goes_on) Timer2->start();
}

void Acquisition::Timer3_Timer() {
    panel_.time_act = link_.clock().date_time().toString(QStringLiteral("dd'/'MM hh:mm:ss"));
}

void Acquisition::end_pass() {
    state_.plan_run_active = false;
    report_progress(0, 0);
}

void Acquisition::tell_cut_short(const Fault& fault) const {
    if (on_cut_short) on_cut_short(fault.text(program_.texts));
}

void Acquisition::list_monitored() {
    pass_.clear();
    Recordset all = database_.of_plan(QLatin1String(table::kProgrammi), panel_.grp_name);
    for (all.move_first(); !all.end_of_set(); all.move_next())
        if (is_monitored(all)) pass_.push_back(all.bookmark());
}

void Acquisition::report_place() {
    const auto place_of = [this](Bookmark program) {
        return std::find(pass_.begin(), pass_.end(), program);
    };
    // The user may have gone on to another plan, or monitored another program, since the pass
    // began.
    if (place_of(programs().bookmark()) == pass_.end()) list_monitored();
    const auto place = place_of(programs().bookmark());
    if (place == pass_.end()) return;
    report_progress(static_cast<int>(place - pass_.begin()) + 1, static_cast<int>(pass_.size()));
}

/// The pass that runs goes on in another plan: what was shown of its place is no longer true.
void Acquisition::forget_place() {
    if (!state_.plan_run_active) return;
    pass_.clear();
    rows_of_pass_ = programs().count();
    report_progress(0, 0);
}

void Acquisition::report_progress(int place, int monitored) const {
    if (on_progress) on_progress(place, monitored);
}

/// The pass is whole whether or not its first row can be read: the next one reads them anew.
void Acquisition::leave_at_first(Recordset& set) {
    try {
        if (!set.empty()) set.move_first();
    } catch (const EngineFault&) {
        return;
    }
}

bool Acquisition::acq_multi() {
    Recordset& set = programs();
    {
        const Suspended suspended(link_);
        // At most one unmonitored program is passed over; a second one in a row is recalled and
        // not measured.
        if (!set.end_of_set() && !monitored()) set.move_next();
        if (set.end_of_set()) {
            // What has left the set was passed over.
            const bool gone = set.count() < rows_of_pass_;
            leave_at_first(set);
            if (gone) throw Fault(kProgramsGone);
            end_pass();
            return false;
        }
        modes_.mostra_record_realtime();
    }
    if (monitored()) measure_program();
    set.move_next();
    return true;
}

void Acquisition::measure_program() {
    const bool full_tune = program_.corrected.full_tune;
    if (full_tune && !tuning_.possible()) {
        if (on_left_out) on_left_out(tuning_.reason());
        return;
    }
    report_place();
    const auto prepare = [this, full_tune] {
        if (full_tune) tuning_.tune_everything();
        costs_.tell_other_bandwidth();
    };
    measure_once(prepare, {programs().text(field::kNome), ProgramRow(programs()).pg_num()});
}

}  // namespace m47
