// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "options.h"

namespace m47::unattended {

/// What is wrong with the files that `options` name, as one line; empty for nothing. No option may
/// name a database in `base_dir` or the outbox (or what the engine keeps beside it) nor the file of
/// another option: one of the two would be written over. Relative names start in `base_dir`.
QString file_option_fault(const Options& options, const QString& base_dir);

}  // namespace m47::unattended
