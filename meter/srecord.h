// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace meter {

/// A Motorola S-record with a 16-bit address; type is 0 (header), 1 (data) or 9 (end).
struct SRecord {
    int type = 0;
    unsigned address = 0;
    std::vector<std::uint8_t> data;
};

/// Reads one line; nothing when the form, the count or the checksum is wrong.
std::optional<SRecord> parse_srecord(std::string_view line);

/// The record as a line, upper-case digits, no line end.
std::string format_srecord(const SRecord& record);

/// True for a line that begins like an S-record ("S" and a digit).
bool looks_like_srecord(std::string_view line);

}  // namespace meter
