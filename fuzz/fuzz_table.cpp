// SPDX-License-Identifier: GPL-3.0-or-later
// The meter's logger table: its lines, what of them is switched off, and the comparison with what
// it should hold. The input's first byte chooses the kind of upload.
#include <algorithm>

#include "fuzzing.h"
#include "logger_table.h"
#include "upload_commands.h"

namespace {

void check_lines(const QString& text, const QStringList& lines) {
    for (const QString& line : lines) {
        HOLDS(!line.contains(u'\r') && !line.contains(u'\n'));
        HOLDS(line.startsWith(m47::plans::table_line_number(line)));
        HOLDS(m47::plans::table_line_program(line).size() <= 2);
        HOLDS(m47::plans::table_line_state(line).size() <= 2);
        if (line.size() < 7) HOLDS(!m47::plans::table_line_active(line));
    }
    QString plain = text;
    plain.remove(u'\r').remove(u'\n');
    HOLDS(lines.join(QString()) == plain);
    // Whatever ends the lines, they are the same.
    HOLDS(m47::plans::table_lines(lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")) ==
              lines ||
          lines.isEmpty());
}

void check_switching_off(const QStringList& lines) {
    const QStringList commands = m47::plans::disabling_commands(lines);
    HOLDS(commands.size() ==
          std::count_if(lines.begin(), lines.end(), m47::plans::table_line_active));
    for (const QString& command : commands) {
        HOLDS(command.startsWith(QLatin1String("DATAPROGRAM ")));
        HOLDS(command.endsWith(QLatin1String(" 00")));
    }
}

void check_comparison(m47::plans::UploadMode mode, const QString& before, const QString& after) {
    QString previous;
    for (const auto& row : m47::plans::compare_table({}, mode, before, after)) {
        HOLDS(!row.line.trimmed().isEmpty());
        HOLDS(previous < row.line);
        HOLDS(!row.planned.isEmpty() || !row.found.isEmpty());
        HOLDS(row.judged == (mode != m47::plans::kAppend));
        previous = row.line;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const auto mode = static_cast<m47::plans::UploadMode>(input.byte() % 3);
    const QString text = input.text();
    const QStringList lines = m47::plans::table_lines(text);
    check_lines(text, lines);
    check_switching_off(lines);
    check_comparison(mode, text.left(text.size() / 2), text.mid(text.size() / 2));
    return 0;
}
