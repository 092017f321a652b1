// SPDX-License-Identifier: GPL-3.0-or-later
#include "link.h"
#include "transaction.h"

namespace m47::link {
namespace {

/// Seconds from before the first character within which the answer's first CR is there.
constexpr double kBlockLimit = 60;
/// Seconds that the meter is left alone behind a block, to store it.
constexpr double kBlockPause = 0.5;

}  // namespace

std::optional<QString> Link::send_block(const QString& block) {
    // A block that has gone out is let come to rest: an end of the program waits for that too.
    const bool sent = transact(
        block, [this] { return run_block(); }, [this] { wait(kBlockPause, false); });
    return sent ? answer() : std::nullopt;
}

Link::Outcome Link::run_block() {
    const std::optional<float> start = send_anew();
    return start ? poll_block(*start) : Outcome::lost;
}

Link::Outcome Link::poll_block(float start) {
    show_progress(1);
    for (;;) {
        collect_input();
        advance_progress();
        if (clock_.now() - start > kBlockLimit) return Outcome::lost;
        if (!is_late_to_block() && reply_text_.contains(u'\r')) return Outcome::answered;
        // An unplugged line brings nothing any more: the limit need not be waited for.
        if (!port_.is_open()) return Outcome::lost;
        end_when_cut_off();
        port_.wait_for_input(kPollSlice);
        pump_when_due();
    }
}

/// True while what has come is a late answer to an earlier command; a whole one is dropped.
bool Link::is_late_to_block() {
    if (!late_.may_come(clock_.steady()) || !late_.is_to_another(reply_text_, command_text_))
        return false;
    const qsizetype end = answer_end(reply_text_);
    note_late_answers(reply_text_.left(end));
    reply_text_.remove(0, end);
    return true;
}

}  // namespace m47::link
