// SPDX-License-Identifier: GPL-3.0-or-later
// A measurement log that comes back onto the page: whatever the file holds and in whatever pieces
// it is read, a row is eleven cells of one line. The input's first byte says where it is cut.
#include <algorithm>
#include <cmath>

#include "fuzzing.h"
#include "log_lines.h"
#include "page_store.h"

namespace {

/// Takes `text` in pieces as long as `piece`, as a file is read.
bool take_in_pieces(std::string_view text, std::size_t piece, m47::measurement::PageStore& store) {
    std::size_t end = 0;
    for (;;) {
        const bool last = end >= text.size();
        const auto taken = m47::measurement::take_log_lines(text.substr(0, end), last, store);
        if (!taken) return false;
        HOLDS(*taken <= end);
        if (last) return true;
        text.remove_prefix(*taken);
        end = std::min(end - *taken + piece, text.size());
        if (end == text.size()) {
            const auto rest = m47::measurement::take_log_lines(text, true, store);
            if (rest) HOLDS(*rest == text.size());
            return rest.has_value();
        }
    }
}

/// What a line does not say is absent, and what it says is a number.
void check_measurement(const m47::measurement::Measurement& read) {
    HOLDS(!read.unit && !read.program.known());
    for (const m47::measurement::Reading& reading : read.readings)
        HOLDS(!reading.measured() || std::isfinite(reading.value));
    HOLDS(!read.instant || std::isfinite(*read.instant));
    HOLDS(!read.frequency || std::isfinite(*read.frequency));
}

void check_rows(const m47::measurement::PageStore& store) {
    for (int row = 0; row < store.rows(); ++row) {
        const std::string_view line = store.line(row);
        HOLDS(std::count(line.begin(), line.end(), '\t') ==
              m47::measurement::PageStore::kColumns - 1);
        HOLDS(line.find_first_of("\r\n") == std::string_view::npos);
        std::string joined;
        for (int column = 0; column < m47::measurement::PageStore::kColumns; ++column) {
            if (column > 0) joined += '\t';
            joined += store.cell(row, column);
        }
        HOLDS(joined == line);
        check_measurement(store.measurement(row));
    }
}

bool same(const m47::measurement::PageStore& one, const m47::measurement::PageStore& other) {
    if (one.rows() != other.rows()) return false;
    for (int row = 0; row < one.rows(); ++row)
        if (one.line(row) != other.line(row)) return false;
    return true;
}

/// The rows written as a log are the rows again.
void check_inverse(const m47::measurement::PageStore& store) {
    std::string text;
    for (int row = 0; row < store.rows(); ++row) text.append(store.line(row)).append("\r\n");
    m47::measurement::PageStore again;
    const auto taken = m47::measurement::take_log_lines(text, true, again);
    HOLDS(taken == text.size());
    HOLDS(same(again, store));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const std::size_t piece = 1 + input.byte();
    m47::measurement::PageStore whole;
    const auto taken = m47::measurement::take_log_lines(input.bytes(), true, whole);
    if (taken) HOLDS(*taken == input.bytes().size());
    check_rows(whole);
    check_inverse(whole);
    m47::measurement::PageStore pieces;
    HOLDS(take_in_pieces(input.bytes(), piece, pieces) == taken.has_value());
    HOLDS(same(pieces, whole));
    return 0;
}
