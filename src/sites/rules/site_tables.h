// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "code_rate.h"
#include "texts.h"
#include "visit_comparison.h"
#include "what_got_worse.h"

namespace m47::sites {

/// A table as it is shown: every row has as many cells as the heading.
struct ShownTable {
    QStringList heading;
    QList<QStringList> rows;

    /// For other programs: a line each, separated by TAB.
    QByteArray tsv() const;
};

/// Says the code rate of what was measured, where it is known; may be empty.
using CodeRateOf =
    std::function<std::optional<programme::CodeRate>(const measurement::Measurement&)>;

/// Two visits program by program: each quantity before, now and its change, the margins of now,
/// what it means.
ShownTable comparison_table(const std::vector<ProgramComparison>& compared,
                            const CodeRateOf& code_rate, const Texts& texts);

/// What got worse: where, which program, since when, by how much.
ShownTable worse_table(const std::vector<GotWorse>& worse, const Texts& texts);

/// The rows of a visit, with their margins.
ShownTable rows_table(const std::vector<VisitMeasurement>& rows, const CodeRateOf& code_rate,
                      const Texts& texts);

}  // namespace m47::sites
