// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::link {

/// The text that the header record of satellite slot `slot` (0 to 999) carries: "ASL 001".
QString srecord_text(int slot);

/// The body of the S0 header record around `text` (Latin-1): count of the bytes that follow,
/// address 0000 and the text, in hexadecimal digits.
QString srecord_body(const QString& text);

/// The checksum byte of `body`, in two hexadecimal digits.
QString srecord_checksum(const QString& body);

/// The S0 header record of satellite slot `slot` (0 to 999).
QString srecord_header(int slot);

}  // namespace m47::link
