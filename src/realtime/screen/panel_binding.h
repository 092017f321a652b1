// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "corrected_behaviour.h"
#include "joints.h"
#include "realtime_panel.h"

namespace Ui {
class Realtime;
}

namespace m47::realtime {

struct Measure;

/// The controls of the real-time screen that show and take the members of its panel, and what the
/// choices of corrected behaviour let be seen of them. Controls of the measures are those that the
/// table of measures names. What is joined outlives `joints`.
class PanelBinding {
  public:
    /// `ui` is the form of `screen`.
    PanelBinding(const QWidget* screen, Ui::Realtime& ui, RealtimePanel& panel,
                 const CorrectedBehaviour& choices, Joints& joints)
        : screen_(screen), ui_(ui), panel_(panel), choices_(choices), joints_(joints) {}

    /// Joins all of them.
    void join();

  private:
    void join_tuning();
    void join_acquisition();
    void join_measures();
    void join_lamps();
    void join_result(const Measure& measure);
    void join_limits();
    void join_frames();
    void join_keys();
    void join_menu();
    template <class Flags>
    void join_ticks(const char* name, Flags& flags);

    const QWidget* screen_;
    Ui::Realtime& ui_;
    RealtimePanel& panel_;
    const CorrectedBehaviour& choices_;
    Joints& joints_;
};

}  // namespace m47::realtime
