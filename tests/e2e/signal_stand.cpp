// SPDX-License-Identifier: GPL-3.0-or-later
#include "signal_stand.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <functional>

namespace m47 {
namespace {

constexpr int kPatience = 60000;  // ms
const QString kDatabase = QStringLiteral("VKDM47_03.mdb");

bool wait_until(const std::function<bool()>& true_now) {
    const QDeadlineTimer deadline(kPatience);
    while (!true_now()) {
        if (deadline.hasExpired()) return false;
        QThread::msleep(5);
    }
    return true;
}

QStringList late(const QString& command, const QString& seconds = QStringLiteral("1")) {
    return {"--fault-on", command, "--fault", "late:1", "--late", seconds};
}

}  // namespace

QList<WindowWork> window_works() {
    const QStringList realtime{"trigger realtime"};
    const QStringList single{"trigger realtime", "click meas_statea_0", "trigger single_acq"};
    const QStringList pass{"trigger realtime", "trigger group", "click meas_statea_0",
                           "trigger multiple_acq"};
    const QStringList timed{"trigger realtime", "click meas_statea_0", "trigger start",
                            "choose time_delay 0", "click cmdstart"};
    const auto upload = [](const char* key) {
        return QStringList{"trigger program", QStringLiteral("trigger ") + key, "press Yes"};
    };
    const QStringList download{"trigger download", "type tmpfile logs.tmp", "click cmddownload"};
    const QStringList restore{"trigger asl",
                              "trigger cmdsaveall",
                              "file FOLDER/all.s19",
                              "press Ok",
                              "pick listastr 2",
                              "click cmddelstr",
                              "pick listastr 4",
                              "click cmddelstr",
                              "trigger cmdrestoreall",
                              "file FOLDER/all.s19",
                              "accept"};
    const QString none = "no exchange with the meter was running";
    const QString sent = "programs sent by the upload: %1 of 5, commands answered OK: \\d+";
    return {
        {"idle", {}, realtime, {}, 1, none, {}},
        {"a box is open", {}, {"trigger program", "trigger nuovo"}, {}, 0, none, {}},
        {"start",
         late("ATTEN?"),
         {},
         "ATTEN?",
         1,
         "the meter on port 1 answers, it was not asked for its version",
         "ATTEN?"},
        {"measurement", late("LEVANL?"), single, "LEVANL?", 1,
         "the measurement was whole, rows on the page: 1", "LEVANL?"},
        {"measurement broken off",
         late("MEASURE"),
         single,
         "MEASURE",
         2,
         "a measurement was broken off and has no row, rows on the page: 0",
         {}},
        {"pass over a plan",
         {},
         pass,
         "LEVANL?",
         2,
         "(the measurement was whole|a run was between two measurements), rows on the page: 2",
         {}},
        {"timed run",
         {},
         timed,
         "LEVANL?",
         2,
         "(the measurement was whole|a run was between two measurements), rows on the page: [23]",
         {}},
        {"upload, added", {}, upload("accoda"), "PROGRAM 02", 1, sent.arg(2), {}},
        {"upload, anew", {}, upload("nuovo"), "PROGRAM 03", 1, sent.arg(3), {}},
        {"upload, before its programs", late("DELETE 00"), upload("nuovo"), "DELETE 00", 1,
         "programs sent by the upload: none of 5", "DELETE 00"},
        {"download", QStringList{"--logger-bytes", "20000"} + late("DATAOUT"), download, "DATAOUT",
         1, "the download is whole in LOGS.TMP, bytes: \\d+", "DATAOUT"},
        {"logs deleted",
         late("DATADELALL"),
         {"trigger download", "click cmdclearall"},
         "DATADELALL",
         1,
         "nothing was sent behind the command DATADELALL",
         "DATADELALL"},
        {"satellites read",
         late("MASTERCOPY"),
         {"trigger asl"},
         "MASTERCOPY",
         1,
         "the satellites were being read, nothing was changed",
         "MASTERCOPY"},
        {"slot emptied",
         {},
         {"trigger asl", "pick listastr 2", "click cmddelstr"},
         "ASLDEL 2",
         1,
         "slot 02 was sent whole",
         {}},
        {"slots restored", late("ASLNAME 2"), restore, "ASLNAME 2 ", 1,
         "slots written by the restore: 1 of 2, what was there before is in .*/all-before-.*s19",
         "ASLNAME 2 "},
    };
}

void make_plan_of_five(TestStand& stand) {
    if (stand.remote.run(EmptyStand::measuring({"--create-database"})).status != 3)
        qFatal("no database");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "plan");
        database.setDatabaseName(stand.path(kDatabase));
        if (!database.open()) qFatal("no database");
        QSqlQuery query(database);
        const auto run = [&](const QString& statement) {
            if (!query.exec(statement)) qFatal("%s", qPrintable(query.lastError().text()));
        };
        for (const char* table : {"programmi", "configurazione", "gruppo"})
            run(QStringLiteral("DELETE FROM %1").arg(table));
        run("INSERT INTO gruppo (nome) VALUES ('ROOF')");
        run("INSERT INTO configurazione (nome, loc_osc1) VALUES ('ROOF', 9750)");
        for (int number = 1; number <= 5; ++number)
            run(QStringLiteral("INSERT INTO programmi (nome, pg_num, frequenza, loc_osc, loc_osc0, "
                               "sat_ad, lnb_volt, K22, diseqc_cmd, diseqc_cmd2, monitor_state, "
                               "logger_state, logger_pos, lev_min, lev_max) VALUES ('ROOF', '00%1',"
                               " %2, 1, 0, 0, 2, 1, 5, 73, 1, %3, '%1', '5', '120')")
                    .arg(number)
                    .arg(1000 + 100 * number)
                    .arg(number % 2));
    }
    QSqlDatabase::removeDatabase("plan");
}

QStringList cells_of(const QString& path, const QString& statement) {
    QStringList rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "look");
        database.setDatabaseName(path);
        database.setConnectOptions("QSQLITE_OPEN_READONLY");
        QSqlQuery query(database);
        if (!database.open()) return {database.lastError().text()};
        query = QSqlQuery(statement, database);
        while (query.next()) {
            QStringList cells;
            for (int k = 0; !query.isNull(k) && query.value(k).isValid(); ++k)
                cells += query.value(k).toString();
            rows += cells.join(u'|');
        }
        if (query.lastError().isValid()) rows = QStringList{query.lastError().text()};
    }
    QSqlDatabase::removeDatabase("look");
    return rows;
}

QByteArray told(const Ending& ending) {
    QByteArray text = ending.err;
    return text.replace("This plugin does not support propagateSizeHints()\n", "");
}

bool wait_until_stopped(RemoteProcess& remote, bool stopped) {
    const QString about = QStringLiteral("/proc/%1/stat").arg(remote.process().processId());
    return wait_until([&] {
        const QByteArray text = content_of(about);
        return (text.mid(text.lastIndexOf(')') + 2, 1) == "T") == stopped;
    });
}

QStringList locks_of(qint64 id, const QString& node) {
    struct stat about {};
    if (::stat(QFile::encodeName(node).constData(), &about) != 0) return {"no " + node};
    const QString claim = QStringLiteral("m47-remote-%1-%2-%3.%4.lock")
                              .arg(major(about.st_rdev))
                              .arg(minor(about.st_rdev))
                              .arg(about.st_ctim.tv_sec)
                              .arg(about.st_ctim.tv_nsec);
    QStringList found;
    for (const char* folder : {"/run/lock", "/tmp"})
        for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden))
            if (file.fileName() == claim ||
                (file.fileName().startsWith("LCK") &&
                 content_of(file.filePath()).trimmed().startsWith(QByteArray::number(id) + '\n')))
                found += file.filePath();
    return found;
}

WindowStand::WindowStand(const QStringList& meter_options) : stand(meter_options) {
    make_plan_of_five(stand);
    QProcessEnvironment& environment = stand.remote.environment;
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("QT_PLUGIN_PATH", HAND_FOLDER);
    environment.insert("QT_QPA_GENERIC_PLUGINS", "m47hand");
    environment.insert("HOME", stand.path(QString()));
}

void WindowStand::start(const QStringList& more) {
    stand.remote.start(QStringList{"--port", "1=" + stand.meter.link(), "--on-port", "1"} + more);
}

void WindowStand::order(const QStringList& orders) {
    // The first thing a window does; the hand comes behind it.
    if (!orders.isEmpty() && !wait_for("VER?")) qFatal("no meter was found");
    for (QString line : orders)
        stand.remote.process().write(line.replace("FOLDER/", stand.path(QString())).toUtf8() +
                                     '\n');
    stand.remote.process().waitForBytesWritten(kPatience);
}

bool WindowStand::wait_until_ready() {
    ++told_ready_;
    return wait_until([this] {
        stand.remote.process().waitForReadyRead(0);
        return stand.remote.written().count("ready\n") >= told_ready_;
    });
}

bool WindowStand::wait_for(const QString& words, int times) {
    return wait_until([&] {
        return stand.meter.commands()
                   .filter(QRegularExpression('^' + QRegularExpression::escape(words)))
                   .size() >= times;
    });
}

QString WindowStand::damage() {
    const QStringList sound = cells_of(stand.path(kDatabase), "PRAGMA integrity_check");
    if (sound != QStringList{"ok"}) return "the database: " + sound.join(u' ');
    const QString programs =
        cells_of(stand.path(kDatabase), "SELECT count(*) FROM programmi").join(u' ');
    if (programs != QLatin1String("5")) return programs + " programs";
    const QStringList hidden =
        QDir(stand.path(QString()))
            .entryList({".*", "*.part", "*-journal", "*.??????"}, QDir::Files | QDir::Hidden);
    if (!hidden.isEmpty()) return "left behind: " + hidden.join(u' ');
    return {};
}

}  // namespace m47
