// SPDX-License-Identifier: GPL-3.0-or-later
// What was recorded of the line is a meter: the same deeds on it give the same rows, files, texts
// and bytes, whatever went wrong on the line. M47_ALL_REPLAYS=1 lets each deed meet each fault at
// each of its commands.
#include <QAction>
#include <QCheckBox>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QTest>
#include <functional>
#include <map>

#include "box_answers.h"
#include "example_plan.h"
#include "handler.h"
#include "meter_in_process.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "unattended.h"
#include "virtual_clock.h"

namespace m47::shell {
namespace {

const QString kRecording = QStringLiteral("line.trace");
/// How many deeds meet a fault in ./test.
constexpr int kDeedsOfAFault = 1;

bool all_replays() {
    return qEnvironmentVariableIsSet("M47_ALL_REPLAYS");
}

QByteArray content_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A time of day and a date are not those of the recording.
QString without_times(QString text) {
    static const QRegularExpression kTimes("[0-9]{2}[/:][0-9]{2}[/:][0-9]{2}|[0-9]{8}-[0-9]{6}");
    return text.replace(kTimes, QStringLiteral("TIME"));
}

/// What came of a deed, a line each.
using Outcome = QStringList;

}  // namespace

class ReplayTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    struct Deed {
        const char* name;
        void (ReplayTest::*work)();
    };

    static const QList<Deed>& deeds();

    void begin(const Recorded* recorded) {
        new_folder();
        told_.clear();
        auto clock = std::make_unique<VirtualClock>();
        auto line = std::make_unique<FakePort>(*clock);
        line_ = line.get();
        meter_ = recorded ? std::make_unique<MeterInProcess>(*line, *recorded)
                          : std::make_unique<MeterInProcess>(*line, 7);
        link::PortList ports;
        QVERIFY(ports.add("1=/dev/no-such-meter"));
        start_program({1024, 600}, ports, std::move(clock), std::move(line));
        set_fault_reporter([this](QWidget*, const QString& what) { told_ += what; });
        // That plan alone.
        QSqlQuery query(program().database().connection());
        for (const char* table : {"gruppo", "configurazione", "programmi"})
            QVERIFY(query.exec(QStringLiteral("DELETE FROM %1").arg(table)));
        plans::add_example_plan(program().database());
        boxes_ = std::make_unique<BoxAnswers>();
        program_state().corrected.full_tune = true;
        program().recording().start(in_folder(kRecording));
        program().identify(1);
    }

    void end() {
        boxes_.reset();
        meter_.reset();
        end_program();
    }

    Outcome outcome() {
        Outcome all = QString::fromLatin1(line_->written).split(u'\r');
        all += boxes_->take_seen();
        all += told_;
        all += program().link().port_connected ? "connected" : "not connected";
        all += files();
        for (QWidget* widget : window().findChildren<QWidget*>()) all += shown(widget);
        return all.replaceInStrings(folder(), QStringLiteral("FOLDER"));
    }

    static QString shown(QWidget* widget) {
        const QString name = widget->objectName() + QStringLiteral(": ");
        if (auto* label = qobject_cast<QLabel*>(widget)) return without_times(name + label->text());
        if (auto* box = qobject_cast<QLineEdit*>(widget)) return without_times(name + box->text());
        if (auto* text = qobject_cast<QPlainTextEdit*>(widget))
            return without_times(name + text->toPlainText());
        QStringList cells;
        auto* view = qobject_cast<QAbstractItemView*>(widget);
        if (!view || !view->model()) return name;
        const QAbstractItemModel& model = *view->model();
        for (int row = 0; row < model.rowCount(); ++row)
            for (int column = 0; column < model.columnCount(); ++column)
                cells += model.index(row, column).data().toString();
        return without_times(name + cells.join(u'|'));
    }

    QStringList files() const {
        QStringList all;
        QDirIterator entries(folder(), QDir::Files, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            if (path.endsWith(kRecording) || path.endsWith(QLatin1String(".mdb"))) continue;
            all += without_times(path + ": " + QString::fromLatin1(content_of(path)));
        }
        all.sort();
        return all;
    }

    // The deeds. ---------------------------------------------------------------------------
    QWidget* open(const char* key) {
        find<QAction>(key)->trigger();
        return window().screen_of(QString::fromLatin1(key));
    }
    realtime::Realtime& open_realtime() {
        auto* screen = qobject_cast<realtime::Realtime*>(open("realtime"));
        screen->open_log(in_folder("rows.log"));
        find<QCheckBox>("meas_statea_0", screen)->click();
        return *screen;
    }
    static void tick(realtime::Realtime& screen, int seconds) {
        acquisition::Acquisition& walk = screen.acquisition;
        for (; seconds > 0; --seconds) {
            if (walk.timed()) run_handler(&screen, "Timer1_Timer", [&] { walk.Timer1_Timer(); });
            if (walk.passing()) run_handler(&screen, "Timer2_Timer", [&] { walk.Timer2_Timer(); });
        }
    }
    void click(const char* button, QWidget* screen) { find<QPushButton>(button, screen)->click(); }
    static void pick(QListWidget* list, int row) {
        if (row < list->count()) list->setCurrentRow(row);
    }

    void single() {
        realtime::Realtime& screen = open_realtime();
        for (int time = 0; time < 2; ++time) find<QAction>("single_acq", &screen)->trigger();
    }
    void digital() {
        realtime::Realtime& screen = open_realtime();
        find<QAction>("qpsk", &screen)->trigger();
        for (const char* box : {"meas_stated_0", "meas_stated_3", "meas_stated_4", "meas_stated_6"})
            find<QCheckBox>(box, &screen)->click();
        find<QAction>("single_acq", &screen)->trigger();
    }
    void plan() {
        realtime::Realtime& screen = open_realtime();
        screen.toolbar_ButtonClick("group");
        find<QAction>("multiple_acq", &screen)->trigger();
        tick(screen, 8);
    }
    void timed() {
        realtime::Realtime& screen = open_realtime();
        screen.toolbar_ButtonClick("start");
        screen.acquisition.time_delay_Click();
        screen.acquisition.cmdstart_Click();
        tick(screen, 8);
        screen.toolbar_ButtonClick("stop");
    }
    void upload(const char* key) {
        QWidget* screen = open("program");
        boxes_->press(QMessageBox::Yes);
        find<QAction>(key, screen)->trigger();
    }
    void upload_added() { upload("accoda"); }
    void upload_instead() { upload("sostituisci"); }
    void upload_anew() { upload("nuovo"); }
    void logger() {
        QWidget* screen = open("download");
        for (const char* key : {"cmddownload", "cmddatain", "cmddownloadlast"}) click(key, screen);
    }
    void span() { click("cmdspan", open("download")); }
    void satellites_fetched() {
        QWidget* screen = open("asl");
        for (const int row : {0, 2}) {
            pick(find<QListWidget>("listastr", screen), row);
            click("cmdaddindb", screen);
        }
        pick(find<QListWidget>("listastr", screen), 1);
        click("cmddelstr", screen);
    }
    void satellites_brought() {
        satellites_fetched();
        QWidget* screen = window().screen_of("asl");
        pick(find<QListWidget>("listadb", screen), 0);
        click("cmdsave", screen);
    }
    void logo() {
        QWidget* screen = open("configurazione");
        find<QAction>("logo", screen)->trigger();
        auto* box = find<QLineEdit>("logo_txt", screen);
        box->setText("ANTENNAS LTD");
        Q_EMIT box->returnPressed();
    }

    /// Does the deed on a meter and on the meter of the recording that is made of that, and
    /// compares. `fault`, where it is not empty, hits the `nth` command behind the identification.
    /// How many commands there were.
    int there_and_back(const Deed& deed, const QString& fault, int nth) {
        begin(nullptr);
        const int before = meter_->commands;
        if (!fault.isEmpty()) meter_->spoil(fault, nth);
        (this->*deed.work)();
        const Outcome first = outcome();
        const bool connected = program().link().port_connected;
        if (fault.isEmpty() && !connected) QTest::qFail(deed.name, __FILE__, __LINE__);
        const int commands = meter_->commands - before;
        program().recording().stop();
        const Recorded recorded{content_of(in_folder(kRecording))};
        end();
        begin(&recorded);
        (this->*deed.work)();
        const Outcome second = outcome();
        const QByteArray unknown = meter_->never_recorded();
        end();
        compare(first, second, QStringLiteral("%1, %2 at %3").arg(deed.name, fault).arg(nth));
        if (!unknown.isEmpty()) QTest::qFail(unknown, __FILE__, __LINE__);
        return commands;
    }

    static void compare(const Outcome& first, const Outcome& second, const QString& where) {
        for (qsizetype k = 0; k < qMax(first.size(), second.size()); ++k)
            if (first.value(k) != second.value(k)) {
                const QString text = where + ":\n" + first.value(k) + '\n' + second.value(k);
                return QTest::qFail(qPrintable(text), __FILE__, __LINE__);
            }
    }

    std::unique_ptr<MeterInProcess> meter_;
    std::unique_ptr<BoxAnswers> boxes_;
    FakePort* line_ = nullptr;
    QStringList told_;

  private Q_SLOTS:
    void cleanup() { end(); }

    void each_deed_data() {
        QTest::addColumn<int>("number");
        for (int k = 0; k < deeds().size(); ++k) QTest::newRow(deeds()[k].name) << k;
    }
    void each_deed() {
        QFETCH(const int, number);
        const int commands = there_and_back(deeds()[number], {}, 0);
        QVERIFY(commands > 0 || QTest::currentTestFailed());
        commands_[number] = commands;
    }

    /// The rows of the examples are those that their pages in the manual explain.
    void the_examples_are_as_their_pages_say_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"good-sky", "failing-lnb", "off-peak"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void the_examples_are_as_their_pages_say() {
        QFETCH(const QString, name);
        const QString docs = QStringLiteral(PROJECT_FOLDER "/docs/");
        const Recorded example{content_of(docs + "examples/" + name + ".trace")};
        begin(&example);
        unattended::Options options;
        options.measure = options.full_tune = true;
        options.on_port = 1;
        options.plan = plans::kExamplePlan;
        for (const char* alarm : {"level", "ber", "mer"})
            options.alarms += {QLatin1String(alarm), {}, {}};
        options.log = in_folder("rows.log");
        unattended::run_unattended(program_state(), program().database(), program().connection(),
                                   options, {});
        QStringList rows;
        for (const QByteArray& line : content_of(options.log).split('\n')) {
            const QStringList cells = QString::fromLatin1(line.trimmed()).split(u'\t');
            if (cells.size() < 11) continue;
            QStringList row{cells[2], cells[4], cells[5], cells[7], cells[8], cells[10]};
            rows += "| " + row.replaceInStrings(QRegularExpression("^$"), "-").join(" | ") + " |";
        }
        QCOMPARE(meter_->never_recorded(), QByteArray());
        QCOMPARE(rows.size(), 7);
        for (const char* language : {"en", "it"}) {
            const QString page = QString::fromUtf8(
                content_of(docs + "manual/" + language + "/example-" + name + ".md"));
            for (const QString& row : std::as_const(rows))
                QVERIFY2(page.contains(row), qPrintable(row));
        }
    }

    void each_fault_data() {
        QTest::addColumn<QString>("fault");
        for (const char* fault :
             {"error", "commanderror", "silence", "garbage", "partial", "late", "asleep", "drop",
              "unplug", "noecho", "wrongecho", "noise", "badrecord", "trickle", "endless"})
            QTest::newRow(fault) << QString::fromLatin1(fault);
    }
    void each_fault() {
        QFETCH(const QString, fault);
        static int next = 0;
        const int first = all_replays() ? 0 : next;
        const int count = all_replays() ? int(deeds().size()) : kDeedsOfAFault;
        for (int k = first; k < first + count; ++k) {
            const int number = k % int(deeds().size());
            const int commands = commands_[number];
            const int middle = commands / 2 + 1;
            for (int nth = all_replays() ? 1 : middle; nth <= (all_replays() ? commands : middle);
                 ++nth)
                there_and_back(deeds()[number], fault, nth);
        }
        next = first + count;
    }

  private:
    std::map<int, int> commands_;
};

const QList<ReplayTest::Deed>& ReplayTest::deeds() {
    static const QList<Deed> kDeeds{
        {"single", &ReplayTest::single},
        {"satellites brought", &ReplayTest::satellites_brought},
        {"plan", &ReplayTest::plan},
        {"upload, added", &ReplayTest::upload_added},
        {"timed", &ReplayTest::timed},
        {"logger", &ReplayTest::logger},
        {"upload, instead", &ReplayTest::upload_instead},
        {"digital", &ReplayTest::digital},
        {"span", &ReplayTest::span},
        {"upload, anew", &ReplayTest::upload_anew},
        {"satellites fetched", &ReplayTest::satellites_fetched},
        {"logo", &ReplayTest::logo},
    };
    return kDeeds;
}

}  // namespace m47::shell

QTEST_MAIN(m47::shell::ReplayTest)
#include "replay_test.moc"
