// SPDX-License-Identifier: GPL-3.0-or-later
#include "own_file_error.h"

#include <QDir>
#include <algorithm>

#include "database_check.h"

namespace m47::db {
namespace {

using Kind = OwnFileError::Kind;

Kind kind_of(DatabaseFault fault) {
    using enum DatabaseFault;
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

}  // namespace

OwnFileError own_file_error(const DatabaseError& error) {
    return {kind_of(error.fault), error.path, error.detail};
}

OwnFileError own_file_error(const EngineFault& fault) {
    return own_file_error(error_of(fault));
}

QString own_file_text(std::span<const OwnFileWording> wordings, const OwnFileError& error,
                      const Texts& texts, QChar gap) {
    const auto found = std::ranges::find(wordings, error.kind, &OwnFileWording::kind);
    const QString text = texts.pick(found->words).arg(QDir::toNativeSeparators(error.path));
    return error.detail.isEmpty() ? text : text + gap + QStringLiteral("(%1)").arg(error.detail);
}

}  // namespace m47::db
