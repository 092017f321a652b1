// SPDX-License-Identifier: GPL-3.0-or-later
#include "transponder_names.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "engine.h"

namespace m47::db {
namespace {

/// Further away it is another transponder, MHz.
constexpr double kFineTuning = 3;

/// What is kept of a transponder, each in a table of its own.
struct Kept {
    const char* table;
    const char* column;
    QString TransponderName::*text;
};
constexpr std::array kKept{Kept{"transponder_names", "name", &TransponderName::name},
                           Kept{"transponder_codes", "code", &TransponderName::code}};

QString with_words(const char* statement, const Kept& kept) {
    return QString::fromLatin1(statement)
        .replace(QStringLiteral("%1"), QLatin1String(kept.table))
        .replace(QStringLiteral("%2"), QLatin1String(kept.column));
}

bool has_table(const QSqlDatabase& database, const Kept& kept) {
    Query query(database,
                QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?"),
                {QString::fromLatin1(kept.table)});
    return query.next();
}

void make_table(const QSqlDatabase& database, const Kept& kept) {
    const Query query(
        database, with_words("CREATE TABLE IF NOT EXISTS %1 (nome TEXT, frequenza REAL, lnb_volt "
                             "INTEGER, %2 TEXT, PRIMARY KEY (nome, frequenza, lnb_volt))",
                             kept));
}

using Places = std::map<std::pair<double, int>, TransponderName>;

void read_kept(const QSqlDatabase& database, const QString& plan, const Kept& kept, Places& names) {
    if (!has_table(database, kept)) return;
    Query query(database, with_words("SELECT frequenza, lnb_volt, %2 FROM %1 WHERE nome = ?", kept),
                {plan});
    while (query.next()) {
        const double mhz = query.value(0).toDouble();
        const int supply = query.value(1).toInt();
        TransponderName& one =
            names.try_emplace({mhz, supply}, TransponderName{mhz, supply, {}}).first->second;
        one.*kept.text = query.value(2).toString();
    }
}

void write_kept(const QSqlDatabase& database, const QString& plan,
                const std::vector<TransponderName>& names, const Kept& kept) {
    const bool any = std::ranges::any_of(
        names, [&](const TransponderName& one) { return !(one.*kept.text).isEmpty(); });
    if (any) make_table(database, kept);
    if (!any && !has_table(database, kept)) return;
    for (const TransponderName& one : names) {
        const Query gone(database,
                         with_words("DELETE FROM %1 WHERE nome = ? AND frequenza = ? AND "
                                    "lnb_volt = ?",
                                    kept),
                         {plan, one.mhz, one.supply});
        if ((one.*kept.text).isEmpty()) continue;
        const Query come(database, with_words("INSERT INTO %1 VALUES (?, ?, ?, ?)", kept),
                         {plan, one.mhz, one.supply, one.*kept.text});
    }
}

QString nearest_text(const std::vector<TransponderName>& names, double mhz, int supply,
                     QString TransponderName::*text) {
    const TransponderName* nearest = nullptr;
    for (const TransponderName& one : names) {
        const double away = std::abs(one.mhz - mhz);
        if (one.supply != supply || away > kFineTuning || (one.*text).isEmpty()) continue;
        if (!nearest || away < std::abs(nearest->mhz - mhz)) nearest = &one;
    }
    return nearest ? nearest->*text : QString();
}

}  // namespace

std::vector<TransponderName> read_names(const QSqlDatabase& database, const QString& plan) {
    Places places;
    for (const Kept& kept : kKept) read_kept(database, plan, kept, places);
    std::vector<TransponderName> names;
    for (auto& [place, name] : places) names.push_back(std::move(name));
    return names;
}

void write_names(const QSqlDatabase& database, const QString& plan,
                 const std::vector<TransponderName>& names) {
    for (const Kept& kept : kKept) write_kept(database, plan, names, kept);
}

void forget_names(const QSqlDatabase& database, const QString& plan) {
    for (const Kept& kept : kKept)
        if (has_table(database, kept))
            const Query query(database, with_words("DELETE FROM %1 WHERE nome = ?", kept), {plan});
}

QString name_of(const std::vector<TransponderName>& names, double mhz, int supply) {
    return nearest_text(names, mhz, supply, &TransponderName::name);
}

QString code_of(const std::vector<TransponderName>& names, double mhz, int supply) {
    return nearest_text(names, mhz, supply, &TransponderName::code);
}

}  // namespace m47::db
