// SPDX-License-Identifier: GPL-3.0-or-later
#include "medium.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>

#include "system_error.h"

namespace m47::platform {
namespace {

std::error_code sync_by(int (*call)(int), int descriptor) {
    while (call(descriptor) != 0) {
        if (errno == EINVAL || errno == ENOTSUP) break;
        if (errno != EINTR) return last_error();
    }
    return {};
}

int open_to_sync(const QString& path, int flags) {
    return ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
}

std::error_code sync_and_close(int descriptor) {
    const std::error_code error = sync_file(descriptor);
    ::close(descriptor);
    return error;
}

}  // namespace

std::error_code sync_file(int descriptor) {
    return sync_by(::fsync, descriptor);
}

std::error_code sync_content(int descriptor) {
    return sync_by(::fdatasync, descriptor);
}

std::error_code sync_file_at(const QString& path) {
    const int descriptor = open_to_sync(path, O_RDWR);
    return descriptor < 0 ? last_error() : sync_and_close(descriptor);
}

std::error_code sync_folder(const QString& folder) {
    const int descriptor = open_to_sync(folder, O_RDONLY | O_DIRECTORY);
    return descriptor < 0 ? std::error_code() : sync_and_close(descriptor);
}

bool is_full(const std::error_code& error) {
    return error.value() == ENOSPC || error.value() == EDQUOT;
}

}  // namespace m47::platform
