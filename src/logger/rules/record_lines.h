// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <string_view>
#include <vector>

namespace m47::logger {

/// What a line of the logged data looks like.
enum class LineKind {
    record,    ///< "D07 11778.0 S07 65.2 1.0E-05 12.3": A or D with the program's number, values
    headings,  ///< "DPR MHz CH  (dBuV)   BER    CN": the names of the values below it
    title,     ///< "LOG 0001 01/03/06 08:00": the beginning of one log
    other,
};

/// More fields than any record has; a line of more is no record.
inline constexpr std::size_t kMostFields = 16;

/// The fields of a line: it is split at its blanks, however many stand together.
std::vector<std::string_view> blank_separated(std::string_view line);

LineKind line_kind(std::string_view line);

/// The names in a line of headings, a unit without its brackets: "DPR" reads "PR".
QStringList heading_names(std::string_view headings);

/// The number that a field holds, a mark such as "<" before it left out; nothing when it holds none
/// ("---").
bool field_number(std::string_view field, double& number);

}  // namespace m47::logger
