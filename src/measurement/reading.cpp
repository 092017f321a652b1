// SPDX-License-Identifier: GPL-3.0-or-later
#include "reading.h"

#include <algorithm>

#include "row_time.h"

namespace m47::measurement {
namespace {

void skip_blanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
}

RangeMark take_mark(std::string_view& text) {
    if (text.empty() || (text[0] != '<' && text[0] != '>')) return RangeMark::none;
    const RangeMark mark = text[0] == '<' ? RangeMark::below : RangeMark::above;
    text.remove_prefix(1);
    return mark;
}

QString exponent_text(float value) {
    // The meter writes its exponents without a leading zero.
    return QString::number(static_cast<double>(value), 'E', 1)
        .replace(QLatin1String("E-0"), QLatin1String("E-"))
        .replace(QLatin1String("E+0"), QLatin1String("E+"));
}

}  // namespace

Reading reading_of(Quantity quantity, std::string_view text) {
    skip_blanks(text);
    const RangeMark mark = take_mark(text);
    skip_blanks(text);
    const std::optional<double> value = leading_value(text);
    if (!value || std::fabs(*value) > std::numeric_limits<float>::max()) return {};
    if (is_error_rate(quantity) && *value < 0) return {};
    return {static_cast<float>(*value), mark};
}

Reading reading_of(Quantity quantity, const QString& text) {
    const QByteArray bytes = text.toLatin1();
    return reading_of(quantity, std::string_view(bytes.data(), std::size_t(bytes.size())));
}

QString reading_text(Quantity quantity, const Reading& reading) {
    if (!reading.measured()) return QStringLiteral("–");
    QString text;
    if (reading.mark == RangeMark::below) text += u'<';
    if (reading.mark == RangeMark::above) text += u'>';
    if (is_error_rate(quantity))
        return text + (reading.value > 0 ? exponent_text(reading.value) : QStringLiteral("0"));
    return text + QString::number(static_cast<double>(reading.value), 'f', 1);
}

}  // namespace m47::measurement
