// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace m47::unattended {

/// Runs `program` and returns its exit status. A fault that nobody trapped ends it with one line on
/// stderr and kIncomplete, once all that it had open is closed; a user who ends it, with the status
/// of the signal.
int with_last_resort(const std::function<int()>& program);

}  // namespace m47::unattended
