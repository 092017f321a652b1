// SPDX-License-Identifier: GPL-3.0-or-later
#include <QSet>

#include "database_error.h"
#include "db_support.h"

using namespace m47;

/// What the user is told about a database that cannot be used.
class TestErrorText : public QObject {
    Q_OBJECT

    static QString text_of(DatabaseFault fault, int language, const QString& detail = {}) {
        Texts texts;
        texts.language = language;
        return database_error_text({fault, QStringLiteral("/plans %1/VKDM47_03.mdb"), detail},
                                   texts);
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
        QCOMPARE(texts.size(), 18);
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
};

M47_DB_TEST_MAIN(TestErrorText)
#include "test_error_text.moc"
