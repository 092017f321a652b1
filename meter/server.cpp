// SPDX-License-Identifier: GPL-3.0-or-later
#include "server.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

#include "fine_sleep.h"
#include "signals.h"

namespace meter {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kIdleTick = 100ms;
constexpr auto kTimeToRead = 300ms;
constexpr auto kLookForReader = 1ms;
constexpr auto kUnreadLimit = 2s;
constexpr auto kTrickleInterval = 250ms;
constexpr auto kLookForCommand = 20ms;
constexpr auto kFineWait = 2ms;
constexpr auto kRoomWait = 10ms;
constexpr std::string_view kEndOfAnswer = "OK\r";
constexpr std::size_t kInputLimit = 256;
constexpr std::size_t kTracedFiller = 256;
constexpr std::size_t kFillerBlock = 64;

std::chrono::nanoseconds from_seconds(double seconds) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(seconds));
}

/// When byte `index` of `count` goes that leave evenly within `time`, the first at once.
Clock::duration share(Clock::duration time, std::size_t index, std::size_t count) {
    if (count < 2) return {};
    return time * static_cast<Clock::rep>(index) / static_cast<Clock::rep>(count - 1);
}

}  // namespace

Server::Server(const Options& options, PtyLine& line, DeviceLink& link, Responder& responder,
               Trace& trace)
    : line_(line),
      link_(link),
      responder_(responder),
      trace_(trace),
      pacing_(options.baud_factor),
      delay_(from_seconds(options.delay_ms / 1000.0)),
      state_file_(options.state) {}

bool Server::stopping() {
    if (state_asked_for()) write_state();
    return told_to_stop();
}

void Server::take_input() {
    if (input_.waiting() < kInputLimit) input_.push(line_.read_pending(), Clock::now());
}

bool Server::wait_until(TimePoint when) {
    while (!stopping()) {
        const auto left = when - Clock::now();
        if (left <= 0ns) return true;
        if (left <= kFineWait) {
            sleep_until(when);
            continue;
        }
        const auto slice = std::chrono::floor<std::chrono::milliseconds>(left - 1ms);
        if (input_.waiting() >= kInputLimit)
            std::this_thread::sleep_for(std::min<Clock::duration>(slice, kIdleTick));
        else if (line_.wait_for_input(std::min<std::chrono::milliseconds>(slice, kIdleTick)))
            take_input();
    }
    return false;
}

bool Server::write_all(std::string_view bytes) {
    auto give_up = Clock::now() + kUnreadLimit;
    while (!bytes.empty() && !stopping()) {
        const std::size_t count = line_.write_some(bytes);
        bytes.remove_prefix(count);
        if (count > 0) {
            give_up = Clock::now() + kUnreadLimit;
            continue;
        }
        if (Clock::now() >= give_up) return false;
        line_.wait_for_room(kRoomWait);
        take_input();
    }
    return bytes.empty();
}

std::size_t Server::send_paced(std::string_view bytes, TimePoint start) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        if (!wait_until(start + pacing_.due(sent))) return sent;
        take_input();
        const std::size_t due = pacing_.due_count(Clock::now() - start, bytes.size());
        const std::size_t end_of_part = std::max(due, sent + 1);
        if (!write_all(bytes.substr(sent, end_of_part - sent))) {
            // Nobody reads: what a real line would have carried away is gone.
            line_.discard_unread();
            return sent;
        }
        sent = end_of_part;
    }
    return sent;
}

void Server::send_filler(Ending ending, std::string& sent, TimePoint& last) {
    const std::string_view filler = filler_bytes();
    const TimePoint start = Clock::now();
    std::size_t count = 0;
    while (!input_.has_line()) {
        const bool slow = ending == Ending::trickle;
        const TimePoint due = slow ? Clock::now() + kTrickleInterval : start + pacing_.due(count);
        if (!wait_until(due)) return;
        take_input();
        const std::size_t block = slow || pacing_.paced() ? 1 : kFillerBlock;
        for (std::size_t i = 0; i < block; ++i, ++count) {
            const char byte = filler[count % filler.size()];
            if (line_.write_some({&byte, 1}) == 0) {
                // Nobody reads; the byte is lost, as on a real line.
                std::this_thread::sleep_for(1ms);
            } else if (sent.size() < kTracedFiller) {
                sent += byte;
            }
        }
        last = Clock::now();
    }
}

void Server::answer(const ReceivedLine& received) {
    trace_.received(received);
    const Delivery delivery = responder_.handle(received.text);
    if (delivery.recorded)
        send_recorded(delivery, received.last);
    else
        send_simulated(delivery, received.last + delay_);
}

void Server::send_simulated(const Delivery& delivery, TimePoint earliest) {
    const TimePoint start = std::max(Clock::now(), earliest) + from_seconds(delivery.wait_seconds);
    if (delivery.bytes.empty() && delivery.ending == Ending::none) return;
    if (!wait_until(start)) return;
    const std::size_t count = send_paced(delivery.bytes, start);
    TimePoint last = Clock::now();
    trace_.sent(start + pacing_.due(0), last, delivery.bytes.substr(0, count));
    if (delivery.ending == Ending::unplug) {
        // Closing takes away what the other side has not read yet.
        wait_until(last + kTimeToRead);
        close_line();
    } else if (delivery.ending == Ending::close_line) {
        close_line();
    } else if (delivery.ending != Ending::none) {
        const TimePoint first = last;
        std::string sent;
        send_filler(delivery.ending, sent, last);
        trace_.sent(first, last, sent);
    }
}

void Server::send_recorded(const Delivery& delivery, TimePoint asked) {
    const std::string_view bytes = delivery.bytes;
    std::size_t sent = 0;
    for (const RecordedPace::Piece& piece : delivery.recorded->pieces) {
        const TimePoint first = asked + piece.first;
        // What came behind a whole answer then is of no use to who has asked on.
        const bool whole = bytes.substr(0, sent).ends_with(kEndOfAnswer);
        if (whole ? !wait_undisturbed(first) : !wait_until(first)) break;
        if (!send_piece(bytes.substr(sent, piece.end - sent), first, asked + piece.last)) break;
        sent = piece.end;
    }
    const RecordedPace& pace = *delivery.recorded;
    if (!pace.lost || !wait_until(asked + *pace.lost)) return;
    const TimePoint give_up = Clock::now() + kTimeToRead;
    while (line_.unread() && Clock::now() < give_up) wait_until(Clock::now() + kLookForReader);
    close_line();
    if (pace.back && wait_until(asked + *pace.back)) open_line();
}

/// Evenly from `first` to `last`; false when nobody reads it, or the end has come.
bool Server::send_piece(std::string_view bytes, TimePoint first, TimePoint last) {
    const TimePoint began = Clock::now();
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        if (!wait_until(first + share(last - first, sent, bytes.size()))) return false;
        const TimePoint now = Clock::now();
        std::size_t end = sent + 1;
        while (end < bytes.size() && first + share(last - first, end, bytes.size()) <= now) ++end;
        if (!write_all(bytes.substr(sent, end - sent))) return false;
        sent = end;
    }
    trace_.sent(began, Clock::now(), bytes);
    return true;
}

bool Server::wait_undisturbed(TimePoint when) {
    while (!input_.has_line()) {
        const TimePoint slice = std::min<TimePoint>(when, Clock::now() + kLookForCommand);
        if (!wait_until(slice)) return false;
        if (slice == when) return true;
    }
    return false;
}

void Server::close_line() {
    link_.remove();
    line_.close();
    trace_.port(Clock::now(), "lost unplugged");
}

void Server::open_line() {
    line_.open();
    link_.lead_to(line_.path());
    trace_.port(Clock::now(), "open " + line_.path());
}

void Server::run() {
    while (!stopping()) {
        if (line_.wait_for_input(kIdleTick))
            take_input();
        else
            line_.clear_stale_lock();
        while (!stopping()) {
            const auto received = input_.next();
            if (!received) break;
            answer(*received);
        }
    }
    write_state();
}

void Server::write_state() const {
    if (state_file_.empty()) return;
    // A reader never sees a half-written file.
    const std::string unfinished = state_file_ + ".new";
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file << responder_.report();
    file.close();
    std::error_code error;
    if (file) std::filesystem::rename(unfinished, state_file_, error);
    if (!file || error) std::fprintf(stderr, "m47-meter: cannot write %s\n", state_file_.c_str());
}

}  // namespace meter
