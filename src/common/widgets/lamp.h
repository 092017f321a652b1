// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>

namespace m47 {

// The exact colours of lamps and of the link's status.
inline constexpr QRgb kGrey = 0xFFC0C0C0;
inline constexpr QRgb kRed = 0xFFFF0000;
inline constexpr QRgb kGreen = 0xFF00FF00;

/// A round lamp in one exact colour.
class Lamp : public QWidget {
    Q_OBJECT
  public:
    explicit Lamp(QWidget* parent = nullptr);

    QColor colour() const { return colour_; }
    void set_colour(const QColor& colour);
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor colour_{QColor::fromRgb(kGrey)};
};

}  // namespace m47
