// SPDX-License-Identifier: GPL-3.0-or-later
#include "plain_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace m47::platform {
namespace {

// A pipe, or a serial line, in the place of a file must not hold the program up.
constexpr int kReadFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

FileFault fault_of_opening(int error) {
    switch (error) {
        case ELOOP:  // a link that is not followed
        case ENXIO:  // a socket
            return FileFault::not_plain;
        case ENOENT:
        case ENOTDIR:
            return FileFault::missing;
        default:
            return FileFault::unreadable;
    }
}

bool refused_by_system(FileFault fault) {
    return fault == FileFault::missing || fault == FileFault::unreadable;
}

}  // namespace

bool something_else_at(const QString& path, Links links) {
    const std::filesystem::path place(QFile::encodeName(path).toStdString());
    std::error_code error;
    const std::filesystem::file_status about = links == Links::followed
                                                   ? std::filesystem::status(place, error)
                                                   : std::filesystem::symlink_status(place, error);
    return !error && !std::filesystem::is_regular_file(about);
}

PlainFile::PlainFile(const QString& path, qint64 longest, Links links) {
    const int flags = kReadFlags | (links == Links::refused ? O_NOFOLLOW : 0);
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags);
    const int error = errno;
    fault_ = descriptor < 0 ? fault_of_opening(error) : fault_of_place(descriptor, longest);
    if (refused_by_system(fault_)) reason_ = qt_error_string(error);
}

/// Keeps the descriptor as the file, or closes it.
FileFault PlainFile::fault_of_place(int descriptor, qint64 longest) {
    file_.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    struct stat about {};
    FileFault fault = FileFault::none;
    if (::fstat(descriptor, &about) != 0 || !S_ISREG(about.st_mode))
        fault = FileFault::not_plain;
    else if (about.st_size > longest)
        fault = FileFault::too_long;
    if (fault != FileFault::none) file_.close();
    return fault;
}

FileReading read_plain_file(const QString& path, qint64 longest, Links links) {
    PlainFile plain(path, longest, links);
    FileReading reading{{}, plain.fault(), plain.reason()};
    if (reading.fault != FileFault::none) return reading;
    // It may grow meanwhile.
    reading.bytes = plain.file().read(longest);
    if (plain.file().error() == QFileDevice::NoError) return reading;
    reading.fault = FileFault::unreadable;
    reading.reason = plain.file().errorString();
    return reading;
}

}  // namespace m47::platform
