// SPDX-License-Identifier: GPL-3.0-or-later
// The table of programs beside the record.
#include <QClipboard>
#include <QScrollArea>
#include <QStatusBar>
#include <QTableView>

#include "plan_table.h"
#include "screen_test.h"

namespace m47::plans {

QTableView* PlanScreenTest::table() {
    return find<QTableView>("plan_table");
}

QString PlanScreenTest::cell(int row, int column) {
    return table()->model()->index(row, column).data().toString();
}

QString PlanScreenTest::column(int column) {
    QStringList cells;
    for (int row = 0; row < table()->model()->rowCount(); ++row) cells += cell(row, column);
    return cells.join(u' ');
}

void PlanScreenTest::click_row(int row, Qt::KeyboardModifiers keys) {
    const QModelIndex index = table()->model()->index(row, PlanTable::kNumber);
    table()->scrollTo(index);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, keys,
                      table()->visualRect(index).center());
}

void PlanScreenTest::tick_cell(int row, int column) {
    const QModelIndex index = table()->model()->index(row, column);
    table()->scrollTo(index);
    const QRect cell = table()->visualRect(index);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                      {cell.left() + 10, cell.center().y()});
    QCoreApplication::processEvents();
}

void PlanScreenTest::type_in_cell(int row, int column, const QString& text) {
    const QModelIndex index = table()->model()->index(row, column);
    table()->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    table()->setFocus();
    QTest::keyClick(table(), Qt::Key_F2);
    auto* editor = table()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    // The cell is closed by one event and stored by the next.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

QStringList PlanScreenTest::selected_numbers() {
    QStringList numbers;
    for (const QModelIndex& index : table()->selectionModel()->selectedRows())
        numbers += index.data().toString();
    numbers.sort();
    return numbers;
}

void PlanScreenTest::type_programs(int count) {
    type_two_programs();
    for (int number = 3; number <= count; ++number) {
        type("sat_freq_txt", QString::number(1000 + number));
        enter("prog_num", QString::number(number));
    }
}

QString PlanScreenTest::told_below() {
    return progress()->text();
}

void PlanScreenTest::paste(const QString& text) {
    QApplication::clipboard()->setText(text);
    press("cmdpasterows");
}

void PlanScreenTest::the_table_shows_the_plan_and_recalls_by_a_click() {
    start_alone();
    type_programs(3);
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("001 002 003"));
    QCOMPARE(column(PlanTable::kFrequency), QStringLiteral("1001.0 1002.0 1003.0"));
    QCOMPARE(selected_numbers(), QStringList("003"));
    click_row(0);
    QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1001.0"));
    press("next_prog");
    QCOMPARE(selected_numbers(), QStringList("002"));
    // What is selected with others is not recalled.
    click_row(2, Qt::ControlModifier);
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    type("sat_freq_txt", QStringLiteral("1500"));
    press("store");
    QCOMPARE(column(PlanTable::kFrequency), QStringLiteral("1001.0 1500.0 1003.0"));
    new_plan(QStringLiteral("B"));
    QCOMPARE(column(PlanTable::kNumber), QString());
    press("previous");
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("001 002 003"));
    answering(pressed("programma_delete"), pressing(QMessageBox::Ok));
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("002 003"));
}

void PlanScreenTest::the_table_is_sorted_by_a_heading() {
    start_alone();
    paste(QStringLiteral("frequenza\tpg_num\n1300\t9\n1100\t10\n1200\t2\n"));
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("009 010 002"));
    table()->sortByColumn(PlanTable::kNumber, Qt::AscendingOrder);
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("002 009 010"));
    click_row(0);
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    press("cmdkeeporder");
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("002,009,010"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    press("next_prog");
    QCOMPARE(text_of("prog_num"), QStringLiteral("009"));
}

void PlanScreenTest::a_tick_and_a_limit_hold_for_all_selected_rows() {
    start_alone();
    type_programs(4);
    click_row(0);
    click_row(2, Qt::ShiftModifier);
    tick_cell(1, PlanTable::kMonitored);
    QCOMPARE(stored(QStringLiteral("monitor_state")), QStringLiteral("1,1,1,0"));
    QCOMPARE(selected_numbers(), QStringList({"001", "002", "003"}));
    QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
    QVERIFY(find<QCheckBox>("monitor_state")->isChecked());
    tick_cell(1, PlanTable::kLogger);
    QCOMPARE(stored(QStringLiteral("logger_state")), QStringLiteral("1,1,1,0"));
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("04,01,02,03"));
    QCOMPARE(told_below(), QStringLiteral("Lines of the logger table given: 1"));
    // As a store corrects it.
    type_in_cell(1, PlanTable::kFirstLimit + 6, QStringLiteral("12,5"));
    QCOMPARE(stored(QStringLiteral("mer_min")), QStringLiteral("12.5,12.5,12.5,1"));
    type_in_cell(1, PlanTable::kFirstLimit + 6, QStringLiteral("45"));
    QCOMPARE(stored(QStringLiteral("mer_min")), QStringLiteral("1,1,1,1"));
    QCOMPARE(text_of("mer_mintxt"), QStringLiteral("1"));
}

void PlanScreenTest::what_is_typed_in_the_record_stays_over_a_tick_in_the_table() {
    start_alone();
    type_programs(2);
    type("sat_freq_txt", QStringLiteral("1500"));
    tick_cell(1, PlanTable::kMonitored);
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1500"));
    QVERIFY(find<QCheckBox>("monitor_state")->isChecked());
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0"));
    press("store");
    QCOMPARE(stored(QStringLiteral("frequenza || ' ' || monitor_state")),
             QStringLiteral("1001.0 0,1500.0 1"));
    QVERIFY(told_.isEmpty());
}

void PlanScreenTest::rows_are_inserted_moved_and_deleted() {
    start_alone();
    type_programs(4);
    click_row(0);
    click_row(1, Qt::ShiftModifier);
    press("cmdinsertrows");
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("001 002 000 005 003 004"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("000"));
    press("cmdrowup");
    press("cmdrowup");
    press("cmdrowup");
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("000 001 002 005 003 004"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("000"));
    QCOMPARE(selected_numbers(), QStringList("000"));
    click_row(3, Qt::ControlModifier);
    press("cmdrowdown");
    QCOMPARE(column(PlanTable::kNumber), QStringLiteral("001 000 002 003 005 004"));
    QCOMPARE(selected_numbers(), QStringList({"000", "005"}));
    answering(pressed("cmddeleterows"), pressing(QMessageBox::Cancel));
    answering(pressed("cmddeleterows"), pressing(QMessageBox::Ok));
    QCOMPARE(told_.constLast(), QStringLiteral("VKDM47|Remove program: 000, 005"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("001,002,003,004"));
    table()->selectAll();
    answering_each(pressed("cmddeleterows"),
                   {pressing(QMessageBox::Ok), pressing(QMessageBox::Ok)});
    QCOMPARE(told_.constLast(),
             QStringLiteral("M47|The last program of a plan stays. Nothing was deleted."));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("001,002,003,004"));
}

void PlanScreenTest::rows_go_to_a_spreadsheet_and_come_back() {
    start_alone();
    type_programs(3);
    click_row(0);
    click_row(2, Qt::ControlModifier);
    press("cmdcopyrows");
    QCOMPARE(told_below(), QStringLiteral("Rows copied: 2"));
    QString text = QApplication::clipboard()->text();
    QCOMPARE(text.count(u'\n'), 3);
    QVERIFY(text.startsWith(QStringLiteral("nome\tpg_num\tfrequenza\t")));
    paste(text.replace(QStringLiteral("1003.0"), QStringLiteral("1103.5")));
    QCOMPARE(told_below(), QStringLiteral("Programs added: 0, replaced: 1"));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0,1103.5"));
    // Without the names of the columns, into another plan.
    new_plan(QStringLiteral("B"));
    paste(text.section(u'\n', 1));
    QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
             QStringLiteral("001 1001.0,003 1103.5"));
}

void PlanScreenTest::the_program_on_the_screen_stays_behind_a_paste() {
    start_alone();
    type_programs(3);
    QCOMPARE(text_of("prog_num"), QStringLiteral("003"));
    paste(QStringLiteral("frequenza\tpg_num\n1500\t7\n1600\t1\n1700\t\n"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("003"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1003.0"));
    QCOMPARE(selected_numbers(), QStringList("003"));
    QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
             QStringLiteral("001 1600.0,002 1002.0,003 1003.0,007 1500.0,000 1700.0"));
    // A program that is replaced itself is shown as it is now.
    paste(QStringLiteral("frequenza\tpg_num\n1900\t3\n"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1900.0"));
    new_plan(QStringLiteral("B"));
    paste(QStringLiteral("frequenza\tpg_num\n1500\t7\n1600\t1\n"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("007"));
}

void PlanScreenTest::a_paste_that_is_refused_is_told_in_a_sentence_and_pastes_nothing() {
    start_alone();
    type_programs(2);
    const QString before = stored(QStringLiteral("pg_num || frequenza || logger_pos"));
    answering([this] { paste(QStringLiteral("frequenza\tpg_num\n1500\t7\n1600\t7\n")); },
              pressing(QMessageBox::Ok));
    QCOMPARE(told_.constLast(),
             QStringLiteral("Error|Row 3 cannot be pasted: Its number stands twice among these "
                            "rows. Nothing was pasted."));
    for (const char* number : {"100", "150", "-1", "1.5", "abc"}) {
        answering(
            [&] { paste(QStringLiteral("frequenza\tpg_num\n1500\t7\n1600\t%1\n").arg(number)); },
            pressing(QMessageBox::Ok));
        QCOMPARE(told_.constLast(),
                 QStringLiteral("Error|Row 3 cannot be pasted: Programs are numbered from 000 to "
                                "099. Nothing was pasted."));
    }
    answering([this] { paste(QStringLiteral("frequenza\tpg_num\tlogger_pos\n1500\t7\t1\n")); },
              pressing(QMessageBox::Ok));
    QVERIFY(told_.constLast().contains(QStringLiteral("logger status table already exist")));
    answering([this] { paste(QStringLiteral("good morning")); }, pressing(QMessageBox::Ok));
    QCOMPARE(told_.constLast(),
             QStringLiteral("Error|The clipboard holds no programs. Nothing was pasted."));
    QCOMPARE(stored(QStringLiteral("pg_num || frequenza || logger_pos")), before);
    QVERIFY(!find<QAction>("cmdredo")->isEnabled());
}

void PlanScreenTest::lines_and_the_monitored_tick_come_with_an_import() {
    start_alone();
    const QString file = file_with(QStringLiteral("p.csv"), "frequenza\n1000\n1001\n");
    QStringList told;
    answering_each(
        pressed("cmdimport"),
        {choosing(file), [&](QWidget* front) {
             for (const char* choice : {"import_logger", "import_monitored"})
                 front->findChild<QCheckBox*>(QLatin1String(choice))->click();
             told =
                 front->findChild<QLabel*>(QStringLiteral("import_summary"))->text().split(u'\n');
             accepting()(front);
         }});
    QCOMPARE(told.constLast(), QStringLiteral("In the logger table: 2 of 2."));
    QCOMPARE(stored(QStringLiteral("logger_pos || logger_state || monitor_state")),
             QStringLiteral("0111,0211"));
}

void PlanScreenTest::import_95(bool monitored) {
    QByteArray rows = "frequenza\n";
    for (int k = 0; k < 95; ++k) rows += QByteArray::number(1000 + k) + '\n';
    const QString file = file_with(QStringLiteral("p.csv"), rows);
    answering_each(pressed("cmdimport"), {choosing(file), [&](QWidget* front) {
                                              if (monitored) {
                                                  auto* choice = front->findChild<QCheckBox*>(
                                                      QStringLiteral("import_monitored"));
                                                  click_on(choice, {8, choice->height() / 2});
                                              }
                                              accepting()(front);
                                          }});
}

void PlanScreenTest::click_on(QWidget* place, const QPoint& where) {
    QTest::mouseClick(place, Qt::LeftButton, {}, where);
    ++clicks_;
}

int PlanScreenTest::monitored() {
    return static_cast<int>(stored(QStringLiteral("monitor_state")).count(u'1'));
}

void PlanScreenTest::ninety_five_imported_programs_are_monitored_by_one_click_or_two() {
    start_alone();
    // As the record alone does it.
    import_95(false);
    clicks_ = 0;
    press("monitor");
    const auto key = [this](const char* name) {
        QWidget* button = find<QToolBar>("barracomando")->widgetForAction(find<QAction>(name));
        click_on(button, button->rect().center());
    };
    for (int program = 0; program < 95; ++program) {
        auto* tick = find<QCheckBox>("monitor_state");
        click_on(tick, {8, tick->height() / 2});
        key("store");
        key("next_prog");
    }
    QCOMPARE(monitored(), 95);
    QCOMPARE(clicks_, 285);

    new_plan(QStringLiteral("B"));
    import_95(false);
    clicks_ = 0;
    const QModelIndex cell = table()->model()->index(0, PlanTable::kMonitored);
    click_on(table()->viewport(), table()->visualRect(cell.siblingAtColumn(0)).center());
    QTest::keyClick(table(), Qt::Key_A, Qt::ControlModifier);
    const QRect tick = table()->visualRect(cell);
    click_on(table()->viewport(), {tick.left() + 10, tick.center().y()});
    QCoreApplication::processEvents();
    QCOMPARE(monitored(), 95);
    QCOMPARE(clicks_, 2);

    new_plan(QStringLiteral("C"));
    clicks_ = 0;
    import_95(true);
    QCOMPARE(monitored(), 95);
    QCOMPARE(clicks_, 1);
}

void PlanScreenTest::the_table_is_folded_and_the_screen_stays_usable_when_small() {
    start_alone();
    type_programs(3);
    QVERIFY(table()->isVisible());
    QVERIFY(table()->width() > 200);
    // Where there is no room for it, it is folded until somebody wants it.
    window().resize(640, 480);
    QTRY_VERIFY(!table()->isVisible());
    window().resize(1024, 600);
    QTRY_VERIFY(table()->isVisible());
    find<QAction>("cmdtable")->trigger();
    QVERIFY(!table()->isVisible());
    window().resize(1100, 600);
    QTest::qWait(20);
    QVERIFY(!table()->isVisible());
    window().resize(512, 300);
    find<QAction>("cmdtable")->trigger();
    QVERIFY(table()->isVisible());
    // Every box can be scrolled to.
    auto* area = find<QScrollArea>("record_area");
    area->ensureWidgetVisible(find<QWidget>("mer_maxtxt"));
    const QRect seen(area->viewport()->mapToGlobal(QPoint()), area->viewport()->size());
    QWidget* box = find<QWidget>("chbw_txt");
    area->ensureWidgetVisible(box);
    QVERIFY(seen.intersects({box->mapToGlobal(QPoint()), box->size()}));
    QVERIFY(window().findChild<QStatusBar*>()->isVisible());
}

}  // namespace m47::plans
