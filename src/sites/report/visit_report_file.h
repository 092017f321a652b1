// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPageSize>
#include <QString>

#include "letterhead.h"
#include "site_tables.h"
#include "visit_report.h"

namespace m47::sites {

/// Writes the report as a PDF to `path`, whole or not at all: on failure what stood there before
/// still does. Nothing on success, else the reason.
QString save_visit_report(const QString& path, const VisitReport& report,
                          const Letterhead& letterhead, const CodeRateOf& code_rate,
                          QPageSize::PageSizeId paper, const Texts& texts);

}  // namespace m47::sites
