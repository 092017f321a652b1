// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_files.h"

#include <QBuffer>

#include "save_file.h"

namespace m47::band {
namespace {

QByteArray table_of(const std::vector<SweepRow>& rows) {
    QByteArray table = sweep_header();
    for (const SweepRow& row : rows) table += sweep_line(row);
    return table;
}

}  // namespace

bool is_table(const QString& path) {
    return path.endsWith(QLatin1String(".tsv"), Qt::CaseInsensitive);
}

QString save_sweep(const QString& path, BandChart* chart, const QString& title,
                   const std::vector<SweepRow>& rows) {
    if (is_table(path)) return write_whole_file(path, table_of(rows));
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    const bool drawn = path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)
                           ? chart->draw_page(file, title)
                           : chart->draw_picture(file);
    return drawn ? write_whole_file(path, file.data()) : file.errorString();
}

}  // namespace m47::band
