// SPDX-License-Identifier: GPL-3.0-or-later
#include "activity.h"

#include <algorithm>
#include <cmath>

namespace m47::link {
namespace {

/// What took less says nothing about the rest.
constexpr double kTooShort = 2;
constexpr double kMinute = 60;
/// A figure that changes every second is not read.
constexpr double kSecondsStep = 5;

/// What is on its way comes whole: nothing is cut off in the middle of an answer.
constexpr Bilingual kStopsThen{"%1, stops when the answer is whole",
                               "%1, si ferma quando la risposta è completa"};
constexpr Bilingual kInRun{"%1 (%2)", "%1 (%2)"};
constexpr Bilingual kSecondsLeft{"%1, still %2 s", "%1, ancora %2 s"};
constexpr Bilingual kMinutesLeft{"%1, still %2 min", "%1, ancora %2 min"};

}  // namespace

std::optional<Said> Activity::what() const {
    if (working_ && what_) return what_;
    return run();
}

std::optional<Said> Activity::run() const {
    return run_ ? std::optional(run_->what) : std::nullopt;
}

std::optional<double> Activity::seconds_left() const {
    return run_ ? seconds_left(run_pace_) : seconds_left(work_pace_);
}

std::optional<double> Activity::seconds_left(const Pace& pace) const {
    const double took = clock_.steady() - pace.begin;
    const int done = pace.done - pace.first;
    if (done <= 0 || pace.done >= pace.all || took < kTooShort) return std::nullopt;
    return took / done * (pace.all - pace.done);
}

void Activity::stop() {
    if (working_) {
        stop_asked_ = true;
        tell_change();
    } else if (run_) {
        const Run run = *run_;
        run.stop();
        if (on_stopped) on_stopped(run.how_far);
    }
}

void Activity::begin() {
    working_ = true;
    stop_asked_ = false;
    work_pace_ = {};
}

void Activity::say(const Said& what) {
    if (!working_) return;
    what_ = what;
    tell_change();
}

void Activity::reached(int done, int all) {
    note(work_pace_, done, all);
    tell_change();
}

void Activity::end(const std::optional<Said>& how_far) {
    const bool stopped = stop_asked_;
    working_ = stop_asked_ = ends_with_window_ = false;
    const bool shown = what_.has_value();
    what_.reset();
    if (shown) tell_change();
    if (stopped && how_far && on_stopped) on_stopped(*how_far);
}

void Activity::set_run(const std::optional<Run>& run) {
    if (!run && !run_) return;
    run_ = run;
    if (run)
        note(run_pace_, run->done, run->all);
    else
        run_pace_ = {};
    tell_change();
}

/// The first place is where the count begins: what came before it took no time here.
void Activity::note(Pace& pace, int done, int all) const {
    if (pace.all != all || done < pace.done)
        pace = {.begin = clock_.steady(), .first = done, .done = done, .all = all};
    pace.done = done;
}

void Activity::tell_change() const {
    if (on_change) on_change();
}

QString activity_text(const Activity& activity, const Texts& texts) {
    const std::optional<Said> what = activity.what();
    if (!what) return {};
    QString text = what->in(texts);
    const std::optional<Said> run = activity.run();
    if (run && run->in(texts) != text) text = Said{kInRun, {text, run->in(texts)}}.in(texts);
    if (activity.stop_asked()) return Said{kStopsThen, {text}}.in(texts);
    const std::optional<double> left = activity.seconds_left();
    if (!left) return text;
    const bool long_time = *left > kMinute;
    const double shown =
        long_time ? std::ceil(*left / kMinute) : std::ceil(*left / kSecondsStep) * kSecondsStep;
    return Said{long_time ? kMinutesLeft : kSecondsLeft, {text, QString::number(shown)}}.in(texts);
}

}  // namespace m47::link
