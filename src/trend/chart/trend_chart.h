// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtPlugin>
#include <array>
#include <functional>
#include <memory>

#include "measurement.h"
#include "texts.h"
#include "trend_data.h"

class QIODevice;
class QPainter;
class QWidget;

namespace m47::trend {

/// The least height, in pixels, at which a chart can be read.
inline constexpr int kLeastChart = 120;

/// The height of so many charts of the least height with their time axis, which is written in lines
/// of `line_height` pixels.
constexpr int height_of_charts(std::size_t charts, int line_height) {
    constexpr int kAroundChart = 16;
    constexpr int kTimeAxisGap = 16;
    return static_cast<int>(charts) * (kLeastChart + kAroundChart) + 2 * line_height + kTimeAxisGap;
}

/// What the trend plots: whose rows and which quantities.
struct TrendChoice {
    /// The program whose curve is shown, by its place in TrendData; negative for all of them.
    int program = -1;
    std::array<bool, measurement::kQuantities.size()> quantities{true, true, true};
};

/// The charts of the chosen quantities one below the other over one time axis, as whoever shows
/// them knows them.
class TrendChart {
  public:
    virtual ~TrendChart() = default;

    /// Called when the user's zooming and panning has changed whether the plot follows.
    std::function<void()> on_moved;

    /// What shows it, which takes the chart along when it goes.
    virtual QWidget* widget() = 0;
    /// Whether it goes along with the newest row.
    virtual bool follows() const = 0;
    virtual void set_follows(bool follows) = 0;

    virtual void choose(const TrendChoice& choice) = 0;
    /// The data has gained rows.
    virtual void rows_came() = 0;
    /// The data was made anew: nothing of what was zoomed to is left.
    virtual void rows_replaced() = 0;
    /// The limits may have changed.
    virtual void limits_changed() = 0;
    /// Shows all there is again, values as well.
    virtual void reset_zoom() = 0;
    /// Takes its captions in the language in use now.
    virtual void name_panels() = 0;

    /// A picture (PNG) or a page (PDF) of what is shown now, in the colours of paper. False when it
    /// cannot be written.
    virtual bool draw_picture(QIODevice& file) = 0;
    virtual bool draw_page(QIODevice& file) = 0;

    /// A painter that draw() can draw with, not begun yet.
    virtual std::shared_ptr<QPainter> painter() = 0;
    /// Draws all that `room` (pixels of the painter's) has place for, in the colours of paper.
    virtual void draw(QPainter& painter, QSize room) = 0;
};

/// The file of what makes the charts.
inline constexpr const char* kTrendPart = "m47-plot";

/// What makes the charts; the plotting library comes with it.
class TrendCharts {
  public:
    virtual ~TrendCharts() = default;

    /// A chart of `rows`, which outlive it as `texts` do. Belongs to the caller until its widget
    /// has a parent.
    virtual TrendChart* make(const TrendData& rows, TrendLimits limits, const Texts& texts) = 0;
};

}  // namespace m47::trend

#define M47_TREND_CHARTS "org.m47remote.TrendCharts/1"
Q_DECLARE_INTERFACE(m47::trend::TrendCharts, M47_TREND_CHARTS)
