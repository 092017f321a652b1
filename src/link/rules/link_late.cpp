// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "link.h"
#include "transaction.h"

namespace m47::link {
namespace {

/// Seconds by which one answer may take longer than another to the same command, and after which a
/// line that brings nothing is quiet.
constexpr double kSlack = 0.3;

}  // namespace

ReplyWatch::Verdict Link::judge(ReplyWatch& watch) {
    ReplyWatch::Verdict verdict = watch.look_at(reply_text_);
    while (verdict == ReplyWatch::Verdict::complete && drop_late_answer()) {
        watch = ReplyWatch();
        verdict = watch.look_at(reply_text_);
    }
    return verdict;
}

/// Drops from the front of `reply_text_` what does not belong to this command. False when nothing
/// was dropped: it begins with the answer, or with something that nobody can tell from it.
bool Link::drop_late_answer() {
    const qsizetype begin = answer_begin(command_text_, reply_text_);
    if (begin == 0 || is_mere_noise(begin)) return false;
    const bool to_another = late_.is_to_another(reply_text_, command_text_);
    if (begin < 0 && !to_another && !another_may_come()) {
        doubtful_ = true;
        return false;
    }
    const qsizetype end = begin > 0 ? begin : answer_end(reply_text_);
    note_late_answers(reply_text_.left(end));
    reply_text_.remove(0, end);
    return true;
}

/// What stands in front of the echo at `begin` is no answer and nobody waits for one: it is cut as
/// ever, unless a measurement would take a part of it for the value.
bool Link::is_mere_noise(qsizetype begin) const {
    return begin > 0 && !refuse_doubtful && !another_may_come() &&
           answer_end(reply_text_.left(begin)) == 0;
}

bool Link::another_may_come() const {
    return asked_ > answered_ + 1 || late_.may_come(clock_.steady());
}

/// An error without an echo may be the meter's word on the CR that was to wake it.
void Link::settle_error() {
    if (answer_begin(command_text_, reply_text_) >= 0 || !another_may_come())
        ++answered_;
    else
        late_.came(reply_text_);
}

void Link::settle_answer() {
    ++answered_;
    answer_took_ = clock_.steady() - first_sent_;
    if (asked_ == 1) return;
    const qsizetype end = answer_end(reply_text_);
    behind_ = reply_text_.mid(end);
    reply_text_.truncate(end);
}

void Link::note_late_answers(const QString& received) {
    QString rest = received;
    for (qsizetype end = answer_end(rest); end > 0; end = answer_end(rest)) {
        const qsizetype begin = answer_begin(command_text_, rest.left(end));
        if (begin >= 0)
            ++answered_;
        else
            late_.came(rest.left(end));
        rest.remove(0, end);
    }
}

/// The second answer to a question is as late as the first one was. What does not come even then
/// is known to be missing, and the next exchanges look out for it.
void Link::wait_for_late_answers() {
    double until = last_sent_ + answer_took_ + kSlack;
    const double limit = last_sent_ + answer_limit(command_text_) + kSlack;
    while (asked_ > answered_ && port_.is_open() && !told_to_end()) {
        const QByteArray input = port_.read_all();
        const double now = clock_.steady();
        if (!input.isEmpty()) until = std::max(until, now + answer_took_ + kSlack);
        behind_ += QString::fromLatin1(input);
        const qsizetype end = answer_end(behind_);
        note_late_answers(behind_.left(end));
        behind_.remove(0, end);
        if (now > limit || now > until) break;
        port_.wait_for_input(kPollSlice);
        pump_when_due();
    }
    late_.expect(command_text_, asked_ - answered_, clock_.steady(), limit);
}

/// The same question gets the same echo: nobody could tell the answer to it from the one that an
/// earlier one is still owed.
void Link::wait_until_unambiguous(const QString& command) {
    if (!late_.may_come(command, clock_.steady())) return;
    end_when_interrupted();
    const Transaction transaction(busy_);
    const ClockSpan span(clock_);
    view_.set_hourglass(true);
    QString received;
    while (late_.may_come(command, clock_.steady()) && open_port() && !told_to_end() &&
           !told_to_stop()) {
        received += QString::fromLatin1(port_.read_all());
        const qsizetype end = answer_end(received);
        if (end > 0) late_.came(received.left(end));
        received.remove(0, end);
        port_.wait_for_input(kPollSlice);
        pump_when_due();
    }
    close_port();
    view_.set_hourglass(false);
    end_when_interrupted();
}

}  // namespace m47::link
