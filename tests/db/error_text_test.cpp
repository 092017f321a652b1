// SPDX-License-Identifier: GPL-3.0-or-later
#include <QSet>

#include "database_check.h"
#include "database_error.h"
#include "db_support.h"
#include "engine.h"

namespace m47::db {

/// What the user is told about a database that cannot be used.
class ErrorTextTest : public QObject {
    Q_OBJECT

    static QString text_of(DatabaseFault fault, int language, const QString& detail = {}) {
        Texts texts;
        texts.language = language;
        return database_error_text({fault, QStringLiteral("/plans %1/VKDM47_03.mdb"), detail},
                                   texts);
    }

    static EngineFault engine_fault(int code) {
        const QSqlError error(QString(), QStringLiteral("words of the engine"),
                              QSqlError::StatementError, QString::number(code));
        return EngineFault(error, QStringLiteral("file:///plans%20%251/VKDM47_03.mdb?mode=rw"));
    }

  private Q_SLOTS:
    void each_fault_has_a_text_of_its_own_in_both_languages() {
        QSet<QString> texts;
        for (int number = 0; number <= static_cast<int>(DatabaseFault::cannot_create); ++number)
            for (const int language : {int{kEnglish}, int{kItalian}}) {
                const QString text = text_of(static_cast<DatabaseFault>(number), language);
                QVERIFY(text.contains(QLatin1String("'/plans %1/VKDM47_03.mdb'")));
                texts.insert(text);
            }
        QCOMPARE(texts.size(), 2 * (static_cast<int>(DatabaseFault::cannot_create) + 1));
    }

    void only_what_the_engine_calls_corrupt_is_damaged() {
        QSet<QString> sentences;
        for (int code = -1; code <= 28; ++code)
            for (const int language : {int{kEnglish}, int{kItalian}}) {
                Texts texts;
                texts.language = language;
                const QString text = engine_fault(code).text(texts);
                QVERIFY(text.contains(QLatin1String("'/plans %1/VKDM47_03.mdb'")));
                QVERIFY(text.endsWith(QLatin1String("(words of the engine)")));
                const bool damaged = text.contains(QLatin1String("is damaged")) ||
                                     text.contains(QLatin1String("danneggiato"));
                QCOMPARE(damaged, code == 11 || code == 26);
                sentences.insert(text);
            }
        // Corrupt, busy, permission, interrupted, too long and constraint stand for two codes each.
        constexpr int kOwnSentences = 15;
        QCOMPARE(sentences.size(), 2 * kOwnSentences);
    }

    void an_extended_code_says_no_more_than_its_primary_one() {
        constexpr int kDiskRead = 10 + (1 << 8);
        constexpr int kCorruptIndex = 11 + (3 << 8);
        QCOMPARE(error_of(engine_fault(kDiskRead)).fault, DatabaseFault::io_error);
        QCOMPARE(error_of(engine_fault(kCorruptIndex)).fault, DatabaseFault::damaged);
    }

    void a_lock_needs_no_new_start() {
        const QString text = text_of(DatabaseFault::locked, kEnglish);
        QVERIFY(!text.contains(QLatin1String("start")));
        QVERIFY(text.contains(QLatin1String("try again")));
    }

    // In the words of the engine's own check.
    void a_page_that_the_disk_does_not_give_is_no_damage() {
        const QString unread = QStringLiteral(
            "*** in database main ***\nPage 52: unable to get the page. error code=%1");
        QCOMPARE(fault_of_finding(unread.arg(8458)), DatabaseFault::io_error);
        QCOMPARE(fault_of_finding(unread.arg(7)), DatabaseFault::no_memory);
        QCOMPARE(fault_of_finding(unread.arg(11)), DatabaseFault::damaged);
        QCOMPARE(fault_of_finding(QStringLiteral("Page 4 is never used")), DatabaseFault::damaged);
    }

    void the_old_engine_is_explained() {
        for (const int language : {int{kEnglish}, int{kItalian}}) {
            const QString text = text_of(DatabaseFault::old_engine, language);
            QVERIFY(text.contains(QLatin1String("Jet")));
            QVERIFY(text.contains(QLatin1String("--create-database")));
        }
        QVERIFY(text_of(DatabaseFault::old_engine, kEnglish).contains(QLatin1String("imported")));
        QVERIFY(text_of(DatabaseFault::old_engine, kItalian).contains(QLatin1String("importati")));
    }

    void the_engines_words_follow_where_there_are_any() {
        QVERIFY(text_of(DatabaseFault::damaged, kEnglish, QStringLiteral("page 7 %1"))
                    .endsWith(QLatin1String("(page 7 %1)")));
        QVERIFY(!text_of(DatabaseFault::damaged, kEnglish).contains(u'('));
    }

    void the_engines_code_is_kept_and_is_minus_one_without_any() {
        const auto fault_of = [](const char* words, const char* code) {
            return EngineFault(QSqlError(QStringLiteral("driver"), QString::fromLatin1(words),
                                         QSqlError::StatementError, QString::fromLatin1(code)),
                               QString());
        };
        QCOMPARE(fault_of("disk I/O error", "522").code(), 522);
        QCOMPARE(fault_of("no code", "").code(), -1);
        QCOMPARE(QString::fromUtf8(fault_of("words", "1").what()), QStringLiteral("words"));
        QCOMPARE(QString::fromUtf8(fault_of("", "1").what()), QStringLiteral("driver"));
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::ErrorTextTest)
#include "error_text_test.moc"
