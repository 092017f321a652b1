// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>

namespace m47::dish {

/// What the DiSEqC panel shows: nothing but its two options, the list of commands, or the motor.
enum class DiseqcState { folded, commands, motor };

/// The panel in one of its states; the sizes in logical pixels.
struct DiseqcLayout {
    QSize diseqc;
    QSize sat_opt;
    bool dsq11opt = false;
    bool dsq12opt = false;
};

DiseqcLayout diseqc_layout(DiseqcState state);

/// What the panel shows once it is open: `motor` when item 1 of `dsqopt` is selected.
DiseqcState opened_state(bool protocol_1_2);

}  // namespace m47::dish
