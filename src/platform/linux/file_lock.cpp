// SPDX-License-Identifier: GPL-3.0-or-later
#include "file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>
#include <cerrno>

namespace m47::platform {
namespace {

constexpr qint64 kLongestMs = 2000;
constexpr unsigned long kEveryMs = 1;

}  // namespace

FileLock::FileLock(int descriptor) {
    take(descriptor);
}

FileLock::FileLock(const QString& path)
    : folder_(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_ >= 0) take(folder_);
}

/// A lock goes with the last descriptor of its file.
FileLock::~FileLock() {
    if (folder_ >= 0) ::close(folder_);
}

void FileLock::take(int descriptor) {
    const QDeadlineTimer limit(kLongestMs);
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        refused_ = errno == EWOULDBLOCK;
        if ((!refused_ && errno != EINTR) || limit.hasExpired()) return;
        QThread::msleep(kEveryMs);
    }
    refused_ = false;
}

}  // namespace m47::platform
