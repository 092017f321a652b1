// SPDX-License-Identifier: GPL-3.0-or-later
#include "store_file.h"

#include <QFileInfo>

#include "file_place.h"
#include "medium.h"
#include "new_file.h"
#include "site_schema.h"
#include "store_check.h"

namespace m47::sites {
namespace {

using Kind = StoreError::Kind;

StoreError error_of_making(const db::FileFault& fault, const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    Kind kind = Kind::unreadable;
    if (platform::is_full(fault.code())) kind = Kind::full;
    if (QFileInfo(folder).isDir() && platform::refuses_new_files(folder)) kind = Kind::read_only;
    return {kind, path, QString::fromStdString(fault.what())};
}

}  // namespace

std::optional<StoreError> make_site_file(const QString& path) {
    const QFileInfo about(path);
    if (about.exists() || about.isSymLink()) return fault_of_site_file(path);
    try {
        db::make_database_file(path, make_tables);
        return std::nullopt;
    } catch (const db::FileFault& fault) {
        return error_of_making(fault, path);
    } catch (const db::EngineFault& fault) {
        StoreError error = store_error_of(fault);
        error.path = path;
        return error;
    }
}

std::optional<StoreError> prepare_site_file(const QSqlDatabase& database, const QString& path) {
    for (const char* setting :
         {"PRAGMA foreign_keys = ON", "PRAGMA cell_size_check = ON", "PRAGMA synchronous = FULL"})
        db::Query(database, QString::fromUtf8(setting));
    if (auto fault = fault_of_lists(database, path)) return fault;
    db::Query(database, QStringLiteral("PRAGMA journal_mode = DELETE"));
    bring_up_to_date(database, migrations());
    return std::nullopt;
}

}  // namespace m47::sites
