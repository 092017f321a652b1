// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "line_buffer.h"

namespace meter {

/// One trace line: "RX" or "TX", the monotonic times in ms of the first and the last byte, and
/// the bytes in printable form.
std::string trace_line(std::string_view direction, TimePoint first, TimePoint last,
                       std::string_view bytes);

/// Writes trace lines to a file, each flushed at once; without a file it does nothing.
class Trace {
  public:
    /// Opens the file for writing, and writes its head, which names `program`; an empty path means
    /// no trace. False when it cannot be opened.
    bool open(const std::string& path, std::string_view program);

    void received(const ReceivedLine& line);
    void sent(TimePoint first, TimePoint last, std::string_view bytes);
    /// The line is gone, or there again.
    void port(TimePoint when, std::string_view words);

  private:
    void write(const std::string& line);

    std::ofstream file_;
};

}  // namespace meter
