// SPDX-License-Identifier: GPL-3.0-or-later
// What a probe costs: the time from its start to the first byte on the line, its resident memory
// while it measures a plan, both against a bare program with a serial port, and the processor it
// uses between two passes.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "figure.h"
#include "willing_engine.h"

namespace {

constexpr int kStarts = 15;
constexpr int kPatience = 60'000;  // ms
constexpr int kSettled = 1'000;    // ms, behind the last row
constexpr int kPrograms = 2;
constexpr int kPasses = 3;    // behind which it is as it will be for days
constexpr double kIdle = 10;  // seconds between two passes that are looked at
constexpr double kMostMilliseconds = 50;
constexpr double kMostMebibytes = 16;
constexpr double kMostOfAProcessor = 0.005;
constexpr double kMostTimesTheBareStart = 3.5;
constexpr double kMostTimesItsMemory = 1.6;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// A line without a meter: what a program sends is only seen to come.
class SilentLine {
  public:
    SilentLine() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (grantpt(master_) != 0 || unlockpt(master_) != 0) qFatal("no pseudo-terminal");
        device_ = QString::fromLocal8Bit(ptsname(master_));
        // Held open, or the line counts as hung up until the program opens it.
        slave_ = ::open(qPrintable(device_), O_RDWR | O_NOCTTY);
        termios raw{};
        tcgetattr(slave_, &raw);
        cfmakeraw(&raw);
        tcsetattr(slave_, TCSANOW, &raw);
    }
    ~SilentLine() {
        ::close(slave_);
        ::close(master_);
    }
    SilentLine(const SilentLine&) = delete;
    SilentLine& operator=(const SilentLine&) = delete;

    const QString& device() const { return device_; }
    bool wait_for_byte() const {
        pollfd wanted{master_, POLLIN, 0};
        return poll(&wanted, 1, kPatience) == 1;
    }

  private:
    int master_;
    int slave_ = -1;
    QString device_;
};

/// Milliseconds from the start of `program` to its first byte; below 0 where none came.
double first_byte(const QString& program, const QStringList& options) {
    const SilentLine line;
    QStringList arguments = options;
    arguments.replaceInStrings(QStringLiteral("DEVICE"), line.device());
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    process.start(program, arguments);
    const bool came = process.waitForStarted() && line.wait_for_byte();
    const double ms = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    process.kill();
    process.waitForFinished();
    return came ? ms : -1;
}

QByteArray of_process(qint64 process, const char* file) {
    QFile content(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(file)));
    return content.open(QIODevice::ReadOnly) ? content.readAll() : QByteArray();
}

double resident_mebibytes(qint64 process) {
    for (const QByteArray& line : of_process(process, "status").split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).simplified().split(' ').constFirst().toDouble() / 1024;
    return 0;
}

/// Seconds of a processor that it has used so far, its own and the system's for it.
double used_seconds(qint64 process) {
    // To the nanosecond, unlike "stat".
    return of_process(process, "schedstat").split(' ').constFirst().toDouble() / 1e9;
}

bool start(QProcess& process, const QString& program, const QStringList& arguments) {
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    return process.waitForStarted();
}

bool wait_for_line(QProcess& process) {
    while (!process.canReadLine())
        if (!process.waitForReadyRead(kPatience)) return false;
    return true;
}

/// What is imported waits for a technician's tick.
bool monitor_all(const QString& path) {
    const QString name = QStringLiteral("plan");
    bool done = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path);
        done = database.open() &&
               QSqlQuery(database).exec(QStringLiteral("UPDATE programmi SET monitor_state = 1"));
    }
    QSqlDatabase::removeDatabase(name);
    return done;
}

/// A work folder whose plan R has two analog programs.
bool make_plan(const QString& folder) {
    const QString table = folder + QStringLiteral("/r.txt");
    QFile file(table);
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write("S 11778000 V 27500000 3/4\nS 12071000 H 27500000 3/4\n");
    file.close();
    QProcess import;
    import.start(QStringLiteral(REMOTE_PROGRAM),
                 {QStringLiteral("--directory"), folder, QStringLiteral("--create-database"),
                  QStringLiteral("--import-plan"), QStringLiteral("R=") + table});
    if (!import.waitForFinished() || import.exitCode() != 0) return false;
    return monitor_all(folder + QStringLiteral("/VKDM47_03.mdb"));
}

struct Cost {
    double mebibytes = 0;
    double of_a_processor = 0;
};

/// False where they do not come in time.
bool take_rows(QProcess& process, int rows) {
    for (int row = 0; row < rows; ++row) {
        if (!wait_for_line(process)) return false;
        process.readLine();
    }
    return true;
}

/// What the probe costs that measures the plan, with `more` options; nothing where it does not come
/// to that.
bool measure_cost(const QString& folder, Cost& cost, const QStringList& more = {}) {
    QProcess meter;
    const QString device = folder + QStringLiteral("/meter");
    if (!start(meter, QStringLiteral(METER_PROGRAM),
               {QStringLiteral("--baud-factor"), QStringLiteral("0"), QStringLiteral("--link"),
                device}) ||
        !wait_for_line(meter))
        return false;
    QProcess probe;
    QStringList arguments{QStringLiteral("--directory"), folder,
                          QStringLiteral("--on-port"),   QStringLiteral("1"),
                          QStringLiteral("--port"),      QStringLiteral("1=") + device,
                          QStringLiteral("--plan"),      QStringLiteral("R"),
                          QStringLiteral("--passes"),    QStringLiteral("0"),
                          QStringLiteral("--every"),     QStringLiteral("30"),
                          QStringLiteral("--log"),       QStringLiteral("r.log"),
                          QStringLiteral("--reconnect"), QStringLiteral("--full-tune")};
    arguments += more;
    const bool measures = start(probe, QStringLiteral(PROBE_PROGRAM), arguments) &&
                          take_rows(probe, kPasses * kPrograms);
    if (measures) {
        QThread::msleep(kSettled);
        const qint64 process = probe.processId();
        const double before = used_seconds(process);
        QThread::msleep(static_cast<unsigned long>(kIdle * 1000));
        cost = {resident_mebibytes(process), (used_seconds(process) - before) / kIdle};
    }
    probe.terminate();
    probe.waitForFinished();
    meter.terminate();
    meter.waitForFinished();
    return measures;
}

double bare_mebibytes() {
    const SilentLine line;
    QProcess process;
    double mebibytes = 0;
    if (start(process, QStringLiteral(PROBE_BARE), {line.device()}) && line.wait_for_byte()) {
        QThread::msleep(200);
        mebibytes = resident_mebibytes(process.processId());
    }
    process.kill();
    process.waitForFinished();
    return mebibytes;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    if (!make_plan(folder.path())) return 1;
    const QStringList arguments{QStringLiteral("--directory"), folder.path(),
                                QStringLiteral("--on-port"),   QStringLiteral("1"),
                                QStringLiteral("--port"),      QStringLiteral("1=DEVICE"),
                                QStringLiteral("--plan"),      QStringLiteral("R")};
    std::vector<double> probe;
    std::vector<double> bare;
    // By turns, so that what else runs weighs on both alike.
    for (int k = 0; k < kStarts; ++k) {
        probe.push_back(first_byte(QStringLiteral(PROBE_PROGRAM), arguments));
        bare.push_back(first_byte(QStringLiteral(PROBE_BARE), {QStringLiteral("DEVICE")}));
        if (probe.back() < 0 || bare.back() < 0) return 1;
    }
    Cost cost;
    Cost publishing;
    const WillingEngine engine;
    const QString address = QStringLiteral("http://127.0.0.1:%1/write").arg(engine.port());
    const double bare_memory = bare_mebibytes();
    if (bare_memory <= 0 || !measure_cost(folder.path(), cost) ||
        !measure_cost(folder.path(), publishing, {QStringLiteral("--publish"), address}))
        return 1;
    std::printf("probe  %6.1f ms to the first byte, %5.1f MiB resident, %.3f %% of a processor\n",
                median(probe), cost.mebibytes, cost.of_a_processor * 100);
    std::printf("probe that publishes        %5.1f MiB resident, %.3f %% of a processor\n",
                publishing.mebibytes, publishing.of_a_processor * 100);
    std::printf("bare   %6.1f ms to the first byte, %5.1f MiB resident\n", median(bare),
                bare_memory);
    const char* const against = "bare QCoreApplication with a serial port";
    bench::print_figure("probe: start to the first byte", median(probe) / median(bare),
                        kMostTimesTheBareStart, against);
    bench::print_figure("probe: resident memory", cost.mebibytes / bare_memory, kMostTimesItsMemory,
                        against);
    bench::print_figure("probe: start to the first byte", median(probe) / kMostMilliseconds, 1,
                        "50 ms");
    bench::print_figure("probe: resident memory", cost.mebibytes / kMostMebibytes, 1, "16 MiB");
    bench::print_figure("probe that publishes: resident memory",
                        publishing.mebibytes / kMostMebibytes, 1, "16 MiB");
    bench::print_figure("probe: processor between passes", cost.of_a_processor / kMostOfAProcessor,
                        1, "0.5 % of one");
    return 0;
}
