// SPDX-License-Identifier: GPL-3.0-or-later
#include "row_output.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <algorithm>
#include <cerrno>

namespace m47 {
namespace {

constexpr qsizetype kMostPending = qsizetype{1024} * 1024;
constexpr int kWaitSlice = 100;  // ms; how late a wish to stop is seen

/// The same pipe or terminal behind a descriptor that never waits. The flag is not set on the
/// given one: other programs share that.
int without_waiting(int descriptor) {
    struct stat about {};
    const bool may_stall =
        ::fstat(descriptor, &about) == 0 && (S_ISFIFO(about.st_mode) || S_ISCHR(about.st_mode));
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (!may_stall || flags < 0 || (flags & O_ACCMODE) == O_RDONLY) return -1;
    const QByteArray name = "/proc/self/fd/" + QByteArray::number(descriptor);
    return ::open(name.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

const QString kStalledReader = QStringLiteral("its reader has stalled");

bool is_full(int error) {
    return error == ENOSPC || error == EDQUOT;
}

}  // namespace

RowOutput::RowOutput(int descriptor) : descriptor_(descriptor) {
    const int own = without_waiting(descriptor);
    own_descriptor_ = own >= 0;
    if (own_descriptor_) descriptor_ = own;
}

RowOutput::~RowOutput() {
    if (own_descriptor_) ::close(descriptor_);
}

void RowOutput::write(const QByteArray& line) {
    if (closed_) return;
    write_pending();
    if (pending_.size() + line.size() > kMostPending)
        lose();
    else
        pending_ += line;
    write_pending();
}

void RowOutput::write_pending() {
    trouble_.clear();
    while (!pending_.isEmpty() && trouble_.isEmpty()) {
        if (!wait_until_ready(0)) return stall(kStalledReader);
        // A pipe that is ready takes as much at once.
        const auto length =
            static_cast<std::size_t>(std::min<qsizetype>(pending_.size(), PIPE_BUF));
        const ssize_t written = ::write(descriptor_, pending_.constData(), length);
        if (written >= 0)
            pending_.remove(0, written);
        else
            take_error(errno);
    }
}

void RowOutput::take_error(int error) {
    if (error == EINTR) return;
    if (error == EAGAIN) return stall(kStalledReader);
    // A disk may have room again later.
    if (is_full(error)) return stall(qt_error_string(error));
    trouble_ = qt_error_string(error);
    closed_ = true;
    pending_.clear();
    lose();
}

bool RowOutput::wait_until_ready(int milliseconds) const {
    pollfd look{descriptor_, POLLOUT, 0};
    return ::poll(&look, 1, milliseconds) > 0;
}

void RowOutput::finish(double seconds, const std::function<bool()>& told_to_stop) {
    const QDeadlineTimer deadline(static_cast<qint64>(seconds * 1000));
    if (!closed_) write_pending();
    while (trouble_ == kStalledReader && !told_to_stop() && !deadline.hasExpired())
        if (wait_until_ready(kWaitSlice)) write_pending();
    if (!pending_.isEmpty()) lose();
}

void RowOutput::stall(const QString& reason) {
    trouble_ = reason;
    if (!stalled_ && on_remark)
        on_remark(QStringLiteral("stdout takes no rows now, the run goes on: %1").arg(reason));
    stalled_ = true;
}

void RowOutput::lose() {
    if (!lost_ && on_remark)
        on_remark(QStringLiteral("not every row went to stdout: %1").arg(trouble_));
    lost_ = true;
}

}  // namespace m47
