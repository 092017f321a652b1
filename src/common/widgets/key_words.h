// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolBar>

namespace m47 {

/// Words under the keys of a screen's toolbar, as the user wants them. Where the screen is too
/// narrow for all keys with their words, or too low, the bar shows pictures alone: no key is put
/// away for a word, and nothing else cut.
class KeyWords : public QObject {
  public:
    /// `bar` is that of `screen`.
    KeyWords(QToolBar* bar, QWidget* screen);

    void show(bool wanted);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void fit();

    QToolBar* bar_;
    QWidget* screen_;
    bool wanted_ = false;
    /// What the bar needs with its words; 0 where that has to be looked at anew.
    int width_with_words_ = 0;
};

}  // namespace m47
