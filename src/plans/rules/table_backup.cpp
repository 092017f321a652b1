// SPDX-License-Identifier: GPL-3.0-or-later
#include "table_backup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "fault.h"
#include "logger_table.h"
#include "save_file.h"

namespace m47 {
namespace {

constexpr qsizetype kKept = 30;
const QString kBackupFolder = QStringLiteral("backup");
// A wider pattern would take files away that the user has put there.
const QString kBackupFiles = QStringLiteral("^logger-\\d{8}-\\d{6}-\\d{3}\\.txt$");
const QString kScratchFile = QStringLiteral("temp.dat");

[[noreturn]] void throw_file_fault(const QFileDevice& file) {
    throw Fault((file.fileName() + QStringLiteral(": ") + file.errorString()).toStdString());
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

/// A file that goes with this object.
class ScratchFile {
  public:
    explicit ScratchFile(const QString& path) : file_(path) {}
    // By its name: an open file whose rest cannot be written does not let itself be removed.
    ~ScratchFile() { QFile::remove(file_.fileName()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    void write(const QByteArray& bytes) {
        if (!file_.open(QIODevice::WriteOnly) || file_.write(bytes) != bytes.size() ||
            !file_.flush())
            throw_file_fault(file_);
        file_.close();
    }

    QByteArray read() {
        if (!file_.open(QIODevice::ReadOnly)) throw_file_fault(file_);
        return file_.readAll();
    }

  private:
    QFile file_;
};

}  // namespace

void keep_table(const QString& base_dir, const QString& table, const QDateTime& now) {
    QDir folder(base_dir);
    if (!folder.mkpath(kBackupFolder) || !folder.cd(kBackupFolder))
        throw Fault(
            (folder.filePath(kBackupFolder) + QStringLiteral(": cannot be made")).toStdString());
    const QString path = free_backup_name(folder, now);
    const QString reason = write_whole_file(path, table.toLatin1());
    if (!reason.isEmpty()) throw Fault((path + QStringLiteral(": ") + reason).toStdString());
    trim_backups(folder, QFileInfo(path).fileName());
}

QStringList lines_through_file(const QString& base_dir, const QString& table) {
    ScratchFile file(base_dir + kScratchFile);
    file.write(table.toLatin1());
    return table_lines(QString::fromLatin1(file.read()));
}

}  // namespace m47
