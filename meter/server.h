// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "delivery.h"
#include "device_link.h"
#include "line_buffer.h"
#include "options.h"
#include "pacing.h"
#include "pty_line.h"
#include "trace.h"

namespace meter {

/// Serves the line with what answers until a signal to end arrives (signals.h).
class Server {
  public:
    /// All but the options outlive it. `link` leads to the line, or nowhere.
    Server(const Options& options, PtyLine& line, DeviceLink& link, Responder& responder,
           Trace& trace);

    /// Runs until it is told to end; then writes the state file, if one is wanted.
    void run();

  private:
    bool stopping();
    void take_input();
    bool wait_until(TimePoint when);
    /// As wait_until, and false when another command has come before that.
    bool wait_undisturbed(TimePoint when);
    bool write_all(std::string_view bytes);
    void answer(const ReceivedLine& received);
    void send_simulated(const Delivery& delivery, TimePoint earliest);
    void send_recorded(const Delivery& delivery, TimePoint asked);
    bool send_piece(std::string_view bytes, TimePoint first, TimePoint last);
    std::size_t send_paced(std::string_view bytes, TimePoint start);
    void send_filler(Ending ending, std::string& sent, TimePoint& last);
    void write_state() const;
    void close_line();
    void open_line();

    PtyLine& line_;
    DeviceLink& link_;
    Responder& responder_;
    Trace& trace_;
    Pacing pacing_;
    std::chrono::nanoseconds delay_;
    std::string state_file_;
    LineBuffer input_;
};

}  // namespace meter
