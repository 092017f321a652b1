// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "texts.h"
#include "trend_data.h"
#include "trend_panel.h"
#include "trend_window.h"

namespace m47::trend {

/// What the trend plots: whose rows, which quantities, which limits.
struct TrendChoice {
    /// The program whose curve is shown, by its place in TrendData; negative for all of them.
    int program = -1;
    std::array<bool, measurement::kQuantities.size()> quantities{true, true, true};
};

/// The charts of the chosen quantities one below the other over one time axis. The wheel and
/// dragging move through time, with Ctrl the values of the chart under the pointer; the arrow keys,
/// "+", "-" and Home do it by keyboard.
class TrendPlot : public QCustomPlot {
  public:
    /// The most curves that are drawn at once: the latest programs.
    static constexpr std::size_t kMostCurves = 100;

    TrendPlot(const TrendData& rows, TrendLimits limits, const Texts& texts,
              QWidget* parent = nullptr);
    ~TrendPlot() override;

    /// Called when the user's zooming and panning has changed whether the plot follows.
    std::function<void()> on_moved;

    const TrendWindow& window() const { return window_; }

    void choose(const TrendChoice& choice);
    /// The data has gained rows.
    void rows_came();
    /// The data was made anew: nothing of what was zoomed to is left.
    void rows_replaced();
    void set_follows(bool follows);
    /// Shows all there is again, values as well.
    void reset_zoom();
    /// Takes its captions in the language in use now.
    void name_panels();
    /// Runs `paint`, which draws the plot, in the colours of paper and with what is shown now.
    void on_paper(const std::function<void()>& paint);

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void build_panels();
    void set_colours(const TrendColours& colours);
    void sample();
    void show_window();
    void range_chosen(const QCPRange& range);
    void direct_mouse(const QPointF& place, Qt::KeyboardModifiers keys);
    std::vector<TrendCurve> curves() const;

    const TrendData& data_;
    TrendLimits limits_;
    const Texts& texts_;
    TrendChoice choice_;
    TrendWindow window_;
    std::unique_ptr<QCPMarginGroup> edges_;
    std::vector<std::unique_ptr<TrendPanel>> panels_;
    bool moving_ = false;
};

}  // namespace m47::trend
