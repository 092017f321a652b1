// SPDX-License-Identifier: GPL-3.0-or-later
#include "log_lines.h"

#include <algorithm>
#include <cstring>

namespace m47::measurement {
namespace {

const char* find_end(const char* from, const char* stop, char line_end) {
    if (from == stop) return stop;
    const void* found = std::memchr(from, line_end, static_cast<std::size_t>(stop - from));
    return found ? static_cast<const char*>(found) : stop;
}

template <typename TakeLine>
std::optional<std::size_t> take_lines(std::string_view text, bool last, const TakeLine& take) {
    const char* const begin = text.data();
    const char* const stop = begin + text.size();
    const char* at = begin;
    const char* feed = find_end(at, stop, '\n');
    const char* carriage = find_end(at, stop, '\r');
    while (at != stop) {
        // Each is looked up again only once it has been passed, so that a file with one kind of
        // line end is not searched to its end for the other at every line.
        if (feed < at) feed = find_end(at, stop, '\n');
        if (carriage < at) carriage = find_end(at, stop, '\r');
        const char* const end = std::min(feed, carriage);
        const bool unsure = end == stop || (end == carriage && end + 1 == stop);
        if (unsure && !last) break;
        if (!take(std::string_view(at, static_cast<std::size_t>(end - at)))) return {};
        at = end;
        if (at != stop) ++at;
        if (end == carriage && at == feed && at != stop) ++at;
    }
    return static_cast<std::size_t>(at - begin);
}

}  // namespace

std::optional<std::size_t> take_log_lines(std::string_view text, bool last, PageStore& store) {
    return take_lines(text, last,
                      [&store](std::string_view line) { return store.append_line(line); });
}

bool each_log_line(std::string_view text, const std::function<bool(std::string_view)>& line) {
    return take_lines(text, true, line).has_value();
}

}  // namespace m47::measurement
