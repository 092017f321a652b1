// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QTemporaryDir>

namespace m47 {

/// A folder with the scan tables of five made-up satellites, each far from the next: 10.0E, 20.0E
/// (21 transponders), 30.0E, 40.0E and 5.0W.
class SatelliteTables {
  public:
    SatelliteTables() {
        for (const Row& row : kRows) {
            QFile file(folder_.filePath(QString::fromLatin1(row.name)));
            const QByteArray text = table_of(row);
            if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
                qFatal("no table");
        }
    }
    QString folder() const { return folder_.path(); }

  private:
    struct Row {
        const char* name;
        double first;
        double step;
        int count;
        const char* polarisation;
        int rate;
    };
    static constexpr Row kRows[] = {{"Alpha-10.0E", 10720, 80, 24, "VERTICAL", 27500},
                                    {"Beta-20.0E", 10750, 90, 21, "HORIZONTAL", 27500},
                                    {"Gamma-30.0E", 11730, 70, 14, "VERTICAL", 22000},
                                    {"Delta-40.0E", 11760, 100, 10, "HORIZONTAL", 30000},
                                    {"Epsilon-5.0W", 10700, 60, 30, "HORIZONTAL", 22000}};

    static QByteArray table_of(const Row& row) {
        QByteArray text;
        for (int k = 0; k < row.count; ++k)
            text += "[T]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = " +
                    QByteArray::number((row.first + row.step * k) * 1000, 'f', 0) +
                    "\nPOLARIZATION = " + row.polarisation +
                    "\nSYMBOL_RATE = " + QByteArray::number(row.rate * 1000) +
                    "\nINNER_FEC = 3/4\n";
        return text;
    }

    QTemporaryDir folder_;
};

}  // namespace m47
