// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "code_rate.h"
#include "texts.h"
#include "visit_comparison.h"
#include "what_got_worse.h"

namespace m47::sites {

/// What a cell means to whoever looks for what is wrong.
enum class Tone : std::uint8_t { plain, good, doubtful, bad };

/// A cell of a table: how it reads, what it is sorted by, no number where by its text, and what it
/// means.
struct TableCell {
    QString text;
    double number = std::numeric_limits<double>::quiet_NaN();
    Tone tone = Tone::plain;
};

/// A table whose cells are made when they are looked at.
class SiteTable {
  public:
    virtual ~SiteTable() = default;

    virtual QStringList heading(const Texts& texts) const = 0;
    virtual int rows() const = 0;
    /// `row` and `column` from 0.
    virtual TableCell cell(int row, int column, const Texts& texts) const = 0;
    /// The column holds numbers, which stand one below the other.
    virtual bool is_number(int column) const = 0;
    /// The column can be left out where there is little room.
    virtual bool is_detail(int column) const = 0;
};

/// A table as it is shown: every row has as many cells as the heading.
struct ShownTable {
    QStringList heading;
    QList<QStringList> rows;

    /// For other programs: a line each, separated by TAB.
    QByteArray tsv() const;
};

/// All of `table`.
ShownTable shown_table(const SiteTable& table, const Texts& texts);

/// Says the code rate of what was measured, where it is known; may be empty.
using CodeRateOf =
    std::function<std::optional<programme::CodeRate>(const measurement::Measurement&)>;

/// Two visits program by program: each quantity before, now and its change, the margins of now,
/// what it means.
std::unique_ptr<SiteTable> table_of_comparison(std::vector<ProgramComparison> compared,
                                               const CodeRateOf& code_rate,
                                               const Thresholds& thresholds = {});
ShownTable comparison_table(const std::vector<ProgramComparison>& compared,
                            const CodeRateOf& code_rate, const Texts& texts);

/// What got worse: where, which program, since when, by how much.
std::unique_ptr<SiteTable> table_of_worse(std::vector<GotWorse> worse);
ShownTable worse_table(const std::vector<GotWorse>& worse, const Texts& texts);

/// The rows of a visit, with the limits that were in force, and their margins.
std::unique_ptr<SiteTable> table_of_rows(std::vector<VisitMeasurement> rows,
                                         const CodeRateOf& code_rate);
ShownTable rows_table(const std::vector<VisitMeasurement>& rows, const CodeRateOf& code_rate,
                      const Texts& texts);

}  // namespace m47::sites
