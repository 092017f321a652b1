// SPDX-License-Identifier: GPL-3.0-or-later
// DVB scan tables: made-up ones, and all of the Debian package dtv-scan-tables.
#include <QDir>
#include <QFile>
#include <QTest>
#include <algorithm>

#include "plan_file.h"

namespace m47::plans {

class ScanTest : public QObject {
    Q_OBJECT

  private:
    static ImportFile parsed(const QByteArray& table) { return parse_import_file(table, 0); }

    static QByteArray content_of(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
        return file.readAll();
    }

    /// The lines of `table` that begin with `word`, blanks in front aside.
    static int lines_with(const QByteArray& table, const QByteArray& word) {
        const QList<QByteArray> lines = table.split('\n');
        return static_cast<int>(std::ranges::count_if(
            lines, [&](const QByteArray& line) { return line.trimmed().startsWith(word); }));
    }

    static QByteArray block(const QByteArray& heading, const QByteArray& khz) {
        return heading + "\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = " + khz +
               "\n\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = AUTO\n\n";
    }

  private Q_SLOTS:
    void a_block_of_any_heading_is_a_transponder() {
        const ImportFile file =
            parsed(block("[CHANNEL]", "11778000") + block("[Sky UK]", "11798000") +
                   block("[channel 3496000]", "3496000") + block("[[Mir test card]]", "11817000") +
                   block("[TV #5] # see [1]", "11837000"));
        QVERIFY(file.understood);
        QStringList mhz;
        for (const ImportCandidate& candidate : file.candidates) {
            QCOMPARE(candidate.problem, ImportProblem::none);
            mhz += candidate.record.frequenza;
        }
        QCOMPARE(mhz, QStringList({"11778", "11798", "3496", "11817", "11837"}));
    }

    void every_table_of_the_package_is_understood_data() {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral("/usr/share/dvb/dvb-s"));
        const QStringList names = folder.entryList(QDir::Files);
        // Install dtv-scan-tables where this fails.
        QVERIFY2(names.size() >= 328, qPrintable(QString::number(names.size())));
        for (const QString& name : names) QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
    void every_table_of_the_package_is_understood() {
        QFETCH(QString, path);
        const QByteArray table = content_of(path);
        const int blocks = lines_with(table, "[");
        QVERIFY(blocks > 0);
        QCOMPARE(lines_with(table, "FREQUENCY"), blocks);
        const ImportFile file = parsed(table);
        QCOMPARE(static_cast<int>(file.candidates.size()), blocks);
        for (const ImportCandidate& candidate : file.candidates)
            QVERIFY(candidate.problem != ImportProblem::unreadable);
    }
};

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::ScanTest)
#include "scan_test.moc"
