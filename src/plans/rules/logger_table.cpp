// SPDX-License-Identifier: GPL-3.0-or-later
#include "logger_table.h"

#include <QMap>
#include <QRegularExpression>
#include <algorithm>

#include "numbers.h"

namespace m47::plans {
namespace {

using TableContent = QMap<QString, QString>;

constexpr const char* kPair = "00";

QString pair(double value) {
    return link::format_number(value, kPair);
}

TableContent content_of_table(const QString& text) {
    TableContent content;
    for (const QString& line : table_lines(text))
        if (!table_line_number(line).trimmed().isEmpty())
            content[table_line_number(line)] =
                table_line_program(line) + u' ' + table_line_state(line);
    return content;
}

TableContent planned_table(const std::vector<programme::ProgramRecord>& programs) {
    TableContent content;
    for (const programme::ProgramRecord& program : programs)
        if (program.logger_state)
            content[pair(link::typed_value(program.logger_pos))] =
                pair(link::typed_value(program.pg_num)) + u' ' + pair(1);
    return content;
}

/// What counts of a program and state.
QString active_part(const QString& entry) {
    return table_entry_active(entry) ? entry : QString();
}

template <class Counts>
int count_rows(const std::vector<TableComparison>& rows, Counts counts) {
    return static_cast<int>(std::ranges::count_if(rows, counts));
}

}  // namespace

bool table_entry_active(const QString& entry) {
    return link::meter_value(entry.section(u' ', -1)) != 0;
}

bool TableComparison::matches() const {
    return !judged || active_part(planned) == active_part(found);
}

int TableCheck::planned() const {
    return count_rows(rows, [](const auto& row) { return table_entry_active(row.planned); });
}

int TableCheck::found() const {
    return count_rows(rows, [](const auto& row) { return !row.found.isEmpty(); });
}

int TableCheck::active() const {
    return count_rows(rows, [](const auto& row) { return table_entry_active(row.found); });
}

int TableCheck::wrong() const {
    return count_rows(rows, [](const auto& row) { return !row.matches(); });
}

QStringList table_lines(const QString& text) {
    static const QRegularExpression kEnd(QStringLiteral("\r\n|\r|\n"));
    QStringList lines = text.split(kEnd);
    if (lines.constLast().isEmpty()) lines.removeLast();
    return lines;
}

QString table_line_number(const QString& line) {
    return line.mid(0, 2);
}

QString table_line_program(const QString& line) {
    return line.mid(3, 2);
}

QString table_line_state(const QString& line) {
    return line.mid(6, 2);
}

bool table_line_active(const QString& line) {
    return link::meter_value(table_line_state(line)) != 0;
}

std::vector<TableComparison> compare_table(const std::vector<programme::ProgramRecord>& programs,
                                           UploadMode mode, const QString& before,
                                           const QString& after) {
    TableContent planned;
    if (mode == kDisable)
        for (const QString& line : table_lines(before))
            if (!table_line_number(line).trimmed().isEmpty())
                planned[table_line_number(line)] = table_line_program(line) + u' ' + pair(0);
    planned.insert(planned_table(programs));
    const TableContent found = content_of_table(after);
    TableContent lines = planned;
    lines.insert(found);
    std::vector<TableComparison> rows;
    for (const QString& line : lines.keys())
        rows.push_back({line, planned.value(line), found.value(line),
                        mode != kAppend || planned.contains(line)});
    return rows;
}

}  // namespace m47::plans
