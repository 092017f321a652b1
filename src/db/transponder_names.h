// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <vector>

namespace m47::db {

/// What a transponder of a plan is called in the file it was imported from. The name belongs to the
/// frequency and not to a row, so that it survives another number, another order and a copy.
struct TransponderName {
    double mhz;
    int supply;  ///< of the LNB, 1 for 13 V and 2 for 18 V: the polarisation
    QString name;

    bool operator==(const TransponderName&) const = default;
};

// The names stand in a table of their own, which programs that do not know it leave alone; it is
// made with the first name. All in the transaction of whoever calls.

/// Those of the plan `plan`; none where there is no such table.
std::vector<TransponderName> read_names(const QSqlDatabase& database, const QString& plan);

/// Puts `names` in the place of what the plan `plan` has of the same frequency and supply; an empty
/// name takes it away.
void write_names(const QSqlDatabase& database, const QString& plan,
                 const std::vector<TransponderName>& names);

/// Takes all names of the plan `plan` away.
void forget_names(const QSqlDatabase& database, const QString& plan);

/// The name of what is tuned at `mhz` with `supply`; a few MHz are the meter's fine tuning. Empty
/// where there is none.
QString name_of(const std::vector<TransponderName>& names, double mhz, int supply);

}  // namespace m47::db
