// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace m47 {

/// The template for a test's temporary folder, in memory where the system has such a place, so that
/// a busy disk does not hold up a trace or a log in the middle of a timed exchange.
QString folder_template();

namespace wire {

/// The last question of an analog cycle.
inline const QString kLevel = QStringLiteral("LEVANL?");
/// A lone CR, which wakes the meter.
inline const QString kWakeUp = QString();

}  // namespace wire

/// What the meter received up to a CR, or sent as one answer.
struct TraceEntry {
    bool received = false;
    double first = 0;  ///< time of the first byte, monotonic, ms
    double last = 0;   ///< time of the last byte, ms
    QByteArray bytes;  ///< as on the wire, the CR included
};

/// A child process that ends with this object, its own children included, and with the test.
class ChildProcess {
  public:
    ChildProcess();
    virtual ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    QProcess& process() { return process_; }
    void send_signal(int number) const;
    /// Ends it at once, in the middle of whatever it does.
    void kill_now();

  private:
    QProcess process_;
};

/// A simulated meter.
class MeterProcess : public ChildProcess {
  public:
    /// Starts it with its link and its trace in `folder` and with `options`, and waits until its
    /// device is there. A meter that does not start ends the test program.
    explicit MeterProcess(const QString& folder, const QStringList& options = {});

    /// The path that stands for the meter's device.
    const QString& link() const { return link_; }

    /// Takes the device away, with the path that stands for it: the number of a pseudo-terminal is
    /// given to another meter next.
    void unplug();

    /// Every exchange so far. What the meter is just sending comes in only when it has been sent.
    QList<TraceEntry> trace() const;
    /// The commands received so far, each without its CR; a lone CR is an empty text.
    QStringList commands() const;
    /// The bytes of each answer that followed `command`.
    QList<QByteArray> answers_to(const QString& command) const;

    /// Waits until `command` has been received `times` times. False after a minute.
    bool wait_for_command(const QString& command, int times = 1) const;

  private:
    QString link_;
    QString trace_;
};

/// What the program left when it had ended.
struct Ending {
    int status = -1;  ///< 128 + signal number where a signal ended it, -1 where nothing did
    QByteArray out;
    QByteArray err;
    qint64 waited = 0;  ///< how long the end was waited for, ms
};

/// The program, on a machine without a display.
class RemoteProcess : public ChildProcess {
  public:
    /// It will work in `folder`; `runtime` is the private folder that desktops give to a session.
    RemoteProcess(const QString& folder, const QString& runtime);

    /// Its environment, to be changed before the start.
    QProcessEnvironment environment;

    /// True where M47_MEASURE_WITH=probe has `m47-probe` measure in place of `m47-remote`: what it
    /// says begins with its own name and is handed on as if the other had said it, and it is not
    /// asked for pictures.
    static bool is_probe();
    /// The name of the program that measures.
    static QString name();

    void start(const QStringList& arguments);
    /// Starts `line` of the shell, in which "$0" "$@" stands for the program and its arguments.
    void start_in_shell(const QString& line, const QStringList& arguments);

    /// Waits until it has written `count` whole lines on stdout. False after a minute, or when it
    /// has ended before that.
    bool wait_for_lines(int count);
    /// The same for stderr.
    bool wait_for_error_lines(int count);

    /// What it has written on stdout so far.
    const QByteArray& written() {
        collect();
        return out_;
    }

    /// Waits for its end, at most a minute; after that it is killed and the status is -1.
    Ending wait();
    Ending run(const QStringList& arguments);

  private:
    void launch(const QString& program, const QStringList& arguments);
    bool wait_until_written(const QByteArray& text, int lines);
    void collect();

    QByteArray out_;
    QByteArray err_;
};

/// A folder of its own with a meter on the line and the program in the folder "work" beside it.
class TestStand {
  public:
    /// The meter answers at once, unless `meter_options` say otherwise or it replays a recording.
    explicit TestStand(const QStringList& meter_options = {});

    QTemporaryDir folder{folder_template()};
    MeterProcess meter;
    RemoteProcess remote;

    /// A file of the program's folder.
    QString path(const QString& name) const;
    QByteArray content(const QString& name) const;

    /// The arguments of a measurement on this meter with a new database, `options` behind them.
    QStringList measuring(const QStringList& options) const;
    void start_measuring(const QStringList& options) { remote.start(measuring(options)); }
    Ending measure(const QStringList& options) { return remote.run(measuring(options)); }
};

/// A folder without a meter, for a program that does not get as far as the line.
class EmptyStand {
  public:
    EmptyStand();

    QTemporaryDir folder{folder_template()};
    RemoteProcess remote;

    QString path(const QString& name) const;
    /// Every file and folder in the program's folder by its relative path, with its content.
    QMap<QString, QByteArray> files() const;
    void write(const QString& name, const QByteArray& content) const;

    /// The arguments of a measurement that finds no device, `options` behind them.
    static QStringList measuring(const QStringList& options);
};

/// The fields of each line of `text`; a last line without its end counts as well.
QList<QStringList> rows_of(const QByteArray& text);

/// A text as a log holds it: one byte a character, each line ended by CR LF.
QByteArray as_log(const QByteArray& printed);

QByteArray content_of(const QString& path);

}  // namespace m47
