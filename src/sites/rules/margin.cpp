// SPDX-License-Identifier: GPL-3.0-or-later
#include "margin.h"

#include <array>
#include <cmath>

namespace m47::sites {
namespace {

using programme::CodeRate;

/// Eb/N0 in dB by code rate, from EN 300 421 (V1.1.2), the table of the performance in the IF loop.
/// The margin of 0.8 dB that it allows a receiver for its imperfection is in these figures.
constexpr std::array kNeeded{4.5, 5.0, 5.5, 6.0, 6.4};

/// Of 204 bytes on the air 188 are the transport stream, to whose bits Eb/N0 refers.
constexpr double kOuterCode = 188.0 / 204.0;
constexpr double kBitsOfSymbol = 2;

}  // namespace

double quasi_error_free_mer(CodeRate rate) {
    const double bits = kBitsOfSymbol * programme::code_rate_value(rate) * kOuterCode;
    // Es/N0 is C/N in the bandwidth of the symbol rate, and MER where noise is all that disturbs.
    return kNeeded[static_cast<std::size_t>(rate)] + 10 * std::log10(bits);
}

Margins margins_of(const measurement::Measurement& measured, const std::optional<CodeRate>& rate) {
    Margins margins{measurement::alarm_margin(measured), {}};
    if (rate && measured.mode != measurement::MeasureMode::analog)
        margins.quasi_error_free = measurement::mer_margin(measured, quasi_error_free_mer(*rate));
    return margins;
}

}  // namespace m47::sites
