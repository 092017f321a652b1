// SPDX-License-Identifier: GPL-3.0-or-later
// The main window and its screens, used as a person does, on a link without a meter.
#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>

#include "box_answers.h"
#include "fake_port.h"
#include "fault.h"
#include "handler.h"
#include "meter_in_process.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "realtime_tooltips.h"
#include "screen_table.h"
#include "virtual_clock.h"

namespace m47 {

/// An empty screen that tells when it comes to the front.
class TellingScreen : public Screen {
  public:
    explicit TellingScreen(std::function<void()> activated) : activated_(std::move(activated)) {}
    void Form_Load() override {}
    void Form_Activate() override { activated_(); }

  private:
    std::function<void()> activated_;
};

class ScreensTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    Realtime* open_realtime() {
        find<QAction>("realtime")->trigger();
        return qobject_cast<Realtime*>(window().screen_of(QStringLiteral("realtime")));
    }

  private Q_SLOTS:
    void init() {
        new_folder();
        start_program({1024, 600});
    }
    void cleanup() { end_program(); }

    void main_window_is_as_technicians_know_it() {
        QCOMPARE(window().objectName(), QStringLiteral("M47MDI"));
        QCOMPARE(window().windowTitle(), QStringLiteral("VKD M47_03 REMOTE CONTROL"));
        QStringList keys, tips;
        for (const QAction* key : find<QToolBar>("barracomandi")->actions()) {
            keys += key->objectName();
            tips += key->toolTip();
        }
        QCOMPARE(keys, QStringList({"program", "download", "realtime", "asl", "configurazione",
                                    "setport"}));
        QCOMPARE(tips, QStringList({"Plan Setup", "Download Data Logged", "Real Time Function Mode",
                                    "Automatic Satellite Locator", "Configuration",
                                    "RS232 Port Selection"}));
        QCOMPARE(find<QMenu>("cmdlingua")->title(), QStringLiteral("&Language"));
        QVERIFY(find<QAction>("asl")->isEnabled());
        QVERIFY(!find<QWidget>("pbar1")->isVisible());
    }

    void the_entries_of_the_main_window_follow_the_language() {
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

    void a_pass_that_was_cut_short_is_told_in_the_language() {
        Realtime* screen = open_realtime();
        const auto* progress = find<QLabel>("plan_progress");
        Q_EMIT screen->cut_short(QStringLiteral("<b>why</b>"));
        QCOMPARE(progress->text(), QStringLiteral("Giro interrotto"));
        QVERIFY(progress->toolTip().contains(QStringLiteral("&lt;b&gt;why")));
        find<QAction>("cmdinglese")->trigger();
        Q_EMIT screen->cut_short(QString());
        QCOMPARE(progress->text(), QStringLiteral("Pass cut short"));
    }

    void a_screen_shows_what_its_rules_have_measured() {
        auto rules = std::make_unique<RealtimeRules>(program().link(), program_state(),
                                                     program().database());
        rules->panel.leva = QStringLiteral("58.3");
        for (int row = 0; row < 100; ++row)
            rules->page.append({"23/11/26", "10:00:00", QString::number(1000 + row), "10600",
                                "58.3", "", "", "", "", "", ""},
                               Measurement());
        rules->log.open(in_folder("run.log"), rules->page);
        Realtime screen(std::move(rules));
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

    void it_starts_in_italian_and_the_menu_changes_only_what_comes_after() {
        QCOMPARE(program_state().texts.language, int(kItalian));
        QVERIFY(find<QAction>("cmditaliano")->isChecked());
        QVERIFY(!find<QAction>("cmdinglese")->isChecked());
        Realtime* first = open_realtime();
        QCOMPARE(find<QLineEdit>("fsat", first)->toolTip(), QStringLiteral("Selezione frequenza"));
        find<QAction>("cmdinglese")->trigger();
        QCOMPARE(program_state().texts.language, int(kEnglish));
        QVERIFY(find<QAction>("cmdinglese")->isChecked());
        QVERIFY(!find<QAction>("cmditaliano")->isChecked());
        QCOMPARE(program_state().texts.message(kContinue),
                 QStringLiteral("Do you want to continue?"));
        QCOMPARE(find<QLineEdit>("fsat", first)->toolTip(), QStringLiteral("Selezione frequenza"));
        first->parentWidget()->close();
        QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
        QCOMPARE(find<QLineEdit>("fsat", open_realtime())->toolTip(),
                 QStringLiteral("Select frequency"));
    }

    void every_tooltip_stands_in_both_languages() {
        for (const int language : {int(kEnglish), int(kItalian)}) {
            program_state().texts.language = language;
            Realtime* screen = open_realtime();
            for (const Tooltip& tooltip : realtime_tooltips()) {
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

    void a_screen_brought_up_in_a_wait_comes_to_the_front_afterwards() {
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

    void every_screen_of_the_table_opens_by_its_shortcut_and_is_left_by_exit() {
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

    void a_screen_opens_once() {
        find<QAction>("setport")->trigger();
        find<QAction>("setport")->trigger();
        QCOMPARE(find<QMdiArea>("screens")->subWindowList().size(), 1);
        find<QPushButton>("cmdexit", window().screen_of(QStringLiteral("setport")))->click();
        QTRY_COMPARE(find<QMdiArea>("screens")->subWindowList().size(), 0);
    }

    void a_maximised_screen_stays_so_when_brought_up_again() {
        auto* view = qobject_cast<QMdiSubWindow*>(open_realtime()->parentWidget());
        view->showMaximized();
        find<QAction>("setport")->trigger();
        find<QAction>("realtime")->trigger();
        QVERIFY(view->isMaximized());
        QCOMPARE(window().caption(), QStringLiteral("VKD M47_03 REMOTE CONTROL"));
    }

    void no_menu_hides_a_toolbar() {
        QCOMPARE(window().contextMenuPolicy(), Qt::NoContextMenu);
        QCOMPARE(open_realtime()->contextMenuPolicy(), Qt::NoContextMenu);
    }

    void a_new_screen_lies_inside_the_window() {
        find<QAction>("setport")->trigger();
        const QWidget* view = open_realtime()->parentWidget();
        const QRect area = find<QMdiArea>("screens")->viewport()->rect();
        QVERIFY2(area.contains(view->geometry()), qPrintable(QStringLiteral("%1x%2 in %3x%4")
                                                                 .arg(view->width())
                                                                 .arg(view->height())
                                                                 .arg(area.width())
                                                                 .arg(area.height())));
    }

    void port_list_is_empty_until_a_choice_and_has_ten_numbers() {
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

    void a_device_that_is_plugged_in_while_the_list_is_open_shows() {
        end_program();
        QStringList plugged{"/dev/ttyUSB7"};
        start_program({1024, 600},
                      PortList({"/nonexistent", "/nonexistent", [&plugged] { return plugged; }}));
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

    void the_name_of_a_device_is_no_mark_up() {
        end_program();
        const QString device = QStringLiteral("/dev/<b>meter</b>");
        start_program({1024, 600}, PortList({"/nonexistent", "/nonexistent",
                                             [&] { return QStringList(device); }}));
        find<QAction>("setport")->trigger();
        auto* porta = find<QComboBox>("porta");
        porta->setCurrentIndex(0);
        Q_EMIT porta->activated(0);
        for (const QString& tip : {porta->itemData(0, Qt::ToolTipRole).toString(),
                                   find<QLabel>("port_state")->toolTip()})
            QVERIFY2(tip.contains(device.toHtmlEscaped()), qPrintable(tip));
        end_program();
    }

    void a_port_that_does_not_exist_turns_red_and_says_why() {
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

    void realtime_opens_in_the_analog_presentation() {
        Realtime* screen = open_realtime();
        QCOMPARE(screen->objectName(), QStringLiteral("realtime"));
        QCOMPARE(screen->windowTitle(), QStringLiteral("Real Time Function Mode"));
        QVERIFY(find<QWidget>("analogresults", screen)->isVisible());
        QVERIFY(!find<QWidget>("digitalresults", screen)->isVisible());
        QVERIFY(!find<QWidget>("satdigmea", screen)->isVisible());
        QVERIFY(!find<QWidget>("grp_name", screen)->isVisible());
        QVERIFY(!find<QAction>("multiple_acq", screen)->isVisible());
        QVERIFY(find<QAction>("single_acq", screen)->isVisible());
        QCOMPARE(find<QLineEdit>("fsat", screen)->text(), QStringLiteral("1000.0"));
        QCOMPARE(find<QLineEdit>("ol_freq", screen)->text(), QStringLiteral("10600"));
        QCOMPARE(find<QLineEdit>("chber_mind", screen)->text(), QStringLiteral("1E-8"));
        QCOMPARE(find<QLineEdit>("chber_maxd", screen)->text(), QStringLiteral("3E-2"));
        QCOMPARE(find<QComboBox>("satlnb_state", screen)->currentText(), QStringLiteral("OFF"));
        QVERIFY(find<QAction>("cmdlev_0", screen)->isChecked());
        QCOMPARE(find<QTableView>("measgrid", screen)->model()->rowCount(), 1);
    }

    void qpsk_and_analogico_change_the_frames() {
        Realtime* screen = open_realtime();
        find<QAction>("qpsk", screen)->trigger();
        QVERIFY(find<QWidget>("digitalresults", screen)->isVisible());
        QVERIFY(find<QWidget>("satdigmea", screen)->isVisible());
        QVERIFY(!find<QWidget>("meas_stated_7", screen)->isEnabled());
        find<QAction>("analogico", screen)->trigger();
        QVERIFY(!find<QWidget>("digitalresults", screen)->isVisible());
        QVERIFY(!find<QWidget>("satdigmea", screen)->isVisible());
    }

    void coming_back_to_the_screen_shows_the_analog_frame() {
        Realtime* screen = open_realtime();
        find<QAction>("qpsk", screen)->trigger();
        find<QAction>("setport")->trigger();
        find<QAction>("realtime")->trigger();
        QVERIFY(!find<QWidget>("digitalresults", screen)->isVisible());
        QVERIFY(find<QWidget>("analogresults", screen)->isVisible());
        QCOMPARE(screen->rules.state.meas_mode, kAnalogMode);
        QVERIFY(find<QWidget>("satdigmea", screen)->isVisible());
    }

    void limit_boxes_swallow_what_they_do_not_accept() {
        Realtime* screen = open_realtime();
        auto* maximum = find<QLineEdit>("lev_maxa", screen);
        QTest::keyClicks(maximum, QStringLiteral("-1.2a3"));
        QCOMPARE(maximum->text(), QStringLiteral("123"));
        auto* minimum = find<QLineEdit>("lev_mina", screen);
        QTest::keyClicks(minimum, QStringLiteral("-1.2"));
        QTest::keyClick(minimum, Qt::Key_Backspace);
        QCOMPARE(minimum->text(), QStringLiteral("-1"));
        find<QAction>("qpsk", screen)->trigger();
        auto* ber = find<QLineEdit>("chber_mind", screen);
        ber->clear();
        QTest::keyClicks(ber, QStringLiteral("5.E-9x"));
        QCOMPARE(ber->text(), QStringLiteral("5E-9"));
    }

    void enter_corrects_a_box_without_a_link_too() {
        Realtime* screen = open_realtime();
        auto* frequency = find<QLineEdit>("fsat", screen);
        frequency->setText(QStringLiteral("100"));
        QTest::keyClick(frequency, Qt::Key_Return);
        QCOMPARE(frequency->text(), QStringLiteral("0920.0"));
        auto* oscillator = find<QLineEdit>("ol_freq", screen);
        oscillator->setText(QStringLiteral("2000"));
        QTest::keyClick(oscillator, Qt::Key_Return);
        QCOMPARE(oscillator->text(), QStringLiteral("03070"));
    }

    void the_lnb_list_swallows_keys_and_the_wheel() {
        Realtime* screen = open_realtime();
        auto* list = find<QComboBox>("satlnb_state", screen);
        list->setFocus();
        QTest::keyClicks(list, QStringLiteral("1"));
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_End})
            QTest::keyClick(list, key);
        QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list, &wheel);
        QCOMPARE(list->currentIndex(), 0);
    }

    void a_measurement_without_a_link_writes_no_row() {
        Realtime* screen = open_realtime();
        QTest::mouseClick(find<QWidget>("meas_statea_0", screen), Qt::LeftButton, {}, {8, 8});
        QVERIFY(screen->rules.panel.meas_statea[0]);
        find<QAction>("single_acq", screen)->trigger();
        QCOMPARE(find<QTableView>("measgrid", screen)->model()->rowCount(), 1);
    }

    void complete_noise_shows_its_boxes() {
        Realtime* screen = open_realtime();
        QVERIFY(!find<QWidget>("noise_freqa", screen)->isVisible());
        find<QAction>("cmdcomplete", screen)->trigger();
        QVERIFY(find<QWidget>("noise_freqa", screen)->isVisible());
        find<QAction>("qpsk", screen)->trigger();
        QVERIFY(find<QWidget>("noise_freqd", screen)->isVisible());
        screen->parentWidget()->close();
        QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
        QVERIFY(find<QAction>("cmdcomplete", open_realtime())->isChecked());
    }

    void corrected_behaviour_has_an_entry_for_each_choice() {
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

    void each_entry_is_one_choice_and_all_of_them_is_every_one() {
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

    void the_entries_of_the_screens_are_the_same_choices() {
        find<QAction>("cmdfulltune")->trigger();
        Realtime* screen = open_realtime();
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

    void what_a_default_costs_is_told_once_in_the_status_line() {
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

    void a_digital_run_keeps_its_mode_where_chosen() {
        Realtime* screen = open_realtime();
        find<QAction>("cmdkeepmode")->trigger();
        find<QAction>("qpsk", screen)->trigger();
        find<QAction>("asl")->trigger();
        find<QAction>("realtime")->trigger();
        QCOMPARE(screen->rules.state.meas_mode, kDigitalMode);
        QVERIFY(find<QWidget>("digitalresults", screen)->isVisible());
        QVERIFY(!find<QWidget>("analogresults", screen)->isVisible());
    }

    void noise_boxes_start_from_the_frequency_when_the_choice_was_made_before() {
        find<QAction>("cmdcomplete")->trigger();
        Realtime* screen = open_realtime();
        QVERIFY(find<QWidget>("noise_freqa", screen)->isVisible());
        QCOMPARE(find<QLineEdit>("noise_freqa", screen)->text(), QStringLiteral("1000.0"));
    }

    void a_new_log_does_not_carry_the_failure_of_the_old_one() {
        Realtime* screen = open_realtime();
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

    void the_log_is_opened_reloaded_and_closed_with_the_save_key() {
        const QString log = in_folder(QStringLiteral("old.log"));
        QFile file(log);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("a\tb\r\nc\r\nd\te\tf\r\n");
        file.close();
        Realtime* screen = open_realtime();
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

    void a_cancelled_dialog_leaves_the_tooltip_at_close_file() {
        Realtime* screen = open_realtime();
        QTimer::singleShot(100, screen, [] { QApplication::activeModalWidget()->close(); });
        find<QAction>("save", screen)->trigger();
        QVERIFY(!screen->rules.log.log_open());
        QCOMPARE(find<QAction>("save", screen)->toolTip(), QStringLiteral("Close file"));
    }

    void a_database_that_is_held_is_told_in_the_language_of_the_user() {
        Recordset& satellites = program().database().asl();
        satellites.add_new();
        satellites.update();
        Realtime* screen = open_realtime();
        find<QAction>("group", screen)->trigger();
        // Told at once, for the sake of the test.
        QSqlQuery("PRAGMA busy_timeout = 20", program().database().connection());
        BoxAnswers boxes;
        const QString sentence = QStringLiteral("critical|M47|Il database '%1' \u00e8 usato da un ")
                                     .arg(in_folder(kDatabaseFile));
        const auto told_once = [&] {
            const QStringList told = boxes.take_seen();
            if (told.size() == 1 && told[0].startsWith(sentence)) return true;
            qInfo("told: %s", qPrintable(told.join(u'/')));
            return false;
        };
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(in_folder(kDatabaseFile));
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

    void a_click_during_a_download_deletes_nothing() {
        end_program();
        auto clock = std::make_unique<VirtualClock>();
        auto line = std::make_unique<FakePort>(*clock);
        FakePort& port = *line;
        auto meter = std::make_unique<MeterInProcess>(port, 1);
        PortList ports;
        QVERIFY(ports.add("1=/dev/no-such-meter"));
        start_program({1024, 600}, ports, std::move(clock), std::move(line));
        program().identify(1);
        QVERIFY(program().link().port_connected);
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

    void a_fault_in_a_handler_shows_one_box_and_the_program_goes_on() {
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
};

}  // namespace m47

QTEST_MAIN(m47::ScreensTest)
#include "screens_test.moc"
