// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTest>

/// The program under test, ended at the latest with the test.
class Program {
  public:
    explicit Program(const QStringList& arguments) {
        process_.start(METER_PROGRAM, arguments);
        if (process_.waitForReadyRead(10000)) device_ = process_.readLine().trimmed();
    }

    QByteArray device() const { return device_; }
    QProcess& process() { return process_; }

    void signal(int number) { ::kill(static_cast<pid_t>(process_.processId()), number); }

    /// Ends the program as a user does and gives its exit status.
    int end() {
        process_.terminate();
        const bool ended = process_.waitForFinished(10000);
        return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }

  private:
    QProcess process_;
    QByteArray device_;
};

/// An opening of the device, closed at the end of its life.
class Opening {
  public:
    explicit Opening(const QByteArray& path) : descriptor_(open(path.constData(), flags)) {}
    ~Opening() { close(descriptor_); }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

    int descriptor() const { return descriptor_; }

    void send(const QByteArray& bytes) const {
        QCOMPARE(write(descriptor_, bytes.constData(), static_cast<size_t>(bytes.size())),
                 static_cast<ssize_t>(bytes.size()));
    }

    /// What arrives until the text ends with `end`, or until the time in ms is over.
    QByteArray receive(const QByteArray& end, int limit) const {
        QByteArray bytes;
        QElapsedTimer timer;
        timer.start();
        while (!bytes.endsWith(end) && timer.elapsed() < limit) {
            pollfd input{descriptor_, POLLIN, 0};
            if (poll(&input, 1, 20) > 0) {
                char buffer[4096];
                const ssize_t count = read(descriptor_, buffer, sizeof buffer);
                if (count <= 0) {
                    hung_up_ = true;
                    return bytes;
                }
                bytes.append(buffer, static_cast<qsizetype>(count));
            }
        }
        return bytes;
    }

    QByteArray ask(const QByteArray& command) const {
        send(command + '\r');
        return receive("OK\r", 10000);
    }

    bool hung_up() const { return hung_up_; }

  private:
    static constexpr int flags = O_RDWR | O_NOCTTY;
    int descriptor_;
    mutable bool hung_up_ = false;
};

inline QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
