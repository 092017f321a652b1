// SPDX-License-Identifier: GPL-3.0-or-later
#include "process_support.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace m47 {
namespace {

constexpr int kPatience = 60000;         // ms
constexpr unsigned long kLookAgain = 5;  // ms

/// The meter's trace writes what cannot be printed, and "<", as a name or a number in "<>".
QByteArray unescaped(const QByteArray& text) {
    static const QMap<QByteArray, char> kNames{
        {"CR", '\r'}, {"LF", '\n'}, {"TAB", '\t'}, {"LT", '<'}};
    QByteArray bytes;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != '<') {
            bytes += text[at];
            continue;
        }
        const qsizetype end = text.indexOf('>', at);
        const QByteArray name = text.mid(at + 1, end - at - 1);
        bytes += kNames.contains(name)
                     ? kNames[name]
                     : static_cast<char>(static_cast<uchar>(name.toInt(nullptr, 16)));
        at = end;
    }
    return bytes;
}

QString folder_in(const QTemporaryDir& folder, const QString& name) {
    const QString path = folder.filePath(name);
    constexpr auto kPrivate = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkpath(path) || !QFile::setPermissions(path, kPrivate))
        qFatal("cannot make %s", qPrintable(path));
    return path;
}

QString measuring_program() {
    return RemoteProcess::is_probe() ? QStringLiteral(PROBE_PROGRAM)
                                     : QStringLiteral(REMOTE_PROGRAM);
}

/// Without what needs windows.
QStringList takeable(QStringList arguments) {
    const qsizetype picture = arguments.indexOf(QStringLiteral("--screenshot"));
    if (RemoteProcess::is_probe() && picture >= 0) arguments.remove(picture, 2);
    return arguments;
}

/// A line of the probe that begins with another name than its own stands out.
QByteArray as_said_by_both(const QByteArray& said) {
    if (!RemoteProcess::is_probe()) return said;
    QByteArrayList lines = said.split('\n');
    for (QByteArray& line : lines) {
        line.replace("m47-remote: ", "NOT THE PROBE: ");
        if (line.startsWith("m47-probe: ")) line.replace(0, 11, "m47-remote: ");
    }
    return lines.join('\n');
}

/// A recording has a pace of its own.
QStringList at_once(const QStringList& meter_options) {
    if (meter_options.contains(QStringLiteral("--replay"))) return meter_options;
    return QStringList{QStringLiteral("--baud-factor"), QStringLiteral("0")} + meter_options;
}

}  // namespace

QString folder_template() {
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) +
           QStringLiteral("/m47-e2e-XXXXXX");
}

ChildProcess::ChildProcess() {
    process_.setChildProcessModifier([] {
        // As from a shell, whatever the test itself was started under.
        for (int number = 1; number < NSIG; ++number) ::signal(number, SIG_DFL);
        sigset_t none;
        ::sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
}

ChildProcess::~ChildProcess() {
    kill_now();
}

void ChildProcess::send_signal(int number) const {
    // What has ended has no number any more, and 0 would be the test itself.
    if (process_.processId() > 0) ::kill(static_cast<pid_t>(process_.processId()), number);
}

void ChildProcess::kill_now() {
    if (process_.state() == QProcess::NotRunning) return;
    ::kill(static_cast<pid_t>(-process_.processId()), SIGKILL);
    process_.waitForFinished(kPatience);
}

MeterProcess::MeterProcess(const QString& folder, const QStringList& options)
    : link_(folder + QStringLiteral("/meter")), trace_(folder + QStringLiteral("/meter.trace")) {
    process().setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process().start(
        QStringLiteral(METER_PROGRAM),
        QStringList{QStringLiteral("--link"), link_, QStringLiteral("--trace"), trace_} + options);
    // The link is there before the path of the device is printed.
    while (!process().canReadLine())
        if (!process().waitForReadyRead(kPatience)) qFatal("the meter does not start");
}

void MeterProcess::unplug() {
    QFile::remove(link_);
    kill_now();
}

QList<TraceEntry> MeterProcess::trace() const {
    QList<TraceEntry> entries;
    const QByteArray text = content_of(trace_);
    // A line that is just being written is left for the next look.
    const QList<QByteArray> lines = text.left(text.lastIndexOf('\n')).split('\n');
    for (const QByteArray& line : lines) {
        // The head, and what became of the line, are no bytes.
        if (!line.startsWith("RX ") && !line.startsWith("TX ")) continue;
        const QList<QByteArray> words = line.split(' ');
        entries.append({words[0] == "RX", words[1].toDouble(), words[2].toDouble(),
                        unescaped(QByteArrayList(words.mid(3)).join(' '))});
    }
    return entries;
}

QStringList MeterProcess::commands() const {
    QStringList commands;
    for (const TraceEntry& entry : trace())
        if (entry.received) commands += QString::fromLatin1(entry.bytes.chopped(1));
    return commands;
}

QList<QByteArray> MeterProcess::answers_to(const QString& command) const {
    QList<QByteArray> answers;
    bool asked = false;
    for (const TraceEntry& entry : trace()) {
        if (!entry.received && asked) answers += entry.bytes;
        asked = entry.received && entry.bytes == command.toLatin1() + '\r';
    }
    return answers;
}

bool MeterProcess::wait_for_command(const QString& command, int times) const {
    const QDeadlineTimer deadline(kPatience);
    while (commands().count(command) < times) {
        if (deadline.hasExpired()) return false;
        QThread::msleep(kLookAgain);
    }
    return true;
}

RemoteProcess::RemoteProcess(const QString& folder, const QString& runtime)
    : environment(QProcessEnvironment::systemEnvironment()) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    // Nothing of the user's settings takes part, and none of them is changed.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), runtime);
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process().setWorkingDirectory(folder);
}

bool RemoteProcess::is_probe() {
    return qgetenv("M47_MEASURE_WITH") == "probe";
}

QString RemoteProcess::name() {
    return QFileInfo(measuring_program()).fileName();
}

void RemoteProcess::start(const QStringList& arguments) {
    launch(measuring_program(), takeable(arguments));
}

void RemoteProcess::start_in_shell(const QString& line, const QStringList& arguments) {
    launch(QStringLiteral("/bin/sh"),
           QStringList{QStringLiteral("-c"), line, measuring_program()} + takeable(arguments));
}

void RemoteProcess::launch(const QString& program, const QStringList& arguments) {
    out_.clear();
    err_.clear();
    process().setProcessEnvironment(environment);
    process().start(program, arguments);
    if (!process().waitForStarted(kPatience)) qFatal("the program does not start");
}

void RemoteProcess::collect() {
    out_ += process().readAllStandardOutput();
    err_ += process().readAllStandardError();
}

bool RemoteProcess::wait_until_written(const QByteArray& text, int lines) {
    const QDeadlineTimer deadline(kPatience);
    for (;;) {
        collect();
        if (text.count('\n') >= lines) return true;
        if (process().state() == QProcess::NotRunning || deadline.hasExpired()) return false;
        process().waitForFinished(kLookAgain);
    }
}

bool RemoteProcess::wait_for_lines(int count) {
    return wait_until_written(out_, count);
}

bool RemoteProcess::wait_for_error_lines(int count) {
    return wait_until_written(err_, count);
}

Ending RemoteProcess::wait() {
    QElapsedTimer timer;
    timer.start();
    const bool ended =
        process().state() == QProcess::NotRunning || process().waitForFinished(kPatience);
    const qint64 waited = timer.elapsed();
    collect();
    int status = -1;
    if (ended)
        status = process().exitCode() + (process().exitStatus() == QProcess::CrashExit ? 128 : 0);
    else
        kill_now();
    return {status, out_, as_said_by_both(err_), waited};
}

Ending RemoteProcess::run(const QStringList& arguments) {
    start(arguments);
    return wait();
}

TestStand::TestStand(const QStringList& meter_options)
    : meter(folder.path(), at_once(meter_options)),
      remote(folder_in(folder, QStringLiteral("work")),
             folder_in(folder, QStringLiteral("runtime"))) {}

QString TestStand::path(const QString& name) const {
    return folder.filePath(QStringLiteral("work/") + name);
}

QByteArray TestStand::content(const QString& name) const {
    return content_of(path(name));
}

QStringList TestStand::measuring(const QStringList& options) const {
    return QStringList{QStringLiteral("--create-database"),
                       QStringLiteral("--measure"),
                       QStringLiteral("--on-port"),
                       QStringLiteral("1"),
                       QStringLiteral("--port"),
                       QStringLiteral("1=") + meter.link()} +
           options;
}

EmptyStand::EmptyStand()
    : remote(folder_in(folder, QStringLiteral("work")),
             folder_in(folder, QStringLiteral("runtime"))) {}

QString EmptyStand::path(const QString& name) const {
    return folder.filePath(QStringLiteral("work/") + name);
}

QMap<QString, QByteArray> EmptyStand::files() const {
    QMap<QString, QByteArray> files;
    const QDir work(path(QString()));
    QDirIterator entries(work.path(),
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString entry = entries.next();
        const QString name = work.relativeFilePath(entry);
        files.insert(name, QFileInfo(entry).isDir() ? QByteArray() : content_of(entry));
    }
    return files;
}

void EmptyStand::write(const QString& name, const QByteArray& content) const {
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

QStringList EmptyStand::measuring(const QStringList& options) {
    return QStringList{QStringLiteral("--measure"), QStringLiteral("--on-port"),
                       QStringLiteral("1"), QStringLiteral("--port"),
                       QStringLiteral("1=/dev/no-such-meter")} +
           options;
}

QList<QStringList> rows_of(const QByteArray& text) {
    QList<QStringList> rows;
    QStringList lines = QString::fromUtf8(text).split(u'\n');
    if (lines.constLast().isEmpty()) lines.removeLast();
    for (const QString& line : std::as_const(lines)) rows += line.split(u'\t');
    return rows;
}

QByteArray as_log(const QByteArray& printed) {
    return QString::fromUtf8(printed).toLatin1().replace("\n", "\r\n");
}

QByteArray content_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace m47
