// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <utility>
#include <variant>
#include <vector>

#include "site_file.h"
#include "site_store.h"
#include "texts.h"

namespace m47::sites {

/// What is here and in the file under the same id, but not alike.
struct Conflict {
    using Side = std::variant<Site, Visit, VisitMeasurement>;
    Side mine;
    Side theirs;  ///< of the same kind
    bool take_theirs = false;

    QUuid id() const;
};

/// What an import of a file will do, before anything is written.
struct SiteMerge {
    int new_sites = 0;
    int new_visits = 0;
    int new_rows = 0;
    int known = 0;  ///< sites, visits and measurements that are here already, and alike
    /// What the caller chooses of; what nobody chooses stays as it is here.
    std::vector<Conflict> conflicts;

    bool changes_anything() const;
};

/// What becomes of `file` in `store`. Nothing is written. A StoreFault where it cannot be read.
SiteMerge plan_merge(const SiteFile& file, const SiteStore& store);

/// Writes what is new, and of the conflicts of `chosen` what was taken: all of it or, with a Fault,
/// nothing. Where the store has changed since plan_merge, so that something else would be lost than
/// was shown, that is a Fault too.
void apply_merge(const SiteFile& file, const SiteMerge& chosen, SiteStore& store);

/// A line of a conflict for the user: what it is, and what stands on either side.
struct ConflictLine {
    QString what;
    QString mine;
    QString theirs;
};

/// What tells the two sides of `conflict` apart, field by field, and no more.
QList<ConflictLine> conflict_lines(const Conflict& conflict, const Texts& texts);

/// "Site Rossi", "Visit of 2026-11-22 09:00:00", "Measurement of …, ASTRA 007".
QString conflict_title(const Conflict& conflict, const Texts& texts);

/// "2 sites, 5 visits and 120 measurements are new, …": what `merge` will do, in one sentence.
QString merge_text(const SiteMerge& merge, const Texts& texts);

}  // namespace m47::sites
