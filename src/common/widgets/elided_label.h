// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace m47 {

/// A label for a path: where it does not fit its middle is left out, the text itself stays whole.
class ElidedLabel : public QLabel {
    Q_OBJECT
  public:
    explicit ElidedLabel(QWidget* parent = nullptr);
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace m47
