// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace m47::shell {

/// The red dot in the status line while the line is recorded.
class RecordingMark : public QWidget {
    Q_OBJECT
  public:
    explicit RecordingMark(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace m47::shell
