// SPDX-License-Identifier: GPL-3.0-or-later
// What the tab shows and how its plot is moved.
#include "trend_view_test.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTime>
#include <QToolBar>
#include <QWheelEvent>
#include <optional>

#include "band_sweep.h"
#include "handler.h"
#include "measurement_line.h"
#include "part.h"
#include "report_file.h"
#include "text_printer.h"
#include "trend_chart.h"
#include "trend_legend.h"
#include "trend_view.h"

namespace m47::shell {

void TrendViewTest::open_tab(int index) {
    auto* bar = find<QTabWidget>("page_tabs")->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    QCoreApplication::processEvents();
}

void TrendViewTest::press(const char* action) {
    auto* bar = find<QToolBar>("trend_bar");
    QTest::mouseClick(bar->widgetForAction(find<QAction>(action)), Qt::LeftButton);
    QCoreApplication::processEvents();
}

void TrendViewTest::add_row(const QString& level, const QString& fr, const QString& status) {
    const QString time = QTime(10, 0).addSecs(second_ += 10).toString(QStringLiteral("HH:mm:ss"));
    screen_->rules.page.append({QStringLiteral("21/11/26"), time, fr, QStringLiteral("10600"),
                                level, QStringLiteral("2.0E-4"), QString(), QString(),
                                QStringLiteral("14.2"), QString(), status});
}

void TrendViewTest::add_rows(int count) {
    for (int k = 0; k < count; ++k) add_row(QString::number(50 + k % 5));
}

void TrendViewTest::turn_wheel(Qt::KeyboardModifiers keys) {
    const QPointF place = plot()->axisRect(0)->rect().center();
    QWheelEvent turn(place, plot()->mapToGlobal(place), {}, {0, 120}, Qt::NoButton, keys,
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(plot(), &turn);
    QCoreApplication::processEvents();
}

int TrendViewTest::red_pixels() {
    QCoreApplication::processEvents();
    const QImage image = plot()->grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            count += colour.red() > 190 && colour.green() < 100 && colour.blue() < 100;
        }
    return count;
}

void TrendViewTest::init() {
    second_ = 0;
    new_folder();
    start_program({1400, 900});
    window().findChild<QAction*>(QStringLiteral("cmdinglese"))->trigger();
    window().findChild<QAction*>(QStringLiteral("realtime"))->trigger();
    screen_ = qobject_cast<realtime::Realtime*>(window().screen_of(QStringLiteral("realtime")));
    screen_->parentWidget()->showMaximized();
}

void TrendViewTest::the_page_is_in_front_and_nothing_of_the_trend_is_made_before_it_is_seen() {
    QCOMPARE(find<QTabWidget>("page_tabs")->tabText(0), QStringLiteral("Measurement page"));
    QCOMPARE(find<QTabWidget>("page_tabs")->tabText(1), QStringLiteral("Trend"));
    QVERIFY(find<QTableView>("measgrid")->isVisible());
    QVERIFY(!find<trend::TrendView>("trend")->isVisible());
    add_rows(5);
    QVERIFY(!screen_->findChild<QCustomPlot*>());
    open_tab(1);
    QVERIFY(find<trend::TrendView>("trend")->isVisible());
    QVERIFY(plot()->isVisible());
    QCOMPARE(plot()->axisRectCount(), 3);
}

/// In a folder without the parts (shell.missing_parts).
void TrendViewTest::where_what_draws_and_prints_is_missing_it_says_so() {
    if (Part(trend::kTrendPart).offer<trend::TrendCharts>()) QSKIP("the parts are here");
    add_rows(3);
    open_tab(1);
    auto* said = find<QLabel>("trend_nothing");
    QVERIFY(said->isVisible());
    QVERIFY2(said->text().contains("libm47-plot.so"), qPrintable(said->text()));
    add_rows(1);
    open_tab(0);
    open_tab(1);
    QVERIFY(said->isVisible());
    const QString pdf = in_folder("report.pdf");
    const QString reason = report::save_report(
        pdf, screen_->rules.page.store(), {}, [](measurement::Quantity) { return std::nullopt; },
        Texts());
    QVERIFY2(reason.contains("libm47-plot.so"), qPrintable(reason));
    QVERIFY(!QFile::exists(pdf));
    QString told;
    set_fault_reporter([&](QWidget*, const QString& what) { told = what; });
    window().open_screen("band_sweep");
    auto* sweep = window().opened<band::BandSweep>();
    sweep->save(in_folder("band.png"));
    QVERIFY2(told.contains("libm47-band.so"), qPrintable(told));
    QVERIFY(!QFile::exists(in_folder("band.png")));
    sweep->save(in_folder("band.tsv"));
    QVERIFY(QFile::exists(in_folder("band.tsv")));
    QVERIFY(!print_text(screen_, "Page", "x", Texts()));
    set_fault_reporter({});
    QVERIFY2(told.contains("libm47-print.so"), qPrintable(told));
}

void TrendViewTest::where_there_is_no_room_for_all_charts_a_list_chooses() {
    add_rows(20);
    open_tab(1);
    auto* list = find<QComboBox>("trend_first");
    QCOMPARE(plot()->axisRectCount(), 3);
    QVERIFY(!list->isVisible());
    window().resize(1400, 430);
    QCoreApplication::processEvents();
    QVERIFY(list->isVisible());
    QCOMPARE(list->count(), 3);
    const int charts = plot()->axisRectCount();
    QVERIFY(charts < 3);
    const auto first = [this] { return plot()->axisRect(0)->axis(QCPAxis::atLeft)->label(); };
    QCOMPARE(first(), QStringLiteral("Level"));
    list->setCurrentIndex(2);
    Q_EMIT list->activated(2);
    QCoreApplication::processEvents();
    QCOMPARE(plot()->axisRectCount(), charts);
    const auto last = plot()->axisRect(charts - 1)->axis(QCPAxis::atLeft);
    QCOMPARE(last->label(), QStringLiteral("MER (dB)"));
    // One that is not ticked is not offered.
    press("trend_ber");
    QCOMPARE(list->count(), 2);
    window().resize(1400, 900);
    QCoreApplication::processEvents();
    QVERIFY(!list->isVisible());
    QCOMPARE(plot()->axisRectCount(), 2);
}

void TrendViewTest::the_value_under_the_pointer_is_told() {
    add_rows(20);
    open_tab(1);
    plot()->replot();
    auto* value = plot()->findChild<QLabel*>(QStringLiteral("trend_value"));
    QVERIFY(!value->isVisible());
    auto* rect = plot()->axisRect(0);
    // The seventh row has 51 at 10:01:10.
    const double time =
        rect->axis(QCPAxis::atBottom)->range().center() - 35;  // 105 s in the middle
    const QPoint at(int(rect->axis(QCPAxis::atBottom)->coordToPixel(time)),
                    int(rect->axis(QCPAxis::atLeft)->coordToPixel(51)));
    QTest::mouseMove(plot(), at);
    QTRY_VERIFY(value->isVisible());
    QVERIFY2(value->text().contains(QStringLiteral("10:01:10  51")), qPrintable(value->text()));
    QVERIFY(value->text().startsWith(QStringLiteral("11778.0 / 10600")));
    QVERIFY(plot()->rect().contains(value->geometry()));
    QVERIFY(!value->geometry().contains(at));
    QTest::mouseMove(plot(), QPoint(2, 2));
    QTRY_VERIFY(!value->isVisible());
}

void TrendViewTest::captions_and_tooltips_stand_in_both_languages() {
    QCOMPARE(find<QAction>("trend_follow")->text(), QStringLiteral("Follow"));
    QCOMPARE(find<QAction>("trend_save")->text(), QStringLiteral("Save…"));
    QCOMPARE(find<QComboBox>("trend_program")->itemText(0), QStringLiteral("All programs"));
    const QString english = find<QAction>("trend_follow")->toolTip();
    program_state().texts.language = kItalian;
    screen_->parentWidget()->close();
    QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
    window().findChild<QAction*>(QStringLiteral("realtime"))->trigger();
    screen_ = qobject_cast<realtime::Realtime*>(window().screen_of(QStringLiteral("realtime")));
    QCOMPARE(find<QTabWidget>("page_tabs")->tabText(1), QStringLiteral("Andamento"));
    QCOMPARE(find<QAction>("trend_follow")->text(), QStringLiteral("Segui"));
    QCOMPARE(find<QComboBox>("trend_program")->itemText(0), QStringLiteral("Tutti i programmi"));
    QVERIFY(find<QAction>("trend_follow")->toolTip() != english);
    for (const QAction* action : find<QToolBar>("trend_bar")->actions())
        if (action->objectName().startsWith(QLatin1String("trend_")))
            QVERIFY2(!action->toolTip().isEmpty(), qPrintable(action->objectName()));
}

void TrendViewTest::an_empty_page_says_so_and_clearing_empties_the_trend() {
    open_tab(1);
    QVERIFY(find<QLabel>("trend_nothing")->isVisible());
    QVERIFY(!find<QAction>("trend_save")->isEnabled());
    add_rows(5);
    add_row(QStringLiteral("61"), QStringLiteral("11938.0"));
    QVERIFY(plot()->isVisible());
    QCOMPARE(find<QComboBox>("trend_program")->count(), 3);
    find<QComboBox>("trend_program")->setCurrentIndex(2);
    screen_->findChild<QAction*>(QStringLiteral("cancella"))->trigger();
    QVERIFY(find<QLabel>("trend_nothing")->isVisible());
    QCOMPARE(find<QComboBox>("trend_program")->count(), 1);
    QVERIFY(!find<QAction>("trend_save")->isEnabled());
    add_rows(2);
    QVERIFY(plot()->isVisible());
    QCOMPARE(find<QComboBox>("trend_program")->currentIndex(), 0);
}

void TrendViewTest::clearing_behind_the_hidden_tab_is_noticed() {
    add_rows(5);
    open_tab(1);
    open_tab(0);
    screen_->findChild<QAction*>(QStringLiteral("cancella"))->trigger();
    add_row(QStringLiteral("61"), QStringLiteral("950.0"));
    open_tab(1);
    QCOMPARE(find<QComboBox>("trend_program")->count(), 2);
    QCOMPARE(find<QComboBox>("trend_program")->itemText(1), QStringLiteral("950.0 / 10600"));
}

void TrendViewTest::a_reloaded_log_is_plotted() {
    const QString log = in_folder(QStringLiteral("old.log"));
    QFile file(log);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS\r\n"
        "21/11/26\t10:10:00\t950.0\t10600\t58.4\t\t\t\t\t\tPASS\r\n");
    file.close();
    open_tab(1);
    screen_->open_log(log);
    QCOMPARE(find<QComboBox>("trend_program")->itemText(1), QStringLiteral("950.0 / 10600"));
    QVERIFY(time_axis().size() > 600);
}

void TrendViewTest::a_row_that_comes_moves_the_axis_while_following() {
    add_rows(20);
    open_tab(1);
    QVERIFY(find<QAction>("trend_follow")->isChecked());
    const double whole = time_axis().upper;
    add_row(QStringLiteral("55"));
    QVERIFY(time_axis().upper >= whole + 10);
    press("trend_follow");
    QVERIFY(!find<QAction>("trend_follow")->isChecked());
    const QCPRange still = time_axis();
    add_row(QStringLiteral("55"));
    add_row(QStringLiteral("55"));
    QCOMPARE(time_axis().upper, still.upper);
    press("trend_follow");
    QVERIFY(time_axis().upper >= still.upper + 20);
}

void TrendViewTest::the_wheel_zooms_time_and_with_ctrl_values_until_reset() {
    add_rows(60);
    open_tab(1);
    const QCPRange time = time_axis();
    const QCPRange level = level_axis();
    turn_wheel(Qt::NoModifier);
    QVERIFY(time_axis().size() < time.size());
    for (int k = 0; k < plot()->axisRectCount(); ++k)
        QCOMPARE(plot()->axisRect(k)->axis(QCPAxis::atBottom)->range().lower, time_axis().lower);
    const QCPRange zoomed = time_axis();
    turn_wheel(Qt::ControlModifier);
    QCOMPARE(time_axis().size(), zoomed.size());
    QVERIFY(level_axis().size() < level.size());
    press("trend_reset");
    QCOMPARE(time_axis().size(), time.size());
    QCOMPARE(level_axis().size(), level.size());
}

void TrendViewTest::dragging_away_from_the_newest_row_ends_the_following() {
    add_rows(60);
    open_tab(1);
    for (int k = 0; k < 8; ++k) turn_wheel(Qt::NoModifier);
    const QCPRange before = time_axis();
    const QPoint centre = plot()->axisRect(0)->rect().center();
    QTest::mousePress(plot(), Qt::LeftButton, {}, centre);
    QTest::mouseMove(plot(), centre + QPoint(30, 0));
    QTest::mouseMove(plot(), centre + QPoint(60, 0));
    QTest::mouseRelease(plot(), Qt::LeftButton, {}, centre + QPoint(60, 0));
    QCoreApplication::processEvents();
    QVERIFY(time_axis().lower < before.lower);
    QVERIFY(!find<QAction>("trend_follow")->isChecked());
    const QCPRange dragged = time_axis();
    add_row(QStringLiteral("55"));
    QCOMPARE(time_axis().lower, dragged.lower);
}

void TrendViewTest::keys_pan_and_zoom() {
    add_rows(60);
    open_tab(1);
    const QCPRange whole = time_axis();
    plot()->setFocus();
    QTest::keyClick(plot(), Qt::Key_Plus);
    const QCPRange zoomed = time_axis();
    QVERIFY(zoomed.size() < whole.size());
    QTest::keyClick(plot(), Qt::Key_Left);
    QVERIFY(time_axis().lower < zoomed.lower);
    QTest::keyClick(plot(), Qt::Key_Right);
    QCOMPARE(time_axis().lower, zoomed.lower);
    QTest::keyClick(plot(), Qt::Key_Minus);
    QVERIFY(time_axis().size() > zoomed.size());
    QTest::keyClick(plot(), Qt::Key_Home);
    QCOMPARE(time_axis().size(), whole.size());
}

void TrendViewTest::quantities_and_programs_are_chosen() {
    add_rows(5);
    add_row(QStringLiteral("90"), QStringLiteral("11938.0"));
    open_tab(1);
    press("trend_ber");
    press("trend_mer");
    QCOMPARE(plot()->axisRectCount(), 1);
    press("trend_ber");
    QCOMPARE(plot()->axisRectCount(), 2);
    QCOMPARE(plot()->axisRect(1)->axis(QCPAxis::atLeft)->scaleType(), QCPAxis::stLogarithmic);
    QVERIFY(level_axis().upper > 90);
    auto* programs = find<QComboBox>("trend_program");
    programs->setFocus();
    QTest::keyClick(programs, Qt::Key_Down);
    QCOMPARE(programs->currentText(), QStringLiteral("11778.0 / 10600"));
    QCoreApplication::processEvents();
    QVERIFY(level_axis().upper < 70);
}

void TrendViewTest::nothing_chosen_is_an_empty_plot_and_no_fault() {
    add_rows(5);
    open_tab(1);
    for (const char* quantity : {"trend_level", "trend_ber", "trend_mer"}) press(quantity);
    QCOMPARE(plot()->axisRectCount(), 0);
    plot()->setFocus();
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Left, Qt::Key_Home})
        QTest::keyClick(plot(), key);
    QCoreApplication::processEvents();
    press("trend_level");
    QCOMPARE(plot()->axisRectCount(), 1);
}

void TrendViewTest::failed_rows_are_marked_in_red() {
    add_rows(10);
    open_tab(1);
    QCOMPARE(red_pixels(), 0);
    add_row(QStringLiteral("51"), QStringLiteral("11778.0"), QStringLiteral("FAIL"));
    QVERIFY(red_pixels() > 0);
}

void TrendViewTest::limits_are_bands_as_soon_as_they_are_ticked() {
    add_rows(10);
    open_tab(1);
    const auto seen = [this](const char* kind) {
        int visible = 0;
        for (int k = 0; k < plot()->itemCount(); ++k)
            visible += plot()->item(k)->inherits(kind) && plot()->item(k)->visible();
        return visible;
    };
    const auto bands = [&seen] { return seen("QCPItemRect"); };
    // A line at each limit, where its band begins.
    const auto lines = [&seen] { return seen("QCPItemStraightLine"); };
    QCOMPARE(bands(), 0);
    QCOMPARE(lines(), 0);
    const QCPRange without = level_axis();
    find<QLineEdit>("lev_mina")->setText(QStringLiteral("40"));
    QTest::keyClicks(find<QLineEdit>("lev_maxa"), QStringLiteral("80"));
    find<QCheckBox>("alarm_statea_0")->click();
    QCoreApplication::processEvents();
    QCOMPARE(bands(), 2);
    QCOMPARE(lines(), 2);
    QVERIFY(without.upper < 80 && level_axis().upper > 80);
    QVERIFY(level_axis().lower < 40);
    find<QCheckBox>("alarm_statea_0")->click();
    QCoreApplication::processEvents();
    QCOMPARE(bands(), 0);
}

void TrendViewTest::the_legend_says_minimum_maximum_and_last() {
    for (const char* level : {"55.5", "51.0", ""}) add_row(QString::fromLatin1(level));
    open_tab(1);
    plot()->replot();
    const auto* legend = static_cast<trend::TrendLegend*>(plot()->plotLayout()->element(0, 1));
    QVERIFY(legend);
    QCOMPARE(legend->lines().size(), std::size_t(1));
    const trend::TrendLegend::Line& line = legend->lines()[0];
    QCOMPARE(line.name, QStringLiteral("11778.0 / 10600"));
    QCOMPARE(line.figures[0], QStringLiteral("51.0"));
    QCOMPARE(line.figures[1], QStringLiteral("55.5"));
    QCOMPARE(line.figures[2], QStringLiteral("–"));
}

void TrendViewTest::the_legend_names_the_unit_beside_levels_alone() {
    const QString line =
        QStringLiteral("21/11/26\t10:00:10\t11778.0\t10600\t58.3\t2.0E-4\t\t\t14.2\t\tPASS");
    measurement::Measurement measured = measurement::measurement_of_line(line.toStdString());
    measured.unit = measurement::unit_of_index(0);
    screen_->rules.page.append(line.split(u'\t'), measured);
    open_tab(1);
    plot()->replot();
    const auto name = [this](int panel) {
        const auto* legend =
            static_cast<trend::TrendLegend*>(plot()->plotLayout()->element(panel, 1));
        return legend && legend->lines().size() == 1 ? legend->lines()[0].name : QString();
    };
    QCOMPARE(name(0), QStringLiteral("11778.0 / 10600 · dBuV"));
    QCOMPARE(name(1), QStringLiteral("11778.0 / 10600"));
    QCOMPARE(name(2), QStringLiteral("11778.0 / 10600"));
}

void TrendViewTest::the_legend_tells_curves_of_one_program_apart_by_their_unit() {
    const QString line =
        QStringLiteral("21/11/26\t10:00:10\t11778.0\t10600\t58.3\t2.0E-4\t\t\t14.2\t\tPASS");
    measurement::Measurement measured = measurement::measurement_of_line(line.toStdString());
    screen_->rules.page.append(line.split(u'\t'), measured);
    measured.unit = measurement::unit_of_index(0);
    screen_->rules.page.append(line.split(u'\t'), measured);
    open_tab(1);
    plot()->replot();
    for (int panel = 0; panel < 3; ++panel) {
        const auto* legend =
            static_cast<trend::TrendLegend*>(plot()->plotLayout()->element(panel, 1));
        QCOMPARE(legend->lines().size(), std::size_t(2));
        QCOMPARE(legend->lines()[0].name, QStringLiteral("11778.0 / 10600"));
        QCOMPARE(legend->lines()[1].name, QStringLiteral("11778.0 / 10600 · dBuV"));
    }
}

}  // namespace m47::shell

QTEST_MAIN(m47::shell::TrendViewTest)
