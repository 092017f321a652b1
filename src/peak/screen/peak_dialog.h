// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <functional>

#include "link.h"
#include "peak_curve.h"
#include "peak_run.h"
#include "run_dialog.h"
#include "texts.h"

namespace m47::peak {

/// What the dialog works with; all that is named here outlives it.
struct PeakWork {
    link::Link& link;
    const Texts& texts;
    QStringList tuning{};  ///< commands that bring the meter to what the screen shows
    int number = 1;        ///< the position proposed for storing
    /// Stores the place of the dish under a number; true when the meter has taken it.
    std::function<bool(int number)> store{};
};

/// "Find the peak…": asks before anything moves, shows the levels while the dish turns, and stores
/// the place where it is told to. While the dish turns Esc, Stop and closing any window stop it.
class PeakDialog : public RunDialog {
    Q_OBJECT
  public:
    PeakDialog(PeakWork work, QWidget* parent);

    /// Shows how a search has ended, as it does behind one.
    void show_end(const PeakOutcome& outcome);
    /// Shows one reading of a search.
    void show_reading(const Taken& taken);

  private:
    void enable(bool running) override;
    void stop_run() override;
    void build();
    void build_span(QBoxLayout* layout);
    void build_keys(QBoxLayout* layout);
    void build_store(QBoxLayout* keys);
    void start();
    bool may_move();
    void search();
    void store();

    PeakWork work_;
    QComboBox* span_ = nullptr;
    PeakCurve* curve_ = nullptr;
    QLabel* state_ = nullptr;
    QPushButton* start_ = nullptr;
    QPushButton* store_ = nullptr;
    QComboBox* number_ = nullptr;
    int readings_ = 0;
};

}  // namespace m47::peak
