// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "meter_connection.h"
#include "options.h"
#include "texts.h"

namespace m47::unattended {

/// Sweeps the band without a window, prints each level on stdout as it comes, or the carriers at
/// the end, and sets the meter back. The status to end with, as that of run_unattended. SIGINT,
/// SIGTERM and SIGHUP end it after the running transaction, with what was found so far.
int run_sweep(Texts& texts, MeterConnection& connection, const Options& options);

}  // namespace m47::unattended
