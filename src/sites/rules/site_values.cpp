// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace m47::sites {
namespace {

using measurement::kAllQuantities;

constexpr unsigned kMarkBits = 2;

double shortest(float number) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.begin(), text.end(), number);
    double value = static_cast<double>(number);
    std::from_chars(text.begin(), written.ptr, value);
    return value;
}

QVariant value_of_side(std::optional<double> side) {
    return side ? QVariant(*side) : QVariant();
}

std::optional<double> side_in(const db::Query& row, int column) {
    const QVariant value = row.value(column);
    return value.isNull() ? std::nullopt : std::optional(value.toDouble());
}

}  // namespace

QVariant value_of(const QUuid& id) {
    return id.toRfc4122();
}

QUuid id_in(const db::Query& row, int column) {
    return QUuid::fromRfc4122(row.value(column).toByteArray());
}

QVariantList values_of(const std::optional<Instant>& instant) {
    if (!instant) return {QVariant(), QVariant()};
    return {instant->utc, instant->offset};
}

Instant instant_in(const db::Query& row, int column) {
    return {row.value(column).toDouble(), static_cast<int>(row.value(column + 1).toLongLong())};
}

QVariant value_of(const QString& text) {
    return text.isNull() ? QStringLiteral("") : text;
}

QVariant value_of(std::optional<float> number) {
    return number && !std::isnan(*number) ? QVariant(shortest(*number)) : QVariant();
}

std::optional<float> number_in(const db::Query& row, int column) {
    const QVariant value = row.value(column);
    return value.isNull() ? std::nullopt : std::optional(static_cast<float>(value.toDouble()));
}

QVariantList values_of_readings(const measurement::Measurement& measured) {
    QVariantList values;
    unsigned marks = 0;
    for (std::size_t k = 0; k < kAllQuantities; ++k) {
        values.push_back(value_of(std::optional(measured.readings[k].value)));
        marks |= static_cast<unsigned>(measured.readings[k].mark) << (kMarkBits * k);
    }
    values.push_back(marks);
    return values;
}

void take_values(const db::Query& row, int column, measurement::Measurement& measured) {
    for (measurement::Reading& reading : measured.readings)
        if (const auto value = number_in(row, column++)) reading.value = *value;
}

int take_small(const db::Query& row, int column, measurement::Measurement& measured) {
    constexpr unsigned kFewBits = 4;  // of the mode, of the verdict
    constexpr unsigned kUnitBits = 8;
    constexpr unsigned kNoUnit = 255;
    std::int64_t number = row.value(column).toLongLong();
    const auto next = [&number](unsigned bits) {
        const auto part = static_cast<unsigned>(number & ((1U << bits) - 1));
        number >>= bits;
        return part;
    };
    measured.mode = static_cast<measurement::MeasureMode>(next(kFewBits));
    measured.verdict = static_cast<measurement::Verdict>(next(kFewBits));
    if (const unsigned unit = next(kUnitBits); unit != kNoUnit)
        measured.unit = measurement::unit_of_index(static_cast<int>(unit));
    for (measurement::Reading& reading : measured.readings)
        reading.mark = static_cast<measurement::RangeMark>(next(kMarkBits));
    return static_cast<int>(number);
}

QVariantList values_of(const measurement::LimitsInForce& limits) {
    unsigned checked = 0;
    QVariantList values;
    for (std::size_t k = 0; k < kAllQuantities; ++k) {
        const auto& of = limits[k];
        if (of) checked |= 1U << k;
        values.push_back(value_of_side(of ? of->minimum : std::nullopt));
        values.push_back(value_of_side(of ? of->maximum : std::nullopt));
    }
    values.push_front(checked);
    return values;
}

measurement::LimitsInForce limits_in(const db::Query& row, int column) {
    const unsigned checked = row.value(column).toUInt();
    measurement::LimitsInForce limits;
    for (std::size_t k = 0; k < kAllQuantities; ++k) {
        if ((checked >> k & 1U) == 0) continue;
        const int at = column + 1 + 2 * static_cast<int>(k);
        limits[k] = measurement::Limits{side_in(row, at), side_in(row, at + 1)};
    }
    return limits;
}

}  // namespace m47::sites
