// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <vector>

namespace m47::db {

/// What a transponder of a plan is called in the file it was imported from, and the rate of its
/// code. Both belong to the frequency and not to a row, so that they survive another number,
/// another order and a copy.
struct TransponderName {
    double mhz;
    int supply;  ///< of the LNB, 1 for 13 V and 2 for 18 V: the polarisation
    QString name;
    QString code{};  ///< "3/4"; empty where the file does not know it

    bool operator==(const TransponderName&) const = default;
};

// Names and codes stand in a table of their own each, which programs that do not know it leave
// alone; it is made with the first one. All in the transaction of whoever calls.

/// Those of the plan `plan`, by frequency and supply; none where there is no such table.
std::vector<TransponderName> read_names(const QSqlDatabase& database, const QString& plan);

/// Puts `names` in the place of what the plan `plan` has of the same frequency and supply; an empty
/// name or code takes it away.
void write_names(const QSqlDatabase& database, const QString& plan,
                 const std::vector<TransponderName>& names);

/// Takes all names and codes of the plan `plan` away.
void forget_names(const QSqlDatabase& database, const QString& plan);

/// The name of what is tuned at `mhz` with `supply`; a few MHz are the meter's fine tuning. Empty
/// where there is none.
QString name_of(const std::vector<TransponderName>& names, double mhz, int supply);
/// Its code, "3/4".
QString code_of(const std::vector<TransponderName>& names, double mhz, int supply);

}  // namespace m47::db
