// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QStackedWidget>
#include <functional>
#include <vector>

#include "part.h"
#include "site_records.h"
#include "texts.h"
#include "trend_chart.h"

namespace m47::sites {

/// A program of a site over all its visits, with the limits that were in force last. What draws it
/// is loaded when it is first needed.
class VisitChartView : public QStackedWidget {
    Q_OBJECT
  public:
    explicit VisitChartView(QWidget* parent = nullptr);
    ~VisitChartView() override;

    /// Shows the last measurement of each visit among `rows`, which are of one program in the order
    /// of time; `texts` outlives this.
    void show_rows(const std::vector<VisitMeasurement>& rows, const Texts& texts);
    /// Shows all of it again; false where there is nothing to be shown.
    bool reset_zoom();
    /// How many visits are drawn.
    int visits() const { return visits_; }

    /// What was measured, in the order of its charts: the MER says most, then the level.
    std::vector<measurement::Quantity> measured() const;
    /// Whether there is room for all charts.
    bool has_room() const;
    /// The chart that stands first where there is no room for all.
    void begin_with(measurement::Quantity quantity);
    measurement::Quantity first() const { return first_; }
    /// Called when the charts, or the room for them, may have changed.
    std::function<void()> on_charts;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    bool make_chart(const Texts& texts);
    void choose();
    std::size_t room() const;
    std::optional<trend::TrendRange> limits(measurement::Quantity quantity) const;

    QLabel* nothing_;
    Part part_{trend::kTrendPart};
    trend::TrendData data_{{}, true};
    measurement::LimitsInForce limits_;
    measurement::Quantity first_ = measurement::Quantity::mer;
    int visits_ = 0;
    trend::TrendChart* chart_ = nullptr;  ///< null before the first rows, and without its part
};

}  // namespace m47::sites
