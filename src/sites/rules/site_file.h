// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QUuid>
#include <optional>
#include <vector>

#include "site_records.h"
#include "site_store.h"
#include "texts.h"

namespace m47::sites {

/// A visit with its measurements, and a site with its visits, as colleagues hand them to one
/// another.
struct VisitWithRows {
    Visit visit;
    std::vector<VisitMeasurement> rows;
};
struct SiteWithVisits {
    Site site;
    std::vector<VisitWithRows> visits;
};
using SiteFile = std::vector<SiteWithVisits>;

/// A file of sites has no more bytes, and no text in it more characters.
inline constexpr qsizetype kMostSiteFile = qsizetype{64} * 1024 * 1024;
inline constexpr qsizetype kMostSiteText = 10'000;

/// The sites `chosen` of `store` with all that hangs on them; what is gone is left out. A
/// StoreFault where the store cannot be read.
SiteFile sites_of(const SiteStore& store, const QList<QUuid>& chosen);

/// `sites` as a file; the same sites always give the same bytes. A Fault where that would be more
/// than a file may have, or a text in it is none that a file takes.
QByteArray site_file_bytes(const SiteFile& sites);

/// What a file holds, or the one sentence that says why it is none of sites.
struct SiteFileRead {
    SiteFile sites;
    std::optional<Said> refused;
};

/// Reads `bytes`: all of it or nothing. Each id comes once in a file, each text is sound Unicode,
/// no number is beyond what a meter or a calendar knows.
SiteFileRead read_site_file(const QByteArray& bytes);

/// The same measurement, number by number. Readings that were not measured are alike.
bool same_row(const VisitMeasurement& one, const VisitMeasurement& other);

}  // namespace m47::sites
