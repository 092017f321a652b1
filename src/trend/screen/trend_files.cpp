// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_files.h"

#include <QBuffer>

#include "save_file.h"
#include "trend_table.h"

namespace m47::trend {
QString save_trend(const QString& path, TrendChart& chart,
                   std::span<const TrendSeries* const> series) {
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    bool drawn = false;
    if (path.endsWith(QLatin1String(".tsv"), Qt::CaseInsensitive))
        drawn = write_trend_table(file, series);
    else if (path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive))
        drawn = chart.draw_page(file);
    else
        drawn = chart.draw_picture(file);
    return drawn ? write_whole_file(path, file.data()) : file.errorString();
}

}  // namespace m47::trend
