// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "site_records.h"
#include "texts.h"

namespace m47::sites {

/// "2026-11-22 09:00", on the wall clock of the place.
QString visit_time(const Visit& visit);
/// The same with the offset, "2026-10-25 02:30 (UTC+1)", where another visit of `beside` reads
/// alike in the hour that comes twice.
QString visit_time(const Visit& visit, const std::vector<Visit>& beside);
/// The day of it on the wall clock of the place.
QDate day_of(const Instant& instant);
/// Seconds since 1970 of the midnight that begins `day`, on a wall clock.
double midnight_of(const QDate& day);

/// What is known of a visit beside its time, "Rossi · ASTRA · V3.0.5"; where it was cut off, or
/// goes on, that too.
QString visit_facts(const Visit& visit, const Texts& texts);
/// What is known of a site beside its name, on one line.
QString site_facts(const Site& site);

/// A name for a file about `site`, of letters and digits that every system takes.
QString file_stem(const Site& site, const QString& what);

}  // namespace m47::sites
