// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "delivery.h"
#include "line_source.h"
#include "trace_event.h"

namespace meter {

/// A command of a recording and what came of it.
struct Exchange {
    std::string command;  ///< without CR; empty: what wakes the meter
    std::string answer;
    RecordedPace pace;
};

/// How far a recording could be read.
struct Soundness {
    std::uint64_t exchanges = 0;
    std::uint64_t spoilt_lines = 0;
    std::uint64_t first_spoilt = 0;      ///< its number, from 1
    bool cut_off = false;                ///< its last line has no end
    std::optional<int> unknown_version;  ///< a later one than is known here: nothing was read
};

/// Answers of a recording by their commands. Of the file it keeps 8 bytes for each command.
class Recording {
  public:
    /// What comes later than this after a command is no answer to it: longer than any wait of a
    /// program for one.
    static constexpr std::chrono::seconds longest_wait{300};
    /// More than the line carries in that time.
    static constexpr std::size_t longest_answer = std::size_t{2} << 20;

    /// Reads `file`, which outlives it, can be sought in and does not change.
    explicit Recording(std::istream& file);

    const Soundness& soundness() const { return soundness_; }

    /// The next exchange of this command behind the one given last, in the order of the recording,
    /// which goes round at its end; nothing when the command was never recorded.
    std::optional<Exchange> next(std::string_view command);

  private:
    void read_all();
    std::optional<Exchange> search(std::string_view command, std::uint64_t from, std::uint64_t to);

    LineSource source_;
    Soundness soundness_;
    std::vector<std::uint64_t> index_;  ///< the command's mark and where it begins, in one number
    std::uint64_t position_ = 0;  ///< in the file: where the exchange given last begins, and 1
};

}  // namespace meter
