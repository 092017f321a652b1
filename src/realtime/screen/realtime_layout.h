// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace Ui {
class Realtime;
}

namespace m47::realtime {

/// How the controls of the real-time screen stand: page beside or below them, rows of measures and
/// alarms level, the room of what is hidden kept. Follows a change of font or style.
class RealtimeLayout : public QObject {
  public:
    /// `ui` is the form of `screen`.
    RealtimeLayout(Ui::Realtime& ui, QWidget* screen);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void keep_rooms();
    void fit();
    void fit_boxes();
    void level_all_rows();

    Ui::Realtime& ui_;
    QWidget* screen_;
};

}  // namespace m47::realtime
