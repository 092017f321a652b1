// SPDX-License-Identifier: GPL-3.0-or-later
#include "link.h"

#include <algorithm>
#include <chrono>

#include "commands.h"
#include "fault.h"
#include "numbers.h"
#include "srecord.h"
#include "transaction.h"

namespace m47::link {
namespace {

constexpr int kAttempts = 3;
constexpr double kEchoLimit = 2;
/// More than any answer of the meter; what comes behind is noise and dropped.
constexpr qsizetype kLongestReply = qsizetype{4} * 1024 * 1024;
constexpr double kPumpInterval = 0.02;

constexpr Bilingual kBehindCommand{"nothing was sent behind the command %1",
                                   "dopo il comando %1 non è stato inviato nulla"};

}  // namespace

Link::Link(SerialPort& port, Clock& clock, LinkView& view)
    : activity(clock), port_(port), clock_(clock), view_(view) {}

std::optional<QString> Link::ask(const QString& command) {
    if (refuse_doubtful && can_send()) wait_until_unambiguous(command);
    if (!transact(
            command, [this] { return run_attempts(); }, [this] { wait_for_late_answers(); }))
        return std::nullopt;
    doubtful_ = doubtful_ || (port_connected && !well_framed(command_text_, reply_text_));
    reply_text_ = reduce_answer(command_text_, reply_text_);
    if (port_connected && !doubtful_)
        settings.take(command_text_, reply_text_);
    else
        settings.doubt(command_text_);
    if (refuse_doubtful && doubtful_) throw DoubtfulAnswer(command_text_.toStdString());
    return answer();
}

std::optional<QString> Link::answer() const {
    return port_connected ? std::optional(reply_text_) : std::nullopt;
}

std::optional<QString> Link::ask_once(const QString& command) {
    struct Once {
        explicit Once(bool& flag) : once(flag) { once = true; }
        ~Once() { once = false; }
        bool& once;
    };
    const Measuring measuring(*this);
    const Once goes_out(once_);
    try {
        const std::optional<QString> taken = ask(command);
        return failed_ ? std::nullopt : taken;
    } catch (const DoubtfulAnswer&) {
        return std::nullopt;
    }
}

bool Link::transact(const QString& command, const std::function<Outcome()>& exchange,
                    const std::function<void()>& rest) {
    view_.show_progress_bar();
    show_progress(0);
    if (!can_send()) {
        if (!commands_suspended && on_unsent) on_unsent();
        return false;
    }
    if (!port_connected) port_connected = gone_on_ = true;
    end_when_interrupted();
    const Transaction transaction(busy_);
    command_text_ = command;
    refused_.clear();
    failed_ = false;

    const ClockSpan span(clock_);
    view_.set_hourglass(true);
    try {
        const Outcome outcome = exchange();
        // A line that is there may still take another command.
        const bool stays = outcome == Outcome::failed || port_.is_open();
        failed_ = once_ && outcome != Outcome::answered && stays;
        if (outcome != Outcome::answered && !failed_) {
            refuses_ = !refused_.isEmpty();
            show_port_state();
        }
        rest();
    } catch (const Interrupted&) {
        close_port();
        view_.set_hourglass(false);
        throw;
    }
    close_port();
    view_.set_hourglass(false);
    show_progress(0);
    note_left_off();
    if (!refused_.isEmpty() && on_refused) on_refused();
    return true;
}

void Link::wait_time(double seconds) {
    wait(seconds, true);
}

void Link::wait(double seconds, bool interruptible) {
    const ClockSpan span(clock_);
    const float start = clock_.now();
    for (;;) {
        if (interruptible) end_when_interrupted();
        const double passed = clock_.now() - start;
        if (passed > seconds) return;
        // Towards the end it goes tick by tick: the wait ends with the first reading beyond it.
        const bool far = seconds - passed > kPumpInterval;
        clock_.sleep(far ? kPumpInterval : clock_.until_next_tick());
        if (!far) continue;
        if (on_waited) on_waited();
        view_.pump();
    }
}

void Link::show_port_state() {
    view_.set_hourglass(false);
    reply_text_.clear();
    port_connected = false;
    close_port();
    view_.set_port_state(port_state_text(port_number, false), false);
}

QString Link::make_srecord(int slot) {
    reply_text_ = srecord_text(slot);
    return srecord_header(slot);
}

std::optional<float> Link::send_anew() {
    port_.clear();
    if (!open_port()) return std::nullopt;
    port_.read_all();
    reply_text_.clear();

    const float start = clock_.now();
    send_frame(command_text_ + u'\r');
    return start;
}

Link::Outcome Link::run_attempts() {
    asked_ = answered_ = errors_ = 0;
    first_sent_ = clock_.steady();
    doubtful_ = false;
    behind_.clear();
    late_.asked(command_text_);
    Outcome outcome = Outcome::failed;
    const int attempts = once_ ? 1 : kAttempts;
    for (int attempt = 0; attempt < attempts && outcome == Outcome::failed; ++attempt)
        outcome = run_attempt();
    // To the question whether a meter is there an error says that it is another device.
    const bool looks_for_meter = command_text_ == command::query(command::kAttenuator);
    if (errors_ == kAttempts && !looks_for_meter) refused_ = command_text_;
    return outcome;
}

Link::Outcome Link::run_attempt() {
    const std::optional<float> start = send_anew();
    if (!start) return Outcome::lost;
    ++asked_;
    last_sent_ = clock_.steady();
    return poll_answer(*start, clock_.now());
}

Link::Outcome Link::poll_answer(float start, float sent) {
    const double limit = answer_limit(command_text_);
    ReplyWatch watch;
    show_progress(1);
    for (;;) {
        collect_input();
        advance_progress();
        const ReplyWatch::Verdict verdict = judge(watch);
        const float now = clock_.now();
        if (verdict == ReplyWatch::Verdict::error) {
            ++errors_;
            settle_error();
            close_port();
            return Outcome::failed;
        }
        if (reply_text_.size() < command_text_.size() && now - sent > kEchoLimit) {
            wake_meter();
            return Outcome::failed;
        }
        if (now - start > limit) return Outcome::lost;
        if (verdict == ReplyWatch::Verdict::complete) {
            settle_answer();
            return Outcome::answered;
        }
        // An unplugged line brings nothing any more: the limit need not be waited for.
        if (!port_.is_open()) return Outcome::lost;
        end_when_cut_off();
        port_.wait_for_input(kPollSlice);
        pump_when_due();
    }
}

void Link::collect_input() {
    const QByteArray input = port_.read_all();
    const qsizetype room = kLongestReply - reply_text_.size();
    reply_text_ += QString::fromLatin1(input.first(std::min(input.size(), room)));
}

bool Link::open_port() {
    return port_.is_open() || port_.open();
}

void Link::close_port() {
    if (port_.is_open()) port_.close();
}

/// The pause of a clock tick behind each character is the meter's: it cannot take a burst.
void Link::send_frame(const QString& frame) {
    show_progress(0);
    for (const char character : frame.toLatin1()) {
        // A character that does not go out shows in the missing echo; a lost line at once.
        if (!port_.write(character) && !port_.is_open()) return;
        wait_tick();
        advance_progress();
        pump_when_due();
    }
}

/// A meter that does not even echo is asleep; a lone CR wakes it for the next attempt.
void Link::wake_meter() {
    close_port();
    if (!open_port()) return;
    port_.write('\r');
    wait_tick();
    close_port();
}

void Link::show_progress(int value) {
    progress_ = value;
    view_.set_progress(value);
}

void Link::advance_progress() {
    show_progress(progress_ < kProgressSteps ? progress_ + 1 : 1);
}

/// As wait_time(0), but a transaction that has begun goes on to its end.
void Link::wait_tick() {
    const float start = clock_.now();
    while (!(clock_.now() - start > 0)) clock_.sleep(clock_.until_next_tick());
}

void Link::pump_when_due() {
    const double passed = clock_.now() - last_pump_;
    // Back in time is a clock behind midnight.
    if (passed >= 0 && passed < kPumpInterval) return;
    if (on_waited) on_waited();
    if (on_received && !reply_text_.isEmpty()) on_received(reply_text_.size());
    view_.pump();
    last_pump_ = clock_.now();
}

bool Link::told_to_end() const {
    return undivided == 0 && interrupted && interrupted();
}

bool Link::told_to_stop() const {
    return undivided == 0 && activity.stop_asked();
}

void Link::end_when_interrupted() const {
    if (told_to_end() || told_to_stop()) throw Interrupted();
    end_when_cut_off();
}

void Link::end_when_cut_off() const {
    if (cut_off && cut_off()) throw Interrupted();
}

/// A block is known by its first line.
void Link::note_left_off() {
    if (left_off || !interrupted || !interrupted()) return;
    left_off = Said{kBehindCommand, {command_text_.section(u'\r', 0, 0)}};
}

QString port_state_text(int port_number, bool connected) {
    QString text = QStringLiteral("RS232 ComPort");
    if (port_number > 0) text += format_number(port_number, " 0");
    return text + (connected ? QStringLiteral(" Connected") : QStringLiteral(" NOT Connected"));
}

}  // namespace m47::link
