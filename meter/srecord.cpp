// SPDX-License-Identifier: GPL-3.0-or-later
#include "srecord.h"

#include "text.h"

namespace meter {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

std::optional<std::vector<std::uint8_t>> hex_bytes(std::string_view text) {
    if (text.size() % 2 != 0) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const auto high = hex_digit(text[i]);
        const auto low = hex_digit(text[i + 1]);
        if (!high || !low) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(*high * 16 + *low));
    }
    return bytes;
}

void append_hex(std::string& text, unsigned byte) {
    text += kHexDigits[(byte >> 4) & 0xF];
    text += kHexDigits[byte & 0xF];
}

}  // namespace

bool looks_like_srecord(std::string_view line) {
    return line.size() >= 2 && (line[0] == 'S' || line[0] == 's') && line[1] >= '0' &&
           line[1] <= '9';
}

std::optional<SRecord> parse_srecord(std::string_view line) {
    if (!looks_like_srecord(line)) return std::nullopt;
    const int type = line[1] - '0';
    const auto bytes = hex_bytes(line.substr(2));
    if ((type != 0 && type != 1 && type != 9) || !bytes || bytes->size() < 4) return std::nullopt;
    if ((*bytes)[0] != bytes->size() - 1) return std::nullopt;
    unsigned sum = 0;
    for (const std::uint8_t byte : *bytes) sum += byte;
    // Count, address, data and the checksum itself always add up to FF.
    if ((sum & 0xFF) != 0xFF) return std::nullopt;
    SRecord record;
    record.type = type;
    record.address = (*bytes)[1] * 256U + (*bytes)[2];
    record.data.assign(bytes->begin() + 3, bytes->end() - 1);
    return record;
}

std::string format_srecord(const SRecord& record) {
    std::string text = "S";
    text += static_cast<char>('0' + record.type);
    const auto count = static_cast<unsigned>(record.data.size()) + 3;
    const unsigned high = (record.address >> 8) & 0xFF;
    const unsigned low = record.address & 0xFF;
    unsigned sum = count + high + low;
    append_hex(text, count);
    append_hex(text, high);
    append_hex(text, low);
    for (const std::uint8_t byte : record.data) {
        append_hex(text, byte);
        sum += byte;
    }
    append_hex(text, 0xFF - (sum & 0xFF));
    return text;
}

}  // namespace meter
