// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_record.h"

namespace m47::measurement {
namespace {

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
constexpr unsigned kMarkBits = 2;
constexpr unsigned kMarkMask = 3;

std::optional<float> number_of(float value) {
    return std::isnan(value) ? std::optional<float>() : value;
}

QByteArray bytes_of(std::optional<double> side) {
    return side ? QByteArray::number(*side, 'g', 17) : QByteArray();
}

/// The bytes that tell one set of limits from another.
QByteArray bytes_of(const LimitsInForce& limits) {
    QByteArray bytes;
    for (const auto& of : limits) {
        if (of) bytes += bytes_of(of->minimum) + ':' + bytes_of(of->maximum);
        bytes += ';';
    }
    return bytes;
}

}  // namespace

MeasurementRecord MeasurementRecords::pack(const Measurement& measurement) {
    MeasurementRecord record;
    for (std::size_t k = 0; k < kAllQuantities; ++k) {
        record.values[k] = measurement.readings[k].value;
        const auto mark = static_cast<unsigned>(measurement.readings[k].mark);
        record.marks = static_cast<std::uint16_t>(record.marks | mark << (kMarkBits * k));
    }
    record.frequency = measurement.frequency.value_or(kNoNumber);
    record.oscillator = measurement.oscillator.value_or(kNoNumber);
    record.program = place_of(measurement.program);
    record.limits = place_of(measurement.limits);
    record.unit = measurement.unit ? static_cast<std::int8_t>(*measurement.unit) : std::int8_t{-1};
    record.mode = measurement.mode;
    record.verdict = measurement.verdict;
    record.known = true;
    return record;
}

Measurement MeasurementRecords::unpack(const MeasurementRecord& record) const {
    Measurement made;
    for (std::size_t k = 0; k < kAllQuantities; ++k) {
        const unsigned mark = record.marks >> (kMarkBits * k) & kMarkMask;
        made.readings[k] = {record.values[k], static_cast<RangeMark>(mark)};
    }
    made.frequency = number_of(record.frequency);
    made.oscillator = number_of(record.oscillator);
    made.program = programs_[record.program];
    made.limits = limits_[record.limits];
    if (record.unit >= 0) made.unit = static_cast<LevelUnit>(record.unit);
    made.mode = record.mode;
    made.verdict = record.verdict;
    return made;
}

std::uint32_t MeasurementRecords::place_of(const ProgramIdentity& program) {
    const std::pair<QString, QString> key{program.plan, program.number};
    const auto found = program_places_.constFind(key);
    if (found != program_places_.constEnd()) return *found;
    const auto place = static_cast<std::uint32_t>(programs_.size());
    programs_.push_back(program);
    program_places_.insert(key, place);
    return place;
}

std::uint32_t MeasurementRecords::place_of(const LimitsInForce& limits) {
    // Mostly those of the measurement before.
    if (!limits_.empty() && limits_.back() == limits)
        return static_cast<std::uint32_t>(limits_.size() - 1);
    const QByteArray key = bytes_of(limits);
    const auto found = limit_places_.constFind(key);
    if (found != limit_places_.constEnd()) return *found;
    const auto place = static_cast<std::uint32_t>(limits_.size());
    limits_.push_back(limits);
    limit_places_.insert(key, place);
    return place;
}

}  // namespace m47::measurement
