// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QObject>
#include <QWidget>
#include <functional>

namespace m47::shell {

/// F1 in a dialog and in every other window than the main one, whose menu has that key itself.
class HelpKey : public QObject {
    Q_OBJECT
  public:
    /// `open` is given the page that the window names by its property "manual_page", which may be
    /// empty.
    HelpKey(QWidget& main_window, std::function<void(const QString& page)> open);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget& main_window_;
    std::function<void(const QString& page)> open_;
};

}  // namespace m47::shell
