// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "database.h"
#include "import_plan.h"
#include "texts.h"

namespace m47::olddb {

/// Marks what of `plan` the present database has already, under the same name.
void mark_clashes(ImportPlan& plan, db::Database& database);

/// Writes `plan` into the database as its choices say, each plan and each satellite whole or not at
/// all, and tells in each item how it went. An error of the engine ends it: what came before stands
/// and the items from there on stay open; what the user is told of it, else empty. So does
/// `told_to_end`, which is asked before each item.
QString apply_import(ImportPlan& plan, db::Database& database, const Texts& texts = {},
                     const std::function<bool()>& told_to_end = {});

}  // namespace m47::olddb
