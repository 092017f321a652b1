// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace m47::programme {

/// The rates of the inner code of a DVB-S transponder.
enum class CodeRate : std::uint8_t { half, two_thirds, three_quarters, five_sixths, seven_eighths };

/// "3/4" as a rate; nothing for any other text, such as "AUTO" or a rate of DVB-S2 alone.
std::optional<CodeRate> code_rate_of(const QString& text);

/// "3/4".
QString code_rate_text(CodeRate rate);

/// The rate as a number, 0.5 to 0.875.
double code_rate_value(CodeRate rate);

}  // namespace m47::programme
