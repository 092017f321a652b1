// SPDX-License-Identifier: GPL-3.0-or-later
// A recording that the simulated meter replays: whatever the file holds, an answer is made of whole
// pieces in time, the commands go round, and what is cut off or spoilt takes nothing else along.
// The input's first byte says where it is cut.
#include <sstream>
#include <vector>

#include "fuzzing.h"
#include "recording.h"
#include "text.h"

namespace {

using namespace std::chrono_literals;

/// A recording in memory.
struct Kept {
    explicit Kept(std::string_view text) : file(std::string(text)), recording(file) {}
    std::istringstream file;
    meter::Recording recording;
};

/// What may have been asked: the end of each line, as far as it is a command.
std::vector<std::string> commands_in(std::string_view text) {
    std::vector<std::string> commands{"", "UNIT?"};
    std::istringstream lines{std::string(text)};
    for (std::string line, bytes; std::getline(lines, line);) {
        const auto event = meter::trace_event(line);
        if (event && meter::unescape(event->text, bytes) && bytes.ends_with('\r'))
            commands.push_back(bytes.substr(0, bytes.size() - 1));
    }
    return commands;
}

void check(const meter::Exchange& exchange, std::string_view command) {
    HOLDS(exchange.command == command);
    HOLDS(exchange.answer.size() <= meter::Recording::longest_answer);
    std::size_t begin = 0;
    for (const meter::RecordedPace::Piece& piece : exchange.pace.pieces) {
        HOLDS(piece.end > begin && piece.first >= 0s && piece.last >= piece.first);
        HOLDS(piece.last <= meter::Recording::longest_wait);
        begin = piece.end;
    }
    HOLDS(begin == exchange.answer.size());
    HOLDS(!exchange.pace.lost || *exchange.pace.lost >= 0s);
    HOLDS(!exchange.pace.back ||
          (exchange.pace.lost && *exchange.pace.back >= *exchange.pace.lost));
}

/// All the answers to a command, once round and once more.
void check_round(meter::Recording& recording, const std::string& command) {
    const std::uint64_t most = recording.soundness().exchanges;
    std::vector<std::string> answers;
    for (std::uint64_t time = 0; time < 2 * most; ++time) {
        const auto exchange = recording.next(command);
        HOLDS(exchange || time == 0);
        if (!exchange) return;
        check(*exchange, command);
        answers.push_back(exchange->answer);
    }
    // Each of `most` or fewer answers comes again in its turn.
    for (std::size_t period = 1; period <= most; ++period) {
        bool again = true;
        for (std::size_t k = 0; k + period < answers.size(); ++k)
            again = again && answers[k] == answers[k + period];
        if (again) return;
    }
    HOLDS(most == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const std::size_t cut = input.byte();
    const std::string_view text = input.bytes();
    Kept whole(text);
    const meter::Soundness& sound = whole.recording.soundness();
    HOLDS(sound.spoilt_lines == 0 || sound.first_spoilt > 0);
    for (const std::string& command : commands_in(text)) check_round(whole.recording, command);
    const Kept part(text.substr(0, cut));
    HOLDS(part.recording.soundness().unknown_version ||
          part.recording.soundness().exchanges <= sound.exchanges || sound.unknown_version);
    const auto end = text.rfind('\n');
    if (end == std::string_view::npos || sound.unknown_version) return 0;
    const Kept spoilt(std::string(text.substr(0, end + 1)) + "\x7F\n" +
                      std::string(text.substr(end + 1)));
    HOLDS(spoilt.recording.soundness().exchanges == sound.exchanges);
    HOLDS(spoilt.recording.soundness().spoilt_lines == sound.spoilt_lines + 1);
    return 0;
}
