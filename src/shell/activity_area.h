// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QStatusBar>

#include "activity.h"

namespace m47::shell {

/// The part of the status line that says what is being done at the meter, how long it still takes,
/// and has the key that stops it. Made when something is done for the first time.
class ActivityArea : public QWidget {
    Q_OBJECT
  public:
    /// Both outlive the area.
    ActivityArea(link::Activity& activity, const Texts& texts, QWidget* parent = nullptr);

    /// Shows what is done now; nothing of the area is to be seen where nothing is.
    void show_activity();

  Q_SIGNALS:
    void stop_asked();

  private:
    link::Activity& activity_;
    const Texts& texts_;
    QLabel* what_;
    QPushButton* stop_;
};

}  // namespace m47::shell
