// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "interpreter.h"
#include "text.h"

namespace meter {

namespace {

constexpr int kSpanPoints = 100;
constexpr double kSpanStartMhz = 920.0;
constexpr double kSpanEndMhz = 2150.0;
// The span comes straight from the detector, whose scale lies 30 dB above dBuV.
constexpr double kDetectorOffsetDb = 30.0;
constexpr double kLowestReportedBer = 1.0e-8;

/// Lead, range mark or blank, value: the value's column does not depend on the mark.
Reply marked_value(const std::string& lead, const Reading& reading) {
    return Reply::value_of(lead + reading.mark + fixed(reading.value, 1));
}

/// Three blanks, then the value with its range mark, if any, right in front.
Reply power_value(const Reading& reading) {
    std::string text(3, ' ');
    if (reading.mark != ' ') text += reading.mark;
    return Reply::value_of(text + fixed(reading.value, 1));
}

std::string corrected_ber_text(double ber) {
    const std::string mark(ber < kLowestReportedBer ? "<" : "");
    return mark + exponent_form(std::max(ber, kLowestReportedBer));
}

}  // namespace

Reply Interpreter::start_measuring(const std::string& argument) {
    if (argument.empty()) state_.mode = Mode::measuring;
    return Reply::done_if(argument.empty());
}

Reply Interpreter::start_error_rate(const std::string& argument) {
    if (argument.empty()) state_.mode = Mode::error_rate;
    return Reply::done_if(argument.empty());
}

Reply Interpreter::get_level(const std::string&) {
    const Settings& settings = state_.settings;
    return marked_value(" ", level_reading(receiver_.level(settings), settings));
}

Reply Interpreter::get_channel_power(const std::string& argument) {
    const Settings& settings = state_.settings;
    double if_mhz = settings.if_mhz;
    if (!argument.empty()) {
        const auto mhz = decimal_number(argument);
        const auto converted = mhz ? settings.to_if(*mhz) : std::nullopt;
        if (!converted) return {Reply::Kind::invalid, {}};
        if_mhz = *converted;
    }
    return power_value(level_reading(receiver_.channel_power(settings, if_mhz), settings));
}

Reply Interpreter::get_analog_cn(const std::string&) {
    return marked_value("CN", ratio_reading(receiver_.analog_cn(state_.settings)));
}

Reply Interpreter::get_digital_cn(const std::string&) {
    return marked_value("", ratio_reading(receiver_.digital_cn(state_.settings)));
}

Reply Interpreter::get_error_rate(const std::string&) {
    const QpskQuality quality = receiver_.qpsk(state_.settings);
    return Reply::value_of("CHBER : " + exponent_form(quality.channel_ber) +
                           "\rPvBER : " + corrected_ber_text(quality.corrected_ber) + "\rCFO   : " +
                           fixed(quality.offset_mhz, 2) + "\rMER   : " + fixed(quality.mer_db, 1));
}

Reply Interpreter::set_output_mode(const std::string& argument) {
    const auto mode = whole_number(argument, 0, 1);
    if (mode) state_.output_mode = *mode;
    return Reply::done_if(mode.has_value());
}

Reply Interpreter::get_output_mode(const std::string&) {
    return Reply::value_of(std::to_string(state_.output_mode));
}

Reply Interpreter::send_span(const std::string& argument) {
    if (!argument.empty()) return Reply::done_if(false);
    const char separator = state_.output_mode == 1 ? '\t' : ' ';
    std::string text;
    for (int point = 0; point < kSpanPoints; ++point) {
        const double if_mhz =
            kSpanStartMhz + (kSpanEndMhz - kSpanStartMhz) * point / (kSpanPoints - 1);
        const double level = receiver_.span_level(state_.settings, if_mhz);
        text += fixed(state_.settings.to_shown(if_mhz), 1) + separator +
                fixed(level + kDetectorOffsetDb, 1) + "\r\n";
    }
    return {Reply::Kind::lines, text};
}

}  // namespace meter
