// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_run.h"

#include <algorithm>
#include <cmath>

#include "port_diagnosis.h"
#include "time_delays.h"

namespace m47::acquisition {
namespace {

constexpr double kWaitSlice = 0.2;    // seconds; how late a wish to stop is seen
constexpr double kLongestPause = 60;  // between two tries to find the meter again
constexpr double kIdlePause = 1;
constexpr double kProgressInterval = 1;  // seconds between two countdown texts

}  // namespace

PlanRun::End PlanRun::run() {
    plan_pass_ = std::make_unique<PlanPass>(rules_, news());
    if (!link_.port_connected) {
        if (!order_.reconnect) return End::link_lost;
        if (!find_meter(QStringLiteral("no meter answers, waiting for it"))) return End::stopped;
    }
    begin_ = next_pass_ = link_.clock().steady();
    for (;;) {
        if (!wait_for_pass()) return End::stopped;
        ++pass_;
        const End end = run_pass();
        if (end != End::done || last_pass()) return end;
    }
}

PassNews PlanRun::news() {
    return {.progress = [this](int place, int monitored) { show_program(place, monitored); },
            .cut_short = [this](const QString& reason) { cut_short(reason); },
            .left_out =
                [this](const QString& reason) {
                    remark(QStringLiteral("%1: %2").arg(time_text(), reason));
                }};
}

/// False when told to stop before the time of the next pass has come.
bool PlanRun::wait_for_pass() {
    const double now = link_.clock().steady();
    if (order_.every > 0 && pass_ > 0) {
        const double intervals = std::ceil((now - begin_) / order_.every);
        const double wanted = next_pass_ + order_.every;
        next_pass_ = std::max(wanted, begin_ + intervals * order_.every);
        const auto missed = std::lround((next_pass_ - wanted) / order_.every);
        if (missed > 0)
            remark(QStringLiteral("pass %1 took longer than the interval: %2 left out")
                       .arg(pass_)
                       .arg(missed));
    }
    return order_.every > 0 ? wait(next_pass_ - now) : !pause_asked();
}

PlanRun::End PlanRun::run_pass() {
    measured_ = false;
    cut_short_ = false;
    const double begun = link_.clock().steady();
    const End end = walk();
    if (end != End::done) return end;
    if (on_pass) on_pass(link_.clock().steady() - begun);
    if (measured_) {
        idle_ = false;
        return end;
    }
    // A plan that has been emptied meanwhile, or a database that cannot be read just now: it may
    // come back. Told once, and no reason to walk without a pause.
    incomplete_ = true;
    if (!idle_ && !cut_short_)
        remark(QStringLiteral("%1: pass %2 measured nothing").arg(time_text()).arg(pass_));
    idle_ = true;
    if (order_.every > 0 || last_pass()) return end;
    return wait(kIdlePause) ? end : End::stopped;
}

PlanRun::End PlanRun::walk() {
    plan_pass_->begin_unwatched();
    while (plan_pass_->running()) {
        const End end = next_step();
        if (end != End::done) {
            plan_pass_->stop();
            return end;
        }
    }
    return End::done;
}

PlanRun::End PlanRun::next_step() {
    if (stop_asked()) return End::stopped;
    const std::optional<db::Bookmark> place = plan_pass_->place();
    plan_pass_->step();
    if (!link_.port_connected) return recover(place);
    pause_ = kFirstPause;
    refusals_ = 0;
    if (place && doubtful_again()) plan_pass_->take_again(*place);
    return End::done;
}

/// The measurement that was lost with the link is taken again; the pass goes on from there.
PlanRun::End PlanRun::recover(const std::optional<db::Bookmark>& place) {
    if (!order_.reconnect) return End::link_lost;
    const bool left_out = refused_again();
    QString why = QStringLiteral("the link to the meter was lost, trying to connect again");
    if (!link_.refused().isEmpty())
        why += QStringLiteral(": ") + link::refusal_text(link_.refused(), rules_.program.texts);
    if (!find_meter(why)) return End::stopped;
    if (place && !left_out) plan_pass_->take_again(*place);
    return End::done;
}

/// True when the meter has refused the present program so often that it is left out of this pass:
/// it would do so for ever.
bool PlanRun::refused_again() {
    refusals_ = link_.refused().isEmpty() ? 0 : refusals_ + 1;
    if (refusals_ < kMostTries) return false;
    refusals_ = 0;
    incomplete_ = true;
    remark(QStringLiteral("%1: program %2 was left out of pass %3: the meter refused %4 at each of "
                          "%5 tries")
               .arg(time_text(), plan_pass_->program())
               .arg(pass_)
               .arg(link_.refused())
               .arg(kMostTries));
    return true;
}

/// As long as nothing at all is measured the same reason is told once.
void PlanRun::cut_short(const QString& reason) {
    incomplete_ = cut_short_ = true;
    if (idle_ && reason == reason_) return;
    reason_ = reason;
    remark(QStringLiteral("%1: pass %2 was cut short: %3").arg(time_text()).arg(pass_).arg(reason));
}

/// True when the step just made has no row, as an answer was doubtful, and is worth another try.
bool PlanRun::doubtful_again() {
    if (rules_.cycle.doubt().isEmpty()) {
        doubts_ = 0;
        return false;
    }
    if (++doubts_ < kMostTries) return true;
    doubts_ = 0;
    ++missing_;
    return false;
}

/// Tries at intervals that grow until something has been measured again. False when told to stop
/// before it was found.
bool PlanRun::find_meter(const QString& why) {
    const double lost = link_.clock().steady();
    remark(QStringLiteral("%1: %2").arg(time_text(), why));
    for (bool found = false; !found; found = connect && connect()) {
        report(QStringLiteral("pass %1, no link, next try in %2 s").arg(pass_).arg(pause_));
        if (!wait(pause_)) return false;
        pause_ = std::min(2 * pause_, kLongestPause);
    }
    remark(QStringLiteral("%1: connected again, nothing was measured for %2 s")
               .arg(time_text())
               .arg(std::lround(link_.clock().steady() - lost)));
    return true;
}

/// Waits without using the processor. False when told to stop meanwhile.
bool PlanRun::wait(double seconds) {
    const double end = link_.clock().steady() + seconds;
    double next_report = link_.clock().steady();
    for (;;) {
        if (pause_asked()) return false;
        const double now = link_.clock().steady();
        if (now >= end) return true;
        if (link_.port_connected && now >= next_report) {
            report(QStringLiteral("pass %1 done, next in %2")
                       .arg(pass_)
                       .arg(realtime::time_left_text(static_cast<int>(std::ceil(end - now)))));
            next_report = now + kProgressInterval;
        }
        const double slice = std::min(kWaitSlice, end - now);
        pass_time ? pass_time(slice) : link_.clock().sleep(slice);
    }
}

void PlanRun::show_program(int place, int monitored) {
    if (monitored == 0) return;
    measured_ = true;
    report(QStringLiteral("pass %1, program %2/%3").arg(pass_).arg(place).arg(monitored));
}

void PlanRun::report(const QString& text) const {
    if (on_progress) on_progress(text);
}

void PlanRun::remark(const QString& text) const {
    if (on_remark) on_remark(text);
}

QString PlanRun::time_text() const {
    return link_.clock().date_time().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

}  // namespace m47::acquisition
