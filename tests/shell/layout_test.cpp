// SPDX-License-Identifier: GPL-3.0-or-later
// Every screen, dialog and state of a panel at every size of window, in both languages: nothing
// lies over another control, is cut or out of reach, or fades into the ground it stands on. The
// scale is that of the process, QT_SCALE_FACTOR: the more of it, the less room there is.
#include <QDialog>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeView>
#include <cmath>

#include "about_box.h"
#include "band_sweep.h"
#include "box_answers.h"
#include "contrast.h"
#include "contrast_style.h"
#include "custom_plot.h"
#include "layout_faults.h"
#include "level_view.h"
#include "message_box.h"
#include "no_database.h"
#include "painted_text.h"
#include "problem_dialog.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "sample_dialogs.h"
#include "sample_year.h"
#include "screen_table.h"
#include "start_page.h"

namespace m47::shell {
namespace {

constexpr QSize kDesktops[] = {{1024, 600}, {1366, 768}, {1920, 1080}};
/// What a desktop puts around a window.
constexpr QSize kFrame(2, 30);
constexpr int kLeastPlot = 120;

double scale() {
    const double asked = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble();
    return asked > 0 ? asked : 1;
}

/// The window that fills a desktop of `pixels`.
QSize room_on(const QSize& pixels) {
    return (QSizeF(pixels) / scale()).toSize() - kFrame;
}

struct Desktop {
    const char* name;
    QRgb window, base, button, text, highlight;
};

constexpr int kLight = 0;
constexpr int kDark = 1;
constexpr Desktop kPalettes[] = {
    {"light", 0xffefefef, 0xffffffff, 0xffefefef, 0xff000000, 0xff308cc6},
    {"dark", 0xff353535, 0xff242424, 0xff353535, 0xffffffff, 0xff2a82da},
    {"Adwaita dark", 0xff353535, 0xff2d2d2d, 0xff353535, 0xffeeeeec, 0xff15539e},
    {"greys", 0xff242424, 0xff1e1e1e, 0xff353535, 0xffeeeeee, 0xff3584e4},
    {"high contrast", 0xff000000, 0xff000000, 0xff000000, 0xffffffff, 0xffffff00},
};

QPalette palette_of(const Desktop& desktop) {
    // As the toolkit shades bevels of a button of this colour.
    QPalette colours(QColor::fromRgb(desktop.button), QColor::fromRgb(desktop.window));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colours.setColor(role, QColor::fromRgb(desktop.text));
    colours.setColor(QPalette::Base, QColor::fromRgb(desktop.base));
    colours.setColor(QPalette::AlternateBase, QColor::fromRgb(desktop.base));
    colours.setColor(QPalette::Highlight, QColor::fromRgb(desktop.highlight));
    return colours;
}

}  // namespace

class LayoutTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    /// A way to use a screen, and what it is called where it does not hold.
    struct State {
        const char* name;
        std::function<void(Screen*)> enter = [](Screen*) {};
    };
    BoxAnswers boxes_;
    double tuned_ = 0;
    bool stops_half_way_ = false;

    static realtime::Realtime& realtime_of(Screen* screen) {
        return *qobject_cast<realtime::Realtime*>(screen);
    }
    static void fill_page(realtime::Realtime& screen) {
        for (int k = 0; k < 20; ++k)
            screen.rules.page.append({"21/11/26", QTime(10, 0).addSecs(k).toString("HH:mm:ss"),
                                      "11778.0", "10600", QString::number(50 + k % 5) + ".3",
                                      "2.0E-4", "1.0E-8", "-0.5", "14.2", "",
                                      k % 3 ? "PASS" : "FAIL"});
    }
    static void show_values(realtime::Realtime& screen) {
        auto& panel = screen.rules.panel;
        panel.dcplev = panel.leva = "<58.3";
        panel.cndlev = panel.cnalev = panel.noisedlev = panel.noisealev = ">12.5";
        panel.bercomune = panel.pvbercomune = "1.0E-8";
        panel.cfcomune = "-12.5";
        panel.mercomune = "14.2";
        panel.alarm_stated.fill(true);
        panel.alarm_statea.fill(true);
        panel.lev_mind = panel.lev_mina = "-109";
        panel.lev_maxd = panel.lev_maxa = "120";
        panel.repaint();
    }
    static void choose_protocol(Screen* screen, const char* option) {
        // As by keyboard: the focus opens the panel wherever the pointer is.
        auto* button = screen->findChild<QRadioButton*>(QString::fromLatin1(option));
        button->click();
        button->setFocus();
    }
    QList<State> states_of(const QString& key) {
        if (key == "program")
            return {{"as it opens"},
                    {"digital", [this](Screen* screen) { tick(screen, "cmd_dig"); }},
                    {"monitored", [this](Screen* screen) { tick(screen, "monitor_state"); }},
                    {"edits offered back",
                     [this](Screen* screen) {
                         find<QLineEdit>("sat_freq_txt", screen)->setText("1234.5");
                         find<QAction>("next_prog", screen)->trigger();
                     }},
                    {"table opened", [this](Screen* screen) {
                         if (!find<QAction>("cmdtable", screen)->isChecked())
                             find<QAction>("cmdtable", screen)->trigger();
                     }}};
        if (key == "download")
            return {{"text"},
                    {"table", [this](Screen* screen) { turn_page(screen, "pages", 1); }},
                    {"span", [this](Screen* screen) { turn_page(screen, "pages", 2); }},
                    {"recorded",
                     [this](Screen*) { program().recording().start(in_folder("line.trace")); }}};
        if (key == "band_sweep") return sweep_states();
        if (key == "sites") return sites_states();
        if (key != "realtime") return {{"as it opens"}};
        const auto press = [](const char* name) {
            return [name](Screen* screen) { screen->findChild<QAction*>(name)->trigger(); };
        };
        return {
            {"analog"},
            {"1.1", [](Screen* screen) { choose_protocol(screen, "dsqopt_0"); }},
            {"1.2", [](Screen* screen) { choose_protocol(screen, "dsqopt_1"); }},
            {"folded", [this](Screen* screen) { find<QWidget>("fsat", screen)->setFocus(); }},
            {"digital", press("qpsk")},
            {"1.2 in digital", [](Screen* screen) { choose_protocol(screen, "dsqopt_1"); }},
            {"values", [](Screen* screen) { show_values(realtime_of(screen)); }},
            {"noise boxes", press("cmdcomplete")},
            {"timer", press("start")},
            {"log", [this](Screen* screen) { realtime_of(screen).open_log(in_folder("day.log")); }},
            {"page", [](Screen* screen) { fill_page(realtime_of(screen)); }},
            {"trend", [this](Screen* screen) { turn_page(screen, "page_tabs", 1); }},
            {"plan", press("group")},
            {"analog again", press("analogico")},
        };
    }
    QList<State> sites_states() {
        const auto view = [this](int page) {
            return [this, page](Screen* screen) { turn_page(screen, "sites_views", page); };
        };
        const auto filled = [this](Screen* screen) {
            sites::fill_year(*program().sites().open());
            program().sites().changed();
            auto* tree = find<QTreeView>("sites_tree", screen);
            tree->setCurrentIndex(tree->model()->index(0, 0));
            tree->expandAll();
        };
        const auto looked_through = [this, view](Screen* screen) {
            view(3)(screen);
            find<QPushButton>("sites_look", screen)->click();
            QTRY_VERIFY(find<QTableView>("sites_worse", screen)->model()->rowCount() > 0);
        };
        return {{"without a file"},
                {"measurements", filled},
                {"compared", view(1)},
                {"with readings",
                 [this](Screen* screen) { find<QCheckBox>("sites_readings", screen)->click(); }},
                {"chart", view(2)},
                {"got worse", looked_through}};
    }
    /// A meter under carriers 30 MHz wide, one each 60 MHz of the intermediate band.
    void start_under_carriers(const QSize& size) {
        start_on_fake_line(size, [this](FakePort& line) {
            line.answer = [this](const QByteArray& command) {
                if (command.startsWith("FREQ ")) tuned_ = command.mid(5).toDouble();
                if (tuned_ > 1500 && stops_half_way_) program().link().activity.stop();
                if (command == "LEVANL?")
                    return FakePort::good(command,
                                          "  " + QByteArray::number(level_at(tuned_), 'f', 1));
                return FakePort::good(command, command.endsWith('?') ? "00" : "");
            };
        });
    }
    static double level_at(double mhz) {
        const double off = std::fmod(mhz, 60) - 30;
        return 42 + 15 / (1 + std::pow(std::abs(off) / 14, 8)) + std::floor(mhz / 60) / 5;
    }
    void sweep(Screen* screen, bool half) {
        tuned_ = 0;
        stops_half_way_ = half;
        find<QPushButton>("band_start", screen)->click();
        stops_half_way_ = false;
    }
    QList<State> sweep_states() {
        const auto named = [this](Screen* screen) {
            auto* sweep_screen = qobject_cast<band::BandSweep*>(screen);
            find<QComboBox>("band_axis", screen)->setCurrentIndex(1);
            Q_EMIT find<QComboBox>("band_axis", screen)->activated(1);
            QFile table(in_folder("scan"));
            if (!table.open(QIODevice::WriteOnly)) qFatal("no scan table");
            for (int k = 0; k < 20; ++k)
                table.write("S " + QByteArray::number((9750 + 990 + 60 * k) * 1000) +
                            " H 28000000 5/6\n");
            table.close();
            sweep(screen, false);
            sweep_screen->load_scan_table(table.fileName());
        };
        const auto with_reference = [this](Screen* screen) {
            find<QPushButton>("band_keep", screen)->click();
            find<QCheckBox>("band_difference", screen)->click();
            find<QCheckBox>("band_hold", screen)->click();
            QWidget* plot = find<QCustomPlot>("band_plot", screen);
            const QPoint middle = plot->rect().center();
            QTest::mouseClick(plot, Qt::LeftButton, {}, middle + QPoint(20, 60));
            QTest::mouseClick(plot, Qt::LeftButton, Qt::ShiftModifier, middle + QPoint(80, 60));
        };
        return {{"empty"},
                {"half way", [this](Screen* screen) { sweep(screen, true); }},
                {"ended with named carriers", named},
                {"with reference", with_reference}};
    }
    void tick(Screen* screen, const char* name) {
        find<QAbstractButton>(name, screen)->setChecked(true);
    }
    void turn_page(Screen* screen, const char* pages, int page) {
        find<QTabWidget>(pages, screen)->setCurrentIndex(page);
    }
    static void settle() {
        for (int pass = 0; pass < 3; ++pass) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
            QCoreApplication::processEvents();
        }
        // Of a text that a tick of the clock has changed just now.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
    void speak(int language) {
        window()
            .findChild<QAction*>(language == kEnglish ? "cmdinglese" : "cmditaliano")
            ->trigger();
    }
    Screen* open(const QString& key) {
        window().open_screen(key);
        return window().screen_of(key);
    }
    static void add_languages(const QStringList& names) {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("language");
        for (const QString& name : names) {
            QTest::addRow("%s in English", qPrintable(name)) << name << int(kEnglish);
            QTest::addRow("%s in Italian", qPrintable(name)) << name << int(kItalian);
        }
    }
    static void hold(QStringList faults) {
        faults.removeDuplicates();
        for (const QString& fault : faults) qInfo("%s", qPrintable(fault));
        QVERIFY2(faults.isEmpty(), qPrintable(QStringLiteral("%1 faults").arg(faults.size())));
    }
    /// For who wants to look: every window goes as a picture into the folder M47_PICTURES.
    static void take_picture(QWidget* shown, const QString& name) {
        const QString folder = qEnvironmentVariable("M47_PICTURES");
        if (!folder.isEmpty()) shown->grab().save(QDir(folder).filePath(name + ".png"));
    }
    static QStringList told(const QString& where, const QStringList& faults) {
        QStringList told;
        for (const QString& fault : faults) told += where + ": " + fault;
        return told;
    }
    /// Of what the main window shows now.
    QStringList faults_at_every_size(const QString& name, const QString& state) {
        QStringList faults;
        for (const int palette : {kDark, kLight}) {
            QApplication::setPalette(palette_of(kPalettes[palette]));
            for (const QSize& desktop : kDesktops) {
                window().resize(room_on(desktop));
                settle();
                const QString where = QStringLiteral("%1 at %2x%3, %4 %, %5")
                                          .arg(state)
                                          .arg(desktop.width())
                                          .arg(desktop.height())
                                          .arg(100 * scale())
                                          .arg(kPalettes[palette].name);
                faults += told(where, layout_faults(&window()));
                take_picture(&window(), name + ", " + where + ", " + QTest::currentDataTag());
            }
        }
        return faults;
    }
    /// What is wrong with the texts that the level view writes: out of the window, over one
    /// another, or not to be read.
    static QStringList faults_of_texts(level::LevelView& view) {
        QStringList faults;
        const QList<PaintedText> texts = painted_texts(view);
        if (texts.size() < 3) faults += "no texts";
        for (qsizetype k = 0; k < texts.size(); ++k) {
            const PaintedText& text = texts[k];
            if (!QRectF(view.rect()).contains(text.room)) faults += text.text + " is cut";
            if (contrast(text.colour, Qt::black) < kTextContrast) faults += text.text + " fades";
            for (qsizetype other = 0; other < k; ++other)
                if (text.room.intersects(texts[other].room))
                    faults += text.text + " lies over " + texts[other].text;
        }
        return faults;
    }
    struct LevelState {
        const char* name;
        std::function<void(level::LevelView&)> enter;
    };
    static QList<LevelState> level_states() {
        const auto measured = [](const char* level, measurement::Verdict verdict) {
            return [level, verdict](level::LevelView& view) {
                measurement::Measurement value;
                value.reading(measurement::Quantity::level) =
                    measurement::reading_of(measurement::Quantity::level, QString(level));
                value.verdict = verdict;
                value.unit = kDbuv;
                value.frequency = 11778.0F;
                value.program = {"A LONG NAME", "017"};
                view.measured(value);
            };
        };
        return {{"before the first value", [](level::LevelView&) {}},
                {"value", measured("58.3", measurement::Verdict::pass)},
                {"below the peak", measured("-108.7", measurement::Verdict::fail)},
                {"above the range", measured(">120.0", measurement::Verdict::none)},
                {"a higher peak", measured("59.4", measurement::Verdict::fail)},
                {"just below it", measured("58.6", measurement::Verdict::fail)},
                {"no C/N",
                 [](level::LevelView& view) { view.show_quantity(measurement::Quantity::cn); }},
                {"MER",
                 [](level::LevelView& view) {
                     view.show_quantity(measurement::Quantity::mer);
                     for (const char* mer : {"14.3", "12.9"}) {
                         measurement::Measurement value;
                         value.reading(measurement::Quantity::mer) =
                             measurement::reading_of(measurement::Quantity::mer, QString(mer));
                         value.frequency = 11778.0F;
                         view.measured(value);
                     }
                 }},
                {"repeated", [](level::LevelView& view) { view.repeats(true); }},
                {"remark", [](level::LevelView& view) {
                     view.set_remark(QString("Nothing can be told about it. ").repeated(4));
                 }}};
    }
    using ShowBox = std::function<void()>;
    QMap<QString, ShowBox> message_boxes() {
        const QString path = QString("/a/folder/with/a/long/name").repeated(6);
        QMap<QString, ShowBox> made;
        made["about"] = [this] { show_about(&window(), program_state()); };
        made["fault"] = [this, path] {
            show_message_box(&window(), QMessageBox::Critical, "M47",
                             path + QString(" cannot be written. ").repeated(3));
        };
        made["question"] = [this, path] {
            ask_first(&window(), "M47", "Replace with the new Plan of program\rContinue?",
                      QString("This erases all. ").repeated(6) + '\n' + path);
        };
        made["no database"] = [this] {
            program_state().base_dir = in_folder("a folder without one/");
            ask_for_database(program_state());
        };
        return made;
    }
    QMap<QString, MakeDialog> dialogs() {
        QMap<QString, MakeDialog> all =
            sample_dialogs(program_state(), [this]() -> link::Link& { return program().link(); });
        all["problem"] = [this](QWidget* parent) {
            ProblemCommand command(program_state(), program().connection(), program().database(),
                                   program().recording(), window());
            return new ProblemDialog(command.items(), program_state().texts, parent);
        };
        return all;
    }
    void check_dialog(QDialog* dialog, const QString& name, QStringList& faults);

  private Q_SLOTS:
    void initTestCase() {
        QApplication::setStyle(new ContrastStyle);
        QCursor::setPos(4000, 4000);
    }
    void init() {
        QApplication::setPalette(palette_of(kPalettes[0]));
        new_folder();
        start_program(room_on(kDesktops[0]));
        QApplication::setActiveWindow(&window());
        QTRY_VERIFY(window().findChild<QToolBar*>("barrastrumenti"));
    }
    void cleanup() { end_program(); }

    void every_screen_holds_at_every_size_data() { add_languages(screen_keys()); }
    void every_screen_holds_at_every_size() {
        QFETCH(QString, name);
        QFETCH(int, language);
        if (name == "band_sweep") {
            end_program();
            start_under_carriers(room_on(kDesktops[0]));
            QTRY_VERIFY(window().findChild<QToolBar*>("barrastrumenti"));
        }
        speak(language);
        Screen* screen = open(name);
        QStringList faults;
        for (const State& state : states_of(name)) {
            state.enter(screen);
            faults += faults_at_every_size(name, state.name);
        }
        hold(faults);
    }

    void every_dialog_holds_on_the_smallest_desktop_data() { add_languages(dialogs().keys()); }
    void every_dialog_holds_on_the_smallest_desktop() {
        QFETCH(QString, name);
        QFETCH(int, language);
        speak(language);
        const std::unique_ptr<QDialog> dialog(dialogs()[name](&window()));
        QStringList faults;
        check_dialog(dialog.get(), name, faults);
        hold(faults);
    }

    void every_message_box_holds_on_the_smallest_desktop_data() {
        add_languages(message_boxes().keys());
    }
    void every_message_box_holds_on_the_smallest_desktop() {
        QFETCH(QString, name);
        QFETCH(int, language);
        speak(language);
        QStringList faults;
        boxes_.answer([&](QDialog* box) {
            settle();
            faults = layout_faults(box);
            const QSize room = room_on(kDesktops[0]);
            if (box->width() > room.width() || box->height() > room.height())
                faults += QStringLiteral("%1x%2 is too large").arg(box->width()).arg(box->height());
            take_picture(box, QStringLiteral("box %1, %2 %, %3")
                                  .arg(name)
                                  .arg(100 * scale())
                                  .arg(QTest::currentDataTag()));
            box->reject();
        });
        message_boxes()[name]();
        QCOMPARE(boxes_.take_seen().size(), 1);
        hold(faults);
    }

    void the_start_page_holds_at_every_size_data() { add_languages({"empty", "in use"}); }
    void the_start_page_holds_at_every_size() {
        QFETCH(QString, name);
        QFETCH(int, language);
        speak(language);
        program().start_desk().open();
        auto* page = find<StartPage>("start_page");
        page->show_devices({});
        page->show_recent({}, {});
        if (name == "in use") {
            page->show_devices({{1, "FT232R USB UART (ttyUSB0)", true},
                                {2, QString("Adapter with a long name ").repeated(4), false},
                                {10, "ttyS0", false}});
            page->show_recent({{"Log day.log", "/day.log"}},
                              {{"Plan EXAMPLE", "EXAMPLE"}, {"Plan B & C", "B & C"}});
            page->show_result(QString("No meter answered on port 1. ").repeated(4));
        }
        hold(faults_at_every_size("start page", name));
        QStringList faded;
        for (const Desktop& desktop : kPalettes) {
            QApplication::setPalette(palette_of(desktop));
            settle();
            faded += told(desktop.name, contrast_faults(&window()));
        }
        hold(faded);
    }

    /// All that can stand in it at one time, with the words that are the longest.
    void the_status_line_holds_when_it_says_all_data() {
        add_languages({"alone", "with a screen"});
    }
    void the_status_line_holds_when_it_says_all() {
        QFETCH(QString, name);
        QFETCH(int, language);
        speak(language);
        if (name == "with a screen") open("download");
        program().recording().start(in_folder("line.trace"));
        window().status().show_simulated(
            program_state().texts.pick({"Recording a long name of a recording.trace",
                                        "Registrazione a long name of a recording.trace"}));
        window().show_visit(QString("Visita interrotta: Condominio con un nome lungo"), {}, true);
        window().show_upload("OKProgram 95 of 95", "");
        window().show_notice(QString("The file cannot be written. ").repeated(8));
        link::Activity& activity = program().link().activity;
        activity.begin();
        activity.say(
            {{"Uploading program %1 of %2", "Caricamento del programma %1 di %2"}, {"17", "95"}});
        activity.reached(17, 95);
        window().status().show_progress_bar();
        const QStringList faults = faults_at_every_size("status line", name);
        activity.end({});
        hold(faults);
    }

    void the_level_holds_on_every_desktop_data() { add_languages({"linked", "not linked"}); }
    void the_level_holds_on_every_desktop() {
        QFETCH(QString, name);
        QFETCH(int, language);
        speak(language);
        const bool linked = name == "linked";
        level::LevelView view(
            program_state().texts, [linked] { return linked; }, &window());
        QStringList faults;
        for (const LevelState& state : level_states()) {
            state.enter(view);
            for (const QSize& desktop : kDesktops) {
                view.resize((QSizeF(desktop) / scale()).toSize());
                faults += told(QStringLiteral("%1 at %2").arg(state.name).arg(desktop.width()),
                               faults_of_texts(view));
                take_picture(&view, QStringLiteral("level %1 %2, %3, %4 %, %5")
                                        .arg(name, state.name)
                                        .arg(desktop.width())
                                        .arg(100 * scale())
                                        .arg(QTest::currentDataTag()));
            }
        }
        hold(faults);
    }

    void every_outline_and_text_is_seen_in_every_palette_data() {
        QTest::addColumn<int>("palette");
        for (int k = 0; k < int(std::size(kPalettes)); ++k)
            QTest::addRow("%s", kPalettes[k].name) << k;
    }
    void every_outline_and_text_is_seen_in_every_palette() {
        QFETCH(int, palette);
        QApplication::setPalette(palette_of(kPalettes[palette]));
        speak(kEnglish);
        window().resize(room_on(kDesktops[2]));
        QStringList faults;
        for (const QString& key : screen_keys()) {
            Screen* screen = open(key);
            settle();
            faults += told(key, contrast_faults(&window()));
            if (key != "realtime") continue;
            for (const char* name : {"1.2", "digital", "values", "page"}) {
                for (const State& state : states_of(key))
                    if (qstrcmp(state.name, name) == 0) state.enter(screen);
                settle();
                faults += told(key + ' ' + name, contrast_faults(&window()));
            }
        }
        for (const QString& name : dialogs().keys()) {
            const std::unique_ptr<QDialog> dialog(dialogs()[name](&window()));
            dialog->show();
            settle();
            faults += told(name, contrast_faults(dialog.get()));
            take_picture(dialog.get(), name + ", " + QTest::currentDataTag());
        }
        hold(faults);
    }

    void every_plot_of_the_trend_can_be_read_at_every_size() {
        Screen* screen = open("realtime");
        fill_page(realtime_of(screen));
        turn_page(screen, "page_tabs", 1);
        for (const QSize& desktop : kDesktops) {
            window().resize(room_on(desktop));
            settle();
            auto* plot = find<QCustomPlot>("trend_plot", screen);
            plot->replot();
            QVERIFY(plot->axisRectCount() > 0);
            for (int k = 0; k < plot->axisRectCount(); ++k)
                QVERIFY2(plot->axisRect(k)->height() >= kLeastPlot,
                         qPrintable(QStringLiteral("plot %1 of %2 is %3 high at %4x%5")
                                        .arg(k)
                                        .arg(plot->axisRectCount())
                                        .arg(plot->axisRect(k)->height())
                                        .arg(desktop.width())
                                        .arg(desktop.height())));
        }
    }
};

void LayoutTest::check_dialog(QDialog* dialog, const QString& name, QStringList& faults) {
    // A desktop makes no dialog larger than itself; it can be made smaller than it likes to be.
    dialog->show();
    settle();
    faults += told(name, layout_faults(dialog));
    take_picture(
        dialog,
        QStringLiteral("%1, %2 %, %3").arg(name).arg(100 * scale()).arg(QTest::currentDataTag()));
    const QSize room = room_on(kDesktops[0]);
    dialog->resize(dialog->size().boundedTo(room));
    settle();
    if (dialog->width() > room.width() || dialog->height() > room.height())
        faults += QStringLiteral("%1 needs %2x%3, there is %4x%5")
                      .arg(name)
                      .arg(dialog->width())
                      .arg(dialog->height())
                      .arg(room.width())
                      .arg(room.height());
    faults += told(name + " small", layout_faults(dialog));
}

}  // namespace m47::shell

QTEST_MAIN(m47::shell::LayoutTest)
#include "layout_test.moc"
