// SPDX-License-Identifier: GPL-3.0-or-later
#include "file_place.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstdio>

#include "system_error.h"

namespace m47::platform {

std::optional<bool> same_file(const QString& one, const QString& other) {
    struct stat first {};
    struct stat second {};
    if (::stat(QFile::encodeName(one).constData(), &first) != 0 ||
        ::stat(QFile::encodeName(other).constData(), &second) != 0)
        return std::nullopt;
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::optional<quint64> file_number(const QString& path) {
    struct stat about {};
    if (::stat(QFile::encodeName(path).constData(), &about) != 0) return std::nullopt;
    return about.st_ino;
}

bool refuses_new_files(const QString& folder) {
    return ::access(QFile::encodeName(folder).constData(), W_OK) != 0 &&
           (errno == EACCES || errno == EROFS);
}

std::error_code fault_of_writing_in(const QString& folder, const QByteArray& bytes) {
    const QByteArray probe = QFile::encodeName(folder + QStringLiteral("/.m47-remote-%1"))
                                 .replace("%1", QByteArray::number(::getpid()));
    const int file = ::open(probe.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) return last_error();
    std::error_code fault;
    if (::write(file, bytes.constData(), static_cast<std::size_t>(bytes.size())) != bytes.size())
        fault = last_error();
    ::close(file);
    ::unlink(probe.constData());
    return fault;
}

std::error_code make_new_file(const QString& path) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
    const int descriptor = ::open(QFile::encodeName(path).constData(), kFlags, 0666);
    if (descriptor < 0) return last_error();
    ::close(descriptor);
    return {};
}

std::error_code put_in_free_place(const QString& path, const QString& place) {
    const QByteArray from = QFile::encodeName(path);
    const QByteArray to = QFile::encodeName(place);
    int result =
        ::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE);
    // Some network file systems know no such renaming.
    if (result != 0 && (errno == EINVAL || errno == ENOSYS))
        result = ::link(from.constData(), to.constData());
    return result == 0 ? std::error_code() : last_error();
}

}  // namespace m47::platform
