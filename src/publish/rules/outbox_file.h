// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <optional>

#include "outbox_error.h"

namespace m47::publish {

/// Makes the file of an outbox at `path` where there is none. Why there is none that can be opened;
/// what is there is left alone.
std::optional<OutboxError> make_outbox_file(const QString& path);

/// Takes the file behind `database` for this process alone. Why it cannot be used; an error of the
/// engine is an EngineFault.
std::optional<OutboxError> take_outbox_file(const QSqlDatabase& database, const QString& path);

}  // namespace m47::publish
