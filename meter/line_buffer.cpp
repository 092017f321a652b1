// SPDX-License-Identifier: GPL-3.0-or-later
#include "line_buffer.h"

#include <utility>

namespace meter {

void LineBuffer::push(std::string_view bytes, TimePoint when) {
    for (const char byte : bytes)
        if (byte != '\n') push_byte(byte, when);
}

void LineBuffer::push_byte(char byte, TimePoint when) {
    if (!started_) {
        started_ = true;
        current_.first = when;
    }
    current_.last = when;
    if (byte == '\r') {
        lines_.push_back(std::exchange(current_, {}));
        started_ = false;
    } else if (current_.text.size() < longest_line) {
        current_.text += byte;
    }
}

std::optional<ReceivedLine> LineBuffer::next() {
    if (lines_.empty()) return std::nullopt;
    ReceivedLine line = std::move(lines_.front());
    lines_.pop_front();
    return line;
}

}  // namespace meter
