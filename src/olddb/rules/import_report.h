// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "import_plan.h"

namespace m47::olddb {

/// What is wrong with an old file and what helps, in the current language; as last word that
/// nothing has been changed.
QString old_file_error_text(const OldFileError& error, const Texts& texts);

/// What there is to say about how the file was read; empty where the kernel held the reader.
QString reader_remark(const OldDatabase& old, const Texts& texts);

/// That an import ended early, with the database's words `stopped` on it.
QString stopped_text(const QString& stopped, const Texts& texts);

/// The report of an import that has been applied: what came, what clashed, what was corrected and
/// what was left out, as lines of text. `path` is the old file, `stopped` the database's words
/// where it ended early.
QString import_report(const ImportPlan& plan, const QString& path, const QString& stopped,
                      const Texts& texts);

}  // namespace m47::olddb
