// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QKeyEvent>
#include <QObject>
#include <QString>
#include <QWidget>

namespace m47 {

/// Swallows every typed character of a text box or list that is not in `accepted`. Backspace, the
/// keys that move and edit, and pasting are left alone.
class KeyFilter : public QObject {
  public:
    KeyFilter(QWidget* box, const QString& accepted);
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool refuses(const QKeyEvent& key) const;

    QString accepted_;
};

/// Leaves a list only the keys that open it or leave it: its entry changes by choosing alone.
class ListKeyFilter : public QObject {
  public:
    explicit ListKeyFilter(QComboBox* list);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Keeps the mouse wheel from changing a list that it merely passes over: a turn of the wheel must
/// not switch the supply of a dish.
class WheelGuard : public QObject {
  public:
    explicit WheelGuard(QComboBox* list);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace m47
