// SPDX-License-Identifier: GPL-3.0-or-later
// The page behind the screens, the start without a database, and keys that tell why they did
// nothing.
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>

#include "example_plan.h"
#include "no_database.h"
#include "plan_sets.h"
#include "running_process.h"
#include "screens_test.h"
#include "start_page.h"
#include "work_folder.h"

namespace m47::shell {
namespace {

/// Presses `button` of the box that is open then.
void answer_box(const QString& text_of_button, bool tick = false) {
    QTimer::singleShot(50, qApp, [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) qFatal("no box");
        if (tick) box->checkBox()->setChecked(true);
        for (QAbstractButton* button : box->buttons())
            if (button->text().remove(u'&') == text_of_button) return button->click();
        qFatal("no button %s", qPrintable(text_of_button));
    });
}

/// How long a journey takes: on the line, at the pace of the meter, and in this program. Both are
/// only printed; how long a person takes between the clicks is not in them.
class Journey {
  public:
    explicit Journey(link::Link& link) : link_(link), began_(link.clock().steady()) {
        own_.start();
    }
    void print(const char* name, int clicks) const {
        qInfo("%s: %d clicks, %.1f s on the line, %.1f s of this program", name, clicks,
              link_.clock().steady() - began_, double(own_.elapsed()) / 1000);
    }

  private:
    link::Link& link_;
    double began_;
    QElapsedTimer own_;
};

void write_file(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

}  // namespace

void ScreensTest::the_start_page_connects_the_meter_by_its_device() {
    start_with_meter();
    program().link().port_connected = false;
    find<QAction>("cmdinglese")->trigger();
    program().start_desk().open();
    auto* page = find<StartPage>("start_page");
    QVERIFY(page->isVisible());
    QCOMPARE(page->geometry(), static_cast<QWidget*>(page->parent())->rect());
    auto* key = find<QPushButton>("start_connect");
    QCOMPARE(key->text(), QString("Connect"));
    QVERIFY(key->isEnabled());
    line_->take_commands();
    key->click();
    QCOMPARE(line_->take_commands(), QStringList({"ATTEN?", "VER?"}));
    QVERIFY(program().link().port_connected);
    QCOMPARE(find<QLabel>("start_result")->text(), QString("The meter answers on port 1."));
    QTRY_COMPARE(page->findChildren<QPushButton*>("start_connect").size(), 1);
    QVERIFY(!find<QPushButton>("start_connect")->isEnabled());
    QVERIFY(!find<QLabel>("start_result")->text().isEmpty());
    find<QAction>("cmditaliano")->trigger();
    QCOMPARE(find<QPushButton>("start_search")->text(), QString("Cerca lo strumento"));
    QCOMPARE(find<QLabel>("start_result")->text(), QString("The meter answers on port 1."));
    // The link is lost, by whatever it was.
    program().link().port_connected = false;
    QTRY_COMPARE(find<QLabel>("start_result")->text(), QString());
}

void ScreensTest::why_nothing_was_done_goes_with_the_next_deed() {
    start_with_meter();
    realtime::Realtime* screen = open_realtime();
    const auto* notice = find<QLabel>("corrected_notice");
    const auto measure = [&] { find<QAction>("single_acq", screen)->trigger(); };
    measure();
    QVERIFY2(notice->text().startsWith("Nothing is measured: no measure is ticked") ||
                 notice->text().startsWith("Nessuna misura: nessuna"),
             qPrintable(notice->text()));
    find<QAbstractButton>("meas_statea_0", screen)->click();
    measure();
    QVERIFY(!screen->findChild<QLabel*>("leva")->text().isEmpty());
    QCOMPARE(notice->text(), QString());
    program().link().port_connected = false;
    measure();
    QVERIFY(!notice->text().isEmpty());
    program().start_desk().open();
    find<QPushButton>("start_connect")->click();
    QVERIFY(program().link().port_connected);
    QCOMPARE(notice->text(), QString());
    // What the user has to know stays.
    window().show_notice("A row was left out.");
    measure();
    QCOMPARE(notice->text(), QString("A row was left out."));
}

void ScreensTest::the_first_value_takes_four_clicks() {
    start_with_meter();
    program().link().port_connected = false;
    program().start_desk().open();
    const Journey journey(program().link());
    int clicks = 0;
    const auto click = [&clicks](QWidget* key) {
        QVERIFY(key && key->isVisible());
        QTest::mouseClick(key, Qt::LeftButton, {}, {8, key->height() / 2});
        ++clicks;
    };
    click(find<QPushButton>("start_connect"));
    click(find<QToolBar>("barracomandi", &window())->widgetForAction(find<QAction>("realtime")));
    auto* screen = qobject_cast<realtime::Realtime*>(window().screen_of("realtime"));
    QVERIFY(screen);
    const auto value = [screen] { return screen->findChild<QLabel*>("leva")->text(); };
    QCOMPARE(value(), QString());
    click(find<QAbstractButton>("meas_statea_0", screen));
    click(find<QToolBar>("barracomandi", screen)
              ->widgetForAction(find<QAction>("single_acq", screen)));
    QVERIFY(!value().isEmpty());
    QCOMPARE(clicks, 4);
    journey.print("first value without a plan", clicks);
}

void ScreensTest::a_pass_over_95_imported_programs_begins_after_ten_clicks() {
    start_with_meter();
    QFile file(in_folder("p.csv"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("frequenza\n");
    for (int k = 0; k < 95; ++k) file.write(QByteArray::number(1000 + k) + '\n');
    file.close();
    const Journey journey(program().link());
    int clicks = 0;
    const auto click = [&clicks](QWidget* key) {
        QTest::mouseClick(key, Qt::LeftButton, {}, {8, key->height() / 2});
        ++clicks;
    };
    const auto key_of = [this](QWidget* screen, const char* name) {
        return find<QToolBar>("barracomandi", screen)->widgetForAction(find<QAction>(name, screen));
    };
    click(key_of(&window(), "program"));
    BoxAnswers boxes;
    boxes.answer([&](QDialog* dialog) {
        auto* files = qobject_cast<QFileDialog*>(dialog);
        files->findChild<QLineEdit*>("fileNameEdit")->setText(file.fileName());
        ++clicks;
        QMetaObject::invokeMethod(files, "accept");
    });
    boxes.answer([&](QDialog* preview) {
        click(preview->findChild<QCheckBox*>("import_monitored"));
        ++clicks;
        preview->accept();
    });
    clicks += 2;  // the menu and its entry
    find<QAction>("cmdimport", window().screen_of("program"))->trigger();
    QCOMPARE(boxes.take_seen().size(), 2);
    click(key_of(&window(), "realtime"));
    Screen* screen = window().screen_of("realtime");
    click(key_of(screen, "group"));
    click(find<QAbstractButton>("meas_statea_0", screen));
    click(key_of(screen, "multiple_acq"));
    QTRY_VERIFY(find<QLabel>("plan_progress")->text().endsWith("/95"));
    QCOMPARE(clicks, 10);
    journey.print("pass over an imported plan of 95", clicks);
    find<QAction>("stop", screen)->trigger();
}

void ScreensTest::the_start_page_says_what_a_silent_meter_wants() {
    start_with_meter();
    program().link().port_connected = false;
    find<QAction>("cmdinglese")->trigger();
    program().start_desk().open();
    line_->answer = [](const QByteArray&) { return QByteArray(); };
    find<QPushButton>("start_connect")->click();
    QVERIFY(find<QLabel>("start_result")->text().startsWith("No meter answered on port 1"));
    const QString why = find<QLabel>("port_state")->toolTip();
    QVERIFY2(why.contains("no meter answers there") && why.contains("switched on"),
             qPrintable(why));
}

void ScreensTest::a_link_lost_over_a_refusal_says_so() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    line_->answer = [](const QByteArray& command) { return command + "\rCOMMAND ERROR\r"; };
    QVERIFY(!program().link().send("FREQ 10758"));
    const auto* state = find<QLabel>("port_state");
    QCOMPARE(state->text(), QString("RS232 ComPort 1 NOT Connected"));
    QVERIFY2(state->toolTip().contains("The link was lost: the meter refused FREQ 10758 three "
                                       "times; ") &&
                 state->toolTip().contains("--full-tune"),
             qPrintable(state->toolTip()));
    QVERIFY(find<QLabel>("corrected_notice")
                ->text()
                .contains("the meter refused FREQ 10758 three times"));
    find<QAction>("cmditaliano")->trigger();
    QVERIFY(state->toolTip().contains("ha rifiutato FREQ 10758 tre volte"));
}

void ScreensTest::a_port_that_another_process_has_open_is_told_as_that() {
    const QString device = in_folder("adapter");
    QFile file(device);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QProcess other;
    other.start("tail", {"-f", device});
    QVERIFY(other.waitForStarted());
    QTRY_VERIFY(platform::other_user_of_line(device));
    end_program();
    auto clock = std::make_unique<VirtualClock>();
    auto line = std::make_unique<FakePort>(*clock);
    line->answer = [](const QByteArray&) { return QByteArray(); };
    link::PortList ports({"/nonexistent", "/nonexistent", [] { return QStringList(); }});
    QVERIFY(ports.add("1=" + device));
    start_program({1024, 600}, ports, std::move(clock), std::move(line));
    find<QAction>("cmdinglese")->trigger();
    program().start_desk().open();
    find<QPushButton>("start_connect")->click();
    const QString told =
        QStringLiteral("is open in another process: tail, number %1").arg(other.processId());
    for (const QString& text :
         {find<QLabel>("port_state")->toolTip(), find<QLabel>("start_result")->text()})
        QVERIFY2(text.contains(told), qPrintable(text));
    other.kill();
    QVERIFY(other.waitForFinished());
    find<QPushButton>("start_connect")->click();
    QVERIFY(find<QLabel>("start_result")->text().startsWith("No meter answered on port 1"));
}

void ScreensTest::the_simulated_meter_says_that_it_is_none() {
    start_with_meter();
    program().start_desk().open();
    find<QPushButton>("start_simulated")->click();
    QVERIFY2(program_state().simulated_meter, qPrintable(find<QLabel>("start_result")->text()));
    QVERIFY(program().link().port_connected);
    const QString device = program().connection().device();
    QVERIFY2(device.startsWith("/dev/pts/"), qPrintable(device));
    QCOMPARE(program().link().port_number, 2);
    const auto* mark = find<QLabel>("simulated_meter");
    QVERIFY(mark->isVisible());
    QCOMPARE(mark->text(), QString("Simulated meter"));
    find<QAction>("cmditaliano")->trigger();
    QCOMPARE(mark->text(), QString("Strumento simulato"));
    program().identify(1);
    QVERIFY(!program_state().simulated_meter);
    QVERIFY(!mark->isVisible());
    QVERIFY(QFile::exists(device));
    cleanup();
    QVERIFY(!QFile::exists(device));
}

void ScreensTest::a_simulated_meter_that_does_not_start_is_told() {
    SimulatedMeter meter(in_folder("no-such-meter"));
    QCOMPARE(meter.start(), QString());
    QVERIFY2(meter.fault(Texts()).contains("no-such-meter"), qPrintable(meter.fault(Texts())));
    SimulatedMeter mute(QStringLiteral("/bin/true"));
    QCOMPARE(mute.start(), QString());
    QVERIFY(mute.fault(Texts()).contains("opened no line"));
}

void ScreensTest::a_recording_is_opened_and_says_that_it_is_one() {
    start_with_meter();
    program().start_desk().open();
    find<QAction>("cmdinglese")->trigger();
    QCOMPARE(find<QAction>("cmdreplay")->text(), QString("Ope&n recording…"));
    const QString path = in_folder("roof.trace");
    write_file(path,
               "RX 1.000 2.000 ATTEN?<CR>\nTX 4.000 4.000 ATTEN?<CR>6<CR>OK<CR>\n"
               "RX 5.000 6.000 VER?<CR>\nTX 8.000 8.000 VER?<CR>V2.9.7<CR>OK<CR>\n");
    BoxAnswers boxes;
    for (int time = 0; time < 2; ++time) {
        boxes.answer([path](QDialog* box) {
            auto* name = box->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
        });
        find<QAction>("cmdreplay")->trigger();
        QVERIFY2(program().link().port_connected, qPrintable(find<QLabel>("start_result")->text()));
    }
    QCOMPARE(program_state().replayed, QString("roof.trace"));
    const auto* mark = find<QLabel>("simulated_meter");
    QVERIFY(mark->isVisible());
    QCOMPARE(mark->text(), QString("Replay of roof.trace"));
    QVERIFY(find<QLabel>("start_result")->text().startsWith("The meter of the recording roof."));
    find<QAction>("cmditaliano")->trigger();
    QCOMPARE(mark->text(), QString("Riproduzione di roof.trace"));
    QCOMPARE(open_realtime()->meter_of_report(),
             QString("V3.1.0 PLUS (registrazione roof.trace, misure non attuali)"));
    QCOMPARE(simulated_mark(program_state()),
             QString("Dalla registrazione roof.trace: misure non attuali"));
    // What was measured then and what is made up are not one meter.
    find<QPushButton>("start_simulated")->click();
    QCOMPARE(mark->text(), QString("Simulated meter"));
    QCOMPARE(program_state().replayed, QString());
}

void ScreensTest::a_recording_that_cannot_be_used_is_told() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    const QString path = in_folder("later.trace");
    write_file(path, "M47TRACE 2 x\n");
    program().start_desk().open_recording(path);
    const QString told = find<QLabel>("corrected_notice")->text();
    QVERIFY2(told.endsWith("later.trace is a recording of version 2, and only version 1 can be "
                           "read here"),
             qPrintable(told));
    QVERIFY2(program().link().port_connected, "the meter before is still there");
}

void ScreensTest::the_port_screen_offers_the_simulated_meter_where_no_port_is() {
    end_program();
    new_folder();
    auto clock = std::make_unique<VirtualClock>();
    auto line = std::make_unique<FakePort>(*clock);
    line_ = line.get();
    meter_ = std::make_unique<MeterInProcess>(*line, 1);
    const link::PortSources none{in_folder("sys"), in_folder("dev"), [] { return QStringList(); },
                                 [](const QString&) { return QString(); }};
    start_program({1024, 700}, link::PortList(none), std::move(clock), std::move(line));
    find<QAction>("cmdinglese")->trigger();
    find<QAction>("setport")->trigger();
    auto* key = find<QPushButton>("port_simulated");
    QVERIFY(key->isVisible());
    QCOMPARE(key->text(), QString("No meter here? Use the simulated one"));
    key->click();
    QVERIFY(program_state().simulated_meter);
    QVERIFY(program().link().port_connected);
    QVERIFY2(!key->isVisible(), "now there is a port");
    QCOMPARE(find<QComboBox>("porta")->currentIndex() + 1, program().link().port_number);
    QVERIFY(find<QLabel>("simulated_meter")->isVisible());
}

void ScreensTest::a_plan_of_the_start_page_opens_at_its_place() {
    plans::add_example_plan(program().database());
    program().start_desk().open();
    const auto* page = find<StartPage>("start_page");
    // Again, now that the page is to be seen, as each look at the devices does it.
    program().start_desk().refresh();
    QTest::qWait(10);
    for (const QLabel* label : page->findChildren<QLabel*>())
        QVERIFY2(label->isHidden() || !label->text().contains("nessun piano"),
                 qPrintable(label->text()));
    const QList<QPushButton*> keys = page->findChildren<QPushButton*>();
    const auto plan = std::find_if(keys.begin(), keys.end(), [](const QPushButton* key) {
        return key->text().endsWith("EXAMPLE");
    });
    QVERIFY(plan != keys.end());
    (*plan)->click();
    QWidget* screen = window().screen_of("program");
    QVERIFY(screen);
    QCOMPARE(find<QLineEdit>("grp_name", screen)->text(), QString("EXAMPLE"));
    QCOMPARE(find<QLineEdit>("sat_freq_txt", screen)->text().toDouble(), 10750.0);
}

void ScreensTest::without_a_database_one_is_made_here_with_an_example() {
    end_program();
    new_folder();
    const QString before = QDir::currentPath();
    ProgramState state;
    QVERIFY(unattended::work_in(folder(), state));
    answer_box("Create here", true);
    auto database = ask_for_database(state);
    QVERIFY(database);
    QVERIFY(QFile::exists(state.database_file));
    {
        plans::PlanSets sets(*database);
        QVERIFY(sets.has_plan(plans::kExamplePlan));
        sets.crea_records(plans::kExamplePlan);
        const auto programs = sets.programs();
        QCOMPARE(programs.size(), std::size_t(7));
        for (const programme::ProgramRecord& program : programs) {
            QVERIFY(program.monitor_state);
            QVERIFY(!programme::is_untuned(program));
        }
        QCOMPARE(programs.back().frequenza.toDouble(), 12160.0);
        QCOMPARE(programme::oscillator_entry(programs.back()), std::size_t(1));
    }
    database.reset();
    answer_box("Close");
    QVERIFY(!ask_for_database(state));
    QDir::setCurrent(before);
}

void ScreensTest::keys_that_can_do_nothing_say_why() {
    const auto* notice = find<QLabel>("corrected_notice");
    find<QAction>("cmdinglese")->trigger();
    realtime::Realtime* screen = open_realtime();
    QCOMPARE(notice->text(), QString());
    find<QAction>("single_acq", screen)->trigger();
    QVERIFY2(notice->text().contains("no meter is connected"), qPrintable(notice->text()));
    program().link().port_connected = true;
    find<QAction>("single_acq", screen)->trigger();
    QVERIFY2(notice->text().contains("no measure is ticked"), qPrintable(notice->text()));
    program().link().port_connected = false;
    find<QAction>("satellite", screen)->trigger();
    QVERIFY2(notice->text().contains("has no function"), qPrintable(notice->text()));
    find<QAction>("group", screen)->trigger();
    find<QAction>("multiple_acq", screen)->trigger();
    QVERIFY2(notice->text().contains("monitored"), qPrintable(notice->text()));
    find<QAction>("download")->trigger();
    window().show_notice(QString());
    find<QPushButton>("cmdclearall")->click();
    QVERIFY2(notice->text().startsWith("Nothing was sent"), qPrintable(notice->text()));
    find<QAction>("asl")->trigger();
    find<QPushButton>("cmddelstr")->click();
    QVERIFY2(notice->text().contains("select a satellite"), qPrintable(notice->text()));
}

void ScreensTest::the_words_under_the_keys_can_be_taken_away() {
    auto* bar = find<QToolBar>("barracomandi");
    auto* words = find<QAction>("cmdtoolbarwords");
    QVERIFY(words->isChecked());
    QTRY_COMPARE(bar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QCOMPARE(find<QAction>("program")->iconText(), QString("Piani"));
    find<QAction>("cmdinglese")->trigger();
    QCOMPARE(find<QAction>("program")->iconText(), QString("Plans"));
    words->trigger();
    QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonIconOnly);
}

void ScreensTest::the_keys_of_the_screens_have_words_as_the_main_ones() {
    window().resize(1900, 900);
    auto* words = find<QAction>("cmdtoolbarwords");
    find<QAction>("cmditaliano")->trigger();
    for (const char* screen : {"program", "download", "realtime", "configurazione"}) {
        find<QAction>(screen)->trigger();
        Screen* shown = window().screen_of(QString::fromLatin1(screen));
        auto* bar = shown->findChild<QToolBar*>();
        QTRY_COMPARE(bar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
        for (const QAction* key : bar->actions())
            if (!key->isSeparator() && !key->objectName().isEmpty())
                QVERIFY2(key->iconText() != key->text() && key->iconText().size() < 17 &&
                             key->iconText() != key->toolTip(),
                         qPrintable(key->objectName() + ": " + key->iconText()));
        words->trigger();
        QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonIconOnly);
        words->trigger();
        QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
        // A word never pushes a key out of a narrow window.
        bar->setFixedWidth(40);
        QTRY_COMPARE(bar->toolButtonStyle(), Qt::ToolButtonIconOnly);
        bar->setMinimumWidth(0);
        bar->setMaximumWidth(QWIDGETSIZE_MAX);
        QTRY_COMPARE(bar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
        words->trigger();
        find<QAction>("configurazione")->trigger();
        words->trigger();
    }
    QCOMPARE(find<QAction>("single_acq", window().screen_of("realtime"))->iconText(),
             QString("Misura"));
}

void ScreensTest::the_list_of_ports_tells_what_stands_behind_each_number() {
    end_program();
    link::PortSources sources{"/nonexistent", "/nonexistent",
                              [] { return QStringList{"/nonexistent/ttyUSB7"}; }};
    sources.described = [](const QString&) { return QStringLiteral("FT232R USB UART"); };
    start_program({1024, 600}, link::PortList(sources));
    find<QAction>("cmdinglese")->trigger();
    find<QAction>("setport")->trigger();
    auto* porta = find<QComboBox>("porta");
    const auto* beside = find<QLabel>("port_device");
    const auto description = [porta](int index) {
        return porta->itemData(index, link::PortDelegate::kDescriptionRole).toString();
    };
    QCOMPARE(description(0), QString("FT232R USB UART (ttyUSB7)"));
    QCOMPARE(description(1), QString());
    QCOMPARE(beside->text(), QString());
    porta->setCurrentIndex(0);
    QCOMPARE(beside->text(), QString("FT232R USB UART (ttyUSB7)"));
    porta->setCurrentIndex(1);
    QVERIFY(beside->text().startsWith("No device"));
    // The port in use.
    program().link().port_number = 1;
    program().link().port_connected = true;
    Q_EMIT window().screen_of("setport")->exit_asked();
    QTRY_VERIFY(!window().screen_of("setport"));
    find<QAction>("setport")->trigger();
    porta = find<QComboBox>("porta");
    QCOMPARE(porta->currentIndex(), 0);
    QVERIFY(porta->itemData(0, link::PortDelegate::kInUseRole).toBool());
    QVERIFY(find<QLabel>("port_device")->text().endsWith(", in use"));
    // An empty number is dimmed, one with a device is not.
    QStyleOptionViewItem option;
    option.initFrom(porta->view());
    option.rect = QRect(0, 0, 300, 20);
    const auto darkest_of = [&](int index) {
        QImage image(300, 20, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        porta->itemDelegate()->paint(&painter, option, porta->model()->index(index, 0));
        int darkest = 255;
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 40; ++x) darkest = qMin(darkest, qGray(image.pixel(x, y)));
        return darkest;
    };
    QVERIFY(darkest_of(1) > darkest_of(0) + 30);
    end_program();
}

}  // namespace m47::shell
