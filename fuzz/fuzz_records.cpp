// SPDX-License-Identifier: GPL-3.0-or-later
// The logged data of the meter: line ends, kinds of lines, headings and fields, and the table made
// of them.
#include <cmath>

#include "column_headers.h"
#include "fuzzing.h"
#include "logger_files.h"
#include "record_lines.h"
#include "record_model.h"

namespace {

void check_line_ends(const QByteArray& content, const QByteArray& text) {
    HOLDS(m47::logger::with_line_ends(text) == text);
    HOLDS(text.isEmpty() || text.endsWith("\r\n"));
    HOLDS(text.count('\r') == text.count('\n'));
    QByteArray plain = content;
    QByteArray plain_text = text;
    for (const char end : {'\r', '\n'}) {
        plain.replace(end, "");
        plain_text.replace(end, "");
    }
    HOLDS(plain == plain_text);
}

void check_line(std::string_view line) {
    const auto fields = m47::logger::blank_separated(line);
    for (const std::string_view field : fields) {
        HOLDS(!field.empty() && field.find(' ') == std::string_view::npos);
        double number = 0;
        if (m47::logger::field_number(field, number)) HOLDS(!std::isnan(number));
    }
    const m47::logger::LineKind kind = m47::logger::line_kind(line);
    if (kind != m47::logger::LineKind::other)
        HOLDS(fields.size() >= 2 && fields.size() <= m47::logger::kMostFields);
    HOLDS(static_cast<std::size_t>(m47::logger::heading_names(line).size()) == fields.size());
}

/// Every line is one row, shown once and whole, however the table is sorted.
void check_model(const QByteArray& text, int column) {
    m47::logger::RecordModel model;
    model.set_text(text);
    qsizetype lines = 0;
    for (const QByteArray& line : text.split('\n')) lines += line.size() > 1 ? 1 : 0;
    HOLDS(model.rowCount() == lines);
    const QString before = model.tab_separated({});
    HOLDS(before.count(u'\n') == lines + 1);
    HOLDS(before.count(u'\t') == (lines + 1) * (model.columnCount() - 1));
    model.sort(column % model.columnCount(), Qt::DescendingOrder);
    HOLDS(model.tab_separated({}).size() == before.size());
    model.sort(0);
    HOLDS(model.tab_separated({}) == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const int column = static_cast<int>(input.byte());
    const QByteArray text = m47::logger::with_line_ends(input.byte_array());
    check_line_ends(input.byte_array(), text);
    check_line(input.bytes().substr(0, input.bytes().find('\r')));
    check_model(text, column);
    const m47::logger::ColumnHeaders headers = m47::logger::column_headers(input.text());
    HOLDS(headers.analog.endsWith(QLatin1String("\r\n")));
    HOLDS(headers.digital.endsWith(QLatin1String("\r\n")));
    return 0;
}
