// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace meter {

/// What happens on the line after the bytes of an answer have been sent.
enum class Ending {
    none,
    close_line,  ///< the line is closed for good
    unplug,      ///< the same, a moment after the answer has been read
    trickle,     ///< single bytes now and then, until another command arrives
    endless      ///< bytes at full speed, until another command arrives
};

/// How one answer is put on the line.
struct Delivery {
    std::string bytes;
    double wait_seconds = 0.0;  ///< on top of the usual processing delay
    Ending ending = Ending::none;
    bool falls_asleep = false;
};

/// The bytes that trickle and endless go on sending; never a complete answer.
std::string_view filler_bytes();

}  // namespace meter
