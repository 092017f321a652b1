// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_log.h"

#include <cstring>
#include <optional>
#include <vector>

#include "append_file.h"
#include "descriptor_io.h"
#include "file_lock.h"
#include "log_lines.h"
#include "plain_file.h"

namespace m47::measurement {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;
// The page of such a log takes twice as much memory.
constexpr qint64 kLongestLog = qint64{1024} * 1024 * 1024;

void read_lines(int descriptor, PageStore& store) {
    std::vector<char> block(kBlockBytes);
    std::size_t held = 0;
    for (;;) {
        const qint64 got =
            platform::read_some(descriptor, block.data() + held, block.size() - held);
        if (got < 0) return;
        held += static_cast<std::size_t>(got);
        const auto taken = take_log_lines({block.data(), held}, got == 0, store);
        if (got == 0 || !taken || (*taken == 0 && held == block.size())) return;
        held -= *taken;
        std::memmove(block.data(), block.data() + *taken, held);
    }
}

bool breaks_off_within_a_line(const platform::AppendFile& file, qint64 length) {
    const std::optional<char> last = file.last_byte(length);
    return last && *last != '\n' && *last != '\r';
}

/// What is told of a line that failed with `error`, after what came of it has been taken back.
QString taken_back(platform::AppendFile& file, qint64 length, bool shared,
                   const std::error_code& error) {
    const QString reason = qt_error_string(error.value());
    if (shared) return reason + QStringLiteral("; a part of the line may be left");
    const std::error_code left = file.cut_to(length);
    if (!left) return reason;
    return reason + QStringLiteral("; a part of the line is left: ") +
           qt_error_string(left.value());
}

}  // namespace

void MeasurementLog::open(const QString& path, PageModel& page) {
    if (path.isEmpty()) return;
    path_ = path;
    log_open_ = true;
    reason_.clear();
    platform::PlainFile plain(path, kLongestLog);
    if (plain.fault() != platform::FileFault::none) return;
    PageStore store;
    read_lines(plain.file().handle(), store);
    page.replace(std::move(store));
}

bool MeasurementLog::append(std::string_view line) {
    if (!log_open_) return failed(QStringLiteral("no log is open"));
    platform::AppendFile file(path_);
    if (file.fault()) return failed(qt_error_string(file.fault().value()));
    // Another program may log to the same file: what is taken back must not be a line of its own.
    const platform::FileLock alone(file.descriptor());
    const std::optional<qint64> length = file.length();
    if (!length) return failed(QStringLiteral("not a plain file"));

    std::string record;
    if (breaks_off_within_a_line(file, *length)) record += "\r\n";
    record.append(line).append("\r\n");
    // A full disk may show in a write that comes back short, or no sooner than at the closing. On
    // the medium: a row that was shown is not to go with the power.
    const std::error_code error = file.append(record, *length == 0);
    if (error) return failed(taken_back(file, *length, alone.refused(), error));
    reason_.clear();
    return true;
}

bool MeasurementLog::failed(const QString& reason) {
    reason_ = reason;
    return false;
}

}  // namespace m47::measurement
