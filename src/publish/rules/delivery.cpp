// SPDX-License-Identifier: GPL-3.0-or-later
#include "delivery.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "texts.h"

namespace m47::publish {
namespace {

constexpr qsizetype kMostBytes = qsizetype{256} * 1024;  // of a request
constexpr double kForgetEvery = 60;                      // seconds

enum class Meaning { taken, too_long, refused, later };

// HTTP's own numbers.
constexpr int kClientFrom = 400;
constexpr int kClientTo = 499;
constexpr int kTooLong = 413;

/// Those of 4xx that say nothing of the lines: who asks is unknown or asks in the wrong place, or
/// too often. Lines are not to be lost over a wrong token.
bool says_nothing_of_lines(int status) {
    constexpr int kStatuses[] = {401, 402, 403, 404, 405, 407, 408, 421, 423, 425, 429};
    return std::ranges::find(kStatuses, status) != std::end(kStatuses);
}

Meaning meaning_of(const HttpAnswer& answer) {
    const int status = answer.status;
    if (is_taken(answer)) return Meaning::taken;
    if (status == kTooLong) return Meaning::too_long;
    if (status < kClientFrom || status > kClientTo) return Meaning::later;
    return says_nothing_of_lines(status) ? Meaning::later : Meaning::refused;
}

QString answer_text(const HttpAnswer& answer) {
    const QString words = answer.words.simplified().left(200);
    if (answer.status == 0) return words.isEmpty() ? QStringLiteral("no answer") : words;
    const QString status = QStringLiteral("it answers %1").arg(answer.status);
    return words.isEmpty() ? status : status + QStringLiteral(", ") + words;
}

}  // namespace

Delivery::Delivery(Outbox& outbox, HttpSender& sender, link::Clock& clock,
                   std::function<double()> chance)
    : outbox_(outbox), sender_(sender), clock_(clock), chance_(std::move(chance)) {}

Delivery::~Delivery() {
    if (sending_) sender_.give_up();
}

void Delivery::step() {
    try {
        step_trapped();
    } catch (const OutboxFault& fault) {
        if (sending_) sender_.give_up();
        sending_ = false;
        more_ = true;
        resume_at_ = now() + kLongestPause;
        if (!fault_told_) remark(fault.text(Texts()));
        fault_told_ = true;
    }
}

void Delivery::step_trapped() {
    if (sending_) {
        if (const std::optional<HttpAnswer> answer = sender_.answer()) {
            sending_ = false;
            take_answer(*answer);
        } else if (now() - began_ > kLongestAnswer) {
            sender_.give_up();
            sending_ = false;
            failed({.words = QStringLiteral("no answer within %1 s").arg(kLongestAnswer)});
        }
    }
    if (!sending_ && now() >= resume_at_) begin();
}

bool Delivery::due_within(double seconds) const {
    const bool wanted = more_ || failing_;
    return sending_ || (wanted && now() + seconds >= resume_at_);
}

void Delivery::begin() {
    if (!begin_new()) begin_repeat();
    forget_old();
}

bool Delivery::begin_new() {
    if (!more_) return false;
    const Batch batch = outbox_.batch(sent_last_, most_lines_, kMostBytes);
    more_ = !batch.empty();
    if (more_) post(batch, false);
    return more_;
}

/// Those that are due, as one request where they are few.
void Delivery::begin_repeat() {
    const auto due = [this](const Sent& sent) {
        return !sent.twice && now() - sent.when >= kRepeatAfter;
    };
    const auto first = std::ranges::find_if(sent_, due);
    if (first == sent_.end()) return;
    auto last = first;
    for (auto next = first; next != sent_.end() && due(*next); ++next) {
        if (next->last - first->first >= most_lines_) break;
        last = next;
    }
    const Batch batch = outbox_.lines(first->first, last->last);
    if (!batch.empty()) {
        post({.first = first->first, .last = last->last, .lines = batch.lines, .body = batch.body},
             true);
        return;
    }
    // Gone for want of room.
    std::for_each(first, last + 1, [](Sent& sent) { sent.twice = true; });
}

void Delivery::post(const Batch& batch, bool repeat) {
    sending_ = true;
    fault_told_ = false;
    repeat_ = repeat;
    began_ = now();
    batch_ = {.first = batch.first, .last = batch.last, .lines = batch.lines, .body = {}};
    sender_.post(batch.body);
}

void Delivery::look_at_clock(const HttpAnswer& answer) {
    if (!answer.ahead) return;
    const bool differs = std::abs(*answer.ahead) >= kClocksDiffer;
    if (differs && !clock_told_)
        remark(QStringLiteral("the clock of this machine is %1 s %2 that of the engine, which may "
                              "leave out rows of such times")
                   .arg(std::lround(std::abs(*answer.ahead)))
                   .arg(*answer.ahead > 0 ? QStringLiteral("ahead of") : QStringLiteral("behind")));
    clock_told_ = differs;
}

void Delivery::take_answer(const HttpAnswer& answer) {
    look_at_clock(answer);
    switch (meaning_of(answer)) {
        case Meaning::taken:
            return acknowledged();
        case Meaning::too_long:
            // A single line that is too long is refused as such.
            if (batch_.lines <= 1) return refused(answer);
            return split();
        case Meaning::refused:
            return refused(answer);
        case Meaning::later:
            return failed(answer);
    }
}

void Delivery::acknowledged() {
    if (failing_)
        remark(QStringLiteral("rows are delivered again, none was for %1 s")
                   .arg(std::lround(now() - failing_since_)));
    failing_ = false;
    pause_ = kFirstPause;
    if (repeat_) return sent_twice();
    sent_last_ = batch_.last;
    sent_.push_back({batch_.first, batch_.last, now(), false});
    outbox_.acknowledge(batch_.last);
}

void Delivery::sent_twice() {
    for (Sent& sent : sent_)
        if (sent.first >= batch_.first && sent.last <= batch_.last) sent.twice = true;
}

/// Half as many go at once from now on. What went once went in smaller pieces, and is not sent
/// again as a larger one.
void Delivery::split() {
    most_lines_ = std::max(1, batch_.lines / 2);
    if (repeat_)
        sent_twice();
    else
        more_ = true;
}

/// No other time would bring an engine to take them: the lines behind them go on.
void Delivery::refused(const HttpAnswer& answer) {
    outbox_.set_aside(batch_.first, batch_.last);
    if (!refusal_told_)
        remark(QStringLiteral("the engine refuses rows, which are set aside in the outbox: %1")
                   .arg(answer_text(answer)));
    refusal_told_ = true;
    if (!repeat_) sent_last_ = batch_.last;
    const auto is_gone = [this](const Sent& sent) {
        return sent.first >= batch_.first && sent.last <= batch_.last;
    };
    std::erase_if(sent_, is_gone);
    more_ = true;
}

/// What was acknowledged lately may be lost with an engine that is away, so all of it is sent
/// again.
void Delivery::failed(const HttpAnswer& answer) {
    if (!failing_) {
        failing_since_ = now();
        remark(QStringLiteral("rows are not delivered now and wait in the outbox: %1")
                   .arg(answer_text(answer)));
    }
    failing_ = more_ = true;
    sent_.clear();
    sent_last_ = 0;
    pause(answer.retry_after.value_or(0));
}

void Delivery::pause(double at_least) {
    const double least = std::clamp(at_least, 0.0, kLongestRetryAfter);
    const double half = pause_ / 2;
    resume_at_ = now() + std::max(least, half + half * chance_());
    pause_ = std::min(2 * pause_, kLongestPause);
}

void Delivery::forget_old() {
    if (now() < next_forget_) return;
    next_forget_ = now() + kForgetEvery;
    const auto is_old = [this](const Sent& sent) {
        return sent.twice && now() - sent.when >= kKept;
    };
    const auto end = std::ranges::find_if_not(sent_, is_old);
    if (end == sent_.begin()) return;
    try {
        outbox_.forget(std::prev(end)->last);
    } catch (const OutboxFault&) {
        // Taking away needs room too; what lies there longer does no harm.
        return;
    }
    sent_.erase(sent_.begin(), end);
}

void Delivery::remark(const QString& text) const {
    if (on_remark) on_remark(text);
}

}  // namespace m47::publish
