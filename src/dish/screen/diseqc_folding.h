// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QWidget>

#include "diseqc_panel.h"

namespace m47::dish {

/// Opens the DiSEqC panel when the pointer or the focus comes into it and folds it when they leave.
/// The frame `sat_opt` grows and shrinks with it and pushes what is beside and below.
class DiseqcFolding : public QObject {
  public:
    DiseqcFolding(QWidget* sat_opt, DiseqcPanel* diseqc);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void watch(QWidget* widget);
    void watch_frame(QEvent::Type type);
    void pointer_at(const QPoint& position);
    void diseqc_MouseMove();
    void sat_opt_MouseMove();
    void focus_changed(const QWidget* now);
    void show_state(DiseqcState state);
    void settle();

    QWidget* sat_opt_;
    DiseqcPanel* diseqc_;
    DiseqcState state_ = DiseqcState::folded;
    bool focus_inside_ = false;
    bool folding_ = false;
};

}  // namespace m47::dish
