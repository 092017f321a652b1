// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace meter {

using TimePoint = std::chrono::steady_clock::time_point;

/// A line received, without its CR, and when its first and last byte arrived.
struct ReceivedLine {
    std::string text;
    TimePoint first;
    TimePoint last;
};

/// Cuts the bytes received into lines at CR. Line feeds are ignored, overlong lines cut.
class LineBuffer {
  public:
    static constexpr std::size_t longest_line = 1024;

    void push(std::string_view bytes, TimePoint when);

    /// The next complete line, oldest first.
    std::optional<ReceivedLine> next();

    bool has_line() const { return !lines_.empty(); }
    std::size_t waiting() const { return lines_.size(); }

  private:
    void push_byte(char byte, TimePoint when);

    std::deque<ReceivedLine> lines_;
    ReceivedLine current_;
    bool started_ = false;
};

}  // namespace meter
