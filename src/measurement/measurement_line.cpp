// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_line.h"

#include <utility>

#include "row_time.h"

namespace m47::measurement {
namespace {

enum Field { kDate, kTime, kFrequency, kOscillator, kFirstReading, kStatus = 10, kFields };

using Fields = std::array<std::string_view, kFields>;

constexpr std::array<std::pair<std::size_t, Quantity>, 5> kReadings{{{4, Quantity::level},
                                                                     {5, Quantity::ber},
                                                                     {6, Quantity::pvber},
                                                                     {7, Quantity::cfo},
                                                                     {8, Quantity::mer}}};

Fields fields_of(std::string_view line) {
    Fields fields;
    std::size_t start = 0;
    std::size_t place = 0;
    // The fields are a few characters long: looking at each is quicker than a search a field.
    for (std::size_t k = 0; k < line.size() && place < kStatus; ++k) {
        if (line[k] != '\t') continue;
        fields[place++] = line.substr(start, k - start);
        start = k + 1;
    }
    fields[place] = line.substr(start);
    return fields;
}

std::optional<double> instant_of(std::string_view date, std::string_view time) {
    const std::optional<double> midnight = row_midnight(date);
    const std::optional<double> clock = row_clock(time);
    if (!midnight || !clock) return {};
    return *midnight + *clock;
}

std::optional<float> mhz_of(std::string_view text) {
    const std::optional<double> value = leading_value(text);
    if (!value || std::fabs(*value) > std::numeric_limits<float>::max()) return {};
    return static_cast<float>(*value);
}

Verdict verdict_of(std::string_view field) {
    if (field == "FAIL") return Verdict::fail;
    return field == "PASS" ? Verdict::pass : Verdict::none;
}

}  // namespace

Measurement measurement_of_line(std::string_view line) {
    const Fields fields = fields_of(line);
    Measurement made;
    made.instant = instant_of(fields[kDate], fields[kTime]);
    made.frequency = mhz_of(fields[kFrequency]);
    made.oscillator = mhz_of(fields[kOscillator]);
    for (const auto& [field, quantity] : kReadings)
        if (!fields[field].empty()) made.reading(quantity) = reading_of(quantity, fields[field]);
    made.verdict = verdict_of(fields[kStatus]);
    return made;
}

std::optional<double> instant_of_line(std::string_view line) {
    const Fields fields = fields_of(line);
    return instant_of(fields[kDate], fields[kTime]);
}

}  // namespace m47::measurement
