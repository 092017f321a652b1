// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <utility>

#include "page_store.h"
#include "texts.h"

namespace m47::report {

/// What the technician says of the measurements.
struct ReportEntry {
    QString site;
    QString technician;
    QString notes;
    std::optional<LevelUnit> unit =
        {};  ///< of rows that do not tell theirs, such as those of a log
};

/// The limits of one program as the report shows them, "45 … 80" each; empty where its alarm is not
/// on or the presentation does not measure it.
struct ReportLimits {
    QString program;  ///< its number in the plan, empty for a single element
    QString frequency;
    QString level, cn, ber, mer;
};

/// What the report says besides the page.
struct ReportContext {
    ReportEntry entry;
    QString meter;  ///< the version as the meter gave it, empty where none answered
    QDateTime made;
    QString plan;  ///< of rows that do not tell theirs; empty for single elements
    QList<ReportLimits> limits;
};

/// What a cell means to whoever looks for what is wrong.
enum class CellTone : std::uint8_t { plain, good, doubtful, bad };

/// A table of the report. Every row has as many cells as the header.
struct ReportTable {
    QString caption;
    QString remark{};  ///< what of the whole the rows are
    QStringList header{};
    QList<QStringList> rows{};
    QList<QList<CellTone>> tones{};  ///< of the cells of each row; empty: PASS and FAIL tell theirs
    QList<bool> numbers{};           ///< of each column: it stands at the right of its room
    /// What stands over the header and over how many columns, from the left; may be empty.
    QList<std::pair<QString, int>> groups{};
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
CustomerReport compose_report(const measurement::PageStore& page, const ReportContext& context,
                              const Texts& texts);

}  // namespace m47::report
