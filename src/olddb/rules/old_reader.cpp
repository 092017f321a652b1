// SPDX-License-Identifier: GPL-3.0-or-later
#include "old_reader.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>

#include "jet_reader.h"
#include "old_stream.h"
#include "own_program.h"
#include "part.h"
#include "plain_file.h"
#include "schema.h"

namespace m47::olddb {
namespace {

constexpr int kLook = 20;                   // ms
constexpr qint64 kLargest = 2'147'483'648;  // no file of the old engine is larger
constexpr int kEngineAt = 4;
const QByteArray kEngineName("Standard Jet DB\0", 16);
constexpr int kVersionAt = 0x14;
constexpr char kJet3 = 0;
constexpr char kJet4 = 1;
constexpr qint64 kPage3 = 2048;
constexpr qint64 kPage4 = 4096;

using Failure = std::optional<OldFileError>;

/// What can be told without the library: it would take any file for one of the old engine.
Failure fault_of_start(const QString& path, platform::PlainFile& plain) {
    if (plain.fault() == platform::FileFault::too_long)
        return OldFileError{OldFileFault::damaged, path, {}};
    if (plain.fault() == platform::FileFault::missing)
        return OldFileError{OldFileFault::missing, path, plain.reason()};
    if (plain.fault() != platform::FileFault::none)
        return OldFileError{OldFileFault::unreadable, path, plain.reason()};
    QFile& file = plain.file();
    const QByteArray start = file.read(kVersionAt + 1);
    if (start.mid(kEngineAt, kEngineName.size()) != kEngineName || start.size() <= kVersionAt)
        return OldFileError{OldFileFault::no_jet, path, {}};
    const char version = start[kVersionAt];
    if (version != kJet3 && version != kJet4) return OldFileError{OldFileFault::no_jet, path, {}};
    const qint64 page = version == kJet3 ? kPage3 : kPage4;
    if (file.size() % page != 0)
        return OldFileError{OldFileFault::damaged, path,
                            QStringLiteral("%1 bytes").arg(file.size())};
    return std::nullopt;
}

/// A reader that is no longer wanted, also where the wait for it is given up.
class EndOfReader {
  public:
    explicit EndOfReader(QProcess& process) : process_(process) {}
    ~EndOfReader() {
        if (process_.state() == QProcess::NotRunning) return;
        process_.kill();
        process_.waitForFinished();
    }
    EndOfReader(const EndOfReader&) = delete;
    EndOfReader& operator=(const EndOfReader&) = delete;

  private:
    QProcess& process_;
};

/// Lets the process work to its end, its time or its size; what it handed over.
QByteArray output_of(QProcess& process, const std::function<void()>& idle,
                     const OldReaderLimits& limits) {
    const EndOfReader end(process);
    QByteArray output;
    const QDeadlineTimer deadline(limits.milliseconds);
    while (process.state() != QProcess::NotRunning && !deadline.hasExpired() &&
           output.size() <= limits.bytes) {
        process.waitForReadyRead(kLook);
        output += process.readAllStandardOutput();
        if (idle) idle();
    }
    // Ctrl+C ends the reader too: what it left then is not the file's fault.
    if (idle) idle();
    if (process.state() != QProcess::NotRunning) return {};
    return output + process.readAllStandardOutput();
}

bool holds_our_table(const OldDatabase& database) {
    return !database.tables.isEmpty();
}

}  // namespace

std::optional<OldDatabase> read_old_database(const QString& path, OldFileError& error,
                                             const std::function<void()>& idle,
                                             const OldReaderLimits& limits) {
    // Opened once for all that is read of it.
    platform::PlainFile plain(path, kLargest);
    if (const Failure failure = fault_of_start(path, plain)) {
        error = *failure;
        return std::nullopt;
    }
    if (Part part(kJetPart); !part.is_there()) {
        error = {OldFileFault::no_reader, part.path(), {}};
        return std::nullopt;
    }
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    // What was looked at here is what is read there, whatever happens to its name.
    platform::start_own_program(process, {QLatin1String(kReadOldDatabase)}, plain.file().handle());
    if (!process.waitForStarted()) {
        error = {OldFileFault::unreadable, path, process.errorString()};
        return std::nullopt;
    }
    const OldReading reading = reading_of_bytes(output_of(process, idle, limits));
    const auto* database = std::get_if<OldDatabase>(&reading);
    const bool ended_well = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (ended_well && database && holds_our_table(*database)) return *database;
    error = {OldFileFault::damaged, path, {}};
    if (ended_well && database) error.fault = OldFileFault::foreign;
    if (ended_well && !database) error.detail = std::get<QString>(reading);
    return std::nullopt;
}

}  // namespace m47::olddb
