// SPDX-License-Identifier: GPL-3.0-or-later
#include "table_backup.h"

#include <QDir>
#include <QFile>

#include "fault.h"
#include "logger_table.h"
#include "save_file.h"

namespace m47 {
namespace {

constexpr qsizetype kKept = 30;
const QString kBackupFolder = QStringLiteral("backup");
const QString kBackupFiles = QStringLiteral("logger-*.txt");
const QString kScratchFile = QStringLiteral("temp.dat");

[[noreturn]] void throw_file_fault(const QFileDevice& file) {
    throw Fault((file.fileName() + QStringLiteral(": ") + file.errorString()).toStdString());
}

/// A name that no file has yet and that sorts behind all older ones.
QString free_backup_name(const QDir& folder, QDateTime now) {
    for (;; now = now.addMSecs(1)) {
        const QString name = QStringLiteral("logger-%1.txt")
                                 .arg(now.toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")));
        if (!folder.exists(name)) return folder.filePath(name);
    }
}

/// A file that goes with this object.
class ScratchFile {
  public:
    explicit ScratchFile(const QString& path) : file_(path) {}
    ~ScratchFile() { file_.remove(); }
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
    QSaveFile file(free_backup_name(folder, now));
    const QByteArray bytes = table.toLatin1();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
        !put_in_place(file))
        throw_file_fault(file);
    const QStringList kept = folder.entryList({kBackupFiles}, QDir::Files, QDir::Name);
    for (qsizetype k = 0; k < kept.size() - kKept; ++k) folder.remove(kept[k]);
}

QStringList lines_through_file(const QString& base_dir, const QString& table) {
    ScratchFile file(base_dir + kScratchFile);
    file.write(table.toLatin1());
    return table_lines(QString::fromLatin1(file.read()));
}

}  // namespace m47
