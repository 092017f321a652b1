// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMenu>
#include <QToolButton>

namespace m47::shell {

/// The key in the status line that names the visit; its menu has what can be done with it.
class VisitMark : public QToolButton {
    Q_OBJECT
  public:
    explicit VisitMark(const QList<QAction*>& entries, QWidget* parent = nullptr);

    /// Says `text`, cut where it is long, and all of it in the tooltip with `more`. `pressing`:
    /// somebody should look at it.
    void say(const QString& text, const QString& more, bool pressing);

    QSize sizeHint() const override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void cut();

    QMenu* menu_;
    QString text_;
};

}  // namespace m47::shell
