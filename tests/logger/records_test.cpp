// SPDX-License-Identifier: GPL-3.0-or-later
// The logged data as a table.
#include <QAbstractItemModelTester>
#include <QTest>

#include "record_model.h"

namespace m47::logger {
namespace {

const QByteArray kTwoLogs =
    "LOG 0001 01/03/06 08:00\r\n"
    "DPR MHz CH  (dBuV)   BER    CN\r\n"
    "D01  1000.0 S01   65.3 1.2E-05  12.3\r\n"
    "D12 11778.0 S12  <30.0     ---   9.1\r\n"
    "APR MHz CH  dBuV   VA VA2 CN\r\n"
    "A03   503.2 S03  104.0  -- ---  43.0\r\n"
    "LOG 0002 01/03/06 08:15\r\n"
    "DPR MHz CH  (dBm)   BER    CN\r\n"
    "D01  1000.0 S01  -43.7 1.0E-08  12.4\r\n"
    "OK\r\n";

QStringList cells(const RecordModel& model, int row) {
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
        cells += model.index(row, column).data().toString();
    return cells;
}

QStringList column(const RecordModel& model, const QString& name) {
    for (int at = 0; at < model.columnCount(); ++at) {
        if (model.headerData(at, Qt::Horizontal).toString() != name) continue;
        QStringList cells;
        for (int row = 0; row < model.rowCount(); ++row)
            cells += model.index(row, at).data().toString();
        return cells;
    }
    return {};
}

int place_of(const RecordModel& model, const QString& name) {
    for (int at = 0; at < model.columnCount(); ++at)
        if (model.headerData(at, Qt::Horizontal).toString() == name) return at;
    return -1;
}

}  // namespace

class RecordsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void kinds_of_lines_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("kind");
        const auto row = [](const char* line, LineKind kind) {
            QTest::newRow(line) << QByteArray(line) << int(kind);
        };
        row("D01 1000.0 S01 65.3 1.2E-05 12.3", LineKind::record);
        row("  A7   5", LineKind::record);
        row("A01", LineKind::other);
        row("A 1 2", LineKind::other);
        row("D1x 2", LineKind::other);
        row("Dx1 2", LineKind::other);
        row("E01 2 3", LineKind::other);
        row("A1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16", LineKind::record);
        row("A1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17", LineKind::other);
        row("APR MHz CH  dBuV   VA VA2 CN", LineKind::headings);
        row("DPR MHz CH  (dBuV)   BER    CN", LineKind::headings);
        row("LOG 0001 01/03/06 08:00", LineKind::title);
        row("LOGS 0001", LineKind::other);
        row("OK", LineKind::other);
        row("   ", LineKind::other);
    }
    void kinds_of_lines() {
        QFETCH(QByteArray, line);
        const auto size = static_cast<std::size_t>(line.size());
        QTEST(int(line_kind({line.constData(), size})), "kind");
    }

    void numbers_in_fields() {
        double number = 0;
        QVERIFY(field_number("1.2E-05", number) && number == 1.2e-5);
        QVERIFY(field_number("<30.0", number) && number == 30);
        QVERIFY(field_number("-43.7", number) && number == -43.7);
        for (const char* text : {"", "---", "S01", "12x", "<", "nan", "1.2.3"})
            QVERIFY2(!field_number(text, number), text);
    }

    void a_record_stands_under_the_names_of_its_headings() {
        RecordModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.set_text(kTwoLogs);
        QStringList names;
        for (int at = 0; at < model.columnCount(); ++at)
            names += model.headerData(at, Qt::Horizontal).toString();
        QCOMPARE(names, QStringList({"Line", "Log", "PR", "MHz", "CH", "dBuV", "BER", "CN", "VA",
                                     "VA2", "dBm", "Text"}));
        QCOMPARE(model.rowCount(), 10);
        const QString first = QStringLiteral("0001 01/03/06 08:00");
        QCOMPARE(cells(model, 2), QStringList({"3", first, "D01", "1000.0", "S01", "65.3",
                                               "1.2E-05", "12.3", "", "", "", ""}));
        QCOMPARE(cells(model, 5), QStringList({"6", first, "A03", "503.2", "S03", "104.0", "",
                                               "43.0", "--", "---", "", ""}));
        QCOMPARE(cells(model, 8), QStringList({"9", "0002 01/03/06 08:15", "D01", "1000.0", "S01",
                                               "", "1.0E-08", "12.4", "", "", "-43.7", ""}));
    }

    void what_does_not_parse_stands_as_it_is() {
        RecordModel model;
        model.set_text("D01 1000.0 S01\r\n\r\nD02 1 S02 3 4 5\r\n \x01 b\xe0\t7  8 \r\n");
        QCOMPARE(column(model, QStringLiteral("Line")), QStringList({"1", "3", "4"}));
        QCOMPARE(column(model, QStringLiteral("PR")), QStringList({"", "D02", ""}));
        QCOMPARE(column(model, QStringLiteral("Text")),
                 QStringList({"D01 1000.0 S01", "", QStringLiteral(" \u0001 b\u00e0\t7  8 ")}));
    }

    void a_model_is_a_table_before_it_has_a_text() {
        RecordModel model;
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.columnCount(), 3);
        model.set_text("no end");
        QCOMPARE(column(model, QStringLiteral("Line")), QStringList{"1"});
        QCOMPARE(column(model, QStringLiteral("Text")), QStringList{"no end"});
    }

    void an_empty_first_line_is_a_line() {
        RecordModel model;
        model.set_text("\r\nD02 1 S02\r\n");
        QCOMPARE(column(model, QStringLiteral("Line")), QStringList{"2"});
        QCOMPARE(column(model, QStringLiteral("Text")), QStringList{"D02 1 S02"});
    }

    void what_is_no_column_has_no_name() {
        const RecordModel model;
        QCOMPARE(model.headerData(2, Qt::Horizontal).toString(), QStringLiteral("Text"));
        for (const int section : {-1, 3, 1000})
            QVERIFY(!model.headerData(section, Qt::Horizontal).isValid());
        QVERIFY(!model.headerData(0, Qt::Vertical).isValid());
        QVERIFY(!model.headerData(0, Qt::Horizontal, Qt::DecorationRole).isValid());
    }

    void brackets_go_where_both_are_there() {
        QCOMPARE(heading_names("APR (dB) (dB dB) ()"), QStringList({"PR", "dB", "(dB", "dB)", ""}));
    }

    void records_without_headings_have_the_usual_names() {
        RecordModel model;
        model.set_text("A01 503.2 S01 65.3 -- --- 43.0\r\n");
        QCOMPARE(model.columnCount(), 10);
        QCOMPARE(column(model, QStringLiteral("dB")), QStringList({"65.3"}));
        QCOMPARE(column(model, QStringLiteral("CN")), QStringList({"43.0"}));
    }

    void noise_makes_no_endless_columns() {
        QByteArray text;
        for (int k = 0; k < 200; ++k)
            text += "DPR x" + QByteArray::number(k) + "\r\nD01 " + QByteArray::number(k) + "\r\n";
        RecordModel model;
        model.set_text(text);
        QVERIFY(model.columnCount() <= 24);
        QCOMPARE(model.rowCount(), 400);
    }

    void sorting_knows_numbers_and_leaves_gaps_last() {
        RecordModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.set_text(kTwoLogs);
        const QString level = QStringLiteral("dBuV");
        model.sort(place_of(model, level), Qt::AscendingOrder);
        QCOMPARE(column(model, level).first(4), QStringList({"<30.0", "65.3", "104.0", ""}));
        QCOMPARE(column(model, QStringLiteral("Line")).mid(3),
                 QStringList({"1", "2", "5", "7", "8", "9", "10"}));
        model.sort(place_of(model, level), Qt::DescendingOrder);
        QCOMPARE(column(model, level).first(4), QStringList({"104.0", "65.3", "<30.0", ""}));
        model.sort(place_of(model, QStringLiteral("BER")), Qt::AscendingOrder);
        QCOMPARE(column(model, QStringLiteral("BER")).first(4),
                 QStringList({"1.0E-08", "1.2E-05", "---", ""}));
        model.sort(0, Qt::DescendingOrder);
        QCOMPARE(column(model, QStringLiteral("Line")).first(2), QStringList({"10", "9"}));
        model.sort(0, Qt::AscendingOrder);
        QCOMPARE(column(model, QStringLiteral("Line")).first(2), QStringList({"1", "2"}));
    }

    void rows_as_tab_separated_text() {
        RecordModel model;
        model.set_text("D02 1 S02 3 4 5\r\na\tb\r\n");
        const QString names = QStringLiteral("Line\tLog\tPR\tMHz\tCH\t\tBER\tCN\tText\n");
        const QString record = QStringLiteral("1\t\tD02\t1\tS02\t3\t4\t5\t\n");
        const QString other = QStringLiteral("2\t\t\t\t\t\t\t\ta b\n");
        QCOMPARE(model.tab_separated({}), names + record + other);
        QCOMPARE(model.tab_separated({1}), names + other);
        model.sort(0, Qt::DescendingOrder);
        QCOMPARE(model.tab_separated({}), names + other + record);
    }

    void a_tab_in_a_heading_begins_no_cell() {
        RecordModel model;
        model.set_text("DPR MHz C\tH\r\nD02 1 S02\r\n");
        QCOMPARE(model.tab_separated({1}),
                 QStringLiteral("Line\tLog\tPR\tMHz\tC H\tText\n2\t\tD02\t1\tS02\t\n"));
    }

    void a_full_logger_is_sorted() {
        QByteArray text = "DPR MHz CH  (dBuV)   BER    CN\r\n";
        for (int k = 0; k < 100000; ++k)
            text += "D01  1000.0 S01   " + QByteArray::number((k * 7919) % 1000 / 10.0) +
                    " 1.2E-05  12.3\r\n";
        RecordModel model;
        model.set_text(text);
        model.sort(5, Qt::AscendingOrder);
        QCOMPARE(model.index(0, 5).data().toString(), QStringLiteral("0"));
        QCOMPARE(model.index(99999, 5).data().toString(), QStringLiteral("99.9"));
        QCOMPARE(model.index(100000, 5).data().toString(), QString());
    }
};

}  // namespace m47::logger

QTEST_APPLESS_MAIN(m47::logger::RecordsTest)
#include "records_test.moc"
