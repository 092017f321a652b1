// SPDX-License-Identifier: GPL-3.0-or-later
#include "transponder_names.h"

#include <algorithm>
#include <cmath>

#include "engine.h"

namespace m47::db {
namespace {

/// Further away it is another transponder, MHz.
constexpr double kFineTuning = 3;

bool has_names(const QSqlDatabase& database) {
    Query query(database, QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND "
                                         "name = 'transponder_names'"));
    return query.next();
}

void make_table(const QSqlDatabase& database) {
    const Query query(database,
                      QStringLiteral("CREATE TABLE IF NOT EXISTS transponder_names (nome TEXT, "
                                     "frequenza REAL, lnb_volt INTEGER, name TEXT, PRIMARY KEY "
                                     "(nome, frequenza, lnb_volt))"));
}

}  // namespace

std::vector<TransponderName> read_names(const QSqlDatabase& database, const QString& plan) {
    std::vector<TransponderName> names;
    if (!has_names(database)) return names;
    Query query(database,
                QStringLiteral("SELECT frequenza, lnb_volt, name FROM transponder_names WHERE "
                               "nome = ? ORDER BY frequenza, lnb_volt"),
                {plan});
    while (query.next())
        names.push_back(
            {query.value(0).toDouble(), query.value(1).toInt(), query.value(2).toString()});
    return names;
}

void write_names(const QSqlDatabase& database, const QString& plan,
                 const std::vector<TransponderName>& names) {
    const bool any =
        std::ranges::any_of(names, [](const TransponderName& one) { return !one.name.isEmpty(); });
    if (any) make_table(database);
    if (!any && !has_names(database)) return;
    for (const TransponderName& one : names) {
        const Query gone(database,
                         QStringLiteral("DELETE FROM transponder_names WHERE nome = ? AND "
                                        "frequenza = ? AND lnb_volt = ?"),
                         {plan, one.mhz, one.supply});
        if (one.name.isEmpty()) continue;
        const Query come(database,
                         QStringLiteral("INSERT INTO transponder_names VALUES (?, ?, ?, ?)"),
                         {plan, one.mhz, one.supply, one.name});
    }
}

void forget_names(const QSqlDatabase& database, const QString& plan) {
    if (!has_names(database)) return;
    const Query query(database, QStringLiteral("DELETE FROM transponder_names WHERE nome = ?"),
                      {plan});
}

QString name_of(const std::vector<TransponderName>& names, double mhz, int supply) {
    const TransponderName* nearest = nullptr;
    for (const TransponderName& one : names) {
        const double away = std::abs(one.mhz - mhz);
        if (one.supply != supply || away > kFineTuning) continue;
        if (!nearest || away < std::abs(nearest->mhz - mhz)) nearest = &one;
    }
    return nearest ? nearest->name : QString();
}

}  // namespace m47::db
