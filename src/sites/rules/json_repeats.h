// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace m47::sites {

/// A name that an object has twice.
struct RepeatedMember {
    QString name;
    qsizetype offset;  ///< of the second one, in bytes
};

/// The first one in `json`, which can be read; nothing where there is none. Who reads JSON keeps
/// one of the two without a word.
std::optional<RepeatedMember> repeated_member(const QByteArray& json);

}  // namespace m47::sites
