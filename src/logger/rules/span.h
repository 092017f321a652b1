// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "link.h"

namespace m47::logger {

/// One point of a span: what the meter calls it (its frequency) and its level.
struct SpanPoint {
    QString label;
    double value = 0;
};

/// The rows of the span chart: row k of the meter (1 to 100) is point k - 1.
using SpanPoints = std::vector<SpanPoint>;

inline constexpr std::size_t kSpanRows = 100;

/// The points of a span reply: lines of a label, a TAB and a number, each ended by CR (and LF). The
/// meter's detector counts from 30 dB below, so 30 is taken off every value. Ends at a line that
/// begins with "OK", at row 100 or at a line that has no end. A line without a TAB is no point;
/// text behind the TAB that is no number counts as 0. Any text at all may be passed.
SpanPoints parse_span(const QString& reply);

/// Asks the meter for its span. Empty when nothing could be sent or the link was lost.
SpanPoints read_span(link::Link& link);

/// What is shown of row `row` (1 to 100) of the chart: its label, a blank and its value. Empty for
/// a row that is not filled.
QString span_point_text(const SpanPoints& points, std::size_t row);

}  // namespace m47::logger
