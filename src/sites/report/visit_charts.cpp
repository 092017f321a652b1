// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_charts.h"

#include <QDateTime>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <limits>

#include "quantity_words.h"
#include "trend_limits.h"
#include "verdict_colours.h"

namespace m47::sites {
namespace {

using measurement::Quantity;
using measurement::RangeMark;
using measurement::Reading;

/// So many charts stand side by side.
constexpr qsizetype kBeside = 2;
// In units of 1/96 inch.
constexpr double kAxisWidth = 40;
constexpr double kPointRadius = 2.5;
constexpr double kLabelGap = 4;
constexpr int kLabelPixels = 9;
constexpr int kMostTicks = 5;

const QColor kAxis(0x66, 0x66, 0x66);
const QColor kGrid(0xDD, 0xDD, 0xDD);
const QColor kCurve(0x00, 0x5A, 0x9C);

bool is_measured(const ReportedProgram& program, Quantity quantity) {
    return std::ranges::any_of(program.rows, [quantity](const VisitMeasurement& row) {
        return row.measurement.reading(quantity).measured();
    });
}

std::optional<trend::TrendRange> limits_of(const ReportedProgram& program, Quantity quantity) {
    const auto& held = program.rows.back().measurement.limits[static_cast<std::size_t>(quantity)];
    if (!held || (!held->minimum && !held->maximum)) return {};
    constexpr double kOpen = std::numeric_limits<double>::infinity();
    return trend::TrendRange{held->minimum.value_or(-kOpen), held->maximum.value_or(kOpen)};
}

/// 1, 2 or 5 times a power of ten, so that at most kMostTicks lie on `span`.
double tick_step(double span) {
    const double power = std::pow(10, std::floor(std::log10(span / kMostTicks)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (span / (factor * power) <= kMostTicks) return factor * power;
    return 10 * power;
}

/// One quantity of one program over time.
class SmallChart {
  public:
    SmallChart(const ReportedProgram& program, Quantity quantity, const Texts& texts)
        : program_(program),
          quantity_(quantity),
          title_(quantity_text(quantity, texts)),
          limits_(limits_of(program, quantity)) {
        for (const VisitMeasurement& row : program.rows) take(row);
        values_ = trend::value_axis(quantity, values_, limits_);
        // A single visit stands in the middle.
        constexpr double kDay = 86'400;
        if (time_.span() <= 0) time_ = {time_.lower - kDay, time_.upper + kDay};
        title_ += quantity == Quantity::level ? unit() : QString();
        title_ += quantity == Quantity::mer ? QStringLiteral(" (dB)") : QString();
    }

    void draw(QPainter& painter, QSizeF size) {
        QFont font = painter.font();
        font.setBold(false);
        font.setPixelSize(kLabelPixels);
        painter.setFont(font);
        line_ = QFontMetricsF(font).height();
        plot_ = QRectF(kAxisWidth, line_ + kLabelGap, size.width() - kAxisWidth - 2 * kLabelGap,
                       size.height() - 2 * line_ - 3 * kLabelGap);
        draw_axes(painter);
        draw_limits(painter);
        draw_points(painter);
    }

  private:
    double scaled(double value) const {
        return measurement::is_error_rate(quantity_) ? std::log10(std::max(value, 1e-9)) : value;
    }
    double x_of(const VisitMeasurement& row) const {
        return plot_.left() + (row.instant.utc - time_.lower) / time_.span() * plot_.width();
    }
    double y_of(double value) const {
        const double low = scaled(values_->lower);
        return plot_.bottom() -
               (scaled(value) - low) / (scaled(values_->upper) - low) * plot_.height();
    }
    QString unit() const {
        const QString name = measurement::unit_text(program_.rows.back().measurement.unit);
        return name.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(name);
    }

    void take(const VisitMeasurement& row) {
        const double moment = row.instant.utc;
        if (first_) time_ = {moment, moment};
        first_ = false;
        time_ = {std::min(time_.lower, moment), std::max(time_.upper, moment)};
        const Reading& reading = row.measurement.reading(quantity_);
        if (!reading.measured()) return;
        const auto value = static_cast<double>(reading.value);
        if (!values_) values_ = trend::TrendRange{value, value};
        values_ =
            trend::TrendRange{std::min(values_->lower, value), std::max(values_->upper, value)};
    }

    void draw_value(QPainter& painter, double value, const QString& text) {
        const double y = y_of(value);
        painter.setPen(QPen(kGrid, 0.5));
        painter.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
        painter.setPen(Qt::black);
        painter.drawText(QRectF(0, y - line_ / 2, kAxisWidth - kLabelGap, line_),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, text);
    }

    void draw_axes(QPainter& painter) {
        painter.setPen(Qt::black);
        painter.drawText(QRectF(0, 0, plot_.right(), line_), Qt::AlignLeft | Qt::AlignTop, title_);
        if (measurement::is_error_rate(quantity_)) {
            const int top = static_cast<int>(std::floor(scaled(values_->upper)));
            for (int k = static_cast<int>(std::ceil(scaled(values_->lower))); k <= top; ++k)
                draw_value(painter, std::pow(10, k), QStringLiteral("1E%1").arg(k));
        } else {
            const double step = tick_step(values_->span());
            // Counted, as a step can be nothing beside a value that is no meter's.
            const double first = std::ceil(values_->lower / step);
            for (int k = 0; k <= kMostTicks && (first + k) * step <= values_->upper; ++k)
                draw_value(painter, (first + k) * step,
                           QString::number((first + k) * step, 'g', 4));
        }
        painter.setPen(QPen(kAxis, 0.75));
        painter.drawLine(plot_.topLeft(), plot_.bottomLeft());
        painter.drawLine(plot_.bottomLeft(), plot_.bottomRight());
        draw_dates(painter);
    }

    /// A date under each visit that has room for it, the last one always.
    void draw_dates(QPainter& painter) {
        const double width = QFontMetricsF(painter.font()).horizontalAdvance(day(0)) + kLabelGap;
        double free = plot_.right() + 2 * kLabelGap;
        for (auto row = program_.rows.rbegin(); row != program_.rows.rend(); ++row) {
            const double right = std::min(x_of(*row) + width / 2, plot_.right() + 2 * kLabelGap);
            painter.setPen(QPen(kAxis, 0.75));
            painter.drawLine(QPointF(x_of(*row), plot_.bottom()),
                             QPointF(x_of(*row), plot_.bottom() + 3));
            if (right > free + 0.5) continue;
            free = right - width;
            painter.setPen(Qt::black);
            painter.drawText(QRectF(free, plot_.bottom() + kLabelGap, width, line_),
                             Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip,
                             day(row->instant.wall()));
        }
    }

    static QString day(double wall) {
        return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(wall), Qt::UTC)
            .toString(QStringLiteral("yyyy-MM-dd"));
    }

    void draw_limits(QPainter& painter) {
        if (!limits_) return;
        painter.setPen(QPen(verdict_colour(false), 0.75, Qt::DashLine));
        for (const double limit : {limits_->lower, limits_->upper})
            if (limit > values_->lower && limit < values_->upper)
                painter.drawLine(QPointF(plot_.left(), y_of(limit)),
                                 QPointF(plot_.right(), y_of(limit)));
    }

    /// A visit without a reading breaks the line; a value out of its limits is red.
    void draw_points(QPainter& painter) {
        std::optional<QPointF> before;
        painter.setRenderHint(QPainter::Antialiasing);
        for (const VisitMeasurement& row : program_.rows) {
            const Reading& reading = row.measurement.reading(quantity_);
            const std::optional<QPointF> point =
                reading.measured()
                    ? std::optional(QPointF(x_of(row), y_of(static_cast<double>(reading.value))))
                    : std::nullopt;
            if (before && point) {
                painter.setPen(QPen(kCurve, 1.25));
                painter.drawLine(*before, *point);
            }
            before = point;
        }
        for (const VisitMeasurement& row : program_.rows) draw_point(painter, row);
    }

    void draw_point(QPainter& painter, const VisitMeasurement& row) {
        const Reading& reading = row.measurement.reading(quantity_);
        if (!reading.measured()) return;
        const auto value = static_cast<double>(reading.value);
        const bool is_out = limits_ && (value <= limits_->lower || value >= limits_->upper);
        const QColor colour = is_out ? verdict_colour(false) : kCurve;
        painter.setPen(QPen(colour, 1));
        // What lay beyond the meter's range is not known as well as the rest.
        painter.setBrush(reading.mark == RangeMark::none ? colour : QColor(Qt::white));
        painter.drawEllipse(QPointF(x_of(row), y_of(value)), kPointRadius, kPointRadius);
    }

    const ReportedProgram& program_;
    Quantity quantity_;
    QString title_;
    std::optional<trend::TrendRange> limits_;
    std::optional<trend::TrendRange> values_;
    trend::TrendRange time_;
    QRectF plot_;
    double line_ = 0;
    bool first_ = true;
};

}  // namespace

QList<report::DrawTrend> visit_charts(const ReportedProgram& program, QPainter& painter,
                                      const Texts& texts) {
    QList<report::DrawTrend> drawings;
    for (const Quantity quantity : {Quantity::mer, Quantity::level, Quantity::ber})
        if (drawings.size() < kBeside && is_measured(program, quantity))
            drawings += [&program, &painter, &texts, quantity](QSizeF room) {
                SmallChart(program, quantity, texts).draw(painter, room);
            };
    return drawings;
}

}  // namespace m47::sites
