// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollArea>

namespace m47 {

/// What a screen shows: as large as it wants to be where there is room, else it scrolls.
class ScrolledBody : public QScrollArea {
    Q_OBJECT
  public:
    explicit ScrolledBody(QWidget* parent = nullptr);

    QSize sizeHint() const override;
};

}  // namespace m47
