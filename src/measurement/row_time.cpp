// SPDX-License-Identifier: GPL-3.0-or-later
#include "row_time.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace m47::measurement {
namespace {

constexpr int kCentury = 2000;
constexpr double kSecondsOfADay = 86400;

bool digit_at(std::string_view text, std::size_t place) {
    return place < text.size() && text[place] >= '0' && text[place] <= '9';
}

/// Three numbers of one to four digits with one other character between each two.
std::optional<std::array<int, 3>> three_numbers(std::string_view text) {
    std::array<int, 3> numbers{};
    for (std::size_t k = 0; k < numbers.size(); ++k) {
        if (k > 0) {
            if (text.empty()) return {};
            text.remove_prefix(1);
        }
        std::size_t digits = 0;
        for (; digits < 4 && digit_at(text, digits); ++digits)
            numbers[k] = numbers[k] * 10 + (text[digits] - '0');
        if (digits == 0) return {};
        text.remove_prefix(digits);
    }
    if (!text.empty()) return {};
    return numbers;
}

}  // namespace

std::optional<double> leading_value(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    const std::size_t sign = text.starts_with('-') ? 1 : 0;
    const std::size_t point = text.substr(sign).starts_with('.') ? 1 : 0;
    // Words such as "inf" are numbers to the library, not to the meter.
    if (!digit_at(text, sign + point)) return {};
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc()) return {};
    return value;
}

std::optional<double> row_midnight(std::string_view date) {
    const auto numbers = three_numbers(date);
    if (!numbers) return {};
    const auto [of_month, month, year] = *numbers;
    const std::chrono::year_month_day day{std::chrono::year(year < 100 ? kCentury + year : year),
                                          std::chrono::month(static_cast<unsigned>(month)),
                                          std::chrono::day(static_cast<unsigned>(of_month))};
    if (!day.ok()) return {};
    return kSecondsOfADay *
           static_cast<double>(std::chrono::sys_days(day).time_since_epoch().count());
}

std::optional<double> row_clock(std::string_view time) {
    const auto numbers = three_numbers(time);
    if (!numbers) return {};
    const auto [hours, minutes, seconds] = *numbers;
    if (hours > 23 || minutes > 59 || seconds > 59) return {};
    return (hours * 60.0 + minutes) * 60.0 + seconds;
}

double row_instant(const QDateTime& moment) {
    const QDate day = moment.date();
    const qint64 days = QDate(1970, 1, 1).daysTo(day);
    return kSecondsOfADay * static_cast<double>(days) +
           std::floor(moment.time().msecsSinceStartOfDay() / 1000.0);
}

std::string time_text(double time) {
    const auto whole = static_cast<std::int64_t>(std::floor(time));
    const std::chrono::sys_seconds moment{std::chrono::seconds(whole)};
    const auto midnight = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day day(midnight);
    const std::chrono::hh_mm_ss clock(moment - midnight);
    std::array<char, 64> text{};
    const int length = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(day.year()),
        static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()));
    return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace m47::measurement
