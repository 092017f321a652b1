// SPDX-License-Identifier: GPL-3.0-or-later
#include "kept_copy.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include "fault.h"
#include "medium.h"
#include "save_file.h"

namespace m47 {
namespace {

constexpr qsizetype kKept = 30;
const QString kBackupFolder = QStringLiteral("backup");

constexpr Bilingual kFolderInUse{
    "Another program is at work in the same folder just now. Nothing was changed: try again.",
    "Un altro programma sta lavorando nella stessa cartella. Nulla è stato modificato: riprovare."};

/// A name that no file has yet.
QString free_name(const QDir& folder, const CopyKind& kind, QDateTime now) {
    for (;; now = now.addMSecs(1)) {
        const QString date = now.toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
        const QString name = QStringLiteral("%1-%2.%3")
                                 .arg(QLatin1String(kind.stem), date, QLatin1String(kind.suffix));
        if (!folder.exists(name)) return folder.filePath(name);
    }
}

/// A wider pattern would take files away that the user has put there.
QRegularExpression dated(const CopyKind& kind) {
    return QRegularExpression(QStringLiteral("^%1-\\d{8}-\\d{6}-\\d{3}\\.%2$")
                                  .arg(QLatin1String(kind.stem), QLatin1String(kind.suffix)));
}

/// Takes the oldest files away by the dates in their names, but never `fresh`: where the clock went
/// back it has not the latest of them.
void trim(QDir& folder, const CopyKind& kind, const QString& fresh) {
    QStringList others = folder.entryList(QDir::Files, QDir::Name).filter(dated(kind));
    others.removeAll(fresh);
    for (qsizetype k = 0; k <= others.size() - kKept; ++k) folder.remove(others[k]);
}

[[noreturn]] void throw_fault(const QString& path, const QString& reason) {
    throw Fault((path + QStringLiteral(": ") + reason).toStdString());
}

}  // namespace

OwnFolder::OwnFolder(const QString& path) : lock_(path) {
    if (lock_.refused()) throw Fault(kFolderInUse);
}

QString keep_copy(const QString& base_dir, const CopyKind& kind, const QByteArray& bytes,
                  const QDateTime& now) {
    QDir folder(base_dir);
    if (!folder.mkpath(kBackupFolder) || !folder.cd(kBackupFolder))
        throw_fault(folder.filePath(kBackupFolder), QStringLiteral("cannot be made"));
    if (const std::error_code lost = platform::sync_folder(base_dir))
        throw_fault(base_dir, qt_error_string(lost.value()));
    // A name that is free may else be taken before it is used.
    const OwnFolder alone(folder.path());
    const QString path = free_name(folder, kind, now);
    const QString reason = write_whole_file(path, bytes, platform::Links::refused);
    if (!reason.isEmpty()) throw_fault(path, reason);
    trim(folder, kind, QFileInfo(path).fileName());
    return path;
}

}  // namespace m47
