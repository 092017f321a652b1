// SPDX-License-Identifier: GPL-3.0-or-later
#include "trace.h"

#include "text.h"

namespace meter {

namespace {

std::string milliseconds(TimePoint time) {
    const std::chrono::duration<double, std::milli> since_start = time.time_since_epoch();
    return fixed(since_start.count(), 3);
}

}  // namespace

std::string trace_line(std::string_view direction, TimePoint first, TimePoint last,
                       std::string_view bytes) {
    return std::string(direction) + " " + milliseconds(first) + " " + milliseconds(last) + " " +
           escaped(bytes);
}

bool Trace::open(const std::string& path) {
    if (path.empty()) return true;
    file_.open(path, std::ios::trunc);
    return file_.is_open();
}

void Trace::received(const ReceivedLine& line) {
    write(trace_line("RX", line.first, line.last, line.text + "\r"));
}

void Trace::sent(TimePoint first, TimePoint last, std::string_view bytes) {
    write(trace_line("TX", first, last, bytes));
}

void Trace::write(const std::string& line) {
    if (file_.is_open()) file_ << line << std::endl;
}

}  // namespace meter
