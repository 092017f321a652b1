// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollArea>

namespace m47::plans {

/// The boxes of the record: as wide as they want to be, and reached by scrolling where a window is
/// smaller.
class RecordArea : public QScrollArea {
  public:
    explicit RecordArea(QWidget* boxes);

  protected:
    QSize sizeHint() const override;
};

}  // namespace m47::plans
