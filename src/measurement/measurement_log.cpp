// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "file_lock.h"
#include "log_lines.h"
#include "plain_file.h"

namespace m47 {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;
// The page of such a log takes twice as much memory.
constexpr qint64 kLongestLog = qint64{1024} * 1024 * 1024;

// A name may be that of a pipe or of a serial device: neither may hold the program up.
constexpr int kNeverWait = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

class OpenFile {
  public:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() { close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int get() const { return descriptor_; }
    bool opened() const { return descriptor_ >= 0; }

    /// False when the system reports only now that something was not written.
    bool close() { return !opened() || ::close(std::exchange(descriptor_, -1)) == 0; }

    /// A second descriptor of the same opening.
    int copy() const { return fcntl(descriptor_, F_DUPFD_CLOEXEC, 0); }

    /// The length in bytes; nothing for what is not a plain file, such as a pipe or a device.
    std::optional<off_t> length() const {
        struct stat status {};
        if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return {};
        return status.st_size;
    }

  private:
    int descriptor_;
};

ssize_t read_some(int descriptor, char* into, std::size_t room) {
    for (;;) {
        const ssize_t got = ::read(descriptor, into, room);
        if (got >= 0 || errno != EINTR) return got;
    }
}

void read_lines(int descriptor, PageStore& store) {
    std::vector<char> block(kBlockBytes);
    std::size_t held = 0;
    for (;;) {
        const ssize_t got = read_some(descriptor, block.data() + held, block.size() - held);
        if (got < 0) return;
        held += static_cast<std::size_t>(got);
        const auto taken = take_log_lines({block.data(), held}, got == 0, store);
        if (got == 0 || !taken || (*taken == 0 && held == block.size())) return;
        held -= *taken;
        std::memmove(block.data(), block.data() + *taken, held);
    }
}

int open_to_append(const QByteArray& name) {
    constexpr int kFlags = O_APPEND | O_CREAT | kNeverWait;
    const int descriptor = ::open(name.constData(), O_RDWR | kFlags, 0666);
    if (descriptor >= 0 || errno != EACCES) return descriptor;
    // A log that may be written but not read still takes its lines.
    return ::open(name.constData(), O_WRONLY | kFlags, 0666);
}

bool breaks_off_within_a_line(int descriptor, off_t length) {
    char last = '\n';
    if (length > 0 && pread(descriptor, &last, 1, length - 1) != 1) return false;
    return last != '\n' && last != '\r';
}

bool write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (written == 0 || errno != EINTR)
            return false;
    }
    return true;
}

void sync_folder_of(const QByteArray& name) {
    const QByteArray folder = QFile::encodeName(QFileInfo(QFile::decodeName(name)).path());
    const OpenFile opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Not every file system can; the lines are in the file either way.
    if (opened.opened()) static_cast<void>(::fsync(opened.get()));
}

/// Writes the file out to the medium, and its name in the folder where it is new. A file system
/// that knows no such thing has no more to give.
bool reaches_medium(int descriptor, const QByteArray& name, bool is_new) {
    while (::fdatasync(descriptor) != 0) {
        if (errno == EINVAL || errno == ENOTSUP) break;
        if (errno != EINTR) return false;
    }
    if (is_new) sync_folder_of(name);
    return true;
}

}  // namespace

void MeasurementLog::open(const QString& path, PageModel& page) {
    if (path.isEmpty()) return;
    path_ = path;
    log_open_ = true;
    reason_.clear();
    PlainFile plain(path, kLongestLog);
    if (plain.fault() != FileFault::none) return;
    PageStore store;
    read_lines(plain.file().handle(), store);
    page.replace(std::move(store));
}

bool MeasurementLog::append(std::string_view line) {
    if (!log_open_) return failed(QStringLiteral("no log is open"));
    const QByteArray name = QFile::encodeName(path_);
    OpenFile file(open_to_append(name));
    if (!file.opened()) return failed(qt_error_string(errno));
    // Stays open when the file is closed, and the lock with it.
    const OpenFile kept(file.copy());
    if (!kept.opened()) return failed(qt_error_string(errno));
    // Another program may log to the same file: what is taken back must not be a line of its own.
    const FileLock alone(file.get());
    const auto length = file.length();
    if (!length) return failed(QStringLiteral("not a plain file"));

    std::string record;
    if (breaks_off_within_a_line(file.get(), *length)) record += "\r\n";
    record.append(line).append("\r\n");
    // A full disk may show in a write that comes back short, or no sooner than at the closing. On
    // the medium: a row that was shown is not to go with the power.
    if (write_all(file.get(), record) && reaches_medium(file.get(), name, *length == 0) &&
        file.close()) {
        reason_.clear();
        return true;
    }
    const QString reason = qt_error_string(errno);
    if (alone.refused()) return failed(reason + QStringLiteral("; a part of the line may be left"));
    if (ftruncate(kept.get(), *length) == 0) return failed(reason);
    return failed(reason + QStringLiteral("; a part of the line is left: ") +
                  qt_error_string(errno));
}

bool MeasurementLog::failed(const QString& reason) {
    reason_ = reason;
    return false;
}

}  // namespace m47
