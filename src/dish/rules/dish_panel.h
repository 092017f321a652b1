// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

#include "lamp_colour.h"

namespace m47::dish {

/// What the frame of the motor shows, without a screen: each member is the content of the control
/// of that name. Positions and amounts of two digits; of each pair the box in red is in use.
struct DishPanel {
    QString storesat = QStringLiteral("01");
    QString recallsat = QStringLiteral("01");
    QString starteast_s = QStringLiteral("01");
    QString starteast_t = QStringLiteral("01");
    QString startwest_s = QStringLiteral("01");
    QString startwest_t = QStringLiteral("01");
    LampColour starteast_s_colour = LampColour::red;
    LampColour starteast_t_colour = LampColour::green;
    LampColour startwest_s_colour = LampColour::red;
    LampColour startwest_t_colour = LampColour::green;

    /// Shows the panel as it stands, at once; a plain test leaves it empty.
    std::function<void()> on_repaint;
    void repaint() const {
        if (on_repaint) on_repaint();
    }
};

/// What the rules of the motor keep and the user does not see.
struct DishState {
    bool east_limit_set = false;  ///< the motor drives east by `starteast_t`, not `starteast_s`
    bool west_limit_set = false;  ///< the same for the west
};

}  // namespace m47::dish
