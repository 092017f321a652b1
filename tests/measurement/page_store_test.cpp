// SPDX-License-Identifier: GPL-3.0-or-later
#include "page_store.h"

#include <QTest>

namespace m47::measurement {
namespace {

QByteArray bytes_of(std::string_view text) {
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

QStringList numbered_row(int number) {
    QStringList cells;
    for (int column = 0; column < PageStore::kColumns; ++column)
        cells << QStringLiteral("%1.%2").arg(number).arg(column);
    return cells;
}

}  // namespace

class PageStoreTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void starts_empty() {
        PageStore store;
        QCOMPARE(store.rows(), 0);
        QCOMPARE(store.memory_bytes(), std::size_t{0});
    }

    void gives_back_each_cell() {
        PageStore store;
        store.append(numbered_row(7));
        QCOMPARE(store.rows(), 1);
        QCOMPARE(bytes_of(store.line(0)),
                 QByteArray("7.0\t7.1\t7.2\t7.3\t7.4\t7.5\t7.6\t7.7\t7.8\t7.9\t7.10"));
        for (int column = 0; column < PageStore::kColumns; ++column)
            QCOMPARE(bytes_of(store.cell(0, column)), "7." + QByteArray::number(column));
    }

    void missing_cells_are_empty_and_further_ones_left_out() {
        PageStore store;
        store.append({QStringLiteral("a"), QString(), QStringLiteral("c")});
        store.append({});
        store.append(numbered_row(1) << QStringLiteral("twelfth"));
        QCOMPARE(bytes_of(store.line(0)), QByteArray("a\t\tc\t\t\t\t\t\t\t\t"));
        QCOMPARE(bytes_of(store.cell(0, 10)), QByteArray());
        QCOMPARE(bytes_of(store.line(1)), QByteArray(10, '\t'));
        QCOMPARE(bytes_of(store.cell(2, 10)), QByteArray("1.10"));
        QVERIFY(!bytes_of(store.line(2)).contains("twelfth"));
    }

    void a_cell_cannot_break_its_row() {
        PageStore store;
        store.append({QStringLiteral("a\tb\r\nc"), QStringLiteral("\t")});
        QCOMPARE(bytes_of(store.cell(0, 0)), QByteArray("a b  c"));
        QCOMPARE(bytes_of(store.cell(0, 1)), QByteArray(" "));
        QCOMPARE(bytes_of(store.line(0)).count('\t'), 10);
    }

    void keeps_latin1_and_marks_what_it_lacks() {
        PageStore store;
        QString all;
        for (char16_t code = 0x20; code <= 0xFF; ++code) all += QChar(code);
        store.append({all, QString(QChar(0x20AC))});
        QCOMPARE(bytes_of(store.cell(0, 0)), all.toLatin1());
        QCOMPARE(bytes_of(store.cell(0, 1)), QByteArray("?"));
    }

    void takes_lines_of_up_to_eleven_fields() {
        PageStore store;
        QVERIFY(store.append_line("1\t2\t3\t4\t5\t6\t7\t8\t9\t10\t11"));
        QVERIFY(store.append_line("1\t2"));
        QVERIFY(store.append_line(""));
        QVERIFY(!store.append_line("1\t2\t3\t4\t5\t6\t7\t8\t9\t10\t11\t"));
        QVERIFY(!store.append_line("a\tb\tc\td\te\tf\tg\th\ti\tj\tk\tl\tm"));
        QCOMPARE(store.rows(), 5);
        QCOMPARE(bytes_of(store.cell(0, 10)), QByteArray("11"));
        QCOMPARE(bytes_of(store.line(1)), "1\t2" + QByteArray(9, '\t'));
        QCOMPARE(bytes_of(store.line(2)), QByteArray(10, '\t'));
        QCOMPARE(bytes_of(store.line(3)), QByteArray("1\t2\t3\t4\t5\t6\t7\t8\t9\t10\t11"));
        QCOMPARE(bytes_of(store.line(4)), QByteArray("a\tb\tc\td\te\tf\tg\th\ti\tj\tk"));
    }

    void rows_stay_apart_across_chunks() {
        constexpr int kRows = 5000;
        PageStore store;
        for (int row = 0; row < kRows; ++row) {
            if (row == 1500)
                QVERIFY(store.append_line(std::string(300000, 'x')));
            else
                store.append(numbered_row(row));
        }
        QCOMPARE(store.rows(), kRows);
        for (int row = 0; row < kRows; ++row) {
            const QByteArray first =
                row == 1500 ? QByteArray(300000, 'x') : QByteArray::number(row) + ".0";
            QCOMPARE(bytes_of(store.cell(row, 0)), first);
            QCOMPARE(bytes_of(store.line(row)).count('\t'), 10);
        }
    }

    void a_cleared_store_is_as_new() {
        PageStore store;
        for (int row = 0; row < 3000; ++row) store.append(numbered_row(row));
        store.clear();
        QCOMPARE(store.rows(), 0);
        QCOMPARE(store.memory_bytes(), std::size_t{0});
        store.append(numbered_row(9));
        QCOMPARE(store.rows(), 1);
        QCOMPARE(bytes_of(store.cell(0, 3)), QByteArray("9.3"));
    }

    void a_typical_row_takes_200_bytes_at_most() {
        constexpr int kRows = 200000;
        const QByteArray typical(
            "21/11/26\t10:00:00\t11727.5\t10600\t 58.3\t<1.0E-8\t 2.0E-4\t  1.25\t 14.2\t 3\tPASS");
        const QStringList cells = QString::fromLatin1(typical).split(u'\t');
        PageStore store;
        for (int row = 0; row < kRows; ++row) store.append(cells);
        QCOMPARE(bytes_of(store.line(kRows - 1)), typical);
        QVERIFY2(store.memory_bytes() > std::size_t(kRows * typical.size()),
                 "less memory than characters");
        QVERIFY2(store.memory_bytes() <= std::size_t{200} * kRows,
                 qPrintable(QString::number(store.memory_bytes() / kRows)));
    }
};

}  // namespace m47::measurement

QTEST_GUILESS_MAIN(m47::measurement::PageStoreTest)
#include "page_store_test.moc"
