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
    /// A dimmed lamp is an empty ring around a point of its colour: it tells of what was before.
    void set_dimmed(bool dimmed);
    bool dimmed() const { return dimmed_; }
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor colour_{QColor::fromRgb(kGrey)};
    bool dimmed_ = false;
};

}  // namespace m47
