// SPDX-License-Identifier: GPL-3.0-or-later
// What of a program's code only its start needed is given back, and what it needs comes again.
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QTest>

#include "resident_memory.h"

namespace m47 {
namespace {

/// KiB of pages that stand in files, as the system counts them.
int resident_file_pages() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) qFatal("no status of this process");
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("RssFile:")) return line.mid(8).simplified().split(' ')[0].toInt();
    qFatal("no RssFile");
}

/// Something that takes a good part of the libraries and whose answer is known.
QString use_libraries() {
    const QRegularExpression number(QStringLiteral("(\\d+),(\\d)"));
    return number.match(QLocale(QLocale::Italian).toString(1234.5, 'f', 1).remove(u'.'))
        .captured(0);
}

int given_to = 17;  // stands in a page that was written to

}  // namespace

class ResidentMemoryTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void code_that_is_not_needed_takes_no_memory() {
        QCOMPARE(use_libraries(), QStringLiteral("1234,5"));
        const int before = resident_file_pages();
        platform::give_back_code();
        const int after = resident_file_pages();
        QVERIFY2(after < before * 3 / 4, qPrintable(QString::asprintf("%d, %d", before, after)));
    }
    void what_is_needed_again_comes_again() {
        given_to = 18;
        platform::give_back_code();
        QCOMPARE(given_to, 18);
        QCOMPARE(use_libraries(), QStringLiteral("1234,5"));
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::ResidentMemoryTest)
#include "resident_memory_test.moc"
