// SPDX-License-Identifier: GPL-3.0-or-later
#include "known_device.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QFile>
#include <utility>

namespace m47::platform {
namespace {

bool same_node(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_rdev == other.st_rdev;
}

/// A node that somebody made by hand, as in a container, outlives its adapter; the system's
/// description of the adapter, in the folder `sys`, does not. 0 where there is none, as of a
/// pseudo-terminal.
ino_t description_of(const struct stat& node, const QString& sys) {
    const QString path = QStringLiteral("%1/dev/char/%2:%3")
                             .arg(sys)
                             .arg(major(node.st_rdev))
                             .arg(minor(node.st_rdev));
    struct stat description {};
    if (::stat(QFile::encodeName(path).constData(), &description) != 0) return 0;
    return description.st_ino;
}

}  // namespace

/// Keeps the node without opening the device: its number is given to no other one as long as we
/// have it, and it tells when it was removed. Rights and times of it may change; they are the
/// user's.
struct KnownDevice::Node {
    explicit Node(const QString& path)
        : descriptor(::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC)) {}
    ~Node() {
        if (descriptor >= 0) ::close(descriptor);
    }
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    int descriptor;
    struct stat taken {};
    ino_t description = 0;
};

KnownDevice::KnownDevice(QString sys) : sys_(std::move(sys)) {}

KnownDevice::~KnownDevice() = default;

void KnownDevice::forget() {
    node_.reset();
}

bool KnownDevice::is_the_same(int descriptor, const QString& path) {
    if (!node_) return take(descriptor, path);
    struct stat opened {};
    struct stat kept {};
    if (::fstat(descriptor, &opened) != 0 || ::fstat(node_->descriptor, &kept) != 0) return false;
    const bool removed = kept.st_nlink == 0 && node_->taken.st_nlink != 0;
    return !removed && same_node(opened, node_->taken) &&
           description_of(opened, sys_) == node_->description;
}

bool KnownDevice::take(int descriptor, const QString& path) {
    auto node = std::make_unique<Node>(path);
    struct stat opened {};
    if (node->descriptor < 0 || ::fstat(descriptor, &opened) != 0 ||
        ::fstat(node->descriptor, &node->taken) != 0 || !same_node(opened, node->taken))
        return false;
    node->description = description_of(opened, sys_);
    node_ = std::move(node);
    return true;
}

}  // namespace m47::platform
