// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace m47::link {

/// Draws the list of ports in two columns: the number and what stands behind it. A number without a
/// device is dimmed, the port in use is bold.
class PortDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    /// What stands behind a number, as text, and whether it is the one in use.
    static constexpr int kDescriptionRole = Qt::UserRole + 1;
    static constexpr int kInUseRole = Qt::UserRole + 2;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace m47::link
