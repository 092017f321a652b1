// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "database.h"
#include "meter_connection.h"
#include "options.h"
#include "texts.h"

namespace m47::unattended {

/// Finds out without a window which satellite the dish looks at, prints each question with its
/// answer on stdout as it comes and the verdict behind them, and sets the meter back. `database`
/// for the candidates of plans, else null. The status to end with, as that of run_unattended:
/// kAlarmFailed where it is none of the candidates or no satellite, kIncomplete where it did not
/// become clear. SIGINT, SIGTERM and SIGHUP end it after the running transaction.
int run_identification(Texts& texts, MeterConnection& connection, const Options& options,
                       const db::Database* database);

}  // namespace m47::unattended
