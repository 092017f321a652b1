// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <csignal>

#include "process_support.h"

namespace m47 {

/// What the command line, the folder and the database make of a start.
class StartTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void wrong_usage_data();
    void wrong_usage();
    void help();
    void a_text_that_does_not_get_out();
    void version();
    void no_display();
    void a_display_that_is_gone();
    void measuring_with_an_unreachable_display();
    void database_created_once();
    void database_that_exists_is_left_alone();
    void relative_directory();
    void directory_of_another_place();
    void missing_directory();
    void user_data_folder_data();
    void user_data_folder();
    void user_data_folder_that_cannot_be();
    void desktop_entry();
    void unusable_database_data();
    void unusable_database();
    void missing_database_of_the_windows();
    void damaged_database_of_the_windows();

  private:
    /// A database as the program makes it.
    static QByteArray new_database();
};

namespace {

const QString kDatabase = QStringLiteral("VKDM47_03.mdb");

}  // namespace

QByteArray StartTest::new_database() {
    static const QByteArray content = [] {
        EmptyStand stand;
        stand.remote.run(stand.measuring({"--create-database"}));
        return stand.files().value(kDatabase);
    }();
    return content;
}

void StartTest::wrong_usage_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("named");  // what the message has to name
    const auto row = [](const char* name, const QStringList& arguments, const char* named) {
        QTest::newRow(name) << arguments << QByteArray(named);
    };
    const auto measuring = [&](const char* name, const QStringList& options, const char* named) {
        row(name, EmptyStand::measuring(options), named);
    };
    row("unknown option", {"--bogus"}, "bogus");
    row("two folders", {"--directory", ".", "--user-data"}, "--user-data");
    row("unknown letter", {"-x"}, "x");
    measuring("unknown option of a measurement", {"--bogus"}, "bogus");
    row("argument too many", {"meter.mdb"}, "meter.mdb");
    row("value missing", {"--measure", "--on-port"}, "on-port");
    row("value too many", {"--measure=yes", "--on-port", "1"}, "measure");
    measuring("frequency without number", {"--freq", "abc"}, "--freq");
    measuring("frequency with a unit", {"--freq", "1275.5MHz"}, "--freq");
    measuring("frequency 0", {"--freq", "0"}, "--freq");
    measuring("negative frequency", {"--freq", "-1000"}, "--freq");
    measuring("frequency nan", {"--freq", "nan"}, "--freq");
    measuring("frequency without end", {"--freq", "inf"}, "--freq");
    measuring("empty frequency", {"--freq", ""}, "--freq");
    measuring("bandwidth", {"--digital", "--bandwidth", "wide"}, "--bandwidth");
    measuring("symbol rate", {"--digital", "--symbol-rate", "-1"}, "--symbol-rate");
    measuring("count 0", {"--count", "0"}, "--count");
    measuring("half a count", {"--count", "1.5"}, "--count");
    measuring("count without number", {"--count", "many"}, "--count");
    measuring("alarm without limits", {"--alarm", "level"}, "--alarm");
    measuring("alarm with one limit", {"--alarm", "level=20"}, "--alarm");
    measuring("unknown alarm", {"--alarm", "noise=1:2"}, "--alarm");
    measuring("frequency out of range", {"--freq", "99999"}, "from 920 to 2150 MHz");
    measuring("bandwidth out of range", {"--digital", "--bandwidth", "99"}, "from 5 to 36 MHz");
    measuring("symbol rate out of range", {"--digital", "--symbol-rate", "9"},
              "from 1500 to 45000 kS/s");
    measuring("crossed limits", {"--alarm", "level=75:45"}, "level=75:45");
    measuring("picture in the place of the database", {"--screenshot", "VKDM47_03.mdb"},
              "--screenshot names the database");
    measuring("log in the place of the picture", {"--log", "a", "--screenshot", "./a"},
              "--log and --screenshot");
    row("port without device", {"--port", "1="}, "--port");
    row("port without number", {"--port", "/dev/ttyS0"}, "--port");
    row("port number 0", {"--port", "0=/dev/ttyS0"}, "--port");
    row("port number 11", {"--port", "11=/dev/ttyS0"}, "--port");
    row("on port 0", {"--on-port", "0"}, "--on-port");
    row("on port 11", {"--measure", "--on-port", "11"}, "--on-port");
    row("on port x", {"--measure", "--on-port", "x"}, "--on-port");
    row("measurement without port", {"--measure"}, "--on-port");
    measuring("two modes", {"--analog", "--digital"}, "--analog");
    measuring("screen and measurement", {"--open", "realtime"}, "--open");
    row("unknown screen", {"--open", "nowhere"}, "--open");
    row("mode without measurement", {"--on-port", "1", "--analog"}, "--analog");
    row("other mode without measurement", {"--on-port", "1", "--digital"}, "--digital");
    row("frequency without measurement", {"--freq", "1000"}, "--freq");
    row("bandwidth without measurement", {"--bandwidth", "27"}, "--bandwidth");
    row("symbol rate without measurement", {"--symbol-rate", "22000"}, "--symbol-rate");
    row("alarm without measurement", {"--alarm", "level=20:110"}, "--alarm");
    row("count without measurement", {"--count", "2"}, "--count");
    row("log without measurement", {"--log", "run.log"}, "--log");
    row("picture without measurement", {"--screenshot", "s.png"}, "--screenshot");
}

void StartTest::wrong_usage() {
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, named);
    EmptyStand stand;
    const Ending ending = stand.remote.run(QStringList{"--create-database"} + arguments);
    QCOMPARE(ending.status, 2);
    QCOMPARE(ending.out, QByteArray());
    QVERIFY(ending.err.startsWith("m47-remote: "));
    QVERIFY2(ending.err.contains(named), ending.err.constData());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.endsWith('\n'));
    QVERIFY2(stand.files().isEmpty(), "a command line that is wrong does nothing");
}

void StartTest::help() {
    for (const char* option : {"--help", "-h"}) {
        EmptyStand stand;
        const Ending ending = stand.remote.run({option});
        QCOMPARE(ending.status, 0);
        QCOMPARE(ending.err, QByteArray());
        QVERIFY(ending.out.startsWith("Usage: m47-remote "));
        QVERIFY(ending.out.endsWith('\n'));
        for (const char* name :
             {"--help", "--version", "--directory", "--port", "--create-database", "--on-port",
              "--open", "--measure", "--analog", "--digital", "--freq", "--bandwidth",
              "--symbol-rate", "--alarm", "--count", "--log", "--screenshot"})
            QVERIFY2(ending.out.contains(name), name);
        QVERIFY(stand.files().isEmpty());
    }
}

void StartTest::a_text_that_does_not_get_out() {
    for (const char* option : {"--help", "--version"}) {
        EmptyStand stand;
        stand.remote.start_in_shell("\"$0\" \"$@\" >/dev/full", {option});
        QCOMPARE(stand.remote.wait().status, 5);
        stand.remote.start_in_shell("\"$0\" \"$@\" >&-", {option});
        QCOMPARE(stand.remote.wait().status, 5);
    }
}

void StartTest::version() {
    EmptyStand stand;
    const Ending ending = stand.remote.run({"--version"});
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(ending.out, QByteArray("m47-remote " M47_VERSION "\n"));
    QVERIFY(stand.files().isEmpty());
}

void StartTest::no_display() {
    EmptyStand stand;
    const Ending ending = stand.remote.run({"--create-database", "--open", "realtime"});
    QCOMPARE(ending.status, 6);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.contains("display"));
    QVERIFY(ending.err.contains("--measure"));
    QVERIFY(stand.files().isEmpty());
}

/// The window toolkit alone would end the program by a signal here.
void StartTest::a_display_that_is_gone() {
    EmptyStand stand;
    stand.remote.environment.insert("DISPLAY", "127.0.0.1:99");
    const Ending ending = stand.remote.run({"--create-database"});
    QCOMPARE(ending.status, 6);
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.contains("display"));
}

/// A display left over in the environment, as in a session that has been moved to another machine.
void StartTest::measuring_with_an_unreachable_display() {
    TestStand stand;
    stand.remote.environment.insert("DISPLAY", "127.0.0.1:99");
    const Ending ending = stand.measure({});
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(ending.status, 0);
    QCOMPARE(rows_of(ending.out).size(), 1);
}

void StartTest::database_created_once() {
    EmptyStand stand;
    const Ending first = stand.remote.run(stand.measuring({"--create-database"}));
    QCOMPARE(first.status, 3);
    QCOMPARE(stand.files().keys(), QStringList(kDatabase));
    const QByteArray content = stand.files().value(kDatabase);
    QVERIFY(content.startsWith("SQLite format 3"));
    QVERIFY(content.contains("PLAN 1"));

    const Ending second = stand.remote.run(stand.measuring({"--create-database"}));
    QCOMPARE(second.status, 3);
    QCOMPARE(stand.files().keys(), QStringList(kDatabase));
    QVERIFY2(stand.files().value(kDatabase) == content, "the database was made anew");

    const Ending third = stand.remote.run(stand.measuring({}));
    QCOMPARE(third.status, 3);
    QVERIFY(stand.files().value(kDatabase) == content);
}

void StartTest::database_that_exists_is_left_alone() {
    EmptyStand stand;
    stand.write(kDatabase, "my shopping list\n");
    const QMap<QString, QByteArray> before = stand.files();
    const Ending ending = stand.remote.run(stand.measuring({"--create-database"}));
    QCOMPARE(ending.status, 4);
    QCOMPARE(ending.out, QByteArray());
    QVERIFY(stand.files() == before);
}

void StartTest::relative_directory() {
    TestStand stand;
    QVERIFY(QDir().mkdir(stand.path("here")));
    const Ending ending =
        stand.measure({"--directory", "here", "--log", "run.log", "--screenshot", "s.png"});
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(QDir(stand.path("")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList("here"));
    QCOMPARE(QDir(stand.path("here")).entryList(QDir::Files, QDir::Name),
             QStringList({kDatabase, "run.log", "s.png"}));
    QCOMPARE(stand.content("here/run.log"), as_log(ending.out));
}

void StartTest::directory_of_another_place() {
    EmptyStand stand;
    const QTemporaryDir other;
    const Ending ending = stand.remote.run(
        stand.measuring({"--create-database", "--directory=" + other.path() + "/"}));
    QCOMPARE(ending.status, 3);
    QVERIFY(stand.files().isEmpty());
    QCOMPARE(QDir(other.path()).entryList(QDir::Files), QStringList(kDatabase));
}

void StartTest::missing_directory() {
    EmptyStand stand;
    for (const char* folder : {"no-such-folder", "/no-such-folder/inside"}) {
        const Ending ending =
            stand.remote.run(stand.measuring({"--create-database", "--directory", folder}));
        QCOMPARE(ending.status, 4);
        QCOMPARE(ending.out, QByteArray());
        QCOMPARE(ending.err.count('\n'), 1);
        QVERIFY2(ending.err.contains(folder), ending.err.constData());
    }
    QVERIFY(stand.files().isEmpty());
}

void StartTest::user_data_folder_data() {
    QTest::addColumn<QString>("data_home");  // below the stand's folder where it is absolute
    QTest::addColumn<QString>("expected");
    QTest::newRow("named") << QString("/new/data") << QString("new/data/m47-remote");
    QTest::newRow("not named") << QString() << QString("home/.local/share/m47-remote");
    QTest::newRow("relative") << QString("data") << QString("home/.local/share/m47-remote");
}

void StartTest::user_data_folder() {
    QFETCH(QString, data_home);
    QFETCH(QString, expected);
    EmptyStand stand;
    if (data_home.startsWith('/')) data_home.prepend(stand.folder.path());
    stand.remote.environment.insert("HOME", stand.folder.filePath("home"));
    stand.remote.environment.insert("XDG_DATA_HOME", data_home);
    const QString folder = stand.folder.filePath(expected);
    const QString database = folder + '/' + kDatabase;

    QCOMPARE(stand.remote.run(stand.measuring({"--user-data"})).status, 4);
    QVERIFY2(!QFile::exists(database), "a database that nobody asked for");
    const auto run = [&] {
        return stand.remote.run(stand.measuring({"--user-data", "--create-database"})).status;
    };
    QCOMPARE(run(), 3);
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList(kDatabase));
    const auto others = QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    QVERIFY2(!(QFileInfo(folder).permissions() & others), "others can look into the folder");
    const QByteArray content = content_of(database);
    QCOMPARE(run(), 3);
    QVERIFY2(content_of(database) == content, "the database was made anew");
    QVERIFY2(stand.files().isEmpty(), "something was left in the current folder");
}

void StartTest::user_data_folder_that_cannot_be() {
    EmptyStand stand;
    stand.remote.environment.insert("XDG_DATA_HOME", "/dev/null/data");
    const Ending ending = stand.remote.run(stand.measuring({"--user-data", "--create-database"}));
    QCOMPARE(ending.status, 4);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err,
             QByteArray("m47-remote: Cannot work in the folder /dev/null/data/m47-remote.\n"));
    QVERIFY(stand.files().isEmpty());
}

/// What a click on the program's icon runs, on a machine that has never seen it.
void StartTest::desktop_entry() {
    static const QRegularExpression kExec("^Exec=m47-remote (.*)$",
                                          QRegularExpression::MultilineOption);
    const auto exec = kExec.match(QString::fromUtf8(content_of(DESKTOP_ENTRY)));
    QVERIFY(exec.hasMatch());
    EmptyStand stand;
    stand.remote.environment.insert("QT_QPA_PLATFORM", "offscreen");
    stand.remote.environment.insert("XDG_DATA_HOME", stand.folder.filePath("data"));
    stand.remote.start(exec.captured(1).split(' '));
    const QString database = stand.folder.filePath("data/m47-remote/" + kDatabase);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(database), 60000);
    QTest::qWait(500);
    QCOMPARE(stand.remote.process().state(), QProcess::Running);
    stand.remote.kill_now();
    const QByteArray messages = stand.remote.wait().err;
    QVERIFY2(!messages.contains("m47-remote: "), messages.constData());
    QVERIFY(stand.files().isEmpty());
}

void StartTest::unusable_database_data() {
    QTest::addColumn<QByteArray>("content");  // null where there is no file
    QTest::addColumn<QByteArray>("named");
    QTest::newRow("missing") << QByteArray() << QByteArray("--create-database");
    QTest::newRow("empty") << QByteArray("") << kDatabase.toLatin1();
    QTest::newRow("of another program") << QByteArray("my shopping list\n") << kDatabase.toLatin1();
    QTest::newRow("old engine")
        << QByteArray("\x00\x01\x00\x00Standard Jet DB\x00", 20).append(QByteArray(4096, '\x5A'))
        << QByteArray("Jet");
    const QByteArray good = new_database();
    QTest::newRow("cut off") << good.left(good.size() / 2) << kDatabase.toLatin1();
    QByteArray spoilt = good;
    // The first page ends with the table of tables.
    spoilt.replace(100, 3000, QByteArray(3000, '\x5A'));
    QTest::newRow("overwritten") << spoilt << kDatabase.toLatin1();
}

void StartTest::unusable_database() {
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, named);
    EmptyStand stand;
    if (!content.isNull()) stand.write(kDatabase, content);
    const QMap<QString, QByteArray> before = stand.files();
    const Ending ending = stand.remote.run(stand.measuring({"--log", "run.log"}));
    QCOMPARE(ending.status, 4);
    QCOMPARE(ending.out, QByteArray());
    QVERIFY(ending.err.startsWith("m47-remote: "));
    QCOMPARE(ending.err.count("m47-remote: "), 1);
    QVERIFY2(ending.err.contains(kDatabase.toLatin1()), ending.err.constData());
    QVERIFY2(ending.err.contains(named), ending.err.constData());
    QVERIFY2(stand.files() == before, "something was created or changed in the folder");
}

/// With windows the message stands in a box as well, which waits for the user.
void StartTest::missing_database_of_the_windows() {
    EmptyStand stand;
    stand.remote.environment.insert("QT_QPA_PLATFORM", "offscreen");
    stand.remote.start({});
    QVERIFY(stand.remote.wait_for_error_lines(1));
    QTest::qWait(300);
    QCOMPARE(stand.remote.process().state(), QProcess::Running);
    stand.remote.kill_now();
    const Ending ending = stand.remote.wait();
    QVERIFY(ending.err.startsWith("m47-remote: "));
    QVERIFY(ending.err.contains(kDatabase.toLatin1()));
    QVERIFY(stand.files().isEmpty());
}

/// The window stands before the file has been checked: nothing is done with it all the same.
void StartTest::damaged_database_of_the_windows() {
    EmptyStand stand;
    const QByteArray good = new_database();
    stand.write(kDatabase, good.left(good.size() / 2));
    const QMap<QString, QByteArray> before = stand.files();
    stand.remote.environment.insert("QT_QPA_PLATFORM", "offscreen");
    stand.remote.start({"--open", "program"});
    QVERIFY(stand.remote.wait_for_error_lines(1));
    QTest::qWait(300);
    QCOMPARE(stand.remote.process().state(), QProcess::Running);
    stand.remote.send_signal(SIGTERM);
    const Ending ending = stand.remote.wait();
    QVERIFY2(ending.err.count(kDatabase.toLatin1()) == 1, ending.err.constData());
    QCOMPARE(ending.status, 128 + SIGTERM);
    QVERIFY2(stand.files() == before, "something was created or changed in the folder");
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::StartTest)
#include "start_test.moc"
