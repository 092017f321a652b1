// SPDX-License-Identifier: GPL-3.0-or-later
#include "store_check.h"

#include <QFile>
#include <QtEndian>

#include "database_check.h"
#include "site_schema.h"

namespace m47::sites {
namespace {

using Kind = StoreError::Kind;

// Where the two numbers stand in the first bytes of a file of the engine.
constexpr qsizetype kVersionAt = 60;
constexpr qsizetype kApplicationAt = 68;
constexpr qsizetype kHeaderBytes = 100;

Kind kind_of(db::DatabaseFault fault) {
    using enum db::DatabaseFault;
    switch (fault) {
        case read_only:
        case no_permission:
            return Kind::read_only;
        case moved:
            return Kind::moved;
        case old_engine:
        case foreign:
        case table_missing:
            return Kind::foreign;
        case damaged:
        case index_damaged:
            return Kind::damaged;
        case locked:
        case crowded:
        case changing:
            return Kind::locked;
        case full:
            return Kind::full;
        case missing:
        case unreadable:
        case io_error:
        case cannot_open:
            return Kind::unreadable;
        default:
            return Kind::other;
    }
}

StoreError store_error_of(const db::DatabaseError& error) {
    return {kind_of(error.fault), error.path, error.detail};
}

std::uint32_t number_at(const QByteArray& header, qsizetype place) {
    return qFromBigEndian<std::uint32_t>(header.constData() + place);
}

std::optional<StoreError> fault_of_header(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return StoreError{Kind::unreadable, path, file.errorString()};
    const QByteArray header = file.read(kHeaderBytes);
    if (header.size() < kHeaderBytes) return StoreError{Kind::damaged, path, {}};
    if (number_at(header, kApplicationAt) != kApplicationId)
        return StoreError{Kind::foreign, path, {}};
    const std::uint32_t version = number_at(header, kVersionAt);
    if (version <= current_version()) return std::nullopt;
    return StoreError{Kind::newer, path,
                      QStringLiteral("%1 > %2").arg(version).arg(current_version())};
}

}  // namespace

StoreError store_error_of(const db::EngineFault& fault) {
    return store_error_of(db::error_of(fault));
}

std::optional<StoreError> fault_of_site_file(const QString& path) {
    if (const auto fault = db::fault_of_file(path)) return store_error_of(*fault);
    return fault_of_header(path);
}

std::optional<StoreError> fault_of_lists(const QSqlDatabase& database, const QString& path) {
    const auto fault = db::damage_of(database, path,
                                     {QStringLiteral("sites"), QStringLiteral("visits"),
                                      QStringLiteral("programs"), QStringLiteral("limits")});
    return fault ? std::optional(store_error_of(*fault)) : std::nullopt;
}

}  // namespace m47::sites
