// SPDX-License-Identifier: GPL-3.0-or-later
#include "patient_output.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <algorithm>
#include <cerrno>

#include "medium.h"
#include "system_error.h"

namespace m47::platform {
namespace {

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

}  // namespace

PatientOutput::PatientOutput(int descriptor) : descriptor_(descriptor) {
    const int own = without_waiting(descriptor);
    own_ = own >= 0;
    if (own_) descriptor_ = own;
}

PatientOutput::~PatientOutput() {
    if (own_) ::close(descriptor_);
}

bool PatientOutput::Written::stalled() const {
    return error.value() == EAGAIN;
}

bool PatientOutput::Written::full() const {
    return is_full(error);
}

bool PatientOutput::wait_until_ready(int milliseconds) const {
    pollfd look{descriptor_, POLLOUT, 0};
    return ::poll(&look, 1, milliseconds) > 0;
}

PatientOutput::Written PatientOutput::write(QByteArrayView bytes) const {
    // A pipe that is ready takes as much at once.
    const auto length = static_cast<std::size_t>(std::min<qsizetype>(bytes.size(), PIPE_BUF));
    const ssize_t written = ::write(descriptor_, bytes.data(), length);
    if (written >= 0) return {written, {}};
    return errno == EINTR ? Written() : Written{0, last_error()};
}

}  // namespace m47::platform
