// SPDX-License-Identifier: GPL-3.0-or-later
// Work without a mouse, without eyes and from afar: every screen by Tab, and the large level.
#include <QAccessible>
#include <QCheckBox>
#include <QDesktopServices>
#include <QHelpEvent>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QRadioButton>
#include <QSet>
#include <QSignalSpy>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>
#include <QUrl>

#include "level_view.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "screen_table.h"

namespace m47::shell {

class ComfortTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    realtime::Realtime* realtime() {
        window().findChild<QAction*>("realtime")->trigger();
        return qobject_cast<realtime::Realtime*>(window().screen_of("realtime"));
    }
    static QString title(const QWidget* control) {
        return QStringLiteral("%1 %2 in %3")
            .arg(QLatin1String(control->metaObject()->className()), control->objectName(),
                 control->parentWidget() ? control->parentWidget()->objectName() : QString());
    }
    /// What a person could want to reach on the screen as it stands.
    static QList<QWidget*> controls(QWidget* screen) {
        QList<QWidget*> found;
        for (QWidget* control : screen->findChildren<QWidget*>()) {
            const bool entry =
                qobject_cast<QAbstractButton*>(control) || (control->focusPolicy() & Qt::TabFocus);
            const bool part_of_another =
                control->focusProxy() || control->window() != screen->window();
            const bool own = !qobject_cast<QTabBar*>(control->parentWidget()) &&
                             !qobject_cast<QMdiSubWindow*>(control->parentWidget());
            // What the corner of a table does, Ctrl+A does as well.
            if (control->inherits("QTableCornerButton")) continue;
            if (entry && own && !part_of_another && control->isVisible() && control->isEnabled())
                found += control;
        }
        return found;
    }
    static QSet<QWidget*> reached_by_tab(QWidget* screen) {
        QSet<QWidget*> reached;
        QWidget* first = controls(screen).value(0);
        if (!first) return reached;
        first->setFocus(Qt::TabFocusReason);
        for (int press = 0; press < 300; ++press) {
            QWidget* at = QApplication::focusWidget();
            if (!at) break;
            reached += at;
            QTest::keyClick(at, Qt::Key_Tab);
        }
        return reached;
    }
    static bool reached(const QWidget* control, const QSet<QWidget*>& by_tab) {
        if (by_tab.contains(const_cast<QWidget*>(control))) return true;
        // Of option buttons that belong together Tab reaches one, the arrow keys the others.
        if (!qobject_cast<const QRadioButton*>(control)) return false;
        for (const QRadioButton* other :
             control->parentWidget()->findChildren<QRadioButton*>(Qt::FindDirectChildrenOnly))
            if (by_tab.contains(const_cast<QRadioButton*>(other))) return true;
        return false;
    }
    FakePort& start_on_virtual_line() {
        end_program();
        new_folder();
        return start_at_one_level({1300, 900});
    }
    static QString spoken_name(QWidget* control) {
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(control);
        return interface ? interface->text(QAccessible::Name) : QString();
    }

    QStringList opened_;

  public Q_SLOTS:
    void take_url(const QUrl& url) { opened_ += url.toLocalFile(); }

  private Q_SLOTS:
    void init() {
        new_folder();
        start_program({1300, 900});
        QApplication::setActiveWindow(&window());
    }
    void cleanup() { end_program(); }

    void every_control_is_reached_by_tab_and_has_a_name_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("language");
        for (const QString& key : screen_keys()) {
            QTest::addRow("%s in English", qPrintable(key)) << key << int(kEnglish);
            QTest::addRow("%s in Italian", qPrintable(key)) << key << int(kItalian);
        }
    }
    void every_control_is_reached_by_tab_and_has_a_name() {
        QFETCH(QString, key);
        QFETCH(int, language);
        program_state().texts.language = language;
        window().findChild<QAction*>(key)->trigger();
        QWidget* screen = window().screen_of(key);
        QVERIFY(screen);
        screen->parentWidget()->showMaximized();
        QCoreApplication::processEvents();
        const QList<QWidget*> all = controls(screen);
        QVERIFY(all.size() > 1);
        const QSet<QWidget*> by_tab = reached_by_tab(screen);
        QStringList unreached, unnamed;
        for (QWidget* control : all) {
            if (!reached(control, by_tab)) unreached += title(control);
            if (spoken_name(control).isEmpty()) unnamed += title(control);
        }
        QVERIFY2(unreached.isEmpty(), qPrintable("not reached: " + unreached.join("; ")));
        QVERIFY2(unnamed.isEmpty(), qPrintable("without a name: " + unnamed.join("; ")));
    }

    void a_name_is_in_the_language_of_its_screen() {
        realtime::Realtime* screen = realtime();
        QCOMPARE(spoken_name(screen->findChild<QWidget*>("fsat")),
                 QStringLiteral("Selezione frequenza"));
        auto* bar = screen->findChild<QToolBar*>("barracomandi");
        QWidget* key = bar->widgetForAction(screen->findChild<QAction*>("save"));
        QCOMPARE(spoken_name(key), QStringLiteral("Open file"));
        screen->findChild<QAction*>("save")->setToolTip("Close file");
        QCOMPARE(spoken_name(key), QStringLiteral("Close file"));
    }

    void screens_open_by_keyboard() {
        QTest::keyClick(&window(), Qt::Key_3, Qt::ControlModifier);
        QVERIFY(window().screen_of("realtime"));
        QTest::keyClick(window().screen_of("realtime"), Qt::Key_6, Qt::ControlModifier);
        QVERIFY(window().screen_of("setport"));
    }

    void measuring_and_stopping_have_keys() {
        start_on_virtual_line();
        QApplication::setActiveWindow(&window());
        realtime::Realtime* screen = realtime();
        find<QCheckBox>("meas_statea_0", screen)->setChecked(true);
        QVERIFY(screen->isAncestorOf(QApplication::focusWidget()));  // the keys work at once
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F5);
        QCOMPARE(screen->rules.page.measurements(), 1);
        screen->toolbar_ButtonClick("start");
        QVERIFY(find<QWidget>("time_delay", screen)->isVisible());
        find<QPushButton>("cmdstart", screen)->click();
        QVERIFY(screen->acquisition.timed());
        QTest::keyClick(find<QLineEdit>("fsat", screen), Qt::Key_F5, Qt::ShiftModifier);
        QVERIFY(!screen->acquisition.timed());
        // With a plan the pass stands in the place of the single measurement.
        find<QAction>("group", screen)->trigger();
        const QSignalSpy passes(find<QAction>("multiple_acq", screen), &QAction::triggered);
        QTest::keyClick(&window(), Qt::Key_F5);
        QCOMPARE(passes.size(), 1);
        find<QAction>("single", screen)->trigger();
        QTest::keyClick(&window(), Qt::Key_F5);
        QCOMPARE(passes.size(), 1);
        QCOMPARE(screen->rules.page.measurements(), 2);
    }

    void plans_are_gone_through_and_stored_by_keys() {
        window().findChild<QAction*>("program")->trigger();
        Screen* screen = window().screen_of("program");
        auto* frequency = find<QLineEdit>("sat_freq_txt", screen);
        const auto number = [&] { return find<QLineEdit>("prog_num", screen)->text(); };
        frequency->setFocus();
        for (const char* added : {"002", "003"}) {
            find<QLineEdit>("prog_num", screen)->setText(added);
            screen->findChild<QAction*>("store_new")->trigger();
        }
        const QString second = number();
        QTest::keyClick(frequency, Qt::Key_PageUp);
        const QString first = number();
        QVERIFY(first != second);
        frequency->setText("1111.0");
        QTest::keyClick(frequency, Qt::Key_S, Qt::ControlModifier);
        QTest::keyClick(frequency, Qt::Key_PageDown);
        QCOMPARE(number(), second);
        QTest::keyClick(frequency, Qt::Key_PageUp);
        QCOMPARE(frequency->text().toDouble(), 1111.0);
        // A list keeps them: they move about in it.
        auto* list = find<QComboBox>("k22_state", screen);
        list->setFocus();
        QKeyEvent key(QEvent::ShortcutOverride, Qt::Key_PageDown, Qt::NoModifier);
        key.ignore();
        QCoreApplication::sendEvent(list, &key);
        QVERIFY(key.isAccepted());
    }

    void a_tooltip_names_the_shortcut_and_stays_what_it_is() {
        realtime::Realtime* screen = realtime();
        auto* bar = screen->findChild<QToolBar*>("barracomandi");
        QAction* action = screen->findChild<QAction*>("stop");
        const QString text = action->toolTip();
        QWidget* button = bar->widgetForAction(action);
        QHelpEvent pointed(QEvent::ToolTip, QPoint(2, 2), button->mapToGlobal(QPoint(2, 2)));
        QCoreApplication::sendEvent(button, &pointed);
        QVERIFY2(QToolTip::text().startsWith(text + " (") && QToolTip::text().contains("F5"),
                 qPrintable(QToolTip::text()));
        QCOMPARE(action->toolTip(), text);
        QToolTip::hideText();
    }

    void the_large_level_opens_in_a_run_and_leaves_all_as_it_was() {
        start_on_virtual_line();
        realtime::Realtime* screen = realtime();
        screen->toolbar_ButtonClick("qpsk");
        screen->toolbar_ButtonClick("start");
        find<QPushButton>("cmdstart", screen)->click();
        QVERIFY(screen->acquisition.timed());
        auto* box = find<QLineEdit>("fsat", screen);
        box->setFocus();
        box->setText("1234");
        const QRect place = window().geometry();
        const int mode = screen->rules.state.meas_mode;
        QTest::keyClick(box, Qt::Key_F11);
        auto* view = screen->findChild<level::LevelView*>("level_view");
        QVERIFY(view->isFullScreen());
        QApplication::setActiveWindow(view);
        QTest::keyClick(view, Qt::Key_F11);
        QVERIFY(!view->isVisible());
        window().activateWindow();
        QCoreApplication::processEvents();
        QVERIFY(screen->acquisition.timed());
        QCOMPARE(screen->rules.state.meas_mode, mode);
        QCOMPARE(box->text(), QStringLiteral("1234"));
        QCOMPARE(window().focusWidget(), box);
        QCOMPARE(window().geometry(), place);
        QCOMPARE(window().front_key(), QStringLiteral("realtime"));
    }

    void space_repeats_the_level_alone_and_all_is_as_before() {
        start_on_virtual_line();
        realtime::Realtime* screen = realtime();
        find<QCheckBox>("meas_statea_1", screen)->setChecked(true);
        screen->toolbar_ButtonClick("start");
        find<QPushButton>("cmdstart", screen)->click();
        find<QLineEdit>("fsat", screen)->setText("1234");
        const int left = screen->rules.state.ticks_left;
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        auto* view = screen->findChild<level::LevelView*>("level_view");
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(view->repeating());
        QTRY_VERIFY2(spoken_name(view).startsWith("58.3 dBuV"), qPrintable(spoken_name(view)));
        screen->acquisition.Timer1_Timer();
        QCOMPARE(screen->rules.state.ticks_left, left);
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(!view->repeating() && !screen->rules.state.plan_run_active);
        QTest::keyClick(view, Qt::Key_Space);
        QTest::keyClick(view, Qt::Key_Escape);
        QVERIFY(!view->repeating() && !view->isVisible());
        QVERIFY(!screen->rules.state.plan_run_active && screen->acquisition.timed());
        QCOMPARE(screen->rules.page.measurements(), 0);
        QCOMPARE(find<QLineEdit>("fsat", screen)->text(), QStringLiteral("1234"));
        QVERIFY(find<QCheckBox>("meas_statea_1", screen)->isChecked());
        QVERIFY(!find<QCheckBox>("meas_statea_0", screen)->isChecked());
    }

    void the_level_alone_waits_for_no_run_and_ends_with_the_link() {
        start_on_virtual_line();
        realtime::Realtime* screen = realtime();
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        auto* view = screen->findChild<level::LevelView*>("level_view");
        screen->toolbar_ButtonClick("group");
        screen->toolbar_ButtonClick("multiple_acq");
        QVERIFY(screen->acquisition.passing());
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(!view->repeating() && screen->rules.state.plan_run_active);
        QVERIFY(!view->property("remark").toString().isEmpty());
        screen->toolbar_ButtonClick("stop");
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(view->repeating() && view->property("remark").toString().isEmpty());
        program().link().port_connected = false;
        QTRY_VERIFY(!view->repeating());
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(!view->repeating());
    }

    void another_quantity_is_repeated_and_each_opening_is_clean() {
        FakePort& line = start_on_virtual_line();
        realtime::Realtime* screen = realtime();
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        auto* view = screen->findChild<level::LevelView*>("level_view");
        QTest::keyClick(view, Qt::Key_Q);
        QVERIFY(view->quantity() == measurement::Quantity::cn && !view->repeating());
        QTest::keyClick(view, Qt::Key_Q);
        line.take_commands();
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(view->repeating());
        QTRY_VERIFY(line.written.contains("BERQPSK?"));
        QTest::keyClick(view, Qt::Key_Q);
        QVERIFY(view->quantity() == measurement::Quantity::level && view->repeating());
        QTRY_VERIFY(line.written.contains("LEVANL?"));
        QStringList sent = line.take_commands();
        sent.removeDuplicates();
        QCOMPARE(sent.mid(0, 4),
                 (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 00", sent.value(3)}));
        QVERIFY2(sent.contains("ATTEN 6"), qPrintable(sent.join('\n')));
        QTest::keyClick(view, Qt::Key_Q);
        QTest::keyClick(view, Qt::Key_Q);
        QTRY_VERIFY(line.written.contains("BERQPSK?"));
        line.take_commands();
        QTest::keyClick(view, Qt::Key_Escape);
        QVERIFY(!view->isVisible() && !screen->rules.state.plan_run_active);
        QCOMPARE(line.take_commands().last(), QString("MEASURE"));
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        QVERIFY(view->quantity() == measurement::Quantity::level && !view->repeating());
        QTest::keyClick(view, Qt::Key_Escape);
        QCOMPARE(line.take_commands(), QStringList());
    }

    void every_shortcut_stands_in_a_menu() {
        QList<QWidget*> windows{&window()};
        for (const ScreenEntry& screen : screen_table()) {
            window().findChild<QAction*>(screen.key)->trigger();
            windows += window().screen_of(screen.key);
        }
        for (QWidget* one : windows) {
            QSet<QAction*> listed;
            for (const QMenu* menu : one->findChildren<QMenu*>())
                for (QAction* entry : menu->actions()) listed += entry;
            for (const QWidget* in : one->findChildren<QWidget*>())
                if (in->contextMenuPolicy() == Qt::ActionsContextMenu)
                    for (QAction* entry : in->actions()) listed += entry;
            for (QAction* action : one->findChildren<QAction*>())
                QVERIFY2(action->shortcut().isEmpty() || listed.contains(action),
                         qPrintable(action->objectName()));
        }
    }

    /// Each entry of each menu as "name=text", screens loaded in `language`.
    QStringList menu_texts(const char* language) {
        window().findChild<QAction*>(language)->trigger();
        QStringList texts;
        const auto add = [&texts](const QWidget* one) {
            for (const QMenu* menu : one->findChildren<QMenu*>()) {
                texts += menu->objectName() + u'=' + menu->title();
                for (const QAction* entry : menu->actions())
                    if (!entry->isSeparator() && !entry->menu())
                        texts += entry->objectName() + u'=' + entry->text();
            }
        };
        for (const ScreenEntry& screen : screen_table()) {
            window().findChild<QAction*>(screen.key)->trigger();
            add(window().screen_of(screen.key));
            window().screen_of(screen.key)->parentWidget()->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        add(&window());
        texts.removeDuplicates();
        return texts;
    }

    void a_menu_is_in_one_language_but_for_what_is_prescribed() {
        const QSet<QString> prescribed{
            "cmdmenu=Menu", "cmdmenu=&Menu", "cmdlingua=&Language", "cmdinglese=&English",
            "cmditaliano=&Italiano", "cmdmeaunit=&Unit", "cmdlev_0=dBuV", "cmdlev_1=dBmV",
            "cmdlev_2=dBm", "cmdexit=&Exit",
            // The titles of the screens.
            "program=Plan Setup", "download=Download Data Logged",
            "realtime=Real Time Function Mode", "asl=Automatic Satellite Locator",
            "configurazione=Configuration", "setport=RS232 Port Selection", "band_sweep=Band sweep",
            "sites=Sites"};
        const QStringList english = menu_texts("cmdinglese");
        QVERIFY(english.size() > 50);
        QStringList alike;
        for (const QString& text : menu_texts("cmditaliano"))
            if (english.contains(text) && !prescribed.contains(text) && !text.endsWith(u'='))
                alike += text;
        QCOMPARE(alike, QStringList());
    }

    void a_file_that_was_saved_is_told_and_can_be_opened() {
        window().findChild<QAction*>("cmdinglese")->trigger();
        QVERIFY(!window().findChild<QWidget*>("saved_notice"));
        program_state().saved(in_folder("day <b>.dwl"));
        auto* name = find<QLabel>("saved_name");
        QVERIFY(name->isVisible() && name->textFormat() == Qt::PlainText);
        QCOMPARE(name->text(), QStringLiteral("Saved day <b>.dwl"));
        QDesktopServices::setUrlHandler("file", this, "take_url");
        find<QToolButton>("saved_open")->click();
        QDesktopServices::unsetUrlHandler("file");
        QCOMPARE(opened_, QStringList(in_folder("day <b>.dwl")));
        program_state().saved(in_folder("other.tsv"));
        QCOMPARE(name->text(), QStringLiteral("Saved other.tsv"));
        QCOMPARE(window().findChildren<QWidget*>("saved_notice").size(), 1);
    }

    void a_toolbar_key_works_by_the_space_bar() {
        realtime::Realtime* screen = realtime();
        auto* bar = screen->findChild<QToolBar*>("barracomandi");
        QWidget* key = bar->widgetForAction(screen->findChild<QAction*>("group"));
        key->setFocus(Qt::TabFocusReason);
        QTest::keyClick(key, Qt::Key_Space);
        QVERIFY(screen->rules.panel.plan_controls_visible);
    }

    void the_large_level_follows_the_rows_and_leaves_by_esc() {
        program().link().port_connected = true;
        program().link().commands_suspended = true;
        window().findChild<QAction*>("cmdinglese")->trigger();
        realtime::Realtime* screen = realtime();
        auto* view = screen->findChild<level::LevelView*>("level_view");
        QVERIFY(view && !view->isVisible());
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        QVERIFY(view->isVisible() && view->isFullScreen());
        QVERIFY(spoken_name(view).contains("No measurement yet"));
        const QStringList row{"21/11/26", "10:00:00", "1200.0", "10600", "58.3", "",
                              "",         "",         "",       "",      "PASS"};
        measurement::Measurement measured;
        measured.reading(measurement::Quantity::level) =
            measurement::reading_of(measurement::Quantity::level, row[4]);
        measured.unit = kDbuv;
        measured.verdict = measurement::Verdict::pass;
        screen->rules.page.append(row, measured);
        QCOMPARE(spoken_name(view), QStringLiteral("58.3 dBuV PASS Measured 0 s ago"));
        const auto has_colour = [view](QColor colour) {
            const QImage image = view->grab().toImage();
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    if (image.pixelColor(x, y) == colour) return true;
            return false;
        };
        const QColor green(0x40, 0xFF, 0x60);
        QVERIFY(has_colour(green));
        // The cycle blanks the labels: the value before it is no longer live.
        screen->rules.panel.leva = QString(8, u' ');
        screen->rules.panel.repaint();
        QVERIFY(spoken_name(view).contains("Measuring…"));
        QVERIFY(!has_colour(green));
        screen->rules.page.append(row, measured);
        QVERIFY(has_colour(green));
        program().link().port_connected = false;
        QVERIFY(!has_colour(green));
        QTest::keyClick(view, Qt::Key_Escape);
        QVERIFY(!view->isVisible());
    }

    void the_large_level_names_the_unit_that_the_meter_was_asked_in() {
        start_on_virtual_line();
        realtime::Realtime* screen = realtime();
        auto* view = screen->findChild<level::LevelView*>("level_view");
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        screen->rules.panel.meas_statea[realtime::kLevel] = true;
        screen->toolbar_ButtonClick("single_acq");
        QVERIFY2(spoken_name(view).startsWith("58.3 dBuV"), qPrintable(spoken_name(view)));
        // The plan screen's choice is for the next upload: the meter is told nothing by it.
        window().findChild<QAction*>("program")->trigger();
        window().screen_of("program")->findChild<QAction*>("cmdlev_2")->trigger();
        QCOMPARE(program_state().unit_index, int(kDbm));
        screen->toolbar_ButtonClick("single_acq");
        QVERIFY2(spoken_name(view).startsWith("58.3 dBuV"), qPrintable(spoken_name(view)));
        screen->findChild<QAction*>("cmdlev_2")->trigger();
        screen->toolbar_ButtonClick("single_acq");
        QVERIFY2(spoken_name(view).startsWith("58.3 dBm"), qPrintable(spoken_name(view)));
    }

    void without_a_sound_device_it_says_so_once() {
        if (level::TonePlayer().open()) QSKIP("this machine has a sound device");
        realtime::Realtime* screen = realtime();
        auto* view = screen->findChild<level::LevelView*>("level_view");
        screen->findChild<QAction*>("cmdlevelview")->trigger();
        QTest::keyClick(view, Qt::Key_T);
        QVERIFY(view->isVisible());
        QVERIFY(view->property("remark").toString().contains("audio"));
        QTest::keyClick(view, Qt::Key_T);
        QVERIFY(view->property("remark").toString().isEmpty());
        screen->rules.page.append({"21/11/26", "10:00:00", "1200.0", "10600", "58.3"});
        QVERIFY(spoken_name(view).contains("58.3"));
    }

    void the_part_for_sound_is_loaded_from_beside_the_program() {
        level::TonePlayer player;
        player.open();
        QCOMPARE(player.fault(), QString());
    }

    void a_part_for_sound_that_is_missing_is_told_as_that() {
        const QTemporaryDir empty;
        level::TonePlayer player(QStringList{empty.path()});
        QVERIFY(!player.open());
        QVERIFY2(player.fault().contains("libm47-sound"), qPrintable(player.fault()));
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::ComfortTest)
#include "comfort_test.moc"
