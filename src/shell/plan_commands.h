// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "database.h"
#include "options.h"
#include "texts.h"

namespace m47::shell {

/// Writes the plan of --export-plan into its file, as the plan screen does; a file that is there is
/// replaced with --overwrite alone. Returns the exit status.
int export_plan_unattended(db::Database& database, const unattended::Options& options,
                           const Texts& texts);

/// Adds the programs in the file of --import-plan to its plan, which is made where there is none,
/// and prints what came and what was left out. A file that is no plan and no scan table changes
/// nothing, nor does one of which nothing comes. Returns the exit status.
int import_plan_unattended(db::Database& database, const unattended::Options& options,
                           const Texts& texts);

}  // namespace m47::shell
