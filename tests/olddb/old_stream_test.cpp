// SPDX-License-Identifier: GPL-3.0-or-later
// What a reading process hands over: it comes whole, and whatever is not of its form is refused.
#include "old_stream.h"

#include <QRandomGenerator>
#include <QTest>
#include <limits>

namespace m47::olddb {

class OldStreamTest : public QObject {
    Q_OBJECT

    /// A table of one field and one row, as it is handed over.
    static QByteArray handed_over(const QVariant& value) {
        return bytes_of_reading(
            OldDatabase{4, {{QStringLiteral("gruppo"), {QStringLiteral("nome")}, {{value}}}}, {}});
    }
    static bool is_taken(const QByteArray& bytes) {
        return std::holds_alternative<OldDatabase>(reading_of_bytes(bytes));
    }
    /// `bytes` with `change` at the `place`; negative: from the end.
    static QByteArray changed(QByteArray bytes, qsizetype place, char change) {
        bytes[place < 0 ? bytes.size() + place : place] = change;
        return bytes;
    }
    static OldDatabase of_every_kind() {
        OldDatabase database{4, {}, {QStringLiteral("clienti"), QStringLiteral("asl.picture")}};
        database.reader_was_held = true;
        const QStringList fields{QStringLiteral("nome"), QStringLiteral("b")};
        database.tables += OldTable{QStringLiteral("gruppo"),
                                    fields,
                                    {{QString::fromUtf8("città €"), true},
                                     {QStringLiteral(""), QVariant()},
                                     {-70000LL, 1234.5}}};
        database.tables += OldTable{QStringLiteral("asl"), {}, {}};
        return database;
    }

  private Q_SLOTS:
    void bytes_that_are_no_rows_are_refused() {
        const QByteArray bytes = handed_over(QStringLiteral("KEY"));
        QVERIFY(is_taken(bytes));
        for (const qsizetype place : {0, 3, -4, -1}) QVERIFY(!is_taken(changed(bytes, place, 'x')));
        // Before the text: its length, its kind, and what a row begins with.
        const qsizetype text = bytes.indexOf(QByteArray("\0K\0E\0Y", 6));
        const qsizetype kind = text - 5;
        QCOMPARE(bytes[kind], char{1});
        for (const char other : {'\x05', '\x09', '\xff'})
            QVERIFY(!is_taken(changed(bytes, kind, other)));
        QVERIFY(!is_taken(changed(bytes, kind - 1, 1)));
        // Half of a pair of UTF-16.
        QVERIFY(!is_taken(changed(bytes, text, '\xd8')));
        QVERIFY(!is_taken(changed(bytes, text, '\xdc')));
        QVERIFY(is_taken(changed(bytes, text, '\xe0')));
    }

    void numbers_that_are_none_are_refused() {
        QVERIFY(is_taken(handed_over(1.5)));
        QVERIFY(is_taken(handed_over(std::numeric_limits<double>::max())));
        QVERIFY(!is_taken(handed_over(std::numeric_limits<double>::infinity())));
        QVERIFY(!is_taken(handed_over(std::numeric_limits<double>::quiet_NaN())));
    }

    void a_table_has_256_fields_at_most() {
        OldDatabase database{4, {{QStringLiteral("gruppo"), {}, {}}}, {}};
        for (int k = 0; k < 256; ++k) database.tables[0].fields += QString::number(k);
        const OldReading read = reading_of_bytes(bytes_of_reading(database));
        QVERIFY(std::holds_alternative<OldDatabase>(read));
        QCOMPARE(std::get<OldDatabase>(read), database);
        database.tables[0].fields += QStringLiteral("one more");
        QVERIFY(!is_taken(bytes_of_reading(database)));
    }

    void the_handed_over_bytes_are_checked() {
        const OldDatabase database = of_every_kind();
        const QByteArray bytes = bytes_of_reading(database);
        QCOMPARE(std::get<OldDatabase>(reading_of_bytes(bytes)), database);
        QCOMPARE(std::get<QString>(reading_of_bytes(bytes_of_reading(QStringLiteral("why")))),
                 QStringLiteral("why"));
        for (qsizetype size = 0; size < bytes.size(); ++size) QVERIFY(!is_taken(bytes.first(size)));
        QVERIFY(!is_taken(bytes + 'x'));
        QRandomGenerator random(11);
        for (int turn = 0; turn < 2000; ++turn) {
            QByteArray noisy = bytes;
            noisy[random.bounded(static_cast<int>(noisy.size()))] =
                static_cast<char>(random.bounded(256));
            reading_of_bytes(noisy);
        }
    }
};

}  // namespace m47::olddb

QTEST_APPLESS_MAIN(m47::olddb::OldStreamTest)
#include "old_stream_test.moc"
