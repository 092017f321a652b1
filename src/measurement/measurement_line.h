// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

#include "measurement.h"

namespace m47::measurement {

/// The measurement in `line`, 11 TAB-separated fields as the page and its log hold them. The fields
/// say neither program nor unit nor limits, and of the oscillator what stood in its box.
Measurement measurement_of_line(std::string_view line);

/// The instant in the first two fields of `line`; nothing where they hold none.
std::optional<double> instant_of_line(std::string_view line);

}  // namespace m47::measurement
