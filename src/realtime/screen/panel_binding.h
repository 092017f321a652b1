// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QRadioButton>
#include <functional>
#include <vector>

#include "control_array.h"
#include "corrected_behaviour.h"
#include "lamp.h"
#include "realtime_panel.h"

namespace m47 {

/// Ties each member of the panel to the control of its name: what the user enters goes into the
/// panel as it is entered, show() puts the panel onto the screen. Knows no handler.
class PanelBinding {
  public:
    PanelBinding(QMainWindow* screen, RealtimePanel& panel, const CorrectedBehaviour& choices);

    void show();

  private:
    void bind_text(const char* name, QString& text);
    void bind_result(const char* name, const QString& text);
    void bind_list(const char* name, int& index);
    void bind_visible(const char* name, const bool& visible);
    void bind_enabled(const char* name, const bool& enabled);
    template <class Button, class Flags>
    void bind_buttons(const char* name, Flags& flags);
    void bind_lamps();
    void bind_tuning();
    void bind_diseqc();
    void bind_box_colour(const char* name, const LampColour& colour);
    void bind_measures();
    void bind_frames();
    void bind_keys();
    void bind_menu();
    template <class Control>
    Control* control(const char* name) const;

    QMainWindow* screen_;
    RealtimePanel& panel_;
    const CorrectedBehaviour& choices_;
    std::vector<std::function<void()>> shows_;
};

}  // namespace m47
