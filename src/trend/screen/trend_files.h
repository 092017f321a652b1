// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <span>

#include "trend_chart.h"

namespace m47::trend {

/// The kinds of file that a trend is saved as, by the file's suffix.
inline constexpr std::array<const char*, 3> kTrendSuffixes{"png", "pdf", "tsv"};

/// Saves the trend to `path`: a picture or a page of `chart` as it is zoomed now (a name without a
/// known suffix is a picture), or all rows of `series` as a table. The file is written whole or not
/// at all: on failure what stood there before still does. Nothing on success, else the reason.
QString save_trend(const QString& path, TrendChart& chart,
                   std::span<const TrendSeries* const> series);

}  // namespace m47::trend
