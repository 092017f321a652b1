// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include "texts.h"

namespace m47::plans {

/// The line below the record that offers back what was typed and not stored. No question: whoever
/// does not look at it goes on as ever.
class EditsBar : public QFrame {
    Q_OBJECT
  public:
    explicit EditsBar(const Texts& texts);

    /// Shows `text` and the key that puts back, which is called `key`.
    void offer(const QString& text, const QString& key);

  Q_SIGNALS:
    void put_back_asked();
    /// The user does not want them.
    void dismissed();

  private:
    QLabel* text_;
    QPushButton* put_back_;
    QToolButton* dismiss_;
};

}  // namespace m47::plans
