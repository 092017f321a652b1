// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "database.h"
#include "texts.h"

namespace m47::db {

/// What to tell the user in the current language: what is wrong with which file, what helps, and
/// behind it the engine's own words where there are any.
QString database_error_text(const DatabaseError& error, const Texts& texts);

}  // namespace m47::db
