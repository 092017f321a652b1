// SPDX-License-Identifier: GPL-3.0-or-later
// The whole program on a virtual clock and an inside-out meter that answers badly one time in ten,
// used without any sense.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QTimer>
#include <limits>

#include "meter_in_process.h"
#include "monkey.h"
#include "old_reader.h"
#include "plan_name.h"
#include "plan_sets.h"
#include "process_support.h"
#include "program_in_folder.h"

namespace m47 {

class MonkeyTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();
    void every_box_takes_any_text_data();
    void every_box_takes_any_text();
    void names_of_plans_are_just_characters();
    void all_screens_without_sense();

  private:
    void pick_up_the_line();
    void one_step(int number);
    void verify_calm(const QString& what);
    void verify_wire(const QString& what);
    void verify_files();
    QStringList sql(const QString& statement);
    QWidget* open(const char* screen);
    void feed_boxes(QWidget* screen, const QString& text);
    void put_into(QWidget* box, const QString& text);

    VirtualClock* clock_ = nullptr;
    FakePort* port_ = nullptr;
    std::unique_ptr<MeterInProcess> meter_;
    std::unique_ptr<Monkey> monkey_;
    qsizetype longest_command_ = 0;
    int lost_ = 0;             ///< how often the line was picked up again
    qint64 longest_ = 0;       ///< step, ms
    double longest_wait_ = 0;  ///< of the program's time in one step, seconds
};

namespace {

constexpr auto kScreens = {"program", "realtime", "download", "asl", "configurazione", "setport"};
constexpr int kUsualSteps = 400;
constexpr int kLongestText = 200;
constexpr int kMostDigits = std::numeric_limits<double>::max_exponent10 + 1;
constexpr qint64 kLongestStep = 20000;  // ms of real time

quint32 number_from(const char* variable, int usual) {
    bool given = false;
    const int number = qEnvironmentVariableIntValue(variable, &given);
    return static_cast<quint32>(given ? number : usual);
}

}  // namespace

void MonkeyTest::init() {
    new_folder(folder_template());
    link::PortList ports(link::PortSources{folder(), folder(), [] { return QStringList(); }});
    QVERIFY(ports.add(QStringLiteral("1=/dev/no-such-meter")));
    auto clock = std::make_unique<VirtualClock>();
    auto port = std::make_unique<FakePort>(*clock);
    clock_ = clock.get();
    port_ = port.get();
    meter_ = std::make_unique<MeterInProcess>(*port_, number_from("M47_SEED", 47));
    start_program({1100, 720}, ports, std::move(clock), std::move(port));
    window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window()));
    monkey_ = std::make_unique<Monkey>(window(), folder(), number_from("M47_SEED", 47));
    pick_up_the_line();
    QVERIFY(program().link().port_connected);
}

void MonkeyTest::cleanup() {
    monkey_.reset();
    meter_.reset();
    end_program();
}

/// The cable is plugged in again, and the port picked.
void MonkeyTest::pick_up_the_line() {
    if (program().link().port_connected) return;
    port_->open_fault = link::PortFault::none;
    program().identify(1);
}

QStringList MonkeyTest::sql(const QString& statement) {
    QStringList column;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "look");
        database.setDatabaseName(program_state().base_dir + QLatin1String(db::kDatabaseFile));
        if (!database.open()) qFatal("the database file does not open");
        QSqlQuery query(statement, database);
        while (query.next()) column += query.value(0).toString();
    }
    QSqlDatabase::removeDatabase("look");
    return column;
}

QWidget* MonkeyTest::open(const char* screen) {
    const QString key = QString::fromLatin1(screen);
    window().findChild<QAction*>(key)->setEnabled(true);
    window().findChild<QAction*>(key)->trigger();
    return window().screen_of(key);
}

/// Nothing is left of a handler that has ended.
void MonkeyTest::verify_calm(const QString& what) {
    QVERIFY2(!port_->is_open(), qPrintable(what));
    QVERIFY2(!QApplication::overrideCursor(), qPrintable(what));
    QVERIFY2(!program().link().commands_suspended, qPrintable(what));
    QVERIFY2(!QApplication::activeModalWidget(), qPrintable(what));
}

/// What a user types never becomes a second command, or anything but text.
void MonkeyTest::verify_wire(const QString& what) {
    const QStringList commands = port_->take_commands();
    for (const QString& command : commands) {
        longest_command_ = qMax(longest_command_, command.size());
        const bool clean = std::all_of(command.begin(), command.end(),
                                       [](QChar c) { return c >= u' ' && c != QChar(0x7F); });
        QVERIFY2(clean, qPrintable(what + QStringLiteral(": sent ") + command));
        // The logo alone may be of any length: the meter says what it keeps of it. An oscillator
        // that nobody has sent yet shifts the frequency by as many digits as a number has.
        if (!command.startsWith(QLatin1String("LOGO ")))
            QVERIFY2(command.size() < kLongestText + kMostDigits,
                     qPrintable(what + QStringLiteral(": sent ") + command));
    }
}

void MonkeyTest::verify_files() {
    QCOMPARE(sql("PRAGMA integrity_check"), QStringList("ok"));
    QVERIFY(sql("SELECT count(*) FROM gruppo").value(0).toInt() > 0);
}

void MonkeyTest::put_into(QWidget* box, const QString& text) {
    const QPointer<QWidget> target = box;
    box->setFocus();
    QApplication::clipboard()->setText(text);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_V})
        if (target) QTest::keyClick(target.data(), key, Qt::ControlModifier);
    // What the box makes of a paste is one thing; a text that got in some other way is another.
    if (auto* line = qobject_cast<QLineEdit*>(target)) {
        QTest::keyClick(line, Qt::Key_Return);
        if (target && !line->isReadOnly()) line->setText(text);
    }
    if (target) QTest::keyClick(target.data(), Qt::Key_Return);
    if (target) QTest::keyClick(target.data(), Qt::Key_Tab);
}

void MonkeyTest::feed_boxes(QWidget* screen, const QString& text) {
    QList<QPointer<QWidget>> boxes;
    for (auto* line : screen->findChildren<QLineEdit*>()) boxes += line;
    for (auto* box : screen->findChildren<QPlainTextEdit*>()) boxes += box;
    for (auto* box : screen->findChildren<QComboBox*>()) boxes += box;
    for (const auto& box : boxes) {
        if (!box || !box->isEnabled()) continue;
        pick_up_the_line();
        const QString what = screen->objectName() + u' ' + box->objectName();
        QElapsedTimer timer;
        timer.start();
        put_into(box, text);
        QVERIFY2(timer.elapsed() < kLongestStep, qPrintable(what));
        verify_wire(what);
        if (QTest::currentTestFailed()) return;
    }
}

void MonkeyTest::every_box_takes_any_text_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("10,000 characters") << QString(10000, u'x');
    QTest::newRow("10,000 digits") << QString(10000, u'7');
    QString control;
    for (char16_t code = 1; code < 32; ++code) control += QChar(code);
    QTest::newRow("control characters") << control + QChar(0x7F) + QChar(0x85) + QChar(0x2028);
    QTest::newRow("two lines") << QStringLiteral("11\rLOGO OWNED\r\nLOGO TOO");
    QTest::newRow("right to left")
        << QStringLiteral("\u202E\u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627 12");
    QTest::newRow("quotes and SQL")
        << QStringLiteral("'\"`; DROP TABLE gruppo; -- '') OR 1=1 %1 %n");
    QTest::newRow("empty") << QString();
}

void MonkeyTest::every_box_takes_any_text() {
    QFETCH(QString, text);
    for (const char* name : kScreens) {
        pick_up_the_line();
        QWidget* screen = open(name);
        QVERIFY(screen);
        // Also what a screen shows only at times.
        for (QAction* action : screen->findChildren<QAction*>())
            if (action->isCheckable() && !action->isChecked()) action->trigger();
        feed_boxes(screen, text);
        if (QTest::currentTestFailed()) return;
        verify_calm(QString::fromLatin1(name));
    }
    verify_files();
    qInfo("longest command: %lld characters", static_cast<long long>(longest_command_));
    QCOMPARE(monkey_->faults_told, QStringList());
}

void MonkeyTest::names_of_plans_are_just_characters() {
    plans::PlanSets sets(program().database());
    const QStringList names{"'; DROP T", "\"\"",  "A'B''C", "--",
                            "%1 %n",     "/*X*/", "NULL",   "\u05E9\u05DC\u05D5\u05DD",
                            "A\nB"};
    for (const QString& name : names) {
        sets.add_new(programme::plan_name(name));
        QCOMPARE(sets.plan(), programme::plan_name(name));
        QVERIFY2(sets.has_plan(programme::plan_name(name)), qPrintable(name));
    }
    QCOMPARE(sql("SELECT count(*) FROM gruppo").value(0).toInt(), names.size() + 1);
    for (const QString& name : names) {
        sets.crea_records(programme::plan_name(name));
        QCOMPARE(sets.programs().size(), std::size_t{1});
        sets.del_old();
        QVERIFY(!sets.has_plan(programme::plan_name(name)));
    }
    QCOMPARE(sql("SELECT nome FROM gruppo"), QStringList("PLAN 1"));
    QCOMPARE(sql("SELECT nome FROM programmi"), QStringList("PLAN 1"));
}

void MonkeyTest::one_step(int number) {
    if (!program().link().port_connected && number % 3 == 0) {
        ++lost_;
        pick_up_the_line();
    }
    QElapsedTimer timer;
    timer.start();
    const double before = clock_->elapsed();
    const QString what = QStringLiteral("step %1, ").arg(number) + monkey_->step();
    longest_ = qMax(longest_, timer.elapsed());
    longest_wait_ = qMax(longest_wait_, clock_->elapsed() - before);
    QVERIFY2(timer.elapsed() < kLongestStep, qPrintable(what));
    verify_calm(what);
    verify_wire(what);
    QApplication::clipboard()->clear();
}

/// Within an event loop, as in the program: what a handler deletes goes when it has ended.
void MonkeyTest::all_screens_without_sense() {
    meter_->bad_in = 10;
    const auto steps = static_cast<int>(number_from("M47_MONKEY_STEPS", kUsualSteps));
    QEventLoop loop;
    int number = 0;
    const std::function<void()> go_on = [&] {
        if (number == steps || QTest::currentTestFailed()) return loop.quit();
        one_step(++number);
        QTimer::singleShot(1, &loop, go_on);
    };
    QTimer::singleShot(1, &loop, go_on);
    loop.exec();
    if (QTest::currentTestFailed()) return;
    verify_files();
    for (auto box = monkey_->boxes.cbegin(); box != monkey_->boxes.cend(); ++box)
        qInfo("%4d x %s", box.value(), qPrintable(box.key()));
    for (const QString& told : monkey_->faults_told) qInfo("told: %s", qPrintable(told));
    qInfo("%d steps, %d commands, %d of them answered badly, link lost %d times", steps,
          meter_->commands, meter_->faults, lost_);
    qInfo("longest step %lld ms, longest wait for the meter %.0f s",
          static_cast<long long>(longest_), longest_wait_);
}

}  // namespace m47

int main(int argc, char** argv) {
    if (argc == 2 && qstrcmp(argv[1], m47::olddb::kReadOldDatabase) == 0)
        return m47::olddb::run_old_reader();
    QApplication application(argc, argv);
    // The monkey closes the window now and then and goes on.
    QApplication::setQuitOnLastWindowClosed(false);
    m47::MonkeyTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "monkey_test.moc"
