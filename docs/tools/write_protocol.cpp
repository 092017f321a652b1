// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the page about the protocol into the file that is named.
#include <QFile>
#include <cstdio>

#include "protocol_page.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("write-protocol FILE\n", stderr);
        return 2;
    }
    QFile file(QString::fromLocal8Bit(argv[1]));
    const QByteArray page = m47::protocol_page().toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(page) != page.size() || !file.flush()) {
        std::fprintf(stderr, "%s: %s\n", argv[1], file.errorString().toLocal8Bit().constData());
        return 1;
    }
    return 0;
}
