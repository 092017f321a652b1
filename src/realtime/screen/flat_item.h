// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

namespace m47::realtime {

/// A push button as flat and narrow as a menu entry, marked while the pointer or the focus is on
/// it. It keeps no state: the motor gets its command at every click.
class FlatItem : public QPushButton {
    Q_OBJECT
  public:
    explicit FlatItem(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace m47::realtime
