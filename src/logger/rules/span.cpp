// SPDX-License-Identifier: GPL-3.0-or-later
#include "span.h"

#include <QStringView>
#include <optional>

#include "commands.h"
#include "numbers.h"

namespace m47::logger {
namespace {

constexpr double kDetectorOffset = 30;
/// Far finer than the meter measures: with more, 75.4 less 30 would read 45.400000000000006.
constexpr int kShownDecimals = 9;

/// Takes the first line, its CR and an LF behind that off the front of `rest`. Nothing when no CR
/// follows any more.
std::optional<QStringView> take_span_line(QStringView& rest) {
    const qsizetype end = rest.indexOf(u'\r');
    if (end < 0) return {};
    const QStringView line = rest.first(end);
    rest = rest.sliced(end + 1);
    if (rest.startsWith(u'\n')) rest = rest.sliced(1);
    return line;
}

std::optional<SpanPoint> span_point(QStringView line) {
    const qsizetype tab = line.indexOf(u'\t');
    if (tab < 0) return {};
    return SpanPoint{line.first(tab).toString(),
                     link::meter_value(line.sliced(tab + 1).toString()) - kDetectorOffset};
}

}  // namespace

SpanPoints parse_span(const QString& reply) {
    SpanPoints points;
    QStringView rest(reply);
    while (points.size() < kSpanRows && !rest.startsWith(QLatin1String("OK"))) {
        const auto line = take_span_line(rest);
        if (!line) break;
        if (auto point = span_point(*line)) points.push_back(std::move(*point));
    }
    return points;
}

SpanPoints read_span(link::Link& link) {
    if (!link.send(link::command::kTabbedOutput)) return {};
    const std::optional<QString> span = link.ask(link::command::kSpan);
    return span ? parse_span(*span) : SpanPoints();
}

QString span_point_text(const SpanPoints& points, std::size_t row) {
    if (row < 1 || row > points.size()) return {};
    const SpanPoint& point = points[row - 1];
    const double value = QString::number(point.value, 'f', kShownDecimals).toDouble();
    return point.label + u' ' + link::plain_text(value);
}

}  // namespace m47::logger
