// SPDX-License-Identifier: GPL-3.0-or-later
#include "table_backup.h"

#include <QFile>

#include "fault.h"
#include "kept_copy.h"
#include "logger_table.h"
#include "plain_file.h"
#include "save_file.h"

namespace m47::plans {
namespace {

// More than any answer of the meter.
constexpr qint64 kLongestTable = qint64{8} * 1024 * 1024;
const QString kScratchFile = QStringLiteral("temp.dat");

[[noreturn]] void throw_file_fault(const QString& path, const QString& reason) {
    throw Fault((path + QStringLiteral(": ") + reason).toStdString());
}

/// The program's scratch file, taken away with this object.
class ScratchFile {
  public:
    explicit ScratchFile(const QString& path) : path_(path) {}
    ~ScratchFile() {
        if (written_) QFile::remove(path_);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    void write(const QByteArray& bytes) {
        const QString reason = write_whole_file(path_, bytes, platform::Links::refused);
        if (!reason.isEmpty()) throw_file_fault(path_, reason);
        written_ = true;
    }

    QByteArray read() {
        const platform::FileReading reading =
            platform::read_plain_file(path_, kLongestTable, platform::Links::refused);
        if (reading.fault != platform::FileFault::none) throw_file_fault(path_, reading.reason);
        return reading.bytes;
    }

  private:
    QString path_;
    bool written_ = false;  ///< what stands there else is not ours to take away
};

}  // namespace

QString keep_table(const QString& base_dir, const QString& table, const QDateTime& now) {
    return keep_copy(base_dir, kTableCopy, table.toLatin1(), now);
}

QStringList lines_through_file(const QString& base_dir, const QString& table) {
    // Until it is gone again: another window in the folder uses the same name.
    const OwnFolder alone(base_dir);
    ScratchFile file(base_dir + kScratchFile);
    file.write(table.toLatin1());
    return table_lines(QString::fromLatin1(file.read()));
}

}  // namespace m47::plans
