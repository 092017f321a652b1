// SPDX-License-Identifier: GPL-3.0-or-later
#include "log_cells.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

#include "measurement_line.h"

namespace m47::sites {
namespace {

constexpr Bilingual kLongLine{"longer than a line of a log", "più lunga di una riga di un log"};
constexpr Bilingual kFieldCount{"%1 fields instead of 11", "%1 campi invece di 11"};
constexpr Bilingual kNoTime{"no date and time: %1 %2", "data e ora mancanti o errate: %1 %2"};
constexpr Bilingual kNoNumber{"%1 is no number: %2", "%1 non è un numero: %2"};
constexpr Bilingual kNoVerdict{"STATUS is neither PASS nor FAIL: %1",
                               "STATUS non è né PASS né FAIL: %1"};
constexpr Bilingual kNothing{"nothing was measured", "nulla è stato misurato"};

constexpr std::size_t kLogFields = 11;
constexpr std::size_t kLongestLine = 1000;
/// What is told of a cell.
constexpr std::size_t kToldCell = 40;
constexpr std::size_t kStatusField = 10;

struct NumberField {
    std::size_t place;
    const char* name;
    bool tuned;  ///< a frequency has no range mark
    bool rate;
};
constexpr std::array kNumbers{
    NumberField{2, "FR", true, false},    NumberField{3, "OSC", true, false},
    NumberField{4, "LEV", false, false},  NumberField{5, "BER", false, true},
    NumberField{6, "PVBER", false, true}, NumberField{7, "CFO", false, false},
    NumberField{8, "MER", false, false}};

std::string_view without_blanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string_view> cells_of(std::string_view line) {
    std::vector<std::string_view> cells;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = line.find('\t');
        cells.push_back(line.substr(0, end));
        if (end != std::string_view::npos) line.remove_prefix(end + 1);
    }
    return cells;
}

QString told_cell(std::string_view cell) {
    const std::string_view told = cell.substr(0, kToldCell);
    return QString::fromLatin1(told.data(), static_cast<qsizetype>(told.size()));
}

/// All of `text` is one number that single precision holds.
bool is_whole_number_text(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    const std::size_t sign = text.starts_with('-') ? 1 : 0;
    if (sign < text.size() && (text[sign] < '0' || text[sign] > '9') && text[sign] != '.')
        return false;
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() &&
           std::fabs(value) <= std::numeric_limits<float>::max();
}

bool is_readable(const NumberField& field, std::string_view cell) {
    // What the meter answers to what it cannot measure.
    if (cell.empty() || (!field.tuned && cell == "ERROR")) return true;
    if (!field.tuned && (cell[0] == '<' || cell[0] == '>')) cell = without_blanks(cell.substr(1));
    if (field.rate && cell.starts_with('-')) return false;
    return is_whole_number_text(cell);
}

bool is_verdict(std::string_view cell) {
    return cell.empty() || cell == "PASS" || cell == "FAIL";
}

}  // namespace

std::optional<Said> why_unread(std::string_view line) {
    if (line.size() > kLongestLine) return Said{kLongLine, {}};
    const std::vector<std::string_view> cells = cells_of(line);
    if (cells.size() != kLogFields) return Said{kFieldCount, {QString::number(cells.size())}};
    if (!measurement::instant_of_line(line))
        return Said{kNoTime, {told_cell(cells[0]), told_cell(cells[1])}};
    for (const NumberField& field : kNumbers)
        if (!is_readable(field, without_blanks(cells[field.place])))
            return Said{kNoNumber, {QLatin1String(field.name), told_cell(cells[field.place])}};
    if (!is_verdict(cells[kStatusField])) return Said{kNoVerdict, {told_cell(cells[kStatusField])}};
    const bool empty = std::ranges::all_of(kNumbers, [&](const NumberField& field) {
        return without_blanks(cells[field.place]).empty();
    });
    return empty ? std::optional(Said{kNothing, {}}) : std::nullopt;
}

}  // namespace m47::sites
