// SPDX-License-Identifier: GPL-3.0-or-later
// The choices of the menus, the log and what goes wrong.
#include "screens_test.h"

namespace m47::shell {

void ScreensTest::corrected_behaviour_has_an_entry_for_each_choice() {
    find<QAction>("cmdinglese")->trigger();
    auto* menu = find<QMenu>("cmdcorrected");
    QCOMPARE(menu->title().remove(u'&'), QStringLiteral("Corrected behaviour"));
    QVERIFY(menu->toolTipsVisible());
    QStringList names, english, italian;
    for (const QAction* entry : menu->actions()) {
        if (entry->isSeparator()) continue;
        names += entry->objectName();
        QVERIFY2(entry->isCheckable() && !entry->isChecked(), qPrintable(names.last()));
        english += entry->text() + entry->toolTip();
    }
    QStringList wanted;
    for (const CorrectedEntry& choice : kCorrectedEntries) wanted += choice.name;
    QCOMPARE(names, wanted + QStringList({"cmdcorrectall", "cmdcorrectstart"}));
    find<QAction>("cmditaliano")->trigger();
    for (const QString& name : names) {
        const auto* entry = find<QAction>(qPrintable(name));
        italian += entry->text() + entry->toolTip();
        QVERIFY(entry->toolTip() != entry->text());
    }
    for (qsizetype k = 0; k < names.size(); ++k)
        QVERIFY2(english[k] != italian[k], qPrintable(names[k]));
    QCOMPARE(english.removeDuplicates() + italian.removeDuplicates(), 0);
}

void ScreensTest::each_entry_is_one_choice_and_all_of_them_is_every_one() {
    const auto choices = [this] { return program_state().corrected; };
    for (const CorrectedEntry& choice : kCorrectedEntries) {
        find<QAction>(choice.name)->trigger();
        QVERIFY2(choices().*choice.member, choice.name);
        const bool last = &choice == &kCorrectedEntries.back();
        QCOMPARE(find<QAction>("cmdcorrectall")->isChecked(), last);
    }
    find<QAction>("cmdkeepbox")->trigger();
    QVERIFY(!choices().keep_box && choices().keep_mode && choices().empty_alarm);
    QVERIFY(!find<QAction>("cmdcorrectall")->isChecked());
    find<QAction>("cmdcorrectall")->trigger();
    QVERIFY(all_chosen(choices()) && find<QAction>("cmdkeepbox")->isChecked());
    find<QAction>("cmdcorrectall")->trigger();
    for (const CorrectedEntry& choice : kCorrectedEntries)
        QVERIFY2(!(choices().*choice.member), choice.name);
}

void ScreensTest::the_entries_of_the_screens_are_the_same_choices() {
    find<QAction>("cmdfulltune")->trigger();
    realtime::Realtime* screen = open_realtime();
    QVERIFY(find<QAction>("cmdfulltune", screen)->isChecked());
    find<QAction>("cmdcomplete", screen)->trigger();
    QVERIFY(program_state().corrected.complete);
    auto* menu = find<QMenu>("cmdcorrected");
    for (const QAction* entry : menu->actions())
        if (entry->objectName() == u"cmdcomplete") QVERIFY(entry->isChecked());
    find<QAction>("cmdcorrectall")->trigger();
    find<QAction>("program")->trigger();
    QWidget* plans = window().screen_of(QStringLiteral("program"));
    QVERIFY(find<QAction>("cmdverify", plans)->isChecked());
    find<QAction>("cmdverify", plans)->trigger();
    QVERIFY(!program_state().corrected.verify);
    QVERIFY(!find<QAction>("cmdcorrectall")->isChecked());
    find<QAction>("cmdcorrectall")->trigger();
    find<QAction>("cmdcorrectall")->trigger();
    QVERIFY(!find<QAction>("cmdverify", plans)->isChecked());
    QVERIFY(!find<QAction>("cmdcomplete", screen)->isChecked());
    QVERIFY(!find<QWidget>("noise_freqa", screen)->isVisible());
}

void ScreensTest::what_a_default_costs_is_told_once_in_the_status_line() {
    const Bilingual level{"Level lost", "Livello perso"};
    const Bilingual box{"Box lost", "Casella persa"};
    auto* notice = find<QLabel>("corrected_notice");
    program_state().costs.tell(level);
    QCOMPARE(notice->text(), QStringLiteral("Livello perso"));
    program_state().costs.tell(box);
    QCOMPARE(notice->text(), QStringLiteral("Casella persa"));
    program_state().costs.tell(level);
    QCOMPARE(notice->text(), QStringLiteral("Casella persa"));
    window().show_progress(QStringLiteral("1/3"));
    QCOMPARE(notice->text(), QStringLiteral("Casella persa"));
    find<QAction>("cmdkeepbox")->trigger();
    QCOMPARE(notice->text(), QString());
    program_state().costs.tell(level);
    QCOMPARE(notice->text(), QStringLiteral("Livello perso"));
}

void ScreensTest::a_digital_run_keeps_its_mode_where_chosen() {
    realtime::Realtime* screen = open_realtime();
    find<QAction>("cmdkeepmode")->trigger();
    find<QAction>("qpsk", screen)->trigger();
    find<QAction>("asl")->trigger();
    find<QAction>("realtime")->trigger();
    QCOMPARE(screen->rules.state.meas_mode, realtime::kDigitalMode);
    QVERIFY(find<QWidget>("digitalresults", screen)->isVisible());
    QVERIFY(!find<QWidget>("analogresults", screen)->isVisible());
}

void ScreensTest::noise_boxes_start_from_the_frequency_when_the_choice_was_made_before() {
    find<QAction>("cmdcomplete")->trigger();
    realtime::Realtime* screen = open_realtime();
    QVERIFY(find<QWidget>("noise_freqa", screen)->isVisible());
    QCOMPARE(find<QLineEdit>("noise_freqa", screen)->text(), QStringLiteral("1000.0"));
}

void ScreensTest::a_new_log_does_not_carry_the_failure_of_the_old_one() {
    realtime::Realtime* screen = open_realtime();
    auto* name = find<QLabel>("file_name", screen);
    const QString tip = name->toolTip();
    const auto is_red = [name] {
        return name->palette().color(QPalette::WindowText) == QColor(Qt::red);
    };
    screen->open_log(in_folder("no/such/folder.log"));
    screen->rules.log.append("lost");
    screen->rules.cycle.on_log_written(screen->rules.log.reason());
    QVERIFY(is_red());
    QVERIFY(name->toolTip() != tip);
    screen->open_log(in_folder("new.log"));
    QVERIFY(!is_red());
    QCOMPARE(name->toolTip(), tip);
    QVERIFY(screen->rules.log.reason().isEmpty());
}

void ScreensTest::the_log_is_opened_reloaded_and_closed_with_the_save_key() {
    const QString log = in_folder(QStringLiteral("old.log"));
    QFile file(log);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("a\tb\r\nc\r\nd\te\tf\r\n");
    file.close();
    realtime::Realtime* screen = open_realtime();
    QVERIFY(!find<QWidget>("file_name", screen)->isVisible());
    QTimer::singleShot(100, screen, [log] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        QCOMPARE(dialog->nameFilters(), QStringList{QStringLiteral("(*.log)")});
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(log);
        QTest::keyClick(dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")),
                        Qt::Key_Return);
    });
    find<QAction>("save", screen)->trigger();
    QCOMPARE(find<QLabel>("file_name", screen)->text(), log);
    QVERIFY(find<QWidget>("file_label", screen)->isVisible());
    QCOMPARE(find<QAction>("save", screen)->toolTip(), QStringLiteral("Close file"));
    const auto* model = find<QTableView>("measgrid", screen)->model();
    QCOMPARE(model->rowCount(), 4);
    QCOMPARE(model->index(2, 2).data().toString(), QStringLiteral("f"));
    find<QAction>("save", screen)->trigger();
    QVERIFY(!find<QWidget>("file_name", screen)->isVisible());
    QCOMPARE(find<QAction>("save", screen)->toolTip(), QStringLiteral("Open file"));
    find<QAction>("cancella", screen)->trigger();
    QCOMPARE(model->rowCount(), 1);
}

void ScreensTest::a_cancelled_dialog_leaves_the_tooltip_at_close_file() {
    realtime::Realtime* screen = open_realtime();
    QTimer::singleShot(100, screen, [] { QApplication::activeModalWidget()->close(); });
    find<QAction>("save", screen)->trigger();
    QVERIFY(!screen->rules.log.log_open());
    QCOMPARE(find<QAction>("save", screen)->toolTip(), QStringLiteral("Close file"));
}

void ScreensTest::a_database_that_is_held_is_told_in_the_language_of_the_user() {
    db::Recordset& satellites = program().database().asl();
    satellites.add_new();
    satellites.update();
    realtime::Realtime* screen = open_realtime();
    find<QAction>("group", screen)->trigger();
    // Told at once, for the sake of the test.
    QSqlQuery("PRAGMA busy_timeout = 20", program().database().connection());
    BoxAnswers boxes;
    const QString sentence = QStringLiteral("critical|M47|Il database '%1' \u00e8 usato da un ")
                                 .arg(in_folder(db::kDatabaseFile));
    const auto told_once = [&] {
        const QStringList told = boxes.take_seen();
        if (told.size() == 1 && told[0].startsWith(sentence)) return true;
        qInfo("told: %s", qPrintable(told.join(u'/')));
        return false;
    };
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(in_folder(db::kDatabaseFile));
        QVERIFY(other.open());
        QSqlQuery("BEGIN EXCLUSIVE", other);
        find<QAction>("program")->trigger();
        QVERIFY(told_once());
        QVERIFY(!window().screen_of("program"));
        find<QAction>("multiple_acq", screen)->trigger();
        QVERIFY(told_once());
        QVERIFY(!screen->rules.state.plan_run_active);
        find<QAction>("group", screen)->trigger();
        QVERIFY(told_once());
        // Ending what runs needs no database.
        find<QAction>("stop", screen)->trigger();
        QCOMPARE(boxes.take_seen(), QStringList());
        find<QAction>("asl")->trigger();
        QVERIFY(told_once());
        QSqlQuery("ROLLBACK", other);
        other.close();
    }
    QSqlDatabase::removeDatabase("other");
    find<QAction>("program")->trigger();
    QVERIFY(window().screen_of("program"));
    QCOMPARE(boxes.take_seen(), QStringList());
}

void ScreensTest::a_click_during_a_download_deletes_nothing() {
    end_program();
    std::unique_ptr<MeterInProcess> meter;
    FakePort& port = start_on_fake_line({1024, 600}, [&meter](FakePort& line) {
        meter = std::make_unique<MeterInProcess>(line, 1);
    });
    find<QAction>("download")->trigger();
    QTest::qWait(50);
    QWidget* screen = window().screen_of("download");
    const auto click = [&](const char* name) {
        const auto* button = find<QPushButton>(name, screen);
        QTest::mouseClick(window().windowHandle(), Qt::LeftButton, {},
                          button->mapTo(&window(), button->rect().center()));
    };
    port.take_commands();
    click("cmddownload");
    // What was clicked meanwhile comes out of the queue now.
    click("cmdclearall");
    QTest::keyClick(window().windowHandle(), Qt::Key_Space);
    QTest::qWait(50);
    QStringList sent = port.take_commands();
    QVERIFY2(!sent.isEmpty() && sent[0].startsWith("DATAOUT"), qPrintable(sent.join(u'/')));
    QVERIFY2(sent.filter("DEL").isEmpty(), qPrintable(sent.join(u'/')));
    click("cmdclearall");
    sent = port.take_commands();
    QCOMPARE(sent.filter("DATADELALL").size(), 1);
    meter.reset();  // before its line goes
    end_program();
}

void ScreensTest::a_fault_in_a_handler_shows_one_box_and_the_program_goes_on() {
    QString text;
    QTimer::singleShot(100, &window(), [&text] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box);
        text = box->text();
        box->accept();
    });
    run_handler(&window(), "fsat_KeyPress", [] { throw Fault("no record"); });
    QCOMPARE(text, QStringLiteral("no record"));
    QVERIFY(open_realtime());
}

}  // namespace m47::shell
