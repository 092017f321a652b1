// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace m47::plans {

/// Keeps the meter's logger table before it is changed, as a file dated `now` in the folder
/// `backup` of `base_dir`, and of all such files the last 30. The path of the file; a table that
/// cannot be kept is a Fault.
QString keep_table(const QString& base_dir, const QString& table, const QDateTime& now);

/// The lines of `table`, taken from the file "temp.dat" in `base_dir`, where whoever has to look
/// into a broken upload finds them; the file is gone again however this ends. A file that cannot be
/// written or read is a Fault.
QStringList lines_through_file(const QString& base_dir, const QString& table);

}  // namespace m47::plans
