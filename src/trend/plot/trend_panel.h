// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "custom_plot.h"
#include "trend_chart.h"
#include "trend_colours.h"
#include "trend_legend.h"
#include "trend_limits.h"
#include "trend_sampling.h"

namespace m47::trend {

/// A series to be drawn and the number that gives it its colour.
struct TrendCurve {
    const TrendSeries* series;
    std::size_t number;
};

/// The chart of one quantity: an axis rect, its legend, a curve for each program, the points that
/// failed and the bands outside of the limits. What it makes belongs to the plot.
class TrendPanel {
  public:
    /// Puts the chart as a further row at the bottom of `plot`.
    TrendPanel(QCustomPlot* plot, measurement::Quantity quantity);

    measurement::Quantity quantity() const { return quantity_; }
    QCPAxisRect* axis_rect() const { return rect_; }
    QCPAxis* time_axis() const { return rect_->axis(QCPAxis::atBottom); }
    QCPAxis* value_axis() const { return rect_->axis(QCPAxis::atLeft); }
    TrendLegend* legend() const { return legend_; }

    void set_colours(const TrendColours& colours, const QFont& font);

    /// Draws the curves as seen in `shown` on `columns` columns of pixels, and what the legend says
    /// of them.
    void show_curves(std::span<const TrendCurve> curves, TrendRange shown, int columns);

    /// What the legend calls `series`.
    QString name_of(const TrendSeries& series) const;

    /// A line at each limit, and a band beyond it.
    void show_limits(const std::optional<TrendRange>& limits);

    /// What the time axis is written in suits a stretch of so many seconds.
    void show_span(double seconds);
    /// Leaves out times that would be written over one another; whether that changed the axis.
    bool fit_times();

    /// Keeps the value axis as the user has just set it; release_values() lets it follow what is in
    /// sight again.
    void hold_values() { held_ = true; }
    void release_values() { held_ = false; }

  private:
    struct Drawn {
        QCPGraph* line;
        QCPGraph* dots;
    };
    QCPGraph* add_graph();
    QCPItemRect* add_band();
    QCPItemStraightLine* add_limit_line();
    static void place_limit_line(QCPItemStraightLine* line, double value);
    void draw_failed(const std::vector<TrendSpot>& failed);
    bool times_overlap(QCPAxisTicker& ticker) const;
    void draw_curve(const Drawn& drawn, const TrendSamples& samples, const QColor& colour);

    QCustomPlot* plot_;
    measurement::Quantity quantity_;
    QCPAxisRect* rect_;
    TrendLegend* legend_;
    std::vector<Drawn> drawn_;
    QCPGraph* failed_;
    QCPItemRect* below_;
    QCPItemRect* above_;
    QCPItemStraightLine* lower_line_;
    QCPItemStraightLine* upper_line_;
    std::optional<TrendRange> limits_;
    TrendColours colours_;
    bool held_ = false;
    bool units_differ_ = false;  ///< among the curves shown
};

}  // namespace m47::trend
