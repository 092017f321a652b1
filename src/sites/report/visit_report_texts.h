// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <utility>

#include "customer_report.h"
#include "site_tables.h"
#include "visit_report.h"

namespace m47::sites {

/// "2026-11-22 09:30", on the wall clock of the place.
QString report_time(const Visit& visit);

/// A visit's begin and end, technician, instrument and so on; what is not known is left out.
QList<std::pair<QString, QString>> facts_of(const ReportedVisit& visit, const Texts& texts);

/// A sentence of the verdict and what it means.
struct VerdictLine {
    QString text;
    report::CellTone tone = report::CellTone::plain;
};

/// What passes and what does not, and what got worse since the visit before.
QList<VerdictLine> verdict_of(const ReportedVisit& visit, const Texts& texts);

/// Each program before and now, the worst first; without rows where there is no visit before.
report::ReportTable before_table(const ReportedVisit& visit, const Texts& texts);

/// What was measured, with the margins and the verdict of each program.
report::ReportTable measured_table(const ReportedVisit& visit, const CodeRateOf& code_rate,
                                   const Texts& texts);

}  // namespace m47::sites
