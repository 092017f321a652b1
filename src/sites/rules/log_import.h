// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTimeZone>
#include <optional>
#include <vector>

#include "site_file.h"
#include "texts.h"

namespace m47::sites {

/// A log has no more bytes, and no more lines of it are listed as unread: with more it is none.
inline constexpr qsizetype kMostLog = qsizetype{32} * 1024 * 1024;
inline constexpr std::size_t kMostUnread = 10'000;

/// A gap of more seconds between two lines, or a clock that was set back by more, begins another
/// visit. A date alone does not: a run over midnight is one visit.
inline constexpr double kVisitGap = 4 * 3600;

/// What some lines of a log become: a visit, and the number in the log, from 1, of each of its
/// rows.
struct LogVisit {
    VisitWithRows whole;
    std::vector<int> lines;
};

/// A line that becomes nothing.
struct UnreadLine {
    int number = 0;
    Said why;
    QString text;  ///< as far as it is told
};

/// What becomes of a log, before anything is written.
struct LogPreview {
    std::vector<LogVisit> visits;
    std::vector<UnreadLine> unread;
    std::optional<Said> refused;  ///< why it is no log; there is nothing else then
    QString zone;                 ///< whose wall clock its times are taken for
};

/// What the log `bytes` of the name `name` becomes at `site`. A line of 11 fields whose date, time
/// and numbers can be read without a doubt is a measurement; an empty cell and "ERROR" were not
/// measured; any other line is listed with its reason and never guessed. Program, mode, unit and
/// limits stay unknown, as a log does not say them. It has the time of a wall clock alone, which is
/// taken for that of `zone`. The ids follow from the lines, so that the same log, or one that has
/// grown, merges with what came of it before.
LogPreview read_log(const QByteArray& bytes, const QString& name, const Site& site,
                    const QTimeZone& zone);

/// What a merge takes to store it.
SiteFile site_file_of(const LogPreview& log, const Site& site);

/// "12 visits with 340 measurements; 3 lines cannot be read. …", and whose time is assumed.
QString log_text(const LogPreview& log, const Texts& texts);

/// The heading of a preview, and what the row `row` of the visit `visit` becomes: the line in the
/// log, the visit (from 1), date and time, frequency, oscillator, readings, verdict.
QStringList log_heading(const Texts& texts);
QStringList log_cells(const LogPreview& log, std::size_t visit, std::size_t row);

/// The same of the lines that cannot be read: the line in the log, why, its text.
QStringList unread_heading(const Texts& texts);
QStringList unread_cells(const UnreadLine& line, const Texts& texts);

}  // namespace m47::sites
