// SPDX-License-Identifier: GPL-3.0-or-later
#include "record_lines.h"

#include <algorithm>
#include <charconv>

namespace m47::logger {
namespace {

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

bool names_program(std::string_view field) {
    return field.size() > 1 && (field[0] == 'A' || field[0] == 'D') &&
           std::all_of(field.begin() + 1, field.end(), is_digit);
}

}  // namespace

std::vector<std::string_view> blank_separated(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t begin = line.find_first_not_of(' ');
        if (begin == std::string_view::npos) return fields;
        line.remove_prefix(begin);
        const std::size_t end = std::min(line.find(' '), line.size());
        fields.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

LineKind line_kind(std::string_view line) {
    const auto fields = blank_separated(line);
    if (fields.size() < 2 || fields.size() > kMostFields) return LineKind::other;
    if (names_program(fields[0])) return LineKind::record;
    if (fields[0] == "APR" || fields[0] == "DPR") return LineKind::headings;
    return fields[0] == "LOG" ? LineKind::title : LineKind::other;
}

QStringList heading_names(std::string_view headings) {
    QStringList names;
    for (const std::string_view field : blank_separated(headings)) {
        QString name =
            QString::fromLatin1(field.data(), static_cast<qsizetype>(field.size())).trimmed();
        if (name.startsWith(u'(') && name.endsWith(u')')) name = name.mid(1, name.size() - 2);
        names += names.isEmpty() ? name.mid(1) : name;
    }
    return names;
}

bool field_number(std::string_view field, double& number) {
    if (!field.empty() && (field[0] == '<' || field[0] == '>' || field[0] == '+'))
        field.remove_prefix(1);
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, number);
    return error == std::errc() && stop == end && number == number;
}

}  // namespace m47::logger
