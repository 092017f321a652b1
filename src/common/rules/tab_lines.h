// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace m47 {

/// `cells` as a line for other programs: UTF-8, separated by TAB, ended by LF. What separates cells
/// or lines within a text becomes a blank.
QByteArray tab_line(const QStringList& cells);

/// A table as it is shown: the line of its heading, then one a row.
QByteArray tab_table(const QStringList& heading, const QList<QStringList>& rows);

}  // namespace m47
