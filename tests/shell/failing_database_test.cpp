// SPDX-License-Identifier: GPL-3.0-or-later
// The database fails in the middle of the work: each call of its engine once, in unattended and
// timed runs over a plan and in what the screens' keys do.
#include <unistd.h>

#include <QAction>
#include <QFile>
#include <QSqlQuery>
#include <QTest>
#include <cstdio>
#include <functional>
#include <memory>

#include "box_answers.h"
#include "failing_statement.h"
#include "fake_port.h"
#include "handler.h"
#include "meter_in_process.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "unattended.h"
#include "virtual_clock.h"

namespace m47::shell {
namespace {

const QString kPlanMeasured = QStringLiteral("PLAN 1");
const QStringList kFrequencies{"1000", "1010"};

/// While it lives what goes to the descriptor `stream` goes to a file.
class Caught {
  public:
    Caught(int stream, const QString& path) : stream_(stream), kept_(::dup(stream)), file_(path) {
        std::fflush(nullptr);
        if (!file_.open(QIODevice::ReadWrite | QIODevice::Truncate)) qFatal("no file to write to");
        ::dup2(file_.handle(), stream_);
    }
    ~Caught() {
        std::fflush(nullptr);
        ::dup2(kept_, stream_);
        ::close(kept_);
    }
    Caught(const Caught&) = delete;
    Caught& operator=(const Caught&) = delete;

    QStringList lines() {
        file_.seek(0);
        return QString::fromUtf8(file_.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

  private:
    int stream_;
    int kept_;
    QFile file_;
};

/// The frequencies of rows, without their decimals.
QStringList frequencies_of(const QStringList& rows) {
    QStringList all;
    for (const QString& row : rows) all += row.split(u'\t').value(2).section(u'.', 0, 0);
    return all;
}

/// The frequencies in their order, each pass ended anywhere or not even begun.
bool passes_in_order(const QStringList& frequencies) {
    qsizetype place = 0;
    for (const QString& frequency : frequencies) {
        if (frequency == kFrequencies[0]) place = 0;
        if (place >= kFrequencies.size() || frequency != kFrequencies[place++]) return false;
    }
    return true;
}

struct Key {
    const char* name;
    std::function<void(BoxAnswers&)> answer = {};
};

}  // namespace

class FailingDatabaseTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<MeterInProcess> meter_;
    QStringList told_;

    void add_row(db::Recordset& set, const QMap<QString, QVariant>& fields) {
        set.add_new();
        for (auto field = fields.begin(); field != fields.end(); ++field)
            set.set(field.key(), field.value());
        set.update();
    }
    void add_programs() {
        int number = 0;
        for (const QString& frequency : kFrequencies)
            add_row(program().database().programmi(),
                    {{"nome", kPlanMeasured},
                     {"pg_num", QString::number(++number).rightJustified(3, u'0')},
                     {"frequenza", frequency.toDouble()},
                     {"loc_osc", true},
                     {"loc_osc0", 0},
                     {"sat_ad", 0},
                     {"lnb_volt", 1},
                     {"K22", 0},
                     {"monitor_state", 1}});
    }
    void add_other_plan() {
        add_row(program().database().gruppo(), {{"nome", "OTHER"}});
        add_row(program().database().configurazione(), {{"nome", "OTHER"}, {"loc_osc1", 9750}});
        for (const int frequency : {1100, 1110})
            add_row(program().database().programmi(),
                    {{"nome", "OTHER"},
                     {"pg_num", QString::number(frequency - 1000)},
                     {"frequenza", frequency},
                     {"loc_osc", true}});
    }
    void change_file(const QString& statement) {
        QSqlQuery query(program().database().connection());
        QVERIFY2(query.exec(statement), qPrintable(statement));
    }
    /// Each plan has its programs and its oscillators, and there is nothing beside.
    bool whole() {
        QSqlQuery query(program().database().connection());
        for (const char* table : {"configurazione", "programmi"}) {
            query.exec(
                QStringLiteral("SELECT (SELECT group_concat(nome) FROM (SELECT DISTINCT nome "
                               "FROM %1 ORDER BY nome)) = (SELECT group_concat(nome) FROM "
                               "(SELECT nome FROM gruppo ORDER BY nome))")
                    .arg(table));
            if (!query.next() || query.value(0).toInt() != 1) return false;
        }
        return true;
    }

    struct Ending {
        int status;
        QStringList rows;
        QStringList told;
    };
    Ending run_plan(const QString& plan, int passes) {
        unattended::Options options;
        options.measure = true;
        options.on_port = 1;
        options.plan = plan;
        options.passes = passes;
        Caught rows(STDOUT_FILENO, in_folder("rows"));
        Caught told(STDERR_FILENO, in_folder("told"));
        const int status = unattended::run_unattended(program_state(), program().database(),
                                                      program().connection(), options, {});
        // The test program's own remarks go to stdout too; a row has its tabs.
        return {status, rows.lines().filter(QStringLiteral("\t")), told.lines()};
    }

    realtime::Realtime* open_realtime() {
        find<QAction>("realtime")->trigger();
        auto* screen = qobject_cast<realtime::Realtime*>(window().screen_of("realtime"));
        connect(screen, &realtime::Realtime::cut_short, this,
                [this](const QString& text) { told_ += text; });
        return screen;
    }
    static void tick(realtime::Realtime& screen, int seconds) {
        acquisition::Acquisition& walk = screen.acquisition;
        // The screen's own timers stand still in a test that does not wait.
        for (; seconds > 0; --seconds) {
            if (walk.timed()) run_handler(&screen, "Timer1_Timer", [&] { walk.Timer1_Timer(); });
            if (walk.passing()) run_handler(&screen, "Timer2_Timer", [&] { walk.Timer2_Timer(); });
        }
    }
    static QStringList measured(const realtime::Realtime& screen) {
        QStringList all;
        for (int row = 0; row < screen.rules.page.measurements(); ++row)
            all += screen.rules.page.cells(row).join(u'\t');
        return frequencies_of(all);
    }

  private Q_SLOTS:
    void init() {
        new_folder();
        auto clock = std::make_unique<VirtualClock>();
        auto line = std::make_unique<FakePort>(*clock);
        meter_ = std::make_unique<MeterInProcess>(*line, 1);
        link::PortList ports;
        QVERIFY(ports.add("1=/dev/no-such-meter"));
        start_program({1024, 600}, ports, std::move(clock), std::move(line));
        program_state().texts.language = kEnglish;
        program().identify(1);
        QVERIFY(program().link().port_connected);
        add_programs();
        told_.clear();
        set_fault_reporter([this](QWidget*, const QString& what) { told_ += what; });
    }

    void cleanup() {
        db::set_statement_fault({});
        meter_.reset();
        end_program();
    }

    void the_database_is_opened() {
        constexpr int kFull = 13;
        fail_each_statement([&](int nth, int code) {
            const FailingStatement failing(nth, code);
            db::DatabaseError error{};
            const auto database = db::Database::open(in_folder(db::kDatabaseFile), error);
            const bool failed = failing.calls() >= nth;
            // A full disk stands in the way of storing alone.
            if ((!database != failed && code != kFull) || (!database && error.path.isEmpty()))
                QTest::qFail(qPrintable(QStringLiteral("%1 %2").arg(nth).arg(code)), __FILE__,
                             __LINE__);
            return failing.calls();
        });
    }

    void an_unattended_plan_run() {
        const QStringList all = kFrequencies + kFrequencies;
        int troubled = 0;
        fail_each_statement([&](int nth, int code) {
            const FailingStatement failing(nth, code);
            const Ending ending = run_plan(kPlanMeasured, 2);
            const QString where =
                QStringLiteral("call %1, code %2, status %3: %4 / %5")
                    .arg(nth)
                    .arg(code)
                    .arg(ending.status)
                    .arg(frequencies_of(ending.rows).join(u' '), ending.told.join(u'\n'));
            const QStringList rows = frequencies_of(ending.rows);
            const bool untouched =
                rows == all && ending.status == unattended::kGood && ending.told.isEmpty();
            const int wanted = rows.isEmpty() ? unattended::kDatabase : unattended::kIncomplete;
            const bool told = ending.status == wanted && ending.told.size() == 1 && rows != all;
            // Where a run can do without the answer it is not troubled.
            if (!passes_in_order(rows) || !(untouched || (told && failing.calls() >= nth)))
                QTest::qFail(qPrintable(where), __FILE__, __LINE__);
            troubled += told ? 1 : 0;
            return failing.calls();
        });
        QVERIFY(troubled > 20);
    }

    void a_plan_that_is_not_whole_data() {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("told");
        QTest::newRow("no programs") << "DELETE FROM programmi"
                                     << "The plan has no programs: ";
        QTest::newRow("no oscillators") << "DELETE FROM configurazione"
                                        << "The plan has no row for its oscillators";
        QTest::newRow("not in the list") << "DELETE FROM gruppo"
                                         << "there is no plan PLAN 1";
    }

    void a_plan_that_is_not_whole() {
        QFETCH(QString, statement);
        QFETCH(QString, told);
        change_file(statement);
        const Ending ending = run_plan(kPlanMeasured, 1);
        QCOMPARE(ending.status, int(unattended::kDatabase));
        QCOMPARE(ending.told.size(), 1);
        QVERIFY2(ending.told[0].startsWith("m47-remote: " + told), qPrintable(ending.told[0]));
        QCOMPARE(ending.rows, QStringList());
    }

    void a_timed_run() {
        realtime::Realtime& screen = *open_realtime();
        screen.rules.panel.meas_statea[realtime::kLevel] = true;
        fail_each_statement([&](int nth, int code) {
            screen.rules.page.clear();
            screen.toolbar_ButtonClick("group");
            screen.toolbar_ButtonClick("start");
            screen.acquisition.time_delay_Click();
            screen.acquisition.cmdstart_Click();
            told_.clear();
            const FailingStatement failing(nth, code);
            // A firing, its pass of two programs and a blank one, and the next firing.
            tick(screen, 8);
            const QString where = QStringLiteral("call %1, code %2: %3 / %4")
                                      .arg(nth)
                                      .arg(code)
                                      .arg(measured(screen).join(u' '), told_.join(u'\n'));
            const bool failed = failing.calls() >= nth;
            if (told_.size() > (failed ? 1 : 0) || !passes_in_order(measured(screen)))
                QTest::qFail(qPrintable(where), __FILE__, __LINE__);
            // What failed once is over: the firings go on, and end at once when told to.
            const auto rows = measured(screen).size();
            tick(screen, 10);
            if (measured(screen).size() < rows + 2)
                QTest::qFail(qPrintable(where), __FILE__, __LINE__);
            screen.toolbar_ButtonClick("stop");
            if (screen.acquisition.timed() || screen.acquisition.passing())
                QTest::qFail(qPrintable("not stopped: " + where), __FILE__, __LINE__);
            return failing.calls();
        });
    }

    void a_firing_that_cannot_begin() {
        realtime::Realtime& screen = *open_realtime();
        screen.toolbar_ButtonClick("group");
        acquisition::Acquisition& walk = screen.acquisition;
        fail_each_statement([&](int nth, int code) {
            screen.toolbar_ButtonClick("start");
            walk.time_delay_Click();
            walk.cmdstart_Click();
            told_.clear();
            const FailingStatement failing(nth, code);
            walk.Timer1_Timer();
            const bool failed = failing.calls() >= nth;
            const bool green = screen.rules.panel.time_state == LampColour::green;
            if (green == failed || told_.size() != (failed ? 1 : 0))
                QTest::qFail(qPrintable(QString::number(nth)), __FILE__, __LINE__);
            const int calls = failing.calls();
            screen.toolbar_ButtonClick("stop");
            return calls;
        });
    }

    void keys_of_the_realtime_screen() {
        add_other_plan();
        realtime::Realtime& screen = *open_realtime();
        screen.toolbar_ButtonClick("group");
        for (const char* key :
             {"group", "next", "previous", "next_prog", "previous_prog", "multiple_acq", "stop"}) {
            fail_each_statement([&](int nth, int code) {
                told_.clear();
                int calls = 0;
                {
                    const FailingStatement failing(nth, code);
                    find<QAction>(key, &screen)->trigger();
                    calls = failing.calls();
                }
                // "stop" has ended what it ends, whatever the database does.
                const bool tells = calls >= nth && qstrcmp(key, "stop") != 0;
                if (told_.size() != (tells ? 1 : 0) ||
                    screen.rules.state.plan_run_active !=
                        (qstrcmp(key, "multiple_acq") == 0 && calls < nth))
                    QTest::qFail(qPrintable(key + QStringLiteral(" %1 %2: ").arg(nth).arg(code) +
                                            told_.join(u'\n')),
                                 __FILE__, __LINE__);
                if (screen.rules.modes.rs_programs->text("nome") != screen.rules.panel.grp_name)
                    QTest::qFail(key, __FILE__, __LINE__);
                screen.toolbar_ButtonClick("stop");
                screen.acquisition.previous_prog();
                return calls;
            });
        }
    }

    void the_words_are_the_users() {
        constexpr int kBusy = 5;
        add_other_plan();
        find<QAction>("program")->trigger();
        QWidget* screen = window().screen_of("program");
        program_state().texts.language = kItalian;
        for (const char* key : {"next", "previous", "store", "store_new", "accoda"}) {
            told_.clear();
            {
                const FailingStatement failing(1, kBusy);
                find<QAction>(key, screen)->trigger();
            }
            QCOMPARE(told_.size(), 1);
            QVERIFY2(told_[0].startsWith(
                         QStringLiteral("Il database '%1' è usato da un altro programma. ")
                             .arg(in_folder(db::kDatabaseFile))),
                     qPrintable(key + QStringLiteral(": ") + told_[0]));
        }
    }

    void keys_of_the_plan_screen() {
        const auto yes = [](BoxAnswers& boxes) { boxes.press(QMessageBox::Ok); };
        const auto name = [](BoxAnswers& boxes) { boxes.type("NEW"); };
        add_other_plan();
        find<QAction>("program")->trigger();
        QWidget* screen = window().screen_of("program");
        const QList<Key> keys{
            {"next"},      {"previous"},    {"next_prog"},     {"previous_prog"},
            {"store"},     {"store_new"},   {"accoda"},        {"programma_delete", yes},
            {"new", name}, {"delete", yes}, {"cmdinsertrows"}, {"cmdrowup"},
            {"cmdundo"},   {"cmdredo"},     {"cmdundo"},       {"cmddeleterows", yes}};
        for (const Key& key : keys) {
            fail_each_statement([&](int nth, int code) {
                BoxAnswers boxes;
                if (key.answer) key.answer(boxes);
                told_.clear();
                int calls = 0;
                {
                    const FailingStatement failing(nth, code);
                    find<QAction>(key.name, screen)->trigger();
                    calls = failing.calls();
                }
                const QString where = QStringLiteral("%1, call %2, code %3: %4 / %5")
                                          .arg(key.name)
                                          .arg(nth)
                                          .arg(code)
                                          .arg(told_.join(u'\n'), boxes.take_seen().join(u'\n'));
                if (told_.size() != (calls >= nth ? 1 : 0) || !whole())
                    QTest::qFail(qPrintable(where), __FILE__, __LINE__);
                return calls;
            });
        }
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::FailingDatabaseTest)
#include "failing_database_test.moc"
