// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <functional>

#include "link_view.h"

namespace m47 {

/// What the user would see of the link, for a test to look at.
class FakeLinkView : public link::LinkView {
  public:
    bool bar_shown = false;
    /// Every value that the progress bar was set to, the current one last.
    QList<int> progress_values{0};
    bool hourglass = false;
    QString state_text;
    bool state_connected = false;
    int pumps = 0;
    /// Runs in each pump, as windows that repaint would.
    std::function<void()> on_pump;

    void show_progress_bar() override { bar_shown = true; }
    void set_progress(int value) override { progress_values += value; }
    int progress() const { return progress_values.last(); }
    void set_hourglass(bool on) override { hourglass = on; }
    void set_port_state(const QString& text, bool connected) override {
        state_text = text;
        state_connected = connected;
    }
    void pump() override {
        ++pumps;
        if (on_pump) on_pump();
    }
};

}  // namespace m47
