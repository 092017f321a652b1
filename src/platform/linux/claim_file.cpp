// SPDX-License-Identifier: GPL-3.0-or-later
#include "claim_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <utility>

namespace m47::platform {
namespace {

/// Between opening a claim and locking it, its owner may have removed it.
constexpr int kTries = 10;

/// Any user may come to claim the device after us, also in a folder with the sticky bit.
int open_claim(const QByteArray& path) {
    constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_CLOEXEC;
    int file = ::open(path.constData(), kFlags);
    if (file >= 0 || errno != ENOENT) return file;
    file = ::open(path.constData(), kFlags | O_CREAT | O_EXCL, 0666);
    if (file >= 0) static_cast<void>(::fchmod(file, 0666));
    return file;
}

struct flock whole_file() {
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    return range;
}

/// The process that has the claim; nothing once it has let go.
std::optional<RunningProcess> holder_of(int file) {
    struct flock range = whole_file();
    if (::fcntl(file, F_GETLK, &range) != 0 || range.l_type == F_UNLCK) return std::nullopt;
    return running_process(range.l_pid).value_or(RunningProcess{QString(), range.l_pid});
}

bool is_in_its_place(int file, const QByteArray& path) {
    struct stat opened {};
    struct stat present {};
    return ::fstat(file, &opened) == 0 && ::lstat(path.constData(), &present) == 0 &&
           opened.st_ino == present.st_ino && opened.st_dev == present.st_dev;
}

}  // namespace

ClaimFile::~ClaimFile() {
    release();
}

bool ClaimFile::take(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const int file = open_claim(name);
        if (file < 0 && errno == EEXIST) continue;
        if (file < 0) return false;
        struct flock range = whole_file();
        const bool locked = ::fcntl(file, F_SETLK, &range) == 0;
        if (locked && is_in_its_place(file, name)) {
            file_ = file;
            path_ = name;
            return true;
        }
        if (!locked) holder_ = holder_of(file);
        ::close(file);
        if (holder_) return false;
    }
    return false;
}

void ClaimFile::release() {
    holder_.reset();
    if (file_ < 0) return;
    ::unlink(path_.constData());
    ::close(std::exchange(file_, -1));
}

void ClaimFile::leave() {
    holder_.reset();
    if (file_ >= 0) ::close(std::exchange(file_, -1));
}

/// The number of a pseudo-terminal is given to the next one as soon as it is gone, while whoever
/// worked on the old one may not have noticed yet; when it was made tells the two apart.
std::optional<QString> name_of_device(const QString& path) {
    constexpr unsigned kFirstPseudoTerminal = 136;  // majors of the kernel's table
    constexpr unsigned kLastPseudoTerminal = 143;
    struct stat node {};
    if (::stat(QFile::encodeName(path).constData(), &node) != 0 || !S_ISCHR(node.st_mode))
        return std::nullopt;
    const unsigned kind = major(node.st_rdev);
    const QString name = QStringLiteral("%1-%2").arg(kind).arg(minor(node.st_rdev));
    if (kind < kFirstPseudoTerminal || kind > kLastPseudoTerminal) return name;
    return name + QStringLiteral("-%1.%2").arg(node.st_ctim.tv_sec).arg(node.st_ctim.tv_nsec);
}

}  // namespace m47::platform
