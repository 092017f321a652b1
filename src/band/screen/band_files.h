// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "band_chart.h"
#include "sweep_table.h"

namespace m47::band {

/// The kinds of file that a sweep is saved as, by the file's suffix.
inline constexpr std::array<const char*, 3> kSweepSuffixes{"png", "pdf", "tsv"};
/// No table of a sweep, and no scan table, is longer, in bytes.
inline constexpr qint64 kLongestTableFile = qint64{16} * 1024 * 1024;

/// Saves to `path`: `rows` as a table, else a picture or a page of `chart`, called `title`, as it
/// is zoomed now (a name without a known suffix is a picture). The file is written whole or not at
/// all. Nothing on success, else the reason. Without a `chart` there is the table alone.
QString save_sweep(const QString& path, BandChart* chart, const QString& title,
                   const std::vector<SweepRow>& rows);

/// True for the name of a table.
bool is_table(const QString& path);

}  // namespace m47::band
