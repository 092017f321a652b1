// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <memory>
#include <vector>

#include "trend_chart.h"
#include "trend_panel.h"
#include "trend_window.h"

namespace m47::trend {

/// The charts of the chosen quantities one below the other over one time axis. The wheel and
/// dragging move through time, with Ctrl the values of the chart under the pointer; the arrow keys,
/// "+", "-" and Home do it by keyboard.
class TrendPlot : public QCustomPlot, public TrendChart {
  public:
    /// The most curves that are drawn at once: the latest programs.
    static constexpr std::size_t kMostCurves = 100;

    TrendPlot(const TrendData& rows, TrendLimits limits, const Texts& texts);
    ~TrendPlot() override;

    QWidget* widget() override { return this; }
    bool follows() const override { return window_.follows(); }
    void set_follows(bool follows) override;
    void choose(const TrendChoice& choice) override;
    void rows_came() override;
    void rows_replaced() override;
    void limits_changed() override { replot(rpQueuedReplot); }
    void reset_zoom() override;
    void name_panels() override;
    bool draw_picture(QIODevice& file) override;
    bool draw_page(QIODevice& file) override;
    std::shared_ptr<QPainter> painter() override;
    void draw(QPainter& painter, QSize room) override;

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void build_panels();
    /// Runs `paint`, which draws the plot, in the colours of paper and with what is shown now.
    void on_paper(const std::function<void()>& paint);
    void set_colours(const TrendColours& colours);
    void sample();
    void fit_times();
    void show_window();
    void range_chosen(const QCPRange& range);
    void direct_mouse(const QPointF& place, Qt::KeyboardModifiers keys);
    std::vector<TrendCurve> curves() const;
    void show_value(const QPoint& place);
    QString value_at(const TrendPanel& panel, const QPoint& place) const;

    const TrendData& data_;
    TrendLimits limits_;
    const Texts& texts_;
    TrendChoice choice_;
    TrendWindow window_;
    std::unique_ptr<QCPMarginGroup> edges_;
    std::vector<std::unique_ptr<TrendPanel>> panels_;
    QLabel* value_;
    bool moving_ = false;
};

}  // namespace m47::trend
