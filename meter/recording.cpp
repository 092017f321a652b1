// SPDX-License-Identifier: GPL-3.0-or-later
#include "recording.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "line_buffer.h"
#include "text.h"

namespace meter {

namespace {

using std::chrono::microseconds;

constexpr microseconds kNone{0};
/// A program looks at the line with each character.
constexpr microseconds kUnnoticed{2000};

// In a number of the index: a terabyte of file, and above it the command's mark.
constexpr unsigned kOffsetBits = 40;
constexpr std::uint64_t kOffsets = (std::uint64_t{1} << kOffsetBits) - 1;

std::uint64_t mark_of(std::string_view command) {
    return static_cast<std::uint64_t>(std::hash<std::string_view>()(command)) << kOffsetBits;
}

/// A sound line: its event, and its bytes where it carries some.
struct SoundLine {
    TraceEvent event;
    std::string bytes;
};

/// False when the line is spoilt. A command ends with CR, and has none before that.
bool read_sound(const SourceLine& line, SoundLine& sound) {
    if (!line.whole) return false;
    std::string_view text = line.text;
    if (text.ends_with('\r')) text.remove_suffix(1);
    const auto event = trace_event(text);
    if (!event) return false;
    sound.event = *event;
    const bool received = event->kind == TraceEvent::Kind::received;
    if (!received && event->kind != TraceEvent::Kind::sent) return true;
    if (!unescape(event->text, sound.bytes)) return false;
    const auto first_end = sound.bytes.find('\r');
    return !received || first_end == std::string::npos || first_end + 1 == sound.bytes.size();
}

/// Whether a spoilt line may have been a command, to which the next answer belongs then.
bool may_be_command(std::string_view line) {
    const auto is = [line](std::string_view kind) { return line.starts_with(kind); };
    return !is("TX ") && !is("PORT ") && !is("USER ") && !is("NOTE ");
}

/// Adds what was received to a command as the meter takes it. True when that ends it, without CR.
bool add_to(std::string& command, std::string_view bytes) {
    for (const char byte : bytes) {
        if (byte == '\r') return true;
        if (byte != '\n' && command.size() < LineBuffer::longest_line) command += byte;
    }
    return false;
}

/// Gathers an exchange from the lines behind its command.
class Gathering {
  public:
    /// `end` of the command, on the recording's clock.
    Gathering(Exchange& exchange, microseconds end) : exchange_(exchange), end_(end) {}

    void sent(const SoundLine& line) {
        const microseconds first = since(line.event.first);
        const microseconds last = std::max(first, since(line.event.last));
        active_ = std::max(active_, last);
        if (line.bytes.empty() || last > Recording::longest_wait) return;
        if (exchange_.answer.size() + line.bytes.size() > Recording::longest_answer) return;
        exchange_.answer += line.bytes;
        exchange_.pace.pieces.push_back({exchange_.answer.size(), first, last});
    }

    void port(const TraceEvent& event) {
        if (event.text.starts_with("open ")) return heard_again(event.first);
        const microseconds now = since(event.first);
        const microseconds margin = std::min(kUnnoticed, std::max(now - active_, kNone) / 2);
        const bool away = event.text.starts_with("open-failed");
        // What cannot be opened has gone since it was closed; all else a little before somebody
        // noticed, and behind what still went over the line.
        if (!exchange_.pace.lost && (away || event.text.starts_with("lost")))
            exchange_.pace.lost = away ? active_ + margin : now - margin;
        active_ = std::max(active_, now);
    }

    /// Of the next command something went out.
    void command_begun(const TraceEvent& event) {
        heard_again(event.first);
        active_ = std::max(active_, since(event.last));
    }

    /// A line that was lost has come back at the latest when something goes over it.
    void heard_again(microseconds when) {
        const RecordedPace& pace = exchange_.pace;
        if (pace.lost && !pace.back && since(when) > *pace.lost) exchange_.pace.back = since(when);
    }

  private:
    microseconds since(microseconds when) const { return std::max(microseconds(0), when - end_); }

    Exchange& exchange_;
    microseconds end_;
    microseconds active_{0};  ///< when something went over the line last
};

/// The exchange that begins where `source` stands; nothing when the file is another one by now.
std::optional<Exchange> read_exchange(LineSource& source) {
    SourceLine line;
    SoundLine sound;
    Exchange exchange;
    bool ended = false;
    while (!ended && source.next(line))
        if (read_sound(line, sound) && sound.event.kind == TraceEvent::Kind::received)
            ended = add_to(exchange.command, sound.bytes);
    if (!ended) return std::nullopt;
    Gathering gathering(exchange, sound.event.last);
    std::string next_command;
    while (source.next(line)) {
        if (!read_sound(line, sound)) {
            const bool answering = !exchange.answer.empty() && !exchange.answer.ends_with("OK\r");
            if (may_be_command(line.text) && !answering) break;
            continue;
        }
        if (sound.event.kind == TraceEvent::Kind::sent) gathering.sent(sound);
        if (sound.event.kind == TraceEvent::Kind::port) gathering.port(sound.event);
        if (sound.event.kind != TraceEvent::Kind::received) continue;
        gathering.command_begun(sound.event);
        if (add_to(next_command, sound.bytes)) break;
    }
    return exchange;
}

}  // namespace

Recording::Recording(std::istream& file) : source_(file) {
    read_all();
    std::sort(index_.begin(), index_.end());
    soundness_.exchanges = index_.size();
}

void Recording::read_all() {
    SourceLine line;
    SoundLine sound;
    std::string command;
    std::uint64_t begin = 0;
    bool begun = false;
    for (std::uint64_t number = 1; source_.next(line); ++number) {
        if (const auto version = trace_version(line.text); number == 1 && version) {
            if (*version == kTraceVersion) continue;
            soundness_.unknown_version = *version;
            return;
        }
        soundness_.cut_off = false;
        if (!read_sound(line, sound)) {
            if (soundness_.spoilt_lines++ == 0) soundness_.first_spoilt = number;
            soundness_.cut_off = !line.whole;
            continue;
        }
        if (sound.event.kind != TraceEvent::Kind::received) continue;
        if (!std::exchange(begun, true)) begin = line.offset;
        if (!add_to(command, sound.bytes)) continue;
        index_.push_back(mark_of(command) | (begin & kOffsets));
        command.clear();
        begun = false;
    }
}

std::optional<Exchange> Recording::next(std::string_view command) {
    auto found = search(command, position_, kOffsets);
    return found ? found : search(command, 0, position_);
}

std::optional<Exchange> Recording::search(std::string_view command, std::uint64_t from,
                                          std::uint64_t to) {
    const std::uint64_t mark = mark_of(command);
    auto entry = std::lower_bound(index_.begin(), index_.end(), mark | from);
    for (; entry != index_.end() && *entry < (mark | to); ++entry) {
        const std::uint64_t offset = *entry & kOffsets;
        source_.seek(offset);
        // Another command may have the same mark.
        auto exchange = read_exchange(source_);
        if (!exchange || exchange->command != command) continue;
        position_ = offset + 1;
        return exchange;
    }
    return std::nullopt;
}

}  // namespace meter
