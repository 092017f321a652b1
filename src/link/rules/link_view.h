// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::link {

/// The steps of the progress bar; behind the last it begins anew.
inline constexpr int kProgressSteps = 100;

/// What the user sees of the link: progress bar `pbar1`, pointer, status label `port_state`.
class LinkView {
  public:
    virtual ~LinkView() = default;

    virtual void show_progress_bar() = 0;
    /// 0 to kProgressSteps
    virtual void set_progress(int value) = 0;

    /// The hourglass pointer while true.
    virtual void set_hourglass(bool on) = 0;

    /// The status text, green when connected and red when not. The reason of a fault is asked from
    /// the link by whoever shows it.
    virtual void set_port_state(const QString& text, bool connected) = 0;

    /// Lets the windows repaint and answer the desktop. No user's action and no timer is acted on.
    virtual void pump() = 0;
};

}  // namespace m47::link
