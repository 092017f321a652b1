// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_output.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "row_time.h"
#include "tab_lines.h"

namespace m47::measurement {
namespace {

struct OutputCell {
    const char* name;
    QString value;  ///< empty for none
    bool number = false;
    const char* behind_name = "";
};

/// The shortest text that is this value again.
QString number_text(float value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

QString number_text(const std::optional<float>& value) {
    return value && std::isfinite(*value) ? number_text(*value) : QString();
}

/// "+05:30".
QString offset_text(int seconds) {
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("%1%2:%3")
        .arg(seconds < 0 ? QChar(u'-') : QChar(u'+'))
        .arg(minutes / 60, 2, 10, QChar(u'0'))
        .arg(minutes % 60, 2, 10, QChar(u'0'));
}

/// The instant is one of the clock on the wall.
QString iso_text(const std::optional<double>& instant, int offset) {
    if (!instant) return {};
    return QString::fromStdString(time_text(*instant)).replace(u' ', u'T') + offset_text(offset);
}

std::vector<OutputCell> output_cells(const Measurement& measured, int offset) {
    std::vector<OutputCell> cells{{"time", iso_text(measured.instant, offset)},
                                  {"plan", measured.program.plan},
                                  {"program", measured.program.number},
                                  {"mode", mode_text(measured.mode)},
                                  {"frequency", number_text(measured.frequency), true},
                                  {"oscillator", number_text(measured.oscillator), true},
                                  {"unit", unit_text(measured.unit)}};
    for (std::size_t k = 0; k < kAllQuantities; ++k) {
        const Reading& reading = measured.readings[k];
        const bool there = reading.measured();
        cells.push_back({kQuantityNames[k], there ? number_text(reading.value) : QString(), true});
        cells.push_back({kQuantityNames[k],
                         there ? QString::fromLatin1(mark_text(reading.mark)) : QString(), false,
                         "_mark"});
    }
    cells.push_back({"verdict", verdict_text(measured.verdict)});
    return cells;
}

QString name_of(const OutputCell& cell) {
    return QLatin1String(cell.name) + QLatin1String(cell.behind_name);
}

QString csv_cell(const QString& text) {
    bool plain = true;
    for (const QChar c : {u',', u'"', u'\n', u'\r'}) plain = plain && !text.contains(c);
    return plain ? text : u'"' + QString(text).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QByteArray separated(OutputFormat format, const QStringList& texts) {
    if (format == OutputFormat::tsv) return tab_line(texts);
    QStringList cells;
    for (const QString& text : texts) cells += csv_cell(text);
    return cells.join(u',').toUtf8() + "\r\n";
}

QByteArray json_text(const QString& text) {
    // The library writes arrays and objects alone.
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.sliced(1, array.size() - 2);
}

QByteArray json_value(const OutputCell& cell) {
    if (cell.value.isEmpty()) return "null";
    return cell.number ? cell.value.toLatin1() : json_text(cell.value);
}

QByteArray json_line(const std::vector<OutputCell>& cells) {
    QByteArrayList members;
    for (const OutputCell& cell : cells)
        members += '"' + name_of(cell).toLatin1() + "\":" + json_value(cell);
    return '{' + members.join(',') + "}\n";
}

}  // namespace

QString mode_text(MeasureMode mode) {
    if (mode == MeasureMode::none) return {};
    return mode == MeasureMode::digital ? QStringLiteral("digital") : QStringLiteral("analog");
}

QByteArray mark_text(RangeMark mark) {
    if (mark == RangeMark::none) return {};
    return mark == RangeMark::below ? "<" : ">";
}

QByteArray output_header(OutputFormat format) {
    if (format == OutputFormat::json) return {};
    QStringList names;
    for (const OutputCell& cell : output_cells({}, 0)) names += name_of(cell);
    return separated(format, names);
}

QByteArray output_line(OutputFormat format, const Measurement& measured, int offset) {
    const std::vector<OutputCell> cells = output_cells(measured, offset);
    if (format == OutputFormat::json) return json_line(cells);
    QStringList values;
    for (const OutputCell& cell : cells) values += cell.value;
    return separated(format, values);
}

}  // namespace m47::measurement
