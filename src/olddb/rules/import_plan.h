// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "old_database.h"
#include "stored_names.h"
#include "texts.h"

namespace m47::olddb {

/// A row for the present database: its set fields by name.
using ImportedRow = QMap<QString, QVariant>;

/// What becomes of a plan or satellite whose name the present database has already.
enum class ClashChoice {
    keep,     ///< the present one stays, the old one does not come
    replace,  ///< the old one takes its place
    rename,   ///< the old one comes under a free name
};

/// How it went.
enum class Arrival { open, came, kept, replaced, renamed };

/// A plan or a satellite of the old file on its way.
struct ImportItem {
    QString name;
    bool clashes = false;
    ClashChoice choice = ClashChoice::keep;  ///< counts where it clashes
    Arrival arrival = Arrival::open;
    QString new_name;  ///< where it came under another one
};

struct ImportedPlan : ImportItem {
    ImportedRow configuration;    ///< without `nome`, as the programs
    QList<ImportedRow> programs;  ///< at least one
};

struct ImportedSatellite : ImportItem {
    QVariant data;
};

/// One remark for the report: its wording and what stands for %1, %2 ... in it.
struct ImportNote {
    Bilingual wording;
    QStringList parts;
};

/// Everything that is to come from an old file, and what there is to say about it.
struct ImportPlan {
    int version = 0;
    QList<ImportedPlan> plans;
    QList<ImportedSatellite> satellites;
    QList<ImportNote> corrected;
    QList<ImportNote> to_check;  ///< left as it stands
    QStringList missing;         ///< our tables, and as "table.field" fields, that it has not
    QStringList ignored;         ///< its tables and fields that we have not
};

/// `name` as satellites are named: trimmed, at most kLongestName characters.
QString satellite_name(const QString& name);

/// A name close to `name`, within kLongestName characters, that is not in `taken`.
QString free_name(const QString& name, const QStringList& taken);

/// What comes from `old`. Texts come as they stand, blanks and all; corrected is only what the
/// program would not find or could not show otherwise: names, program numbers and logger positions
/// in their form, choices outside of their lists, rows that belong to no plan.
ImportPlan import_plan_of(const OldDatabase& old);

}  // namespace m47::olddb
