// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dish_panel.h"
#include "link.h"

namespace m47::dish {

/// The motor commands of the meter, by the index of their item in `dsqmtr`.
enum MotorItem {
    kStopMotor,
    kStartEast,
    kStartWest,
    kDisableLimits,
    kDeleteEastLimit,
    kDeleteWestLimit,
    kStorePosition,
    kRecallPosition,
    kDriveEast,
    kDriveWest,
    kRecalculatePositions,
    kResetMotor,
};

/// What the real-time screen sends to the satellite installation: switching commands of DiSEqC 1.1
/// and motor commands of DiSEqC 1.2. The meter builds the bus messages itself from the numbers it
/// is told. No handler checks the answer.
class Diseqc {
  public:
    Diseqc(link::Link& link, DishPanel& panel, DishState& state)
        : link_(link), panel_(panel), state_(state) {}

    /// Sends entry `index` of kDiseqcCommands.
    void diseqc_cmd_Click(int index);

    /// Sends the motor command of item `index`, a MotorItem; any other sends nothing. A box whose
    /// content goes with the command is brought into its range first, confirmed or not.
    void dsqmtr_Click(int index);

    // The boxes act on kEnterKey only, and send nothing: the entry becomes two digits, 01 to 99.
    void storesat_KeyPress(int key);
    void recallsat_KeyPress(int key);
    void starteast_s_KeyPress(int key);
    void starteast_t_KeyPress(int key);
    void startwest_s_KeyPress(int key);
    void startwest_t_KeyPress(int key);

    // Which box of a direction its motor command uses, the steps ("_s") or the time ("_t").
    void starteast_s_Click();
    void starteast_t_Click();
    void startwest_s_Click();
    void startwest_t_Click();

  private:
    void drive(const QString& command, bool limit_set, QString& steps, QString& time);

    link::Link& link_;
    DishPanel& panel_;
    DishState& state_;
};

}  // namespace m47::dish
