// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <memory>

#include "site_store.h"

namespace m47::sites {

/// The file of sites in `folder`.
QString sites_in(const QString& folder);

/// Opens it, making it where there is none; a failure ends the test with the engine's words.
std::unique_ptr<SiteStore> opened_sites(const QString& folder);

/// Opens it and tells why that failed; `other` where it did not.
StoreError error_of_opening(const QString& path);

Site a_site(const QString& name);
/// Begun `hours` after a fixed day, in summer time, and not ended.
Visit a_visit(const Site& site, int hours);
/// Of program `number` of the plan "ASTRA", `second` seconds after the visit's begin, with every
/// field set; `mer` in dB.
VisitMeasurement a_row(const Visit& visit, int second, const QString& number, float mer);

}  // namespace m47::sites
