// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "identification_run.h"

namespace m47::identify {

/// The question at whose carrier a dish is turned best: of those that locked the one with the
/// highest MER, else the strongest level. Nothing where nothing was received.
std::optional<Asked> best_carrier(const std::vector<Asked>& asked);

}  // namespace m47::identify
