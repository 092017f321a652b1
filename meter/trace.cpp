// SPDX-License-Identifier: GPL-3.0-or-later
#include "trace.h"

#include <ctime>

#include "text.h"
#include "trace_event.h"

namespace meter {

namespace {

std::string milliseconds(TimePoint time) {
    const std::chrono::duration<double, std::milli> since_start = time.time_since_epoch();
    return fixed(since_start.count(), 3);
}

/// The time of day with its distance from UTC, such as 2026-11-22T14:00:00+01:00.
std::string time_of_day() {
    const std::time_t now = std::time(nullptr);
    char buffer[40] = "";
    const std::tm* local = std::localtime(&now);
    if (local == nullptr) return buffer;
    std::string text(buffer, std::strftime(buffer, sizeof buffer, "%FT%T%z", local));
    return text.insert(text.size() - 2, ":");
}

std::string event_line(std::string_view kind, TimePoint first, TimePoint last,
                       std::string_view text) {
    std::string line(kind);
    for (const TimePoint time : {first, last}) line += ' ' + milliseconds(time);
    return line.append(" ").append(text);
}

}  // namespace

std::string trace_line(std::string_view direction, TimePoint first, TimePoint last,
                       std::string_view bytes) {
    return event_line(direction, first, last, escaped(bytes));
}

bool Trace::open(const std::string& path, std::string_view program) {
    if (path.empty()) return true;
    file_.open(path, std::ios::trunc);
    write("M47TRACE " + std::to_string(kTraceVersion) + ' ' + time_of_day() + ' ' +
          std::string(program));
    return file_.is_open();
}

void Trace::received(const ReceivedLine& line) {
    write(trace_line("RX", line.first, line.last, line.text + "\r"));
}

void Trace::sent(TimePoint first, TimePoint last, std::string_view bytes) {
    write(trace_line("TX", first, last, bytes));
}

void Trace::port(TimePoint when, std::string_view words) {
    write(event_line("PORT", when, when, words));
}

void Trace::write(const std::string& line) {
    if (file_.is_open()) file_ << line << std::endl;
}

}  // namespace meter
