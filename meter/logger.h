// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "receiver.h"
#include "settings.h"

namespace meter {

constexpr int kLoggerLines = 42;

/// One line of the logger table: which program it holds and whether it is active (1) or not.
struct LoggerLine {
    int program = 0;
    int state = 0;
};

/// The data logger: its table of programs and the logs recorded so far.
class Logger {
  public:
    std::map<int, LoggerLine> table;

    /// The table as lines "nn pp ss" separated by CR.
    std::string table_text() const;

    /// Records one log of the programs given (number and settings), measured with the receiver.
    /// The logs are dated by a clock that moves on a quarter of an hour with each.
    void record(const std::vector<std::pair<int, Settings>>& programs, Receiver& receiver);

    /// All logs, lines ended by CR LF.
    std::string all() const;

    /// The latest log, or nothing.
    std::string last() const;

    void delete_last();
    void delete_all();

    std::size_t count() const { return logs_.size(); }
    std::size_t bytes() const { return bytes_; }

  private:
    std::vector<std::string> logs_;
    std::size_t bytes_ = 0;
    int recorded_ = 0;
};

}  // namespace meter
