// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace m47::realtime {

/// The cells of the measurement page: "PASS" and "FAIL" stand in the colours they have in the
/// report, or in lighter ones where the page is dark.
class VerdictDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace m47::realtime
