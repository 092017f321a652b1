// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "band_chart.h"
#include "band_colours.h"
#include "custom_plot.h"

namespace m47::band {

/// The levels of a band over frequency, the differences on an axis of their own. The wheel and
/// dragging move through the frequencies, with Ctrl through the levels; the arrow keys, "+", "-"
/// and Home do it by keyboard, and with Ctrl held, or Ctrl and Shift, take a marker along.
class BandPlot : public QCustomPlot, public BandChart {
  public:
    explicit BandPlot(QWidget* parent);

    QWidget* widget() override { return this; }
    void show_band(const BandPicture& picture, bool grows) override;
    bool reset_zoom() override;
    bool draw_picture(QIODevice& file) override;
    bool draw_page(QIODevice& file, const QString& title) override;

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    QCPGraph* graph(Trace trace) { return traces_[static_cast<std::size_t>(trace)]; }
    void make_traces();
    void make_legend();
    void make_markers();
    void show_ranges();
    void show_levels();
    void show_flags();
    void show_markers();
    void set_colours(const BandColours& colours);
    /// Runs `paint`, which draws the plot, in the colours of paper.
    void on_paper(const std::function<void()>& paint);
    void direct_mouse(const QPointF& place, Qt::KeyboardModifiers keys);
    void move_axis(double lower, double upper);
    void click(const QPoint& place, bool second);
    bool move_by_key(int key);

    BandPicture picture_;
    std::array<QCPGraph*, kTraces> traces_{};
    std::array<QCPItemLine*, kMarkers> lines_{};
    std::array<QCPItemText*, kMarkers> names_{};
    std::vector<QCPItemText*> flags_;
    BandColours colours_;
    QPoint pressed_;
    bool zoomed_ = false;
    bool levels_held_ = false;
    bool moving_ = false;
};

/// Makes the chart by means of the plotting library.
class BandPlots : public QObject, public BandCharts {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_BAND_CHARTS)
    Q_INTERFACES(m47::band::BandCharts)
  public:
    BandChart* make(QWidget* parent) override { return new BandPlot(parent); }
};

}  // namespace m47::band
