// SPDX-License-Identifier: GPL-3.0-or-later
#include "trace_event.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace meter {

namespace {

constexpr std::string_view kHead = "M47TRACE";
constexpr std::size_t kDecimals = 3;
constexpr std::size_t kMostDigits = 12;

/// What stands before the next blank, which it takes along; nothing where there is none.
std::optional<std::string_view> take_word(std::string_view& line) {
    const auto end = line.find(' ');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end + 1);
    return word;
}

std::optional<std::int64_t> digits(std::string_view text) {
    std::int64_t value = 0;
    const char* end = text.data() + text.size();
    if (text.empty() || text.size() > kMostDigits || text.front() == '-') return std::nullopt;
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stopped != end) return std::nullopt;
    return value;
}

/// A time in milliseconds with three decimals.
std::optional<std::chrono::microseconds> take_time(std::string_view& line) {
    const auto word = take_word(line);
    if (!word || word->size() < kDecimals + 2) return std::nullopt;
    const auto point = word->size() - kDecimals - 1;
    const auto whole = digits(word->substr(0, point));
    const auto part = digits(word->substr(point + 1));
    if ((*word)[point] != '.' || !whole || !part) return std::nullopt;
    return std::chrono::microseconds(*whole * 1000 + *part);
}

TraceEvent::Kind kind_of(std::string_view word) {
    if (word == "RX") return TraceEvent::Kind::received;
    if (word == "TX") return TraceEvent::Kind::sent;
    return word == "PORT" ? TraceEvent::Kind::port : TraceEvent::Kind::other;
}

}  // namespace

std::optional<TraceEvent> trace_event(std::string_view line) {
    const auto kind = take_word(line);
    const auto capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    if (!kind || kind->empty() || !std::all_of(kind->begin(), kind->end(), capital))
        return std::nullopt;
    const auto first = take_time(line);
    const auto last = first ? take_time(line) : std::nullopt;
    if (!last) return std::nullopt;
    return TraceEvent{kind_of(*kind), *first, *last, line};
}

std::optional<int> trace_version(std::string_view line) {
    const auto head = take_word(line);
    if (head != kHead) return std::nullopt;
    const auto version = digits(line.substr(0, line.find(' ')));
    return version ? std::optional(static_cast<int>(std::min<std::int64_t>(*version, 1000000)))
                   : std::nullopt;
}

}  // namespace meter
