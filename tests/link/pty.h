// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <QByteArray>
#include <QString>
#include <array>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>

namespace m47::link {

/// A pseudo-terminal: what is written on its path comes out of master() and the other way round.
class Pty {
  public:
    Pty() {
        std::array<char, 128> path{};
        termios raw{};
        cfmakeraw(&raw);
        raw.c_cflag |= CS8 | CREAD;
        if (openpty(&master_, &slave_, path.data(), &raw, nullptr) != 0)
            throw std::runtime_error("no pseudo-terminal");
        path_ = QString::fromLocal8Bit(path.data());
    }
    ~Pty() { unplug(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    const QString& path() const { return path_; }
    int master() const { return master_; }
    /// Keeps the line alive while nobody else has it open.
    int slave() const { return slave_; }

    void feed(const QByteArray& bytes) const {
        for (qsizetype done = 0; done < bytes.size();) {
            const ssize_t count =
                write(master_, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
            if (count < 0) throw std::runtime_error("the pseudo-terminal takes nothing");
            done += count;
        }
    }

    /// What has come out within `milliseconds`, at least `least` bytes where there are as many.
    QByteArray take(qsizetype least, int milliseconds = 1000) const {
        QByteArray bytes;
        pollfd line{master_, POLLIN, 0};
        while (bytes.size() < least && poll(&line, 1, milliseconds) == 1) {
            std::array<char, 4096> piece{};
            const ssize_t count = read(master_, piece.data(), piece.size());
            if (count <= 0) break;
            bytes.append(piece.data(), count);
        }
        return bytes;
    }

    /// The device goes away, as an adapter that is pulled out does.
    void unplug() {
        if (master_ < 0) return;
        close(slave_);
        close(master_);
        master_ = slave_ = -1;
    }

  private:
    int master_ = -1;
    int slave_ = -1;
    QString path_;
};

/// A meter on a pseudo-terminal: answers each command as the test says.
class PtyMeter {
  public:
    using Answer = std::function<QByteArray(const QByteArray& command)>;

    PtyMeter(const Pty& pty, Answer answer)
        : pty_(pty), answer_(std::move(answer)), thread_([this] { run(); }) {}
    ~PtyMeter() {
        ending_ = true;
        thread_.join();
    }
    PtyMeter(const PtyMeter&) = delete;
    PtyMeter& operator=(const PtyMeter&) = delete;

  private:
    void run() {
        QByteArray line;
        while (!ending_) {
            line += pty_.take(1, 20);
            for (qsizetype end = line.indexOf('\r'); end >= 0; end = line.indexOf('\r')) {
                pty_.feed(answer_(line.left(end)));
                line.remove(0, end + 1);
            }
        }
    }

    const Pty& pty_;
    Answer answer_;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

/// The exit status (0 to 255) of `work` in a process of an ordinary user's: root's rights would
/// open what is shut for everybody else. -1 when the process could not be made.
inline int as_ordinary_user(const std::function<int()>& work) {
    constexpr uid_t kNobody = 65534;
    const pid_t child = fork();
    if (child == 0) {
        const bool root = geteuid() == 0;
        if (root && (setgroups(0, nullptr) != 0 || setresgid(kNobody, kNobody, kNobody) != 0 ||
                     setresuid(kNobody, kNobody, kNobody) != 0))
            _exit(255);
        _exit(work());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace m47::link
