// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "code_rate.h"
#include "mer_margin.h"

namespace m47::sites {

/// The MER in dB that a DVB-S signal of this code rate needs to be quasi error free: a bit error
/// rate of 2E-4 behind the Viterbi decoder, which leaves less than one wrong event an hour behind
/// the outer code.
double quasi_error_free_mer(programme::CodeRate rate);

/// What is left of the MER of a digital program; each nothing where it is not known.
struct Margins {
    std::optional<measurement::Margin> alarm;             ///< above the alarm minimum in force
    std::optional<measurement::Margin> quasi_error_free;  ///< above what its code needs
};

/// The margins of `measured`, of a transponder of code rate `rate` where that is known.
Margins margins_of(const measurement::Measurement& measured,
                   const std::optional<programme::CodeRate>& rate);

}  // namespace m47::sites
