// SPDX-License-Identifier: GPL-3.0-or-later
#include "link.h"
#include "transaction.h"

namespace m47 {
namespace {

/// Seconds from before the first character within which the answer's first CR is there.
constexpr double kBlockLimit = 60;
/// Seconds that the meter is left alone behind a block, to store it.
constexpr double kBlockPause = 0.5;

}  // namespace

void Link::send_block() {
    view_.show_progress_bar();
    view_.set_progress(0);
    if (!can_send()) return;
    end_when_interrupted();
    const Transaction transaction(busy_);

    const ClockSpan span(clock_);
    view_.set_hourglass(true);
    if (run_block() != Outcome::answered) show_port_state();
    // A block that has gone out is let come to rest: an end of the program waits for that too.
    wait(kBlockPause, false);
    close_port();
    view_.set_hourglass(false);
    view_.set_progress(0);
}

Link::Outcome Link::run_block() {
    port_.clear();
    if (!open_port()) return Outcome::lost;
    port_.read_all();
    reply_text.clear();

    const float start = clock_.now();
    command_frame = command_text + u'\r';
    send_frame();
    return poll_block(start);
}

Link::Outcome Link::poll_block(float start) {
    view_.set_progress(1);
    for (;;) {
        collect_input();
        advance_progress();
        if (clock_.now() - start > kBlockLimit) return Outcome::lost;
        if (reply_text.contains(u'\r')) return Outcome::answered;
        // An unplugged line brings nothing any more: the limit need not be waited for.
        if (!port_.is_open()) return Outcome::lost;
        port_.wait_for_input(kPollSlice);
        pump_when_due();
    }
}

}  // namespace m47
