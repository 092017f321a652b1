// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_plan.h"

#include <algorithm>
#include <optional>

#include "cut_text.h"
#include "fields.h"
#include "import_values.h"
#include "plan_name.h"
#include "schema.h"
#include "tables.h"

namespace m47::olddb {
namespace {

constexpr Bilingual kNameChanged{"The plan '%1' is named '%2'.",
                                 "Il piano '%1' prende il nome '%2'."};
constexpr Bilingual kSatelliteNameChanged{"The satellite '%1' is named '%2'.",
                                          "Il satellite '%1' prende il nome '%2'."};
constexpr Bilingual kValueChanged{"Plan '%1', program '%2': %3 '%4' became '%5'.",
                                  "Piano '%1', programma '%2': %3 '%4' è diventato '%5'."};
constexpr Bilingual kConfigurationChanged{"Plan '%1': %2 '%3' became '%4'.",
                                          "Piano '%1': %2 '%3' è diventato '%4'."};
constexpr Bilingual kDoubtful{"Plan '%1', program '%2': %3 '%4' is left as it is.",
                              "Piano '%1', programma '%2': %3 '%4' è lasciato com'è."};
constexpr Bilingual kTwice{"Plan '%1': %2 '%3' stands twice.",
                           "Piano '%1': %2 '%3' compare due volte."};
constexpr Bilingual kNoPlanRow{"The plan '%1' was not in the list of plans and came all the same.",
                               "Il piano '%1' non era nell'elenco dei piani ed è importato "
                               "comunque."};
constexpr Bilingual kNoConfiguration{
    "The plan '%1' had no oscillators and switches: it gets empty ones.",
    "Il piano '%1' non aveva oscillatori e commutatori: li riceve vuoti."};
constexpr Bilingual kSecondConfiguration{
    "The plan '%1' had oscillators and switches twice: the first ones count.",
    "Il piano '%1' aveva oscillatori e commutatori due volte: valgono i primi."};
constexpr Bilingual kNoProgram{"The plan '%1' had no program: it gets an empty one.",
                               "Il piano '%1' non aveva programmi: ne riceve uno vuoto."};
constexpr Bilingual kNoName{"A row of table %1 has no name and was left out.",
                            "Una riga della tabella %1 è senza nome e non è importata."};
constexpr Bilingual kPlanTwice{"The plan '%1' stands twice in the list of plans: it came once.",
                               "Il piano '%1' compare due volte nell'elenco dei piani: è importato "
                               "una volta."};
constexpr Bilingual kSatelliteTwice{
    "The satellite '%1' stands twice: the second one was named '%2'.",
    "Il satellite '%1' compare due volte: il secondo prende il nome '%2'."};
constexpr Bilingual kEmptySatellite{"An entry '%1' is no satellite and was left out.",
                                    "Una voce '%1' non è un satellite e non è importata."};
constexpr Bilingual kOddData{"The data of satellite '%1' do not end as they should.",
                             "I dati del satellite '%1' non terminano come dovrebbero."};

/// A row of an old table by the names of our fields.
class OldRow {
  public:
    OldRow(const OldTable& table, const QVariantList& values) : table_(table), values_(values) {}

    QVariant value(const QString& field) const {
        for (qsizetype k = 0; k < table_.fields.size(); ++k)
            if (table_.fields[k].compare(field, Qt::CaseInsensitive) == 0) return values_.value(k);
        return {};
    }
    QString name() const { return shown_value(value(db::field::kNome)); }

  private:
    const OldTable& table_;
    const QVariantList& values_;
};

class Importer {
  public:
    explicit Importer(const OldDatabase& old) : old_(old) { plan_.version = old.version; }

    ImportPlan run() {
        compare_tables();
        take_plan_list();
        take_configurations();
        take_programs();
        for (ImportedPlan& plan : plan_.plans) complete(plan);
        take_satellites();
        return plan_;
    }

  private:
    const OldTable* table_of(const char* name) const {
        for (const OldTable& table : old_.tables)
            if (table.name.compare(QLatin1String(name), Qt::CaseInsensitive) == 0) return &table;
        return nullptr;
    }

    void compare_tables() {
        plan_.ignored = old_.others;
        for (const db::Table& ours : db::schema()) {
            const QString name = QString::fromLatin1(ours.name);
            const OldTable* theirs = table_of(ours.name);
            if (!theirs) {
                plan_.missing += name;
                continue;
            }
            QStringList known;
            for (const db::Field& field : ours.fields) known += QString::fromLatin1(field.name);
            for (const QString& field : std::as_const(known))
                if (!theirs->fields.contains(field, Qt::CaseInsensitive))
                    plan_.missing += name + u'.' + field;
            for (const QString& field : theirs->fields)
                if (!known.contains(field, Qt::CaseInsensitive))
                    plan_.ignored += name + u'.' + field;
        }
    }

    /// Calls `take` with each row of the table that has a name.
    template <class Take>
    void for_rows(const char* name, Take take) {
        const OldTable* table = table_of(name);
        if (!table) return;
        for (const QVariantList& values : table->rows) {
            const OldRow row(*table, values);
            if (row.name().trimmed().isEmpty())
                plan_.corrected += {kNoName, {QString::fromLatin1(name)}};
            else
                take(row);
        }
    }

    /// The plan of that name, whatever its capitals and the blanks around it; a new one where there
    /// is none yet.
    ImportedPlan& plan_named(const QString& old_name, bool& is_new) {
        const QString key = old_name.trimmed().toUpper();
        const qsizetype known = keys_.indexOf(key);
        is_new = known < 0;
        if (!is_new) return plan_.plans[known];
        ImportedPlan plan;
        plan.name = programme::plan_name(old_name.trimmed());
        // Two long names can begin alike.
        if (names_.contains(plan.name)) plan.name = free_name(plan.name, names_);
        if (plan.name != old_name) plan_.corrected += {kNameChanged, {old_name, plan.name}};
        keys_ += key;
        names_ += plan.name;
        configured_ += false;
        plan_.plans += plan;
        return plan_.plans.last();
    }

    ImportedPlan& plan_of_row(const OldRow& row) {
        bool is_new = false;
        ImportedPlan& plan = plan_named(row.name(), is_new);
        if (is_new && table_of(db::table::kGruppo)) plan_.corrected += {kNoPlanRow, {plan.name}};
        return plan;
    }

    void take_plan_list() {
        for_rows(db::table::kGruppo, [&](const OldRow& row) {
            bool is_new = false;
            const ImportedPlan& plan = plan_named(row.name(), is_new);
            if (!is_new) plan_.corrected += {kPlanTwice, {plan.name}};
        });
    }

    /// The fields of `row` that are set, in the form of `table`; `told` makes the first parts of a
    /// remark on one of them.
    ImportedRow fields_of(const char* table, const OldRow& row, const Bilingual& changed,
                          const QStringList& told) {
        ImportedRow fields;
        for (const db::Field& field : db::table_named(QLatin1String(table)).fields) {
            const QString name = QString::fromLatin1(field.name);
            if (name == db::field::kNome) continue;
            const QVariant old = row.value(name);
            const ImportedValue now = value_for(field, old);
            if (!now.value.isNull()) fields.insert(name, now.value);
            const QStringList about = told + QStringList{name, shown_value(old)};
            if (now.verdict == ImportedValue::Verdict::corrected)
                plan_.corrected += {changed, about + QStringList{shown_value(now.value)}};
            if (now.verdict == ImportedValue::Verdict::doubtful)
                plan_.to_check += {kDoubtful, about};
        }
        return fields;
    }

    void take_configurations() {
        for_rows(db::table::kConfigurazione, [&](const OldRow& row) {
            ImportedPlan& plan = plan_of_row(row);
            const qsizetype place = names_.indexOf(plan.name);
            if (configured_[place]) {
                plan_.corrected += {kSecondConfiguration, {plan.name}};
                return;
            }
            configured_[place] = true;
            plan.configuration =
                fields_of(db::table::kConfigurazione, row, kConfigurationChanged, {plan.name});
        });
    }

    void take_programs() {
        for_rows(db::table::kProgrammi, [&](const OldRow& row) {
            ImportedPlan& plan = plan_of_row(row);
            const QStringList told{plan.name, shown_value(row.value(db::field::kPgNum))};
            plan.programs += fields_of(db::table::kProgrammi, row, kValueChanged, told);
        });
    }

    void complete(ImportedPlan& plan) {
        if (!configured_[names_.indexOf(plan.name)])
            plan_.corrected += {kNoConfiguration, {plan.name}};
        if (plan.programs.isEmpty()) {
            plan.programs += ImportedRow();
            plan_.corrected += {kNoProgram, {plan.name}};
        }
        for (const char* field : {db::field::kPgNum, db::field::kLoggerPos})
            tell_twins(plan, field);
    }

    void tell_twins(const ImportedPlan& plan, const QString& field) {
        QStringList seen;
        for (const ImportedRow& program : plan.programs) {
            const QString value = program.value(field).toString();
            if (!value.isEmpty() && seen.count(value) == 1)
                plan_.to_check += {kTwice, {plan.name, field, value}};
            seen += value;
        }
    }

    void take_satellites() {
        QStringList names;
        for_rows(db::table::kAsl, [&](const OldRow& row) {
            const QString old_name = row.name();
            ImportedSatellite satellite;
            satellite.name = satellite_name(old_name);
            if (satellite.name == kNoSatellite) {
                plan_.corrected += {kEmptySatellite, {old_name}};
                return;
            }
            if (names.contains(satellite.name)) {
                const QString other = free_name(satellite.name, names);
                plan_.corrected += {kSatelliteTwice, {satellite.name, other}};
                satellite.name = other;
            } else if (satellite.name != old_name) {
                plan_.corrected += {kSatelliteNameChanged, {old_name, satellite.name}};
            }
            names += satellite.name;
            take_data(row, satellite);
            plan_.satellites += satellite;
        });
    }

    void take_data(const OldRow& row, ImportedSatellite& satellite) {
        const QVariant data = row.value(db::field::kDati);
        if (!data.isNull()) satellite.data = shown_value(data);
        if (!satellite.data.toString().trimmed().endsWith(kSatelliteEnd))
            plan_.to_check += {kOddData, {satellite.name}};
    }

    const OldDatabase& old_;
    ImportPlan plan_;
    // For each plan: its name as the old rows are told by, its new name, whether it has its
    // oscillators.
    QStringList keys_;
    QStringList names_;
    QList<bool> configured_;
};

}  // namespace

QString satellite_name(const QString& name) {
    return cut_to(name.trimmed(), kLongestName).trimmed();
}

QString free_name(const QString& name, const QStringList& taken) {
    for (int number = 2;; ++number) {
        const QString end = u'-' + QString::number(number);
        const QString candidate = cut_to(name, kLongestName - end.size()).trimmed() + end;
        if (!taken.contains(candidate)) return candidate;
    }
}

ImportPlan import_plan_of(const OldDatabase& old) {
    return Importer(old).run();
}

}  // namespace m47::olddb
