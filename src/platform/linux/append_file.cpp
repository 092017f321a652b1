// SPDX-License-Identifier: GPL-3.0-or-later
#include "append_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <utility>

#include "descriptor_io.h"
#include "medium.h"
#include "system_error.h"

namespace m47::platform {
namespace {

int open_to_append(const QByteArray& name) {
    constexpr int kFlags = O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = ::open(name.constData(), O_RDWR | kFlags, 0666);
    if (descriptor >= 0 || errno != EACCES) return descriptor;
    // One that may be written but not read still takes its lines.
    return ::open(name.constData(), O_WRONLY | kFlags, 0666);
}

}  // namespace

AppendFile::AppendFile(const QString& path)
    : path_(path), written_(open_to_append(QFile::encodeName(path))) {
    if (written_ >= 0) kept_ = ::fcntl(written_, F_DUPFD_CLOEXEC, 0);
    if (kept_ < 0) fault_ = last_error();
}

AppendFile::~AppendFile() {
    static_cast<void>(close_written());
    if (kept_ >= 0) ::close(kept_);
}

std::optional<qint64> AppendFile::length() const {
    struct stat about {};
    if (::fstat(kept_, &about) != 0 || !S_ISREG(about.st_mode)) return {};
    return about.st_size;
}

std::optional<char> AppendFile::last_byte(qint64 length) const {
    char last = 0;
    if (length <= 0 || ::pread(kept_, &last, 1, length - 1) != 1) return {};
    return last;
}

std::error_code AppendFile::append(std::string_view bytes, bool is_new) {
    if (const auto error = write_all(written_, bytes)) return error;
    if (const auto error = sync_content(written_)) return error;
    // Not every file system can; the lines are in the file either way.
    if (is_new) static_cast<void>(sync_folder(QFileInfo(path_).path()));
    return close_written();
}

std::error_code AppendFile::close_written() {
    if (written_ < 0 || ::close(std::exchange(written_, -1)) == 0) return {};
    return last_error();
}

std::error_code AppendFile::cut_to(qint64 length) {
    return ::ftruncate(kept_, length) == 0 ? std::error_code() : last_error();
}

}  // namespace m47::platform
