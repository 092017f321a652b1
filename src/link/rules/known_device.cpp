// SPDX-License-Identifier: GPL-3.0-or-later
#include "known_device.h"

#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QFile>

namespace m47 {
namespace {

bool same_node(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_rdev == other.st_rdev;
}

}  // namespace

void KnownDevice::forget() {
    if (node_ >= 0) ::close(node_);
    node_ = -1;
}

bool KnownDevice::is_the_same(int descriptor, const QString& path) {
    if (node_ < 0) return take(descriptor, path);
    struct stat opened {};
    struct stat kept {};
    if (::fstat(descriptor, &opened) != 0 || ::fstat(node_, &kept) != 0) return false;
    const bool removed = kept.st_nlink == 0 && taken_.st_nlink != 0;
    return !removed && same_node(opened, taken_) && description_of(opened) == description_;
}

/// Keeps the node without opening the device: its number is given to no other one as long as we
/// have it, and it tells when it was removed. Rights and times of it may change; they are the
/// user's.
bool KnownDevice::take(int descriptor, const QString& path) {
    struct stat opened {};
    node_ = ::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC);
    if (node_ >= 0 && ::fstat(descriptor, &opened) == 0 && ::fstat(node_, &taken_) == 0 &&
        same_node(opened, taken_)) {
        description_ = description_of(opened);
        return true;
    }
    forget();
    return false;
}

/// A node that somebody made by hand, as in a container, outlives its adapter; the system's
/// description of the adapter does not. 0 where there is none, as of a pseudo-terminal.
ino_t KnownDevice::description_of(const struct stat& node) const {
    const QString path = QStringLiteral("%1/dev/char/%2:%3")
                             .arg(sys_)
                             .arg(major(node.st_rdev))
                             .arg(minor(node.st_rdev));
    struct stat description {};
    if (::stat(QFile::encodeName(path).constData(), &description) != 0) return 0;
    return description.st_ino;
}

}  // namespace m47
