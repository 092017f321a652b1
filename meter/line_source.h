// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <string_view>

namespace meter {

/// A line of a file, without its end.
struct SourceLine {
    std::string_view text;     ///< holds until the next one is read; empty where it is too long
    std::uint64_t offset = 0;  ///< where it begins in the file
    bool whole = true;         ///< it had its end, and was not too long
};

/// Reads the lines of a file of any size, a piece of it in memory at a time.
class LineSource {
  public:
    /// A longer line is passed over.
    static constexpr std::size_t longest_line = std::size_t{8} << 20;

    /// `file` outlives it and can be sought in.
    explicit LineSource(std::istream& file) : file_(file) {}

    /// Goes to a place where a line begins.
    void seek(std::uint64_t offset);

    /// The next line; false at the end of the file, or where it cannot be read any further.
    bool next(SourceLine& line);

  private:
    bool read_on();

    std::istream& file_;
    std::string buffer_;
    std::size_t at_ = 0;               ///< in the buffer: what has been handed out
    std::uint64_t buffer_offset_ = 0;  ///< of the buffer in the file
};

}  // namespace meter
