// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QWidget>
#include <functional>

namespace m47::plans {

/// Runs `left` when the user goes from a box to another control. Another window, a menu or an open
/// list in front of the box is no leaving.
class LeaveFilter : public QObject {
  public:
    LeaveFilter(QWidget* box, std::function<void()> left);
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::function<void()> left_;
};

/// Runs `pressed` at every key in a list that would type something, and swallows the key. The keys
/// that move and leave are left alone.
class TypedKeyFilter : public QObject {
  public:
    TypedKeyFilter(QWidget* list, std::function<void()> pressed);
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::function<void()> pressed_;
};

}  // namespace m47::plans
