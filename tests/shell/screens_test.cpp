// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens_test.h"

namespace m47::shell {

realtime::Realtime* ScreensTest::open_realtime() {
    find<QAction>("realtime")->trigger();
    return qobject_cast<realtime::Realtime*>(window().screen_of(QStringLiteral("realtime")));
}

void ScreensTest::init() {
    new_folder();
    start_program({1024, 600});
}

void ScreensTest::cleanup() {
    meter_.reset();  // before its line goes
    line_ = nullptr;
    end_program();
}

void ScreensTest::main_window_is_as_technicians_know_it() {
    QCOMPARE(window().objectName(), QStringLiteral("M47MDI"));
    QCOMPARE(window().windowTitle(), QStringLiteral("VKD M47_03 REMOTE CONTROL"));
    QStringList keys, tips;
    for (const QAction* key : find<QToolBar>("barracomandi")->actions()) {
        keys += key->objectName();
        tips += key->toolTip();
    }
    QCOMPARE(keys,
             QStringList({"program", "download", "realtime", "asl", "configurazione", "setport"}));
    QCOMPARE(tips,
             QStringList({"Plan Setup", "Download Data Logged", "Real Time Function Mode",
                          "Automatic Satellite Locator", "Configuration", "RS232 Port Selection"}));
    // What came later stands in a bar of its own, in the same row.
    QTRY_VERIFY(window().findChild<QToolBar*>("barrastrumenti"));
    const auto* later = find<QToolBar>("barrastrumenti");
    QStringList later_keys;
    for (const QAction* key : later->actions()) later_keys += key->objectName();
    QCOMPARE(later_keys, QStringList({"band_sweep", "sites", "cmdidentify"}));
    QTRY_COMPARE(later->y(), find<QToolBar>("barracomandi")->y());
    QVERIFY(find<QMenu>("cmdscreens")->actions().contains(later->actions().first()));
    QVERIFY(find<QMenu>("cmdmenu")->actions().contains(later->actions().last()));
    QCOMPARE(find<QMenu>("cmdlingua")->title(), QStringLiteral("&Language"));
    QVERIFY(find<QAction>("asl")->isEnabled());
    QVERIFY(!find<QWidget>("pbar1")->isVisible());
}

void ScreensTest::the_entries_of_the_main_window_follow_the_language() {
    const auto tips = [this] {
        QStringList all;
        for (const char* name : {"cmdimportdb", "cmdmanual"})
            all << find<QAction>(name)->toolTip() << find<QAction>(name)->statusTip();
        return all;
    };
    const QStringList italian = tips();
    QVERIFY(italian[0].startsWith(QStringLiteral("Importa")));
    find<QAction>("cmdinglese")->trigger();
    QCOMPARE(tips(), QStringList({"Bring plans and satellites from an old database",
                                  "Bring plans and satellites from an old database",
                                  "Open the manual at the page of this screen",
                                  "Open the manual at the page of this screen"}));
    find<QAction>("cmditaliano")->trigger();
    QCOMPARE(tips(), italian);
    // Picking a port chooses English too, whatever the menu has ticked.
    program().identify(10);
    QVERIFY(tips()[0].startsWith(QStringLiteral("Bring")));
    QCOMPARE(find<QMenu>("cmdcorrected")->title(), QStringLiteral("Corrected &behaviour"));
    QVERIFY(find<QAction>("cmditaliano")->isChecked());
}

void ScreensTest::a_pass_that_was_cut_short_is_told_in_the_language() {
    realtime::Realtime* screen = open_realtime();
    const auto* progress = find<QLabel>("plan_progress");
    Q_EMIT screen->cut_short(QStringLiteral("<b>why</b>"));
    QCOMPARE(progress->text(), QStringLiteral("Giro interrotto"));
    QVERIFY(progress->toolTip().contains(QStringLiteral("&lt;b&gt;why")));
    find<QAction>("cmdinglese")->trigger();
    Q_EMIT screen->cut_short(QString());
    QCOMPARE(progress->text(), QStringLiteral("Pass cut short"));
}

void ScreensTest::a_screen_shows_what_its_rules_have_measured() {
    auto rules = std::make_unique<realtime::RealtimeRules>(program().link(), program_state(),
                                                           program().database());
    rules->panel.leva = QStringLiteral("58.3");
    for (int row = 0; row < 100; ++row)
        rules->page.append({"23/11/26", "10:00:00", QString::number(1000 + row), "10600", "58.3",
                            "", "", "", "", "", ""},
                           measurement::Measurement());
    rules->log.open(in_folder("run.log"), rules->page);
    realtime::Realtime screen(std::move(rules));
    screen.fill_in();
    screen.resize(900, 560);
    static_cast<void>(screen.grab());
    screen.show_newest();
    QCOMPARE(find<QLabel>("leva", &screen)->text(), QStringLiteral("58.3"));
    QVERIFY(find<QLabel>("file_name", &screen)->text().endsWith("run.log"));
    const auto* page = find<QTableView>("measgrid", &screen);
    const QRect newest = page->visualRect(page->model()->index(99, 0));
    QVERIFY(page->viewport()->rect().contains(newest.center()));
}

void ScreensTest::it_starts_in_italian_and_the_menu_changes_only_what_comes_after() {
    QCOMPARE(program_state().texts.language, int(kItalian));
    QVERIFY(find<QAction>("cmditaliano")->isChecked());
    QVERIFY(!find<QAction>("cmdinglese")->isChecked());
    realtime::Realtime* first = open_realtime();
    QCOMPARE(find<QLineEdit>("fsat", first)->toolTip(), QStringLiteral("Selezione frequenza"));
    find<QAction>("cmdinglese")->trigger();
    QCOMPARE(program_state().texts.language, int(kEnglish));
    QVERIFY(find<QAction>("cmdinglese")->isChecked());
    QVERIFY(!find<QAction>("cmditaliano")->isChecked());
    QCOMPARE(program_state().texts.message(kContinue), QStringLiteral("Do you want to continue?"));
    QCOMPARE(find<QLineEdit>("fsat", first)->toolTip(), QStringLiteral("Selezione frequenza"));
    first->parentWidget()->close();
    QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
    QCOMPARE(find<QLineEdit>("fsat", open_realtime())->toolTip(),
             QStringLiteral("Select frequency"));
}

void ScreensTest::every_tooltip_stands_in_both_languages() {
    for (const int language : {int(kEnglish), int(kItalian)}) {
        program_state().texts.language = language;
        realtime::Realtime* screen = open_realtime();
        for (const Tooltip& tooltip : realtime::realtime_tooltips()) {
            if (QLatin1String(tooltip.control) == QLatin1String("save")) continue;
            auto* control = find<QObject>(tooltip.control, screen);
            const bool italian = language == kItalian && tooltip.italian;
            const char* text = italian ? tooltip.italian : tooltip.english;
            if (!text) continue;
            QCOMPARE(control->property("toolTip").toString(), QString::fromUtf8(text));
        }
        QCOMPARE(find<QAction>("save", screen)->toolTip(), QStringLiteral("Open file"));
        screen->parentWidget()->close();
        QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
    }
}

void ScreensTest::a_screen_brought_up_in_a_wait_comes_to_the_front_afterwards() {
    QStringList told;
    for (const char* key : {"program", "download"})
        window().add_screen(key, [this, &told, key] {
            return new TellingScreen([this, &told, key] {
                QVERIFY(!window().status().pumping());
                told += QString::fromLatin1(key);
            });
        });
    find<QAction>("program")->trigger();
    find<QAction>("download")->trigger();
    told.clear();
    auto* area = find<QMdiArea>("screens");
    QWidget* other = window().screen_of("program")->parentWidget();
    QMetaObject::invokeMethod(
        area, [&] { area->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(other)); },
        Qt::QueuedConnection);
    for (int turn = 0; turn < 3; ++turn) window().status().pump();
    QCOMPARE(area->currentSubWindow(), other);
    QCOMPARE(told, QStringList());
    QTRY_COMPARE(told, QStringList("program"));
}

void ScreensTest::every_screen_of_the_table_opens_by_its_shortcut_and_is_left_by_exit() {
    for (const ScreenEntry& entry : screen_table()) {
        window().activateWindow();
        QTest::keyClick(&window(), entry.shortcut, Qt::ControlModifier);
        Screen* screen = window().screen_of(QString::fromLatin1(entry.key));
        QVERIFY2(screen, entry.key);
        QCOMPARE(window().front_key(), QString::fromLatin1(entry.key));
        QCOMPARE(screen->contextMenuPolicy(), Qt::NoContextMenu);
        Q_EMIT screen->exit_asked();
        QTRY_VERIFY2(!window().screen_of(QString::fromLatin1(entry.key)), entry.key);
    }
}

void ScreensTest::a_screen_opens_once() {
    find<QAction>("setport")->trigger();
    find<QAction>("setport")->trigger();
    QCOMPARE(find<QMdiArea>("screens")->subWindowList().size(), 1);
    find<QPushButton>("cmdexit", window().screen_of(QStringLiteral("setport")))->click();
    QTRY_COMPARE(find<QMdiArea>("screens")->subWindowList().size(), 0);
}

void ScreensTest::a_maximised_screen_stays_so_when_brought_up_again() {
    auto* view = qobject_cast<QMdiSubWindow*>(open_realtime()->parentWidget());
    view->showMaximized();
    find<QAction>("setport")->trigger();
    find<QAction>("realtime")->trigger();
    QVERIFY(view->isMaximized());
    QCOMPARE(window().caption(), QStringLiteral("VKD M47_03 REMOTE CONTROL"));
}

void ScreensTest::no_menu_hides_a_toolbar() {
    QCOMPARE(window().contextMenuPolicy(), Qt::NoContextMenu);
    QCOMPARE(open_realtime()->contextMenuPolicy(), Qt::NoContextMenu);
}

void ScreensTest::screens_open_as_tabs_that_fill_the_window() {
    const auto* area = find<QMdiArea>("screens");
    QCOMPARE(area->viewMode(), QMdiArea::TabbedView);
    for (const ScreenEntry& entry : screen_table()) {
        window().open_screen(QString::fromLatin1(entry.key));
        const Screen* screen = window().screen_of(QString::fromLatin1(entry.key));
        QVERIFY2(screen->parentWidget()->isMaximized(), entry.key);
        QVERIFY2(screen->parentWidget()->size() == area->viewport()->size(), entry.key);
        QVERIFY2(screen->size() == area->viewport()->size(), entry.key);
        // The window's caption is its own: tabs say which screen it is.
        QCOMPARE(window().windowTitle(), QStringLiteral("VKD M47_03 REMOTE CONTROL"));
    }
    QCOMPARE(area->findChild<QTabBar*>()->count(), int(screen_table().size()));
}

void ScreensTest::the_window_menu_makes_windows_of_tabs_and_names_the_open_screens() {
    auto* menu = find<QMenu>("cmdwindow");
    QCOMPARE(menu->title(), QStringLiteral("&Finestra"));
    find<QAction>("cmdinglese")->trigger();
    QCOMPARE(menu->title(), QStringLiteral("&Window"));
    Q_EMIT menu->aboutToShow();
    QCOMPARE(menu->actions().size(), 4);
    find<QAction>("setport")->trigger();
    find<QAction>("program")->trigger();
    Q_EMIT menu->aboutToShow();
    QCOMPARE(menu->actions().size(), 7);
    QCOMPARE(menu->actions()[5]->text(), QStringLiteral("Plan Setup\tCtrl+1"));
    QVERIFY(menu->actions()[5]->isChecked());
    QVERIFY(!menu->actions()[6]->isChecked());
    menu->actions()[6]->trigger();
    QCOMPARE(window().front_key(), QStringLiteral("setport"));
    const auto* area = find<QMdiArea>("screens");
    for (const char* arrangement : {"cmdtile", "cmdtabs", "cmdcascade"}) {
        find<QAction>(arrangement)->trigger();
        const bool tabs = qstrcmp(arrangement, "cmdtabs") == 0;
        QCOMPARE(find<QAction>("cmdtabs")->isChecked(), tabs);
        QCOMPARE(area->currentSubWindow()->isMaximized(), tabs);
        // A screen that needs more than its tile is scrolled to.
        for (const QMdiSubWindow* view : area->subWindowList())
            QVERIFY2(area->viewport()->rect().contains(view->pos()), arrangement);
    }
}

void ScreensTest::arranging_the_screens_brings_none_to_the_front() {
    QStringList told;
    for (const char* key : {"program", "download", "realtime"})
        window().add_screen(key, [&told, key] {
            return new TellingScreen([&told, key] { told += QString::fromLatin1(key); });
        });
    for (const char* key : {"program", "download", "realtime", "program"})
        find<QAction>(key)->trigger();
    told.clear();
    for (const char* arrangement : {"cmdtabs", "cmdtile", "cmdtabs", "cmdcascade", "cmdtabs"}) {
        find<QAction>(arrangement)->trigger();
        QCoreApplication::processEvents();
        QCOMPARE(window().front_key(), QStringLiteral("program"));
        // Coming to the front, a screen sends commands.
        QCOMPARE(told, QStringList());
    }
}

void ScreensTest::a_new_screen_lies_inside_the_window() {
    find<QAction>("cmdtabs")->setChecked(false);
    find<QAction>("setport")->trigger();
    const QWidget* view = open_realtime()->parentWidget();
    const QRect area = find<QMdiArea>("screens")->viewport()->rect();
    QVERIFY2(area.contains(view->geometry()), qPrintable(QStringLiteral("%1x%2 in %3x%4")
                                                             .arg(view->width())
                                                             .arg(view->height())
                                                             .arg(area.width())
                                                             .arg(area.height())));
}

void ScreensTest::the_words_of_the_toolkit_are_in_the_language_too() {
    const auto words = [] {
        QMessageBox box(QMessageBox::Question, {}, {}, QMessageBox::Yes | QMessageBox::Cancel);
        QFileDialog files;
        files.setOption(QFileDialog::DontUseNativeDialog);
        return QStringList{box.button(QMessageBox::Yes)->text(),
                           box.button(QMessageBox::Cancel)->text(),
                           files.labelText(QFileDialog::LookIn)};
    };
    const QStringList italian{"&Sì", "Annulla", "Cerca in:"};
    const QStringList english{"&Yes", "Cancel", "Look in:"};
    QCOMPARE(words(), italian);
    find<QAction>("cmdinglese")->trigger();
    QCOMPARE(words(), english);
    find<QAction>("cmditaliano")->trigger();
    QCOMPARE(words(), italian);
    // Picking a port chooses English.
    program().identify(10);
    QCOMPARE(words(), english);
    find<QAction>("cmditaliano")->trigger();
    end_program();
    QCOMPARE(words(), english);
}

void ScreensTest::the_about_box_says_what_runs_here_and_copies_it() {
    QGuiApplication::clipboard()->setText("before");
    QString shown;
    BoxAnswers boxes;
    boxes.answer([&](QDialog* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        QVERIFY(box);
        shown = box->text();
        for (QAbstractButton* button : box->buttons())
            if (box->buttonRole(button) == QMessageBox::ActionRole) button->click();
        QVERIFY(box->isVisible());
        box->button(QMessageBox::Close)->click();
    });
    find<QAction>("cmdabout")->trigger();
    QVERIFY2(shown.contains(QStringLiteral("Cartella: ") + folder()), qPrintable(shown));
    for (const char* form :
         {"^m47-remote \\d+\\.\\d+", "\nQt 6\\.\\d", "\nSQLite 3\\.\\d+", "GPL-3.0"})
        QVERIFY2(shown.contains(QRegularExpression(form)), form);
    QCOMPARE(QGuiApplication::clipboard()->text(), shown);
}

void ScreensTest::port_list_is_empty_until_a_choice_and_has_ten_numbers() {
    find<QAction>("setport")->trigger();
    const auto* porta = find<QComboBox>("porta");
    QCOMPARE(porta->count(), 10);
    QCOMPARE(porta->itemText(0), QStringLiteral("1"));
    QCOMPARE(porta->itemText(9), QStringLiteral("10"));
    QCOMPARE(porta->currentIndex(), -1);
    QCOMPARE(find<QLabel>("Label1", window().screen_of(QStringLiteral("setport")))->text(),
             QStringLiteral("Instrument setup: 38400 Baud Rate  8 Word  2 Stop  Parity "
                            "Disabled"));
}

void ScreensTest::a_device_that_is_plugged_in_while_the_list_is_open_shows() {
    end_program();
    QStringList plugged{"/dev/ttyUSB7"};
    start_program({1024, 600},
                  link::PortList({"/nonexistent", "/nonexistent", [&plugged] { return plugged; }}));
    find<QAction>("setport")->trigger();
    auto* porta = find<QComboBox>("porta");
    const auto devices = [porta] {
        return QStringList{porta->itemData(0, Qt::ToolTipRole).toString(),
                           porta->itemData(1, Qt::ToolTipRole).toString()};
    };
    QCOMPARE(devices(), QStringList({"/dev/ttyUSB7", "-"}));
    porta->setCurrentIndex(1);
    plugged += "/dev/ttyUSB8";
    QTRY_COMPARE(devices(), QStringList({"/dev/ttyUSB7", "/dev/ttyUSB8"}));
    QCOMPARE(porta->currentIndex(), 1);
    plugged.clear();
    QTRY_COMPARE(devices(), QStringList({"-", "-"}));
    end_program();
}

void ScreensTest::the_name_of_a_device_is_no_mark_up() {
    end_program();
    const QString device = QStringLiteral("/dev/<b>meter</b>");
    start_program({1024, 600}, link::PortList({"/nonexistent", "/nonexistent",
                                               [&] { return QStringList(device); }}));
    find<QAction>("setport")->trigger();
    auto* porta = find<QComboBox>("porta");
    porta->setCurrentIndex(0);
    Q_EMIT porta->activated(0);
    for (const QString& tip :
         {porta->itemData(0, Qt::ToolTipRole).toString(), find<QLabel>("port_state")->toolTip()})
        QVERIFY2(tip.contains(device.toHtmlEscaped()), qPrintable(tip));
    end_program();
}

void ScreensTest::a_port_that_does_not_exist_turns_red_and_says_why() {
    find<QAction>("setport")->trigger();
    auto* porta = find<QComboBox>("porta");
    porta->setCurrentIndex(9);
    Q_EMIT porta->activated(9);
    const auto* state = find<QLabel>("port_state");
    QCOMPARE(state->text(), QStringLiteral("RS232 ComPort 10 NOT Connected"));
    QCOMPARE(state->palette().color(QPalette::Window), QColor(255, 0, 0));
    QVERIFY(!state->toolTip().isEmpty());
    QCOMPARE(window().windowTitle(), QStringLiteral("VKD M47_03 REMOTE CONTROL "));
    QCOMPARE(program_state().texts.language, int(kEnglish));
    QVERIFY(find<QAction>("cmditaliano")->isChecked());
    const QString english = state->toolTip();
    find<QAction>("cmditaliano")->trigger();
    QVERIFY(state->toolTip() != english);
}

}  // namespace m47::shell

QTEST_MAIN(m47::shell::ScreensTest)
