// SPDX-License-Identifier: GPL-3.0-or-later
#include "table_backup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "fault.h"
#include "file_lock.h"
#include "logger_table.h"
#include "medium.h"
#include "save_file.h"

namespace m47::plans {
namespace {

constexpr qsizetype kKept = 30;
// More than any answer of the meter.
constexpr qint64 kLongestTable = qint64{8} * 1024 * 1024;
const QString kBackupFolder = QStringLiteral("backup");
// A wider pattern would take files away that the user has put there.
const QString kBackupFiles = QStringLiteral("^logger-\\d{8}-\\d{6}-\\d{3}\\.txt$");
const QString kScratchFile = QStringLiteral("temp.dat");

constexpr Bilingual kFolderInUse{
    "Another program is at work in the same folder just now. Nothing was changed: try again.",
    "Un altro programma sta lavorando nella stessa cartella. Nulla è stato modificato: riprovare."};

/// The folder's files are ours alone as long as it lives.
class OwnFolder {
  public:
    explicit OwnFolder(const QString& path) : lock_(path) {
        if (lock_.refused()) throw Fault(kFolderInUse);
    }

  private:
    platform::FileLock lock_;
};

[[noreturn]] void throw_file_fault(const QString& path, const QString& reason) {
    throw Fault((path + QStringLiteral(": ") + reason).toStdString());
}

/// A name that no file has yet.
QString free_backup_name(const QDir& folder, QDateTime now) {
    for (;; now = now.addMSecs(1)) {
        const QString name = QStringLiteral("logger-%1.txt")
                                 .arg(now.toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")));
        if (!folder.exists(name)) return folder.filePath(name);
    }
}

/// Takes the oldest files away by the dates in their names, but never `fresh`: where the clock went
/// back it has not the latest of them.
void trim_backups(QDir& folder, const QString& fresh) {
    static const QRegularExpression kDated(kBackupFiles);
    QStringList others = folder.entryList(QDir::Files, QDir::Name).filter(kDated);
    others.removeAll(fresh);
    for (qsizetype k = 0; k <= others.size() - kKept; ++k) folder.remove(others[k]);
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

void keep_table(const QString& base_dir, const QString& table, const QDateTime& now) {
    QDir folder(base_dir);
    if (!folder.mkpath(kBackupFolder) || !folder.cd(kBackupFolder))
        throw Fault(
            (folder.filePath(kBackupFolder) + QStringLiteral(": cannot be made")).toStdString());
    if (const std::error_code lost = platform::sync_folder(base_dir))
        throw_file_fault(base_dir, qt_error_string(lost.value()));
    // A name that is free may else be taken before it is used.
    const OwnFolder alone(folder.path());
    const QString path = free_backup_name(folder, now);
    const QString reason = write_whole_file(path, table.toLatin1(), platform::Links::refused);
    if (!reason.isEmpty()) throw_file_fault(path, reason);
    trim_backups(folder, QFileInfo(path).fileName());
}

QStringList lines_through_file(const QString& base_dir, const QString& table) {
    // Until it is gone again: another window in the folder uses the same name.
    const OwnFolder alone(base_dir);
    ScratchFile file(base_dir + kScratchFile);
    file.write(table.toLatin1());
    return table_lines(QString::fromLatin1(file.read()));
}

}  // namespace m47::plans
