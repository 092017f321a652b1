// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::logger {

/// The column headers of the logged data, each ended by CR LF.
struct ColumnHeaders {
    QString analog;
    QString digital;
};

/// Both header lines with the level unit as `last_reply` holds it: two characters from its 20th on
/// behind "dB" ("uV"), four from its 23rd on in the brackets ("dBuV"). A shorter reply leaves out
/// what it lacks.
ColumnHeaders column_headers(const QString& last_reply);

}  // namespace m47::logger
