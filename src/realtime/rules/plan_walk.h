// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "database.h"
#include "link.h"
#include "modes.h"
#include "realtime_panel.h"

namespace m47::realtime {

/// Which plan is open and which of its programs is shown; nothing of it is sent to the meter. Each
/// member that goes to another plan or program is a Fault where that cannot be read, and the one
/// before stays then.
class PlanWalk {
  public:
    PlanWalk(link::Link& link, db::Database& database, RealtimePanel& panel, RealtimeState& state,
             Modes& modes)
        : link_(link), database_(database), panel_(panel), state_(state), modes_(modes) {}

    /// Opens the first plan of the list.
    void first_plan();
    /// Opens the plan `name`. False, and nothing changed but the presentation, where there is none.
    bool choose_plan(const QString& name);
    // The plan beside the present one; at the end of the list it stays, and that is false.
    bool previous_plan();
    bool next_plan();
    // The monitored program beside the present one; where there is none, the last one that way, and
    // that is false.
    bool previous_program();
    bool next_program();

    /// The programs of the open plan; a Fault where none is open.
    db::Recordset& programs();
    /// The rows that take part in a pass, as the database has them now.
    std::vector<db::Bookmark> monitored();
    int monitored_programs() { return static_cast<int>(monitored().size()); }

  private:
    enum class Direction { back, forward };

    void present_plan();
    void open_programs();
    void open_plan();
    /// One row on; true where the set ends there and stays on its last row.
    static bool step(db::Recordset& set, Direction direction);
    bool move_plan(Direction direction);
    bool move_program(Direction direction);

    link::Link& link_;
    db::Database& database_;
    RealtimePanel& panel_;
    RealtimeState& state_;
    Modes& modes_;
};

}  // namespace m47::realtime
