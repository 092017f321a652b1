// SPDX-License-Identifier: GPL-3.0-or-later
#include "logger.h"

#include <chrono>
#include <cstdio>

#include "text.h"

namespace meter {

namespace {

constexpr char kLineEnd[] = "\r\n";

std::string date_text(int quarter_hours) {
    using namespace std::chrono;
    const auto minute =
        sys_days{year{2006} / 3 / 1} + minutes{8 * 60} + minutes{15LL * quarter_hours};
    const auto day = floor<days>(minute);
    const year_month_day date{day};
    const auto minutes_of_day = static_cast<int>((minute - day).count());
    return zero_filled(static_cast<int>(static_cast<unsigned>(date.day())), 2) + "/" +
           zero_filled(static_cast<int>(static_cast<unsigned>(date.month())), 2) + "/" +
           zero_filled(static_cast<int>(date.year()) % 100, 2) + " " +
           zero_filled(minutes_of_day / 60, 2) + ":" + zero_filled(minutes_of_day % 60, 2);
}

std::string marked(const Reading& reading) {
    const std::string value = fixed(reading.value, 1);
    return reading.mark == ' ' ? value : reading.mark + value;
}

std::string digital_row(int program, const Settings& s, Receiver& receiver) {
    const auto power = level_reading(receiver.channel_power(s, s.if_mhz), s);
    const auto quality = receiver.qpsk(s);
    const auto ratio = ratio_reading(receiver.digital_cn(s));
    char row[128];
    std::snprintf(row, sizeof row, "D%02d %7s S%02d %6s %7s %5s", program,
                  frequency_text(s.shown_mhz()).c_str(), program, marked(power).c_str(),
                  exponent_form(quality.channel_ber).c_str(), marked(ratio).c_str());
    return row;
}

std::string analog_row(int program, const Settings& s, Receiver& receiver) {
    const auto level = level_reading(receiver.level(s), s);
    const auto ratio = ratio_reading(receiver.analog_cn(s));
    char row[128];
    std::snprintf(row, sizeof row, "A%02d %7s S%02d %6s  -- --- %5s", program,
                  frequency_text(s.shown_mhz()).c_str(), program, marked(level).c_str(),
                  marked(ratio).c_str());
    return row;
}

}  // namespace

std::string Logger::table_text() const {
    std::string text;
    for (const auto& [number, line] : table) {
        if (!text.empty()) text += '\r';
        text += zero_filled(number, 2) + " " + zero_filled(line.program, 2) + " " +
                zero_filled(line.state, 2);
    }
    return text;
}

void Logger::record(const std::vector<std::pair<int, Settings>>& programs, Receiver& receiver) {
    std::string analog;
    std::string digital;
    for (const auto& [number, settings] : programs)
        if (settings.digital)
            digital += digital_row(number, settings, receiver) + kLineEnd;
        else
            analog += analog_row(number, settings, receiver) + kLineEnd;
    const std::string unit = unit_name(programs.empty() ? 0 : programs.front().second.unit);
    std::string log =
        "LOG " + zero_filled(recorded_ + 1, 4) + " " + date_text(recorded_) + kLineEnd;
    if (!digital.empty()) log += "DPR MHz CH  (" + unit + ")   BER    CN" + kLineEnd + digital;
    if (!analog.empty()) log += "APR MHz CH  " + unit + "   VA VA2 CN" + kLineEnd + analog;
    ++recorded_;
    bytes_ += log.size();
    logs_.push_back(std::move(log));
}

std::string Logger::all() const {
    std::string text;
    text.reserve(bytes_);
    for (const std::string& log : logs_) text += log;
    return text;
}

std::string Logger::last() const {
    return logs_.empty() ? std::string() : logs_.back();
}

void Logger::delete_last() {
    if (!logs_.empty()) {
        bytes_ -= logs_.back().size();
        logs_.pop_back();
    }
}

void Logger::delete_all() {
    logs_.clear();
    bytes_ = 0;
}

}  // namespace meter
