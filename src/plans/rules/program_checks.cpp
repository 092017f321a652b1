// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_checks.h"

#include <algorithm>
#include <array>

#include "box_numbers.h"
#include "diseqc_commands.h"
#include "numbers.h"
#include "program_limits.h"
#include "tuning_range.h"

namespace m47::plans {
namespace {

constexpr double kLowestBandwidth = 1;
constexpr double kHighestBandwidth = 40;
constexpr double kUsualBandwidth = 36;
constexpr double kLowestRatio = 1;  // dB
constexpr double kHighestRatio = 40;
constexpr double kHighestChber = 0.03;

using R = programme::ProgramRecord;
constexpr std::array kLimits{&R::lev_min,   &R::lev_max,   &R::noise_min, &R::noise_max,
                             &R::chber_min, &R::chber_max, &R::mer_min,   &R::mer_max};

constexpr const char* kFiveDigits = "00000";

/// A maximum below its minimum moves one above it.
void lift_maximum(const QString& minimum, QString& maximum) {
    const double low = programme::box_value(minimum);
    if (low > programme::box_value(maximum)) maximum = link::plain_text(low + 1);
}

/// What stands in a box and is in range stays as it was typed, without what is no number.
QString as_typed(const QString& text) {
    return text.trimmed().isEmpty() || programme::is_number(text) ? text
                                                                  : programme::number_text(text);
}

/// An entry that the list does not have is no selection, which counts as the first.
int selected(int index, int entries) {
    return index >= 0 && index < entries ? index : 0;
}

void correct_selections(programme::ProgramRecord& record) {
    constexpr int kCommands = static_cast<int>(programme::kDiseqcCommands.size());
    record.diseqc_cmd = selected(record.diseqc_cmd, kCommands);
    record.diseqc_cmd2 = selected(record.diseqc_cmd2, kCommands);
    record.lnb_volt = selected(record.lnb_volt, programme::kSupplyChoices);
    record.K22 = selected(record.K22, programme::kToneChoices);
    record.loc_osc0 = static_cast<int>(programme::oscillator_entry(record));
}

}  // namespace

QString checked_program_number(const QString& text) {
    return link::format_number(
        std::clamp(programme::box_value(text), 0.0, double{programme::kHighestProgram}), "000");
}

QString checked_frequency(const QString& text, bool direct, const QString& oscillator) {
    const double mhz = programme::box_value(oscillator);
    if (!direct && mhz == 0) return as_typed(text);
    const double typed = programme::box_value(text);
    const double corrected = programme::inside_range(typed, programme::tuning_range(direct, mhz));
    return corrected == typed ? as_typed(text) : programme::frequency_box_text(corrected, direct);
}

QString checked_symbol_rate(const QString& text) {
    const double rate = programme::box_value(text);
    if (rate < programme::kSymbolRateMinimum)
        return link::plain_text(programme::kSymbolRateMinimum);
    return rate > programme::kSymbolRateMaximum ? link::plain_text(programme::kSymbolRateMaximum)
                                                : as_typed(text);
}

QString bandwidth_on_enter(const QString& text) {
    const double mhz = std::clamp(programme::box_value(text), kLowestBandwidth, kHighestBandwidth);
    return programme::bandwidth_box_text(mhz);
}

QString bandwidth_on_leaving(const QString& text) {
    const double mhz = programme::box_value(text);
    const bool good = mhz >= kLowestBandwidth && mhz <= kHighestBandwidth;
    return programme::bandwidth_box_text(good ? mhz : kUsualBandwidth);
}

QString checked_oscillator(const QString& text) {
    if (text.trimmed().isEmpty()) return {};
    const double mhz = programme::box_value(text);
    if (mhz < programme::kOscillatorMinimum)
        return link::format_number(programme::kOscillatorMinimum, kFiveDigits);
    if (mhz > programme::kOscillatorMaximum)
        return link::format_number(programme::kOscillatorMaximum, kFiveDigits);
    return as_typed(text);
}

void correct_level_limits(QString& minimum, QString& maximum, double unit_offset) {
    const auto [lowest, highest] = programme::level_range(unit_offset);
    if (programme::box_value(minimum) < lowest) minimum = link::plain_text(lowest);
    // Room is left for a maximum above it.
    if (programme::box_value(minimum) > highest) minimum = link::plain_text(highest - 1);
    lift_maximum(minimum, maximum);
    if (programme::box_value(maximum) > highest) maximum = link::plain_text(highest);
}

void correct_ratio_limits(QString& minimum, QString& maximum) {
    const double low = programme::box_value(minimum);
    if (low < kLowestRatio || low > kHighestRatio) minimum = link::plain_text(kLowestRatio);
    lift_maximum(minimum, maximum);
}

void correct_chber_limits(QString& minimum, QString& maximum) {
    const double low = programme::box_value(minimum);
    if (low < 0) minimum = QStringLiteral("1E-8");
    if (low > kHighestChber) minimum = QStringLiteral("3E-2");
    // The step is that of the dB limits on purpose, though a ratio above 1 never alarms.
    lift_maximum(minimum, maximum);
}

void correct_limits(programme::ProgramRecord& record, std::optional<double> unit_offset) {
    for (QString programme::ProgramRecord::*limit : kLimits)
        record.*limit = programme::number_text(record.*limit);
    if (unit_offset) correct_level_limits(record.lev_min, record.lev_max, *unit_offset);
    correct_ratio_limits(record.noise_min, record.noise_max);
    correct_chber_limits(record.chber_min, record.chber_max);
    correct_ratio_limits(record.mer_min, record.mer_max);
}

QString stored_frequency(const QString& text, bool direct, const QString& oscillator) {
    const QString checked = programme::number_text(checked_frequency(text, direct, oscillator));
    if (checked.isEmpty()) return {};
    const QString shown = programme::frequency_box_text(programme::box_value(checked), direct);
    return programme::box_value(shown) == programme::box_value(checked) ? checked : shown;
}

void correct_fields(programme::ProgramRecord& record, QString& oscillator,
                    std::optional<double> unit_offset) {
    oscillator = programme::number_text(checked_oscillator(oscillator));
    record.frequenza = stored_frequency(record.frequenza, record.loc_osc, oscillator);
    record.qpsk_symbolrate = programme::number_text(checked_symbol_rate(record.qpsk_symbolrate));
    record.satchbw = bandwidth_on_enter(record.satchbw);
    correct_selections(record);
    record.logger_pos = record.logger_pos.trimmed();
    correct_limits(record, unit_offset);
}

}  // namespace m47::plans
