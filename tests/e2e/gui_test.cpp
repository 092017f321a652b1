// SPDX-License-Identifier: GPL-3.0-or-later
// What is measured and sent from the real-time screen.
#include "gui_test.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <csignal>

#include "lamp.h"

namespace m47 {

void GuiTest::start(const QStringList& meter_options) {
    new_folder();
    meter_ = std::make_unique<MeterProcess>(
        folder(), QStringList{QStringLiteral("--baud-factor"), QStringLiteral("0"),
                              QStringLiteral("--delay"), QStringLiteral("0")} +
                      meter_options);
    link::PortList ports;
    QVERIFY(ports.add(QStringLiteral("3=") + meter_->link()));
    start_program({1024, 600}, ports);
}

void GuiTest::pick_port(int number) {
    find<QAction>("setport")->trigger();
    auto* porta = find<QComboBox>("porta");
    porta->setFocus();
    porta->showPopup();
    auto* popup = QApplication::activePopupWidget();
    QVERIFY(popup);
    auto* view = porta->view();
    view->setCurrentIndex(porta->model()->index(number - 1, 0));
    QTest::keyClick(view, Qt::Key_Return);
}

realtime::Realtime* GuiTest::open_realtime() {
    find<QAction>("realtime")->trigger();
    return qobject_cast<realtime::Realtime*>(window().screen_of(QStringLiteral("realtime")));
}

QStringList GuiTest::new_commands() {
    QTest::qWait(50);
    const QStringList all = meter_->commands();
    const QStringList fresh = all.mid(seen_);
    seen_ = all.size();
    return fresh;
}

void GuiTest::tick(const char* name, QObject* screen) {
    auto* box = find<QCheckBox>(name, screen);
    QTest::mouseClick(box, Qt::LeftButton, {}, {8, box->height() / 2});
    QVERIFY(box->isChecked());
}

void GuiTest::type(const char* name, QObject* screen, const QString& text) {
    auto* box = find<QLineEdit>(name, screen);
    box->selectAll();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
}

QStringList GuiTest::row(const realtime::Realtime* screen, int number) {
    QStringList cells;
    for (int column = 0; column < screen->rules.page.columnCount(); ++column)
        cells += screen->rules.page.index(number, column).data().toString();
    return cells;
}

QString GuiTest::meter_state(const QString& file) {
    QFile::remove(file);
    meter_->send_signal(SIGUSR1);
    if (!QTest::qWaitFor([&] { return QFile::exists(file); })) return {};
    return QString::fromLatin1(content_of(file));
}

void GuiTest::add_program(const char* number, double frequency, int monitored) {
    db::Recordset& programs = program().database().programmi();
    programs.add_new();
    programs.set(QStringLiteral("nome"), QStringLiteral("PLAN 1"));
    programs.set(QStringLiteral("pg_num"), QString::fromLatin1(number));
    programs.set(QStringLiteral("frequenza"), frequency);
    programs.set(QStringLiteral("loc_osc"), 1);
    programs.set(QStringLiteral("sat_ad"), 0);
    programs.set(QStringLiteral("monitor_state"), monitored);
    programs.update();
}

void GuiTest::cleanup() {
    end_program();
    meter_.reset();
}

void GuiTest::an_analog_measurement_becomes_a_row_and_a_line() {
    start();
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    QCOMPARE(new_commands(),
             QStringList({"ATTEN?", "VER?", "MEASURE", "ATTEN 6", "TONE22K 00", "SYMBRATEQPSK?",
                          "UNIT?", "LOCOSC 00", "FREQ 1000", "ATTEN 6"}));
    const QString log = in_folder(QStringLiteral("day.log"));
    screen->open_log(log);
    tick("meas_statea_0", screen);
    tick("alarm_statea_0", screen);
    find<QLineEdit>("lev_mina", screen)->setText(QStringLiteral("30"));
    find<QLineEdit>("lev_maxa", screen)->setText(QStringLiteral("110"));
    find<QAction>("single_acq", screen)->trigger();
    QCOMPARE(new_commands(), QStringList({"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    const QString level = find<QLabel>("leva", screen)->text();
    QVERIFY(level.toDouble() > 30);
    const QStringList cells = row(screen, 0);
    QCOMPARE(cells.mid(2), QStringList({"1000.0", "10600", level, "", "", "", "", "", "PASS"}));
    QCOMPARE(screen->rules.page.rowCount(), 2);
    QCOMPARE(content_of(log), cells.join(u'\t').toLatin1() + "\r\n");
}

void GuiTest::a_digital_measurement_asks_for_what_is_ticked() {
    start();
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    new_commands();
    find<QAction>("qpsk", screen)->trigger();
    QCOMPARE(new_commands(), QStringList({"TONE22K 00", "SYMBRATEQPSK?"}));
    for (const char* measure : {"meas_stated_0", "meas_stated_3", "meas_stated_6"})
        tick(measure, screen);
    find<QAction>("single_acq", screen)->trigger();
    QCOMPARE(new_commands(), QStringList({"MEASURE", "FREQ 1000.0", "CHBW 05", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?", "FREQ 1000.0", "ATTEN 00",
                                          "SYMBRATEQPSK 27500", "BERQPSK", "BERQPSK?", "MEASURE"}));
    const QStringList cells = row(screen, 0);
    QVERIFY(cells[4].toDouble() > 40);
    QVERIFY(cells[5].toDouble() > 0 && cells[5].toDouble() < 1e-2);
    QCOMPARE(cells[6], QString());
    QCOMPARE(cells[7], QString());
    QVERIFY(cells[8].toDouble() > 5);
    QCOMPARE(cells[10], QString());
}

void GuiTest::tuning_controls_send_what_they_show() {
    start();
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    new_commands();
    type("fsat", screen, QStringLiteral("100"));
    QCOMPARE(new_commands(), QStringList({"FREQ 0920.0"}));
    QTest::mouseClick(find<QRadioButton>("locopt_1", screen), Qt::LeftButton, {}, {8, 8});
    QCOMPARE(new_commands(), QStringList({"LOCOSC 1 A 10600", "LOCOSC 1 A", "FREQ?"}));
    type("ol_freq", screen, QStringLiteral("9750"));
    QCOMPARE(new_commands().mid(0, 2), QStringList({"LOCOSC0109750", "LOCOSC01"}));
    QTest::mouseClick(find<QRadioButton>("locopt_0", screen), Qt::LeftButton, {}, {8, 8});
    QCOMPARE(new_commands(), QStringList({"LOCOSC 00", "FREQ?"}));
    auto* supply = find<QComboBox>("satlnb_state", screen);
    supply->showPopup();
    supply->view()->setCurrentIndex(supply->model()->index(1, 0));
    QTest::keyClick(supply->view(), Qt::Key_Return);
    QCOMPARE(new_commands(), QStringList({"LNVOLT 13", "LNB 01"}));
    auto* attenuator = find<QComboBox>("atten_list", screen);
    attenuator->setFocus();
    QTest::keyClick(attenuator, Qt::Key_Up);
    QCOMPARE(new_commands(), QStringList({"ATTEN 05", "ATTEN?"}));
    QCOMPARE(attenuator->currentText(), QStringLiteral("5"));
    find<QAction>("cmdlev_2", screen)->trigger();
    find<QAction>("cmdlev_2", screen)->trigger();
    QCOMPARE(new_commands(), QStringList({"UNIT 02", "UNIT 02"}));
    QVERIFY(find<QAction>("cmdlev_2", screen)->isChecked());
    QCOMPARE(program_state().unit_index, int(kDbm));
}

void GuiTest::dish_and_switches_obey_the_screen() {
    const QTemporaryDir states;
    const QString file = states.filePath(QStringLiteral("state"));
    start({QStringLiteral("--state"), file});
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    new_commands();
    const auto click = [&](const char* name) {
        QTest::mouseClick(find<QWidget>(name, screen), Qt::LeftButton);
    };
    QTest::mouseMove(find<QWidget>("diseqc", screen));
    auto* list = find<QComboBox>("diseqc_cmd", screen);
    QVERIFY(list->isVisible());
    for (const int entry : {3, 73}) {
        list->showPopup();
        list->view()->setCurrentIndex(list->model()->index(entry, 0));
        QTest::keyClick(list->view(), Qt::Key_Return);
    }
    QCOMPARE(new_commands(), QStringList({"DISEQC 03", "DISEQC 73"}));
    click("dsqopt_1");
    // The size that belongs to it, or more where the controls need it.
    const QSize open = find<QWidget>("diseqc", screen)->size();
    QVERIFY(open.width() >= 245 && open.height() >= 277);
    QVERIFY(find<QWidget>("dsq12opt", screen)->isVisible());
    find<QLineEdit>("starteast_s", screen)->setText(QStringLiteral("12"));
    click("dsqmtr_8");
    find<QLineEdit>("storesat", screen)->setText(QStringLiteral("5"));
    click("dsqmtr_6");
    type("startwest_t", screen, QStringLiteral("3"));
    click("startwest_t");
    click("dsqmtr_9");
    const QStringList driven{"DISEQCMOT 08 12 01", "DISEQCMOT 0605", "DISEQCMOT 09 03 00"};
    QCOMPARE(new_commands(), driven);
    // 12 steps east, then 3 s west of 10 steps each.
    QVERIFY2(meter_state(file).contains(QStringLiteral(
                 "motor position -18 stopped east-limit 700 west-limit -700 stored[5]=12\n")),
             qPrintable(meter_state(file)));
    type("recallsat", screen, QStringLiteral("5"));
    for (int item = 0; item < 12; ++item) click(qPrintable(QStringLiteral("dsqmtr_%1").arg(item)));
    const QStringList sent{"DISEQCMOT 00",       "DISEQCMOT 01",   "DISEQCMOT 02",
                           "DISEQCMOT 03",       "DISEQCMOT 04",   "DISEQCMOT 05",
                           "DISEQCMOT 0605",     "DISEQCMOT 0705", "DISEQCMOT 08 12 01",
                           "DISEQCMOT 09 03 00", "DISEQCMOT 10",   "DISEQCMOT 11"};
    QCOMPARE(new_commands(), sent);
    // The meter understood every one of them.
    for (const QString& command : QStringList{"DISEQC 03", "DISEQC 73"} + driven + sent)
        for (const QByteArray& answer : meter_->answers_to(command))
            QCOMPARE(answer, command.toLatin1() + "\rOK\r");
    QVERIFY(meter_state(file).contains(
        QStringLiteral("motor position 0 stopped east-limit 700 west-limit -700\n")));
    QVERIFY(meter_state(file).contains(QStringLiteral("diseqc-sent 2\n")));
}

void GuiTest::the_unit_of_the_meter_is_taken_over() {
    start();
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    find<QAction>("cmdlev_1", screen)->trigger();
    screen->parentWidget()->close();
    QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
    program_state().unit_index = kDbuv;
    screen = open_realtime();
    QVERIFY(find<QAction>("cmdlev_1", screen)->isChecked());
    QCOMPARE(program_state().unit_index, int(kDbmv));
}

void GuiTest::a_plan_is_measured_program_by_program() {
    start();
    add_program("001", 1000, 1);
    add_program("002", 1100, 0);
    add_program("003", 1200.5, 1);
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    tick("meas_statea_0", screen);
    find<QAction>("group", screen)->trigger();
    QCOMPARE(find<QLineEdit>("grp_name", screen)->text(), QStringLiteral("PLAN 1"));
    QVERIFY(find<QAction>("multiple_acq", screen)->isVisible());
    QVERIFY(!find<QAction>("single_acq", screen)->isVisible());
    QVERIFY(!find<QWidget>("sat_opt", screen)->isEnabled());
    new_commands();
    const auto* progress = find<QLabel>("plan_progress");
    QStringList shown;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (!progress->text().isEmpty() && !shown.contains(progress->text()))
            shown += progress->text();
    });
    watch.start(20);
    find<QAction>("multiple_acq", screen)->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(!screen->rules.state.plan_run_active, 20000);
    QCOMPARE(new_commands(), QStringList({"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?", "MEASURE",
                                          "FREQ 1200.5", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(screen->rules.page.measurements(), 2);
    QCOMPARE(row(screen, 0)[2], QStringLiteral("1000.0"));
    QCOMPARE(row(screen, 1)[2], QStringLiteral("1200.5"));
    QCOMPARE(shown, QStringList({"1/2", "2/2"}));
    QCOMPARE(progress->text(), QString());
    QCOMPARE(find<QLabel>("prog_num", screen)->text(), QStringLiteral("003"));
}

void GuiTest::a_pass_whose_database_is_locked_says_that_it_was_cut_short() {
    start();
    add_program("001", 1000, 1);
    add_program("002", 1100, 1);
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    tick("meas_statea_0", screen);
    find<QAction>("group", screen)->trigger();
    const auto* progress = find<QLabel>("plan_progress");
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(in_folder(db::kDatabaseFile));
        QVERIFY(other.open());
        const auto first_row = connect(&screen->rules.page, &measurement::PageModel::rowsInserted,
                                       this, [&] { QSqlQuery("BEGIN EXCLUSIVE", other); });
        find<QAction>("multiple_acq", screen)->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(progress->text(), QString("Pass cut short"), 20000);
        disconnect(first_row);
        QVERIFY2(progress->toolTip().contains("locked"), qPrintable(progress->toolTip()));
        QVERIFY(!screen->rules.state.plan_run_active);
        QCOMPARE(screen->rules.page.measurements(), 1);
        other.close();
    }
    QSqlDatabase::removeDatabase("other");
    // The next pass is whole, and nothing is said of the one before.
    find<QAction>("multiple_acq", screen)->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(!screen->rules.state.plan_run_active, 20000);
    QCOMPARE(screen->rules.page.measurements(), 3);
    QCOMPARE(progress->text(), QString());
    QCOMPARE(progress->toolTip(), QString());
}

void GuiTest::timed_acquisition_measures_every_second_and_stops() {
    start();
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    tick("meas_statea_0", screen);
    QVERIFY(!find<QWidget>("timer_opt", screen)->isVisible());
    find<QAction>("start", screen)->trigger();
    QVERIFY(find<QWidget>("timer_opt", screen)->isVisible());
    auto* button = find<QPushButton>("cmdstart", screen);
    QCOMPARE(button->text(), QStringLiteral("&Start"));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(button->text(), QStringLiteral("&Stop"));
    QTRY_VERIFY_WITH_TIMEOUT(screen->rules.page.measurements() == 2, 10000);
    QCOMPARE(find<Lamp>("time_state", screen)->colour(), QColor(0, 255, 0));
    QVERIFY(!find<QLabel>("time_act", screen)->text().isEmpty());
    find<QAction>("stop", screen)->trigger();
    QVERIFY(!find<QWidget>("timer_opt", screen)->isVisible());
    QCOMPARE(find<Lamp>("time_state", screen)->colour(), QColor(192, 192, 192));
    const int rows = screen->rules.page.measurements();
    QTest::qWait(2500);
    QCOMPARE(screen->rules.page.measurements(), rows);
}

void GuiTest::clicks_and_ticks_wait_while_the_meter_answers() {
    start({QStringLiteral("--fault"), QStringLiteral("late:1"), QStringLiteral("--fault-on"),
           QStringLiteral("LEVANL"), QStringLiteral("--late"), QStringLiteral("1")});
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    tick("meas_statea_0", screen);
    int ticks = 0;
    bool inside = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        ++ticks;
        QVERIFY(!inside);
    });
    timer.start(100);
    QTest::qWait(10);
    ticks = 0;
    inside = true;
    screen->toolbar_ButtonClick(QStringLiteral("single_acq"));
    inside = false;
    QCOMPARE(ticks, 0);
    QCoreApplication::processEvents();
    QCOMPARE(ticks, 1);
    QCOMPARE(screen->rules.page.rowCount(), 2);
}

}  // namespace m47

QTEST_MAIN(m47::GuiTest)
