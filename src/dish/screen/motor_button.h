// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

namespace m47::dish {

/// A push button of the motor: low, as there are twelve of them, with its caption at the left, as
/// its number leads it. It keeps no state: the motor gets its command at every click.
class MotorButton : public QPushButton {
    Q_OBJECT
  public:
    explicit MotorButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace m47::dish
