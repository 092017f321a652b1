// SPDX-License-Identifier: GPL-3.0-or-later
#include "line_protocol.h"

#include <array>
#include <charconv>
#include <cmath>

#include "measurement_output.h"
#include "program_state.h"

namespace m47::publish {
namespace {

using measurement::Quantity;
using measurement::RangeMark;
using measurement::Reading;

/// The shortest text that is read back as the same number.
template <typename Number>
QByteArray number_text(Number number) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end - text.data()};
}

/// What separates is escaped; the protocol knows no line end within a tag, and none that ends in a
/// backslash.
QByteArray tag_text(const QString& words) {
    QByteArray text;
    for (const char letter : words.simplified().toUtf8()) {
        if (letter == ',' || letter == '=' || letter == ' ') text += '\\';
        text += letter == '\\' ? '/' : letter;
    }
    return text;
}

/// One line while it is made. An engine takes neither a tag nor a field without a value.
class Line {
  public:
    Line(const char* measurement, const Station& station) : text_(measurement) {
        tag("site", station.site);
        tag("meter", station.meter);
    }

    void tag(const char* name, const QString& words) {
        const QByteArray value = tag_text(words);
        if (!value.isEmpty()) text_ += QByteArray(",") + name + '=' + value;
    }
    void number(const QByteArray& name, const QByteArray& value) {
        text_ += (fields_++ == 0 ? ' ' : ',') + name + '=' + value;
    }
    template <typename Number>
    void value(const QByteArray& name, Number value) {
        if (std::isfinite(value)) number(name, number_text(value));
    }
    void count(const QByteArray& name, qint64 value) { number(name, number_text(value) + 'i'); }

    QByteArray ended(qint64 milliseconds) const {
        return text_ + ' ' + QByteArray::number(milliseconds) + "000000\n";
    }

  private:
    QByteArray text_;
    int fields_ = 0;
};

bool is_level(Quantity quantity) {
    return quantity == Quantity::level || quantity == Quantity::noise;
}

/// A sum of tenths has no more digits than a hundredth needs.
double in_dbuv(float value, LevelUnit unit) {
    constexpr double kHundredths = 100;
    return std::round((static_cast<double>(value) + unit_offset(unit)) * kHundredths) / kHundredths;
}

void add_reading(Line& line, Quantity quantity, const Reading& reading,
                 std::optional<LevelUnit> unit) {
    const QByteArray name = measurement::kQuantityNames[static_cast<std::size_t>(quantity)];
    if (!is_level(quantity))
        line.value(name, reading.value);
    else if (unit)
        line.value(name, in_dbuv(reading.value, *unit));
    else
        return;
    if (reading.mark != RangeMark::none)
        line.count(name + "_mark", reading.mark == RangeMark::below ? -1 : 1);
}

}  // namespace

QByteArray measurement_line(const Station& station, const measurement::Measurement& measured,
                            qint64 milliseconds) {
    Line line("m47", station);
    line.tag("plan", measured.program.plan);
    line.tag("program", measured.program.number);
    line.tag("mode", measurement::mode_text(measured.mode));
    int readings = 0;
    for (std::size_t place = 0; place < measurement::kAllQuantities; ++place) {
        const auto quantity = static_cast<Quantity>(place);
        const Reading& reading = measured.reading(quantity);
        if (!reading.measured()) continue;
        ++readings;
        add_reading(line, quantity, reading, measured.unit);
    }
    // Each row has this one, so rows can be counted.
    line.count("readings", readings);
    if (measured.frequency) line.value("frequency", *measured.frequency);
    if (measured.oscillator) line.value("oscillator", *measured.oscillator);
    if (measured.verdict != measurement::Verdict::none)
        line.count("pass", measured.verdict == measurement::Verdict::pass ? 1 : 0);
    return line.ended(milliseconds);
}

QByteArray health_line(const Station& station, const Health& health, qint64 milliseconds) {
    Line line("m47_probe", station);
    line.count("link_up", health.link_up ? 1 : 0);
    line.count("passes", health.passes);
    if (health.seconds_a_pass) line.value("seconds_a_pass", *health.seconds_a_pass);
    line.count("retries", health.retries);
    line.count("reconnects", health.reconnects);
    line.count("rows_waiting", health.rows_waiting);
    line.value("oldest_waiting", health.oldest_waiting);
    line.count("rows_dropped", health.rows_dropped);
    line.count("rows_set_aside", health.rows_set_aside);
    return line.ended(milliseconds);
}

}  // namespace m47::publish
