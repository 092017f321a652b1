// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <variant>

#include "old_database.h"

namespace m47::olddb {

/// What the reading process found: the rows, or why there are none (a technical word or two).
using OldReading = std::variant<OldDatabase, QString>;

/// The bytes that the reading process hands over.
QByteArray bytes_of_reading(const OldReading& reading);

/// The same back. Bytes that are not exactly those of one reading, whatever they are, give a
/// reading without rows.
OldReading reading_of_bytes(const QByteArray& bytes);

}  // namespace m47::olddb
