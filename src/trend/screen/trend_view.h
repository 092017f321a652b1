// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QStackedWidget>
#include <QWidget>

#include "page_model.h"
#include "part.h"
#include "program_state.h"
#include "texts.h"
#include "trend_chart.h"

namespace m47::trend {

/// The tab "Trend": what the measurement page holds, over time. It looks at the page only while it
/// is seen: a run that nobody watches pays nothing for it.
class TrendView : public QWidget {
    Q_OBJECT
  public:
    explicit TrendView(QWidget* parent = nullptr);
    ~TrendView() override;

    /// Plots `page` with the limits that `limits` gives at the time; page and program outlive the
    /// view.
    void set_page(const measurement::PageModel* page, TrendLimits limits,
                  const ProgramState& program);

    /// Captions and tooltips in the language in use now.
    void set_texts(const Texts& texts);

    /// The limits may have changed.
    void limits_changed();

    /// Saves to `path`, in the kind that its suffix says; a failure shows one message box.
    void save(const QString& path);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    QAction* add_action(const char* name);
    QAction* add_toggle(const char* name);
    QAction* add_list(QComboBox* list);
    void make_bar();
    void make_plot();
    void page_replaced();
    void catch_up();
    void list_programs();
    void choose();
    TrendChoice ticked() const;
    void list_charts(const std::vector<std::size_t>& charts, bool needed);
    void ask_and_save();

    Texts texts_;
    const measurement::PageModel* page_ = nullptr;
    const ProgramState* program_ = nullptr;
    TrendLimits limits_;
    TrendData data_;
    bool replaced_ = false;
    QComboBox* programs_;
    std::array<QAction*, measurement::kQuantities.size()> quantities_{};
    QComboBox* first_;  ///< the chart to be shown where there is no room for all
    QAction* first_shown_ = nullptr;
    QAction* follow_ = nullptr;
    QAction* reset_ = nullptr;
    QAction* save_ = nullptr;
    QStackedWidget* pages_;
    QLabel* nothing_;
    Part part_{kTrendPart};
    /// Made when the tab is first seen; null before, and where what draws is missing.
    TrendChart* plot_ = nullptr;
};

}  // namespace m47::trend
