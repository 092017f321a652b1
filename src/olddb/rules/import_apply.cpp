// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_apply.h"

#include "database_transaction.h"
#include "engine.h"
#include "fields.h"
#include "tables.h"

namespace m47::olddb {
namespace {

constexpr Bilingual kToldToEnd{"the program was told to end", "il programma è stato terminato"};

QStringList names_in_table(db::Database& database, const char* table) {
    QStringList names;
    db::Query query(database.connection(),
                    QStringLiteral("SELECT %1 FROM %2")
                        .arg(QLatin1String(db::field::kNome), QLatin1String(table)));
    // A plan is the same in whatever letters another program has written its name.
    const bool plans = QLatin1String(table) == QLatin1String(db::table::kGruppo);
    while (query.next()) {
        const QString name = query.value(0).toString();
        names += plans ? db::stored_plan_name(name) : name;
    }
    return names;
}

void add(db::Recordset& set, const QString& name, const ImportedRow& fields) {
    set.add_new();
    set.set(db::field::kNome, name);
    for (auto field = fields.begin(); field != fields.end(); ++field)
        set.set(field.key(), field.value());
    set.update();
}

void clear(db::Recordset set) {
    if (!set.empty()) set.move_first();
    while (!set.empty()) {
        set.remove();
        if (!set.empty()) set.move_first();
    }
}

/// How an item is to arrive, under which name.
void decide(ImportItem& item, const QStringList& taken, Arrival& arrival, QString& name) {
    name = item.name;
    arrival = Arrival::came;
    if (!item.clashes) return;
    switch (item.choice) {
        case ClashChoice::keep:
            arrival = Arrival::kept;
            break;
        case ClashChoice::replace:
            arrival = Arrival::replaced;
            break;
        case ClashChoice::rename:
            arrival = Arrival::renamed;
            name = free_name(item.name, taken);
            break;
    }
}

void write_plan(const ImportedPlan& plan, const QString& name, bool replaces,
                db::Database& database) {
    db::Recordset programs = database.of_plan(QLatin1String(db::table::kProgrammi), name);
    db::Recordset configuration = database.of_plan(QLatin1String(db::table::kConfigurazione), name);
    if (replaces) {
        clear(programs);
        clear(configuration);
    } else {
        db::Recordset group = database.of_plan(QLatin1String(db::table::kGruppo), name);
        add(group, name, {});
    }
    add(configuration, name, plan.configuration);
    for (const ImportedRow& program : plan.programs) add(programs, name, program);
}

void write_satellite(const ImportedSatellite& satellite, const QString& name, bool replaces,
                     db::Database& database) {
    // A satellite, other than a plan, is another one in other letters.
    db::Recordset set = db::Recordset::where(database.connection(), QLatin1String(db::table::kAsl),
                                             db::field::kNome, name);
    const ImportedRow fields{{db::field::kDati, satellite.data}};
    if (!replaces) {
        add(set, name, fields);
        return;
    }
    set.edit();
    set.set(fields.firstKey(), fields.first());
    set.update();
}

/// Brings `items` in one after another, each written by `write` in a transaction of its own.
template <class Items, class Write>
void bring(Items& items, const char* table, db::Database& database,
           const std::function<bool()>& told_to_end, Write write) {
    QStringList reserved;
    for (const auto& item : items) reserved += item.name;
    for (auto& item : items) {
        if (told_to_end && told_to_end()) throw Fault(kToldToEnd);
        db::DatabaseTransaction transaction(database.connection());
        Arrival arrival{};
        QString name;
        const QStringList present = names_in_table(database, table);
        // As it stands now: another program may have written since the clashes were marked.
        item.clashes = present.contains(item.name);
        decide(item, present + reserved, arrival, name);
        if (arrival != Arrival::kept) write(item, name, arrival == Arrival::replaced, database);
        transaction.commit();
        item.arrival = arrival;
        if (arrival == Arrival::renamed) item.new_name = name;
    }
}

}  // namespace

void mark_clashes(ImportPlan& plan, db::Database& database) {
    const QStringList plans = names_in_table(database, db::table::kGruppo);
    for (ImportedPlan& one : plan.plans) one.clashes = plans.contains(one.name);
    const QStringList satellites = names_in_table(database, db::table::kAsl);
    for (ImportedSatellite& one : plan.satellites) one.clashes = satellites.contains(one.name);
}

QString apply_import(ImportPlan& plan, db::Database& database, const Texts& texts,
                     const std::function<bool()>& told_to_end) {
    try {
        bring(plan.plans, db::table::kGruppo, database, told_to_end, write_plan);
        bring(plan.satellites, db::table::kAsl, database, told_to_end, write_satellite);
    } catch (const Fault& fault) {
        return fault.text(texts);
    }
    return {};
}

}  // namespace m47::olddb
