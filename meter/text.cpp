// SPDX-License-Identifier: GPL-3.0-or-later
#include "text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace meter {

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// The byte of a name in "<>", as escaped() writes it; nothing for any other text.
std::optional<char> named_byte(std::string_view name) {
    if (name == "CR") return '\r';
    if (name == "LF") return '\n';
    if (name == "TAB") return '\t';
    if (name == "LT") return '<';
    if (name.size() != 2 || upper(name) != name) return std::nullopt;
    const auto high = hex_digit(name[0]);
    const auto low = hex_digit(name[1]);
    if (!high || !low) return std::nullopt;
    return static_cast<char>(static_cast<unsigned char>(*high * 16 + *low));
}

}  // namespace

std::optional<unsigned> hex_digit(char c) {
    if (is_digit(c)) return static_cast<unsigned>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    return std::nullopt;
}

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return std::string(text.substr(first, last - first + 1));
}

std::vector<std::string> words(std::string_view text) {
    std::vector<std::string> result;
    std::size_t start = text.find_first_not_of(" \t");
    while (start != std::string_view::npos) {
        const auto end = std::min(text.find_first_of(" \t", start), text.size());
        result.emplace_back(text.substr(start, end - start));
        start = text.find_first_not_of(" \t", end);
    }
    return result;
}

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return result;
}

std::optional<int> whole_number(std::string_view text) {
    if (text.empty() || text.size() > 9 || !std::all_of(text.begin(), text.end(), is_digit))
        return std::nullopt;
    int value = 0;
    for (const char c : text) value = value * 10 + (c - '0');
    return value;
}

std::optional<int> whole_number(std::string_view text, int low, int high) {
    const auto value = whole_number(text);
    if (!value || *value < low || *value > high) return std::nullopt;
    return value;
}

std::optional<double> decimal_number(std::string_view text) {
    const auto point = text.find_first_of(".,");
    const auto whole = whole_number(text.substr(0, point));
    if (!whole) return std::nullopt;
    if (point == std::string_view::npos) return *whole;
    const auto digits = text.substr(point + 1);
    const auto part = whole_number(digits);
    if (!part) return std::nullopt;
    return *whole + *part / std::pow(10.0, static_cast<double>(digits.size()));
}

std::string fixed(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    const double rounded = std::round(value * scale) / scale + 0.0;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, rounded);
    return buffer;
}

std::string zero_filled(int value, int digits) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%0*d", digits, value);
    return buffer;
}

std::string exponent_form(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.1E", value);
    std::string result = buffer;
    const auto sign = result.find('E') + 1;
    while (sign + 2 < result.size() && result[sign + 1] == '0') result.erase(sign + 1, 1);
    return result;
}

std::string blank_filled(std::string_view text, std::size_t width) {
    std::string result(text.substr(0, width));
    result.resize(width, ' ');
    return result;
}

std::string escaped(std::string_view bytes) {
    std::string result;
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\r') {
            result += "<CR>";
        } else if (c == '\n') {
            result += "<LF>";
        } else if (c == '\t') {
            result += "<TAB>";
        } else if (c == '<') {
            result += "<LT>";
        } else if (code < 0x20 || code > 0x7E) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "<%02X>", static_cast<unsigned>(code));
            result += buffer;
        } else {
            result += c;
        }
    }
    return result;
}

bool unescape(std::string_view printable, std::string& bytes) {
    constexpr std::size_t longest_name = 3;
    bytes.clear();
    for (std::size_t at = 0; at < printable.size(); ++at) {
        const char c = printable[at];
        if (c < 0x20 || c > 0x7E) return false;
        if (c != '<') {
            bytes += c;
            continue;
        }
        const auto end = printable.substr(at + 1, longest_name + 1).find('>');
        if (end == std::string_view::npos) return false;
        const auto byte = named_byte(printable.substr(at + 1, end));
        if (!byte) return false;
        bytes += *byte;
        at += end + 1;
    }
    return true;
}

}  // namespace meter
