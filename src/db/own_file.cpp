// SPDX-License-Identifier: GPL-3.0-or-later
#include "own_file.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include "database_check.h"
#include "file_place.h"
#include "medium.h"
#include "new_file.h"

namespace m47::db {
namespace {

using Kind = OwnFileError::Kind;

// Where the two numbers stand in the first bytes of a file of the engine.
constexpr qsizetype kVersionAt = 60;
constexpr qsizetype kApplicationAt = 68;
constexpr qsizetype kHeaderBytes = 100;

std::optional<OwnFileError> fault_of_header(const QString& path, const OwnFileMark& mark) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return OwnFileError{Kind::unreadable, path, file.errorString()};
    const QByteArray header = file.read(kHeaderBytes);
    if (header.size() < kHeaderBytes) return OwnFileError{Kind::damaged, path, {}};
    const auto number_at = [&](qsizetype place) {
        return qFromBigEndian<std::uint32_t>(header.constData() + place);
    };
    if (number_at(kApplicationAt) != mark.application) return OwnFileError{Kind::foreign, path, {}};
    const std::uint32_t version = number_at(kVersionAt);
    if (version <= mark.version) return std::nullopt;
    return OwnFileError{Kind::newer, path,
                        QStringLiteral("%1 > %2").arg(version).arg(mark.version)};
}

OwnFileError error_of_making(const FileFault& fault, const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    Kind kind = Kind::unreadable;
    if (platform::is_full(fault.code())) kind = Kind::full;
    if (QFileInfo(folder).isDir() && platform::refuses_new_files(folder)) kind = Kind::read_only;
    return {kind, path, QString::fromStdString(fault.what())};
}

}  // namespace

std::optional<OwnFileError> fault_of_own_file(const QString& path, const OwnFileMark& mark) {
    if (const auto fault = fault_of_file(path)) return own_file_error(*fault);
    return fault_of_header(path, mark);
}

std::optional<OwnFileError> make_own_file(
    const QString& path, const OwnFileMark& mark,
    const std::function<void(const QSqlDatabase& database)>& fill) {
    const QFileInfo about(path);
    if (about.exists() || about.isSymLink()) return fault_of_own_file(path, mark);
    try {
        make_database_file(path, fill);
        return std::nullopt;
    } catch (const FileFault& fault) {
        return error_of_making(fault, path);
    } catch (const EngineFault& fault) {
        OwnFileError error = own_file_error(fault);
        error.path = path;
        return error;
    }
}

}  // namespace m47::db
