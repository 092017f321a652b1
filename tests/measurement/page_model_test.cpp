// SPDX-License-Identifier: GPL-3.0-or-later
#include "page_model.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

namespace m47::measurement {
namespace {

const QString kHeaderLine =
    QStringLiteral("\tDATE\tTIME\tFR\tOSC\tLEV\tBER\tPVBER\tCFO\tMER\tRU\tSTATUS");

QStringList analog_cells() {
    return {QStringLiteral("21/11/26"),
            QStringLiteral("10:00:00"),
            QStringLiteral("503.25"),
            QStringLiteral("9750"),
            QStringLiteral("<30"),
            QString(),
            QString(),
            QString(),
            QString(),
            QString(),
            QStringLiteral("FAIL")};
}

QStringList row_texts(const PageModel& page, int row) {
    QStringList texts;
    for (int column = 0; column < page.columnCount(); ++column)
        texts << page.data(page.index(row, column)).toString();
    return texts;
}

QStringList empty_cells() {
    return QStringList(PageStore::kColumns);
}

}  // namespace

class PageModelTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_new_page_is_a_header_and_one_empty_row() {
        const PageModel page;
        QCOMPARE(page.rowCount(), 1);
        QCOMPARE(page.columnCount(), 11);
        QCOMPARE(page.measurements(), 0);
        QCOMPARE(row_texts(page, 0), empty_cells());
        QString header;
        for (int column = 0; column < 11; ++column)
            header += u'\t' + page.headerData(column, Qt::Horizontal).toString();
        QCOMPARE(header, kHeaderLine);
        QVERIFY(!page.headerData(11, Qt::Horizontal).isValid());
        QVERIFY(!page.headerData(-1, Qt::Horizontal).isValid());
        QVERIFY(!page.headerData(0, Qt::Vertical).isValid());
    }

    void a_row_fills_the_empty_one_and_adds_another() {
        PageModel page;
        QAbstractItemModelTester tester(&page,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy inserted(&page, &PageModel::rowsInserted);
        QSignalSpy reset(&page, &PageModel::modelReset);
        const QPersistentModelIndex empty_row = page.index(0, 4);

        page.append(analog_cells());

        QCOMPARE(page.measurements(), 1);
        QCOMPARE(page.rowCount(), 2);
        QCOMPARE(row_texts(page, 0), analog_cells());
        QCOMPARE(row_texts(page, 1), empty_cells());
        QCOMPARE(empty_row.row(), 1);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted[0][1].toInt(), 0);
        QCOMPARE(inserted[0][2].toInt(), 0);
        QCOMPARE(reset.count(), 0);
    }

    void a_row_with_its_measurement_comes_in_alike() {
        PageModel page;
        QSignalSpy inserted(&page, &PageModel::rowsInserted);
        Measurement measured;
        measured.verdict = Verdict::fail;
        page.append(analog_cells(), measured);
        QCOMPARE(page.measurements(), 1);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(row_texts(page, 0), analog_cells());
        QVERIFY(page.store().measurement(0).verdict == Verdict::fail);
    }

    void cells_are_selectable_and_not_editable() {
        PageModel page;
        page.append(analog_cells());
        for (int row = 0; row < 2; ++row) {
            const Qt::ItemFlags flags = page.flags(page.index(row, 3));
            QVERIFY(flags.testFlag(Qt::ItemIsSelectable));
            QVERIFY(flags.testFlag(Qt::ItemIsEnabled));
            QVERIFY(!flags.testFlag(Qt::ItemIsEditable));
        }
        QVERIFY(!page.setData(page.index(0, 3), QStringLiteral("1")));
        QCOMPARE(row_texts(page, 0), analog_cells());
    }

    void has_no_data_outside_and_no_children() {
        PageModel page;
        page.append(analog_cells());
        QVERIFY(!page.data(QModelIndex()).isValid());
        QVERIFY(!page.data(page.index(0, 0), Qt::EditRole).isValid());
        QCOMPARE(page.rowCount(page.index(0, 0)), 0);
        QCOMPARE(page.columnCount(page.index(0, 0)), 0);
    }

    void clearing_leaves_header_and_empty_row() {
        PageModel page;
        QAbstractItemModelTester tester(&page,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (int row = 0; row < 3; ++row) page.append(analog_cells());
        page.clear();
        QCOMPARE(page.measurements(), 0);
        QCOMPARE(page.rowCount(), 1);
        QCOMPARE(row_texts(page, 0), empty_cells());
        QCOMPARE(page.headerData(10, Qt::Horizontal).toString(), QStringLiteral("STATUS"));
        page.append(analog_cells());
        QCOMPARE(row_texts(page, 0), analog_cells());
    }

    void a_bulk_load_is_one_reset() {
        PageModel page;
        page.append(analog_cells());
        PageStore loaded;
        for (int row = 0; row < 4000; ++row) loaded.append({QString::number(row)});
        QSignalSpy inserted(&page, &PageModel::rowsInserted);
        QSignalSpy reset(&page, &PageModel::modelReset);
        page.replace(std::move(loaded));
        QCOMPARE(reset.count(), 1);
        QCOMPARE(inserted.count(), 0);
        QCOMPARE(page.measurements(), 4000);
        QCOMPARE(page.data(page.index(3999, 0)).toString(), QStringLiteral("3999"));
        QCOMPARE(row_texts(page, 4000), empty_cells());
    }

    void an_empty_page_prints_header_and_tabs() {
        const PageModel page;
        const QStringList expected{QString(), QString(), kHeaderLine, QString(11, u'\t')};
        QCOMPARE(print_lines(page), expected);
    }

    void every_row_prints_with_a_tab_before_it() {
        PageModel page;
        page.append(analog_cells());
        page.append({QStringLiteral("\u00e8"), QStringLiteral("b")});
        const QStringList lines = print_lines(page);
        QCOMPARE(lines.size(), 6);
        QCOMPARE(lines[3],
                 QStringLiteral("\t21/11/26\t10:00:00\t503.25\t9750\t<30\t\t\t\t\t\tFAIL"));
        QCOMPARE(lines[4], QStringLiteral("\t\u00e8\tb") + QString(9, u'\t'));
        QCOMPARE(lines[5], QString(11, u'\t'));
    }
};

}  // namespace m47::measurement

QTEST_GUILESS_MAIN(m47::measurement::PageModelTest)
#include "page_model_test.moc"
