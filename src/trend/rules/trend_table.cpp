// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_table.h"

#include <array>
#include <charconv>
#include <string>

#include "row_time.h"

namespace m47::trend {
namespace {

constexpr std::array<const char*, measurement::kQuantities.size()> kNames{"LEV", "BER", "MER"};
constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

void add_number(std::string& text, float value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), end);
}

void add_row(std::string& text, const std::string& program, const std::string& unit,
             const TrendPoint& point) {
    text.append(measurement::time_text(point.time)).append(1, '\t').append(program);
    std::string marks;
    for (const measurement::Quantity quantity : measurement::kQuantities) {
        text += '\t';
        const measurement::Reading reading = point.reading(quantity);
        if (!reading.measured()) continue;
        add_number(text, reading.value);
        if (reading.mark == measurement::RangeMark::none) continue;
        if (!marks.empty()) marks += ' ';
        marks += kNames[static_cast<std::size_t>(quantity)];
        marks += reading.mark == measurement::RangeMark::below ? '<' : '>';
    }
    text.append(1, '\t').append(measurement::verdict_text(point.status).toStdString());
    text.append(1, '\t').append(marks).append(1, '\t').append(unit).append(1, '\n');
}

bool put_out(QIODevice& file, std::string& text) {
    const auto size = static_cast<qint64>(text.size());
    const bool whole = file.write(text.data(), size) == size;
    text.clear();
    return whole;
}

}  // namespace

bool write_trend_table(QIODevice& file, std::span<const TrendSeries* const> series) {
    std::string text = "TIME\tPROGRAM";
    for (const char* name : kNames) text.append(1, '\t').append(name);
    text += "\tSTATUS\tMARKS\tUNIT\n";
    for (const TrendSeries* each : series) {
        const std::string program = each->key().name().simplified().toLatin1().toStdString();
        const std::string unit = measurement::unit_text(each->key().unit).toStdString();
        for (const TrendPoint& point : each->points()) {
            add_row(text, program, unit, point);
            if (text.size() >= kBlockBytes && !put_out(file, text)) return false;
        }
    }
    return put_out(file, text);
}

}  // namespace m47::trend
