// SPDX-License-Identifier: GPL-3.0-or-later
// The points of a span.
#include <cmath>

#include "fuzzing.h"
#include "numbers.h"
#include "span.h"

namespace {

void check_points(const QString& reply, const m47::logger::SpanPoints& points) {
    HOLDS(points.size() <= m47::logger::kSpanRows);
    HOLDS(static_cast<qsizetype>(points.size()) <= reply.count(u'\r'));
    for (std::size_t row = 1; row <= points.size(); ++row) {
        const m47::logger::SpanPoint& point = points[row - 1];
        HOLDS(!point.label.contains(u'\t') && !point.label.contains(u'\r'));
        HOLDS(std::isfinite(point.value));
        HOLDS(m47::logger::span_point_text(points, row).startsWith(point.label + u' '));
    }
    HOLDS(m47::logger::span_point_text(points, 0).isEmpty());
    HOLDS(m47::logger::span_point_text(points, points.size() + 1).isEmpty());
}

/// Half an answer holds the first of its points, and never half of one.
void check_half(const QString& reply, const m47::logger::SpanPoints& points) {
    const m47::logger::SpanPoints half = m47::logger::parse_span(reply.left(reply.size() / 2));
    HOLDS(half.size() <= points.size());
    for (std::size_t k = 0; k < half.size(); ++k) {
        HOLDS(half[k].label == points[k].label);
        HOLDS(half[k].value == points[k].value);
    }
}

void check_inverse(const m47::logger::SpanPoints& points) {
    QString reply;
    for (const m47::logger::SpanPoint& point : points) {
        // A point so named would end the list.
        if (point.label.startsWith(QLatin1String("OK")) || point.label.startsWith(u'\n')) return;
        reply +=
            point.label + u'\t' + m47::link::plain_text(point.value + 30) + QStringLiteral("\r\n");
    }
    const m47::logger::SpanPoints again = m47::logger::parse_span(reply + QStringLiteral("OK\r"));
    HOLDS(again.size() == points.size());
    for (std::size_t k = 0; k < points.size(); ++k) {
        HOLDS(again[k].label == points[k].label);
        HOLDS(std::fabs(again[k].value - points[k].value) <=
              1e-12 * (30 + std::fabs(points[k].value)));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString reply = fuzzing::Input(data, size).text();
    const m47::logger::SpanPoints points = m47::logger::parse_span(reply);
    check_points(reply, points);
    check_half(reply, points);
    check_inverse(points);
    return 0;
}
