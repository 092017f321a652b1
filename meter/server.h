// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "delivery.h"
#include "instrument.h"
#include "line_buffer.h"
#include "options.h"
#include "pacing.h"
#include "pty_line.h"
#include "trace.h"

namespace meter {

/// Serves the line with the instrument until a signal to end arrives (signals.h).
class Server {
  public:
    Server(const Options& options, PtyLine& line, Instrument& instrument, Trace& trace);

    /// Runs until it is told to end; then writes the state file, if one is wanted.
    void run();

  private:
    bool stopping();
    void take_input();
    bool wait_until(TimePoint when);
    bool write_all(std::string_view bytes);
    void answer(const ReceivedLine& received);
    std::size_t send_paced(std::string_view bytes, TimePoint start);
    void send_filler(Ending ending, std::string& sent, TimePoint& last);
    void write_state() const;
    void close_line();

    PtyLine& line_;
    Instrument& instrument_;
    Trace& trace_;
    Pacing pacing_;
    std::chrono::nanoseconds delay_;
    std::string state_file_;
    std::string link_;
    LineBuffer input_;
};

}  // namespace meter
