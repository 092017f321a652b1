// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

#include "page_store.h"
#include "report_limits.h"
#include "texts.h"

namespace m47 {

/// What the technician says of the measurements.
struct ReportEntry {
    QString site;
    QString technician;
    QString notes;
};

/// What the report says besides the page.
struct ReportContext {
    ReportEntry entry;
    QString meter;  ///< the version as the meter gave it, empty where none answered
    QDateTime made;
    QString plan;  ///< empty for single elements
    QString unit;  ///< of the levels: "dBuV"
    QList<ReportLimits> limits;
};

/// A table of the report. Every row has as many cells as the header.
struct ReportTable {
    QString caption;
    QString remark;  ///< what of the whole the rows are
    QStringList header;
    QList<QStringList> rows;
};

/// The report for the customer, section by section in the order in which it is read; what it looks
/// like on paper is decided elsewhere.
struct CustomerReport {
    QString title;
    QList<std::pair<QString, QString>> facts;
    QString notes_caption;
    QString notes;
    ReportTable summary;
    ReportTable limits;
    QString trend_caption;
    QString no_trend;  ///< what stands there where no row has a place on the trend
    ReportTable measurements;
    QString page_number;  ///< "Page %1 of %2"
};

/// The most rows that are printed one by one: the newest. All rows are counted in the summary.
inline constexpr int kReportRows = 1000;
/// The most programs in the summary.
inline constexpr int kReportPrograms = 200;

/// Composes the report of `page` in the language in use now. What is left out for its length is
/// said in the remark of its table.
CustomerReport compose_report(const PageStore& page, const ReportContext& context,
                              const Texts& texts);

}  // namespace m47
