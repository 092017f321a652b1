// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the manual's pictures: the real program, clicked at as a technician does, against the
// simulated meter on a pseudo-terminal. The folder that is named holds a folder for each language.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <utility>

#include "box_answers.h"
#include "diseqc_commands.h"
#include "process_support.h"
#include "program.h"
#include "realtime.h"
#include "sample_year.h"

namespace m47 {
namespace {

constexpr QSize kWindow(980, 680);
constexpr QSize kSmallWindow(720, 400);
constexpr QSize kTrendWindow(1000, 1000);
constexpr QSize kTrendScreen(900, 850);
constexpr QSize kSweepWindow(1200, 800);
constexpr QSize kSweepScreen(1080, 600);
constexpr QSize kIdentifyDialog(960, 440);
/// So many answers are half of an identification: the band was looked over.
constexpr int kHalfWay = 104;

struct SampleProgram {
    const char* number;
    double mhz;
    bool digital;
    const char* position;
};
// Carriers of the simulated sky.
constexpr SampleProgram kPrograms[] = {
    {"001", 1000, true, "00"}, {"002", 1041.5, true, "01"}, {"003", 1190, false, "02"}};
constexpr int kPasses = 4;

// As the tables of transponders that come with DVB tools.
constexpr const char* kScanTable =
    "S 10719000 V 27500000 5/6\nS 10775000 H 28000000 3/4\nS 11240000 V 27500000 3/4\n"
    "S 11727000 H 27500000 3/4\nS 12015000 H 27500000 3/4\nS 12731000 V 27500000 3/4\n"
    "S 13000000 V 27500000 3/4\n";

// What the simulated sky sends in the vertical low band.
constexpr const char* kSweptTable =
    "S 10750000 V 27500000 3/4\nS 10847500 V 22000000 5/6\nS 11025500 V 27500000 3/4\n"
    "S 11112000 V 30000000 3/4\nS 11200500 V 6111000 3/4\nS 11375000 V 27500000 3/4\n";

/// The picture with no more than 256 colours, which a screen hardly exceeds: a third of the bytes.
QImage with_few_colours(const QImage& picture) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
    QList<QRgb> colours = counts.keys();
    std::ranges::sort(
        colours, [&](QRgb a, QRgb b) { return std::pair(counts[b], b) < std::pair(counts[a], a); });
    return picture.convertToFormat(QImage::Format_Indexed8, colours.mid(0, 256),
                                   Qt::ThresholdDither | Qt::AvoidDither);
}

/// The program in one language with a meter of its own.
class Pictures {
  public:
    /// The meter is under the sky that `sky` says, or the usual one.
    Pictures(int language, const QString& folder, const QStringList& sky = {})
        : language_(language), folder_(folder) {
        meter_ = std::make_unique<MeterProcess>(
            work_.path(), QStringList{"--baud-factor", "0", "--delay", "0"} + sky);
        state_.base_dir = folder_with_separator(work_.path());
        state_.sites_file = state_.base_dir + QLatin1String(sites::kSitesFile);
        const QString path = state_.base_dir + QLatin1String(db::kDatabaseFile);
        db::DatabaseError error{};
        if (!db::Database::create(path, error)) qFatal("no database");
        link::PortList ports;
        ports.add(QStringLiteral("1=") + meter_->link());
        // The line is quickest early in the morning.
        const auto begin = std::chrono::steady_clock::now();
        program_ = std::make_unique<shell::Program>(
            state_, db::Database::open(path, error), ports,
            [begin] { return std::chrono::hours(5) + (std::chrono::steady_clock::now() - begin); });
        program_->window().resize(kWindow);
        program_->window().show();
        if (!QTest::qWaitForWindowExposed(&program_->window())) qFatal("no window");
        // A picture shows one screen, as large as it needs to be.
        program_->window().findChild<QAction*>(QStringLiteral("cmdtabs"))->setChecked(false);
    }

    void take() {
        connecting();
        plans();
        tuning();
        measuring();
        plan_run();
        logger();
        sweep();
        sites();
        satellites();
        open("configurazione");
        click_action("logo");
        save("logo", screen_->parentWidget());
        lost();
    }

    /// Of sites and visits alone.
    void take_sites() {
        click_action(language_ == kItalian ? "cmditaliano" : "cmdinglese");
        sites();
    }

    /// Of a dish between two satellites.
    void take_identification() {
        identify([this](QDialog* dialog) {
            ask_satellite(dialog, true);
            save("identify", dialog);
        });
    }
    /// Of a dish on a motor that looks beside a satellite.
    void take_peak() {
        identify([this](QDialog* dialog) {
            ask_satellite(dialog, false);
            find_peak();
            dialog->findChild<QPushButton*>("identify_peak")->click();
        });
    }

  private:
    template <class Kind>
    Kind* find(const char* name) {
        QObject* in = screen_ ? screen_ : static_cast<QWidget*>(&program_->window());
        auto* found = in->findChild<Kind*>(QString::fromLatin1(name));
        if (!found) qFatal("no %s", name);
        return found;
    }
    /// Shows the screen of `key` in place of the one before.
    void open(const char* key) {
        if (screen_) screen_->parentWidget()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        program_->window().open_screen(QString::fromLatin1(key));
        screen_ = program_->window().screen_of(QString::fromLatin1(key));
        if (!screen_) qFatal("no screen %s", key);
        screen_->parentWidget()->move(0, 0);
    }
    void save(const char* name, QWidget* widget) {
        QTest::qWait(50);
        const QString path = QStringLiteral("%1/%2.png").arg(folder_, QLatin1String(name));
        if (!with_few_colours(widget->grab().toImage().convertToFormat(QImage::Format_RGB32))
                 .save(path, "PNG", 0))
            qFatal("cannot write %s", qPrintable(path));
    }
    void click_action(const char* name) { find<QAction>(name)->trigger(); }
    void click(const char* name) { find<QAbstractButton>(name)->click(); }
    void tick(std::initializer_list<const char*> names) {
        for (const char* name : names) find<QCheckBox>(name)->setChecked(true);
    }
    void type(const char* name, const char* text) {
        auto* box = find<QLineEdit>(name);
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QString::fromLatin1(text));
    }
    void choose_file(const QString& path) {
        boxes_.answer([path](QDialog* dialog) {
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
    }
    /// Pictures the next box and closes it with `close`.
    void picture_box(const char* name, const char* close) {
        boxes_.answer([this, name, close](QDialog* dialog) {
            save(name, dialog);
            QMetaObject::invokeMethod(dialog, close);
        });
    }

    void connecting();
    void plans();
    void tuning();
    void measuring();
    void plan_run();
    void logger();
    void sweep();
    void sites();
    void satellites();
    void lost();
    void identify(const std::function<void(QDialog*)>& act);
    void ask_satellite(QDialog* dialog, bool half_way);
    void find_peak();
    void leave_peak(QDialog* dialog);

    int language_;
    QString folder_;
    QTemporaryDir work_{folder_template()};
    BoxAnswers boxes_;
    std::unique_ptr<MeterProcess> meter_;
    ProgramState state_;
    std::unique_ptr<shell::Program> program_;
    QWidget* screen_ = nullptr;
};

void Pictures::connecting() {
    open("setport");
    auto* porta = find<QComboBox>("porta");
    porta->setCurrentIndex(0);
    Q_EMIT porta->activated(0);
    program_->window().resize(kSmallWindow);
    save("connect", &program_->window());
    program_->window().resize(kWindow);
    screen_->parentWidget()->close();
    screen_ = nullptr;
    click_action(language_ == kItalian ? "cmditaliano" : "cmdinglese");
}

void Pictures::plans() {
    db::Recordset& programs = program_->database().programmi();
    programs.move_first();
    programs.remove();
    for (const SampleProgram& sample : kPrograms) {
        programs.add_new();
        programs.set("nome", "PLAN 1");
        programs.set("pg_num", QString::fromLatin1(sample.number));
        programs.set("frequenza", sample.mhz);
        programs.set("loc_osc", 1);
        programs.set("sat_ad", sample.digital ? 1 : 0);
        programs.set("diseqc_cmd", programme::kDiseqcNone);
        programs.set("diseqc_cmd2", programme::kDiseqcNone);
        programs.set("monitor_state", 1);
        programs.set("logger_state", 1);
        programs.set("logger_pos", QString::fromLatin1(sample.position));
        programs.set("lnb_volt", 1);
        programs.set("lev_min", "45");
        programs.set("lev_max", "80");
        programs.set("mer_min", "8");
        programs.set("mer_max", "25");
        programs.set("chber_min", "1E-8");
        programs.set("chber_max", "3E-2");
        programs.set("satchbw", "36");
        programs.set("qpsk_symbolrate", "27500");
        programs.update();
    }
    open("program");
    click_action("monitor");
    save("plans", screen_->parentWidget());
    boxes_.press(QMessageBox::Yes);
    picture_box("upload-verify", "accept");
    find<QAction>("cmdverify")->setChecked(true);
    click_action("nuovo");
    QFile table(work_.filePath("transponders"));
    if (!table.open(QIODevice::WriteOnly) || table.write(kScanTable) < 0) qFatal("no scan table");
    table.close();
    choose_file(table.fileName());
    picture_box("plans-import", "reject");
    click_action("cmdimport");
}

void Pictures::tuning() {
    open("realtime");
    type("fsat", "1000");
    QTest::keyClick(find<QLineEdit>("fsat"), Qt::Key_Return);
    save("tune", &program_->window());
    find<QWidget>("dsqopt_0")->setFocus();
    click("dsqopt_0");
    save("motor-switch", find<QWidget>("sat_opt"));
    find<QWidget>("dsqopt_1")->setFocus();
    click("dsqopt_1");
    save("motor", screen_->parentWidget());
}

void Pictures::measuring() {
    open("realtime");
    click_action("qpsk");
    tick({"meas_stated_0", "meas_stated_3", "meas_stated_5", "meas_stated_6", "alarm_stated_0",
          "alarm_stated_2", "alarm_stated_3"});
    type("lev_mind", "45");
    type("lev_maxd", "80");
    type("mer_mind", "8");
    type("mer_maxd", "25");
    find<QAction>("single_acq")->trigger();
    type("mer_mind", "15");
    find<QAction>("single_acq")->trigger();
    save("measure", screen_->parentWidget());
    save("alarms", find<QWidget>("digitalresults"));
    click_action("analogico");
}

void Pictures::plan_run() {
    click_action("cancella");
    tick({"meas_statea_0", "alarm_statea_0"});
    click_action("group");
    auto* realtime = static_cast<realtime::Realtime*>(screen_);
    for (int pass = 0; pass < kPasses; ++pass) {
        click_action("multiple_acq");
        if (!QTest::qWaitFor([&] { return !realtime->rules.state.plan_run_active; }, 60000))
            qFatal("the pass does not end");
    }
    program_->window().resize(kTrendWindow);
    const QSize size = screen_->parentWidget()->size();
    screen_->parentWidget()->resize(kTrendScreen);
    find<QTabWidget>("page_tabs")->setCurrentIndex(1);
    save("trend", screen_->parentWidget());
    find<QTabWidget>("page_tabs")->setCurrentIndex(0);
    screen_->parentWidget()->resize(size);
    program_->window().resize(kWindow);
    click_action("start");
    auto* delay = find<QComboBox>("time_delay");
    delay->setCurrentIndex(8);
    Q_EMIT delay->activated(8);
    click("cmdstart");
    QTest::qWait(1500);
    save("timed-runs", screen_->parentWidget());
    click_action("stop");
    click_action("single");
}

void Pictures::logger() {
    open("download");
    click("cmddownload");
    save("logger", screen_->parentWidget());
    find<QTabWidget>("pages")->setCurrentIndex(1);
    save("logger-table", screen_->parentWidget());
    click("cmdspan");
    save("logger-span", screen_->parentWidget());
}

void Pictures::sweep() {
    open("band_sweep");
    program_->window().resize(kSweepWindow);
    screen_->parentWidget()->resize(kSweepScreen);
    const auto pick = [this](const char* list, int entry) {
        find<QComboBox>(list)->setCurrentIndex(entry);
        Q_EMIT find<QComboBox>(list)->activated(entry);
    };
    pick("band_feed", 1);
    pick("band_axis", 1);
    click("band_whole");
    type("band_from", "10670");
    type("band_to", "11300");
    QFile table(work_.filePath("13E"));
    if (!table.open(QIODevice::WriteOnly) || table.write(kSweptTable) < 0) qFatal("no scan table");
    table.close();
    click("band_start");
    choose_file(table.fileName());
    click("band_scan");
    auto* chart = find<QWidget>("band_plot");
    QTest::mouseClick(chart, Qt::LeftButton, {}, {chart->width() / 3, chart->height() * 3 / 4});
    QTest::mouseClick(chart, Qt::RightButton, {}, {chart->width() / 2, chart->height() * 3 / 4});
    click("band_start");
    save("sweep", screen_->parentWidget());
    program_->window().resize(kWindow);
}

void Pictures::sites() {
    sites::fill_year(*program_->sites().open());
    open("sites");
    program_->window().resize(kSweepWindow);
    screen_->parentWidget()->resize(kSweepScreen);
    auto* tree = find<QTreeView>("sites_tree");
    const QModelIndex site = tree->model()->index(0, 0);
    tree->expand(site);
    tree->setCurrentIndex(tree->model()->index(0, 0, site));
    find<QTabWidget>("sites_views")->setCurrentIndex(1);
    auto* with = find<QComboBox>("sites_with");
    with->setCurrentIndex(1);
    Q_EMIT with->activated(1);
    save("sites", screen_->parentWidget());
    program_->window().resize(kWindow);
    boxes_.answer([this](QDialog* dialog) {
        const auto type = [dialog](const char* name, const char* text) {
            QTest::keyClicks(dialog->findChild<QLineEdit*>(QLatin1String(name)),
                             QLatin1String(text));
        };
        type("visit_technician", "M. Rossi");
        type("site_name", "o");
        save("visit", dialog);
        dialog->reject();
    });
    program_->window().findChild<QAction*>(QStringLiteral("cmdvisit"))->trigger();
}

void Pictures::satellites() {
    open("asl");
    const auto select = [this](const char* list, int row) {
        find<QListWidget>(list)->setCurrentRow(row);
    };
    const QString backup = work_.filePath("slots.srec");
    choose_file(backup);
    boxes_.press(QMessageBox::Ok);
    click_action("cmdsaveall");
    for (const int slot : {0, 1}) {
        select("listastr", slot);
        click("cmdaddindb");
    }
    select("listadb", 1);
    select("listastr", 4);
    save("satellites", screen_->parentWidget());
    click("cmddelstr");
    choose_file(QFile::exists(backup) ? backup : work_.filePath("slots"));
    picture_box("satellites-restore", "reject");
    click_action("cmdrestoreall");
}

void Pictures::lost() {
    screen_->parentWidget()->close();
    screen_ = nullptr;
    meter_.reset();
    open("realtime");
    save("lost", &program_->window());
}

void Pictures::identify(const std::function<void(QDialog*)>& act) {
    program_->identify(1);
    click_action(language_ == kItalian ? "cmditaliano" : "cmdinglese");
    open("realtime");
    click("dsqopt_1");
    screen_ = nullptr;
    boxes_.answer([act](QDialog* dialog) {
        // From the event loop: a box that opens meanwhile is to be answered.
        QMetaObject::invokeMethod(
            dialog,
            [act, dialog] {
                act(dialog);
                dialog->reject();
            },
            Qt::QueuedConnection);
    });
    click_action("cmdidentify");
}

void Pictures::ask_satellite(QDialog* dialog, bool half_way) {
    dialog->resize(kIdentifyDialog);
    std::function<void()>& on_change = program_->link().activity.on_change;
    const std::function<void()> usual = on_change;
    const auto* asked = dialog->findChild<QTableWidget*>("identify_asked");
    bool saved = !half_way;
    on_change = [&] {
        usual();
        if (saved || asked->rowCount() < kHalfWay) return;
        saved = true;
        save("identify-asking", dialog);
    };
    dialog->findChild<QPushButton*>("identify_start")->click();
    on_change = usual;
}

void Pictures::find_peak() {
    boxes_.answer([](QDialog* dialog) {
        QMetaObject::invokeMethod(dialog->findChild<QPushButton*>("peak_start"), "click",
                                  Qt::QueuedConnection);
    });
    boxes_.press(QMessageBox::Yes);
    boxes_.answer([this](QDialog* dialog) { leave_peak(dialog); });
}

/// Once the search has ended, which may go on below this.
void Pictures::leave_peak(QDialog* dialog) {
    if (dialog->findChild<QPushButton*>("peak_stop")->isEnabled())
        return QTimer::singleShot(100, dialog, [this, dialog] { leave_peak(dialog); });
    save("peak", dialog);
    dialog->reject();
}

/// All, or those of sites and visits.
int take_pictures(const QString& folder, bool sites_alone) {
    for (const int language : {int(kEnglish), int(kItalian)}) {
        const QString into =
            QStringLiteral("%1/%2/images").arg(folder, language == kItalian ? "it" : "en");
        if (!QDir().mkpath(into)) return 1;
        if (sites_alone) {
            Pictures(language, into).take_sites();
            continue;
        }
        Pictures(language, into).take();
        Pictures(language, into, {"--sky", "orbit", "--cn", "8", "--point", "9.6E", "--seed", "8"})
            .take_identification();
        Pictures(language, into, {"--sky", "orbit", "--point", "13.7E"}).take_peak();
    }
    return 0;
}

}  // namespace
}  // namespace m47

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const bool sites_alone = arguments.value(2) == QStringLiteral("sites");
    if (arguments.size() != (sites_alone ? 3 : 2)) qFatal("take-pictures FOLDER [sites]");
    return m47::take_pictures(arguments[1], sites_alone);
}
