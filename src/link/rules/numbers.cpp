// SPDX-License-Identifier: GPL-3.0-or-later
#include "numbers.h"

#include <QByteArray>
#include <QLocale>
#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>

namespace m47::link {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

bool is_digit(QChar c) {
    return c >= u'0' && c <= u'9';
}

/// Reads along a text and collects the number that it begins with, in the form "-12.5e3".
class NumberReader {
  public:
    NumberReader(const QString& text, QChar separator) : text_(text), separator_(separator) {}

    QByteArray read() {
        while (position_ < text_.size() && text_[position_].isSpace()) ++position_;
        read_sign();
        const bool whole = read_digits();
        const bool fraction = read_fraction(whole);
        if (!whole && !fraction) return {};
        read_exponent();
        return number_;
    }

  private:
    QChar peek(qsizetype ahead = 0) const {
        return position_ + ahead < text_.size() ? text_[position_ + ahead] : QChar();
    }

    void read_sign() {
        if (peek() == u'-') number_ += '-';
        if (peek() == u'-' || peek() == u'+') ++position_;
    }

    bool read_digits() {
        const qsizetype begin = position_;
        for (; is_digit(peek()); ++position_) number_ += text_[position_].toLatin1();
        return position_ > begin;
    }

    bool read_fraction(bool whole) {
        if (peek() != u'.' && peek() != separator_) return false;
        if (!whole && !is_digit(peek(1))) return false;
        ++position_;
        number_ += '.';
        return read_digits();
    }

    void read_exponent() {
        if (peek() != u'e' && peek() != u'E') return;
        const bool sign = peek(1) == u'-' || peek(1) == u'+';
        if (!is_digit(peek(sign ? 2 : 1))) return;
        number_ += 'e';
        if (peek(1) == u'-') number_ += '-';
        position_ += sign ? 2 : 1;
        read_digits();
    }

    const QString& text_;
    const QChar separator_;
    qsizetype position_ = 0;
    QByteArray number_;
};

double leading_number(const QString& text, QChar separator) {
    const QByteArray number = NumberReader(text, separator).read();
    bool in_range = false;
    double value = number.toDouble(&in_range);
    if (in_range || number.isEmpty()) return value;
    // A stream gives the nearest double for what is beyond the range, so that a bound set later
    // still catches it.
    std::istringstream stream(number.toStdString());
    stream.imbue(std::locale::classic());
    stream >> value;
    return value;
}

/// The shortest decimal text that denotes `value`, without exponent: what a person would write.
std::string shortest_text(double value) {
    // The smallest double has 324 places before its digits, the longest text 17 digits more.
    std::array<char, 400> text{};
    if (!std::isfinite(value)) value = 0;
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    return {text.data(), result.ptr};
}

/// `number` (digits, maybe with a decimal point) rounded half up to `places` decimals, as its
/// digits without the point.
std::string rounded_digits(const std::string& number, std::size_t places) {
    const std::size_t point = std::min(number.find('.'), number.size());
    std::string digits = number.substr(0, point);
    std::string fraction = point < number.size() ? number.substr(point + 1) : std::string();
    const bool up = fraction.size() > places && fraction[places] >= '5';
    fraction.resize(places, '0');
    digits += fraction;
    if (!up) return digits;
    std::size_t at = digits.size();
    while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
    if (at == 0) return '1' + digits;
    ++digits[at - 1];
    return digits;
}

}  // namespace

double meter_value(const QString& text) {
    return leading_number(text, u'.');
}

double typed_value(const QString& text) {
    const QString separator = QLocale().decimalPoint();
    return leading_number(text, separator.isEmpty() ? QChar(u'.') : separator.front());
}

QString format_number(double value, const char* picture) {
    const std::string_view pattern(picture);
    const std::size_t first = std::min(pattern.find_first_of("0."), pattern.size());
    const std::size_t last = pattern.find_last_of("0.") + 1;
    const std::string_view body = pattern.substr(first, last - first);
    const std::size_t point = std::min(body.find('.'), body.size());
    const std::size_t places = point < body.size() ? body.size() - point - 1 : 0;

    std::string digits = rounded_digits(shortest_text(std::fabs(value)), places);
    const std::size_t significant = std::min(digits.find_first_not_of('0'), digits.size());
    const bool negative = value < 0 && significant < digits.size();
    digits.erase(0, std::min(significant, digits.size() - places));
    if (digits.size() < point + places) digits.insert(0, point + places - digits.size(), '0');
    if (point < body.size()) digits.insert(digits.size() - places, 1, '.');

    std::string text(pattern.substr(0, first));
    if (negative) text += '-';
    text += digits;
    text += pattern.substr(last);
    return QString::fromStdString(text);
}

QString plain_text(double value) {
    return QString::fromStdString(value == 0 ? "0" : shortest_text(value));
}

QString num_to_hex(long value, int base) {
    QString result;
    for (; value > 0; value /= base)
        result.prepend(QLatin1Char(kDigits[static_cast<std::size_t>(value % base)]));
    return result;
}

QString hex_byte(long value) {
    const QString digits = num_to_hex(value, 16);
    return digits.size() < 2 ? u'0' + digits : digits;
}

QString hex_to_num(const QString& text, int base) {
    qulonglong value = 0;
    for (const QChar c : text) {
        const std::size_t digit = kDigits.find(c.toUpper().toLatin1());
        if (digit >= static_cast<std::size_t>(base)) break;
        value = value * static_cast<qulonglong>(base) + digit;
    }
    return QString::number(value);
}

QString format_freq(const QString& text) {
    const double frequency = typed_value(text);
    const bool satellite_if = frequency >= 900 && frequency <= 2150;
    return format_number(frequency, satellite_if ? "0000.0" : "00000");
}

}  // namespace m47::link
