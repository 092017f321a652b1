// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_claim.h"

#include <QDir>
#include <QFileInfo>

namespace m47::sites {
namespace {

const QString kBefore = QStringLiteral("sites.visit-");

/// The same one for all links that lead to the file of sites.
QDir folder_of(const QString& store) {
    const QString path = QFileInfo(store).canonicalFilePath();
    return QFileInfo(path.isEmpty() ? store : path).absoluteDir();
}

QString file_of(const QString& store, const QUuid& visit) {
    return folder_of(store).filePath(kBefore + visit.toString(QUuid::WithoutBraces));
}

}  // namespace

bool VisitClaim::take(const QUuid& visit) {
    // Taken twice, the end of the first would let go of both.
    file_.leave();
    return file_.take(file_of(store_, visit)) || !file_.holder();
}

std::vector<QUuid> VisitClaim::left(const QString& store) {
    std::vector<QUuid> left;
    for (const QString& name : folder_of(store).entryList({kBefore + u'*'}, QDir::Files)) {
        const QUuid visit(name.mid(kBefore.size()));
        platform::ClaimFile file;
        if (visit.isNull() || !file.take(file_of(store, visit))) continue;
        left.push_back(visit);
        file.leave();
    }
    return left;
}

bool VisitClaim::is_kept_elsewhere(const QString& store, const QUuid& visit) {
    const QString path = file_of(store, visit);
    platform::ClaimFile file;
    if (!QFileInfo::exists(path)) return false;
    if (!file.take(path)) return file.holder().has_value();
    file.leave();
    return false;
}

void VisitClaim::forget(const QString& store, const QUuid& visit) {
    platform::ClaimFile file;
    if (file.take(file_of(store, visit))) file.release();
}

}  // namespace m47::sites
