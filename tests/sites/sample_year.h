// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "site_store.h"

namespace m47::sites {

/// How many programs a visit of the year measures, and how many visits the first site has.
inline constexpr int kYearPrograms = 8;
inline constexpr int kYearVisits = 5;

/// A year of visits: at "Condominio Rossi" five, a quarter apart, in which the dish gets worse:
/// program 1 loses 1.2 dB of MER and 1 dB of level a visit, so that it fails its limits in the
/// last, program 2 half of that, program 3 is lost in the last, and the others stay. At "Hotel
/// Miramare" three visits without a change, at "Scuola Verdi" one, at "Villa Bianchi" none.
void fill_year(SiteStore& store);

}  // namespace m47::sites
