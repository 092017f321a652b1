// SPDX-License-Identifier: GPL-3.0-or-later
#include "tab_lines.h"

namespace m47 {
namespace {

QString on_one_cell(QString text) {
    for (const QChar c : {u'\t', u'\n', u'\r'}) text.replace(c, u' ');
    return text;
}

}  // namespace

QByteArray tab_line(const QStringList& cells) {
    QStringList clean;
    for (const QString& cell : cells) clean += on_one_cell(cell);
    return clean.join(u'\t').toUtf8() + '\n';
}

QByteArray tab_table(const QStringList& heading, const QList<QStringList>& rows) {
    QByteArray table = tab_line(heading);
    for (const QStringList& row : rows) table += tab_line(row);
    return table;
}

}  // namespace m47
