// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace meter {

/// The version of the trace that is written and read here.
constexpr int kTraceVersion = 1;

/// One line of a trace.
struct TraceEvent {
    enum class Kind {
        received,  ///< from the computer to the meter
        sent,      ///< from the meter
        port,      ///< what became of the port
        other      ///< of no concern to the meter
    };

    Kind kind = Kind::other;
    /// On the recording's clock.
    std::chrono::microseconds first{0};
    std::chrono::microseconds last{0};
    std::string_view text;  ///< bytes in printable form, or words
};

/// Reads a line (without its end); nothing when it is spoilt. Bytes are not looked at.
std::optional<TraceEvent> trace_event(std::string_view line);

/// The version that the head of a recording tells; nothing when the line is no head.
std::optional<int> trace_version(std::string_view line);

}  // namespace meter
