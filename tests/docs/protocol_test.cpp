// SPDX-License-Identifier: GPL-3.0-or-later
// The page about the protocol says what the program sends and what the simulated meter answers.
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include "command_list.h"
#include "protocol_page.h"

namespace m47 {
namespace {

QString project_file(const QString& name) {
    QFile file(QStringLiteral(PROJECT_FOLDER "/") + name);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(file.fileName()));
    return QString::fromUtf8(file.readAll());
}

}  // namespace

class ProtocolTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void the_committed_page_is_the_one_that_is_generated() {
        const QStringList committed = project_file(QStringLiteral("docs/protocol.md")).split(u'\n');
        const QStringList generated = protocol_page().split(u'\n');
        for (qsizetype line = 0; line < qMin(committed.size(), generated.size()); ++line)
            QVERIFY2(committed[line] == generated[line],
                     qPrintable(QStringLiteral("line %1: \"%2\" is \"%3\" now; run "
                                               "docs/write-protocol")
                                    .arg(line + 1)
                                    .arg(committed[line], generated[line])));
        QCOMPARE(committed.size(), generated.size());
    }

    void every_word_of_the_program_is_listed_once() {
        static const QRegularExpression kDefinition(QStringLiteral("inline const Word k\\w+\\{"));
        const QString header = project_file(QStringLiteral("src/link/rules/commands.h"));
        qsizetype defined = 0;
        for (auto found = kDefinition.globalMatch(header); found.hasNext(); found.next()) ++defined;
        QStringList listed;
        for (const link::command::Group& group : link::command::command_list())
            for (const link::command::Word* word : group.words) listed += *word;
        QVERIFY(defined > 30);
        QCOMPARE(listed.size(), defined);
        QCOMPARE(listed.removeDuplicates(), 0);
    }

    void the_meter_accepts_every_example() {
        const QString page = protocol_page();
        const qsizetype examples = page.indexOf(QStringLiteral("\n## Identification"));
        QVERIFY(examples > 0);
        QVERIFY(!page.mid(examples).contains(QStringLiteral("ERROR")));
        QVERIFY(!page.mid(examples).contains(QStringLiteral("Invalid")));
        QVERIFY(!page.mid(examples).contains(QStringLiteral("refused")));
        for (const link::command::Group& group : link::command::command_list())
            for (const link::command::Word* word : group.words) QVERIFY(!word->uses.empty());
    }
};

}  // namespace m47

QTEST_APPLESS_MAIN(m47::ProtocolTest)
#include "protocol_test.moc"
