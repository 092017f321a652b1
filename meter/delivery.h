// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace meter {

/// What happens on the line after the bytes of an answer have been sent.
enum class Ending {
    none,
    close_line,  ///< the line is closed for good
    unplug,      ///< the same, a moment after the answer has been read
    trickle,     ///< single bytes now and then, until another command arrives
    endless      ///< bytes at full speed, until another command arrives
};

/// How an answer went over the line once; all times count from the last byte of the command.
struct RecordedPace {
    /// Bytes that came in one go, or evenly from `first` to `last`.
    struct Piece {
        std::size_t end = 0;  ///< of the piece within the answer
        std::chrono::microseconds first{0};
        std::chrono::microseconds last{0};
    };

    std::vector<Piece> pieces;
    std::optional<std::chrono::microseconds> lost;  ///< the line was lost then
    std::optional<std::chrono::microseconds> back;  ///< and was there again then
};

/// How one answer is put on the line.
struct Delivery {
    std::string bytes;
    double wait_seconds = 0.0;  ///< on top of the usual processing delay
    Ending ending = Ending::none;
    bool falls_asleep = false;
    /// In place of the pace of the line, the delay and the ending.
    std::optional<RecordedPace> recorded;
};

/// What answers commands.
class Responder {
  public:
    virtual ~Responder() = default;

    /// Handles one line (without CR) and says what to send.
    virtual Delivery handle(const std::string& line) = 0;

    /// What it keeps between commands, as readable text.
    virtual std::string report() const = 0;
};

/// The bytes that trickle and endless go on sending; never a complete answer.
std::string_view filler_bytes();

}  // namespace meter
