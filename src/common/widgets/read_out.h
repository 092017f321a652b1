// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace m47 {

/// A measured value in large digits, framed as what is read and not typed. Dimmed it is that of a
/// program before.
class ReadOut : public QLabel {
    Q_OBJECT
  public:
    explicit ReadOut(QWidget* parent = nullptr);

    void set_dimmed(bool dimmed);
    bool dimmed() const { return dimmed_; }
    /// Takes its digits from `font`, that of the texts beside it.
    void follow(const QFont& font);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool dimmed_ = false;
};

}  // namespace m47
