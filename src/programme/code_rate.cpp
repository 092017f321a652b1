// SPDX-License-Identifier: GPL-3.0-or-later
#include "code_rate.h"

#include <array>

namespace m47::programme {
namespace {

struct RateText {
    CodeRate rate;
    const char* text;
    double value;
};

constexpr std::array kRates{RateText{CodeRate::half, "1/2", 1.0 / 2},
                            RateText{CodeRate::two_thirds, "2/3", 2.0 / 3},
                            RateText{CodeRate::three_quarters, "3/4", 3.0 / 4},
                            RateText{CodeRate::five_sixths, "5/6", 5.0 / 6},
                            RateText{CodeRate::seven_eighths, "7/8", 7.0 / 8}};

const RateText& entry_of(CodeRate rate) {
    return kRates[static_cast<std::size_t>(rate)];
}

}  // namespace

std::optional<CodeRate> code_rate_of(const QString& text) {
    for (const RateText& one : kRates)
        if (text == QLatin1String(one.text)) return one.rate;
    return std::nullopt;
}

QString code_rate_text(CodeRate rate) {
    return QLatin1String(entry_of(rate).text);
}

double code_rate_value(CodeRate rate) {
    return entry_of(rate).value;
}

}  // namespace m47::programme
