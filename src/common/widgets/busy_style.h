// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "contrast_style.h"

namespace m47 {

/// Draws buttons and keys whose clicks are dropped while the meter is waited for as if they were
/// disabled, without touching what the screens say of them.
class BusyStyle : public ContrastStyle {
  public:
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget = nullptr) const override;
};

}  // namespace m47
