// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "database.h"
#include "diseqc.h"
#include "link.h"
#include "oscillators.h"
#include "program_state.h"
#include "realtime_panel.h"
#include "tuning.h"

namespace m47::realtime {

/// How the real-time screen prepares the meter, changes between the analog and the digital
/// presentation and recalls stored programs.
class Modes {
  public:
    Modes(link::Link& link, ProgramState& program, db::Database& database, RealtimePanel& panel,
          RealtimeState& state, Tuning& tuning, dish::Diseqc& diseqc)
        : link_(link),
          program_(program),
          database_(database),
          panel_(panel),
          state_(state),
          tuning_(tuning),
          diseqc_(diseqc) {}

    /// The record sets of the plan in `grp_name`; none before crea_records_realtime.
    std::optional<db::Recordset> rs_programs;
    std::optional<db::Recordset> rs_config;

    /// Prepares the meter and the panel when the screen is opened.
    void Form_Load();
    /// Each time the screen comes to the front: back to the analog presentation, or to the one
    /// that it was left in where the user has chosen that.
    void Form_Activate();

    void analogmode();
    void digitalmode();

    /// Reads the satellite defaults back from the meter.
    void configurazione_prmt();

    /// Opens the record sets of the plan in `grp_name`, as it stands, and recalls its first
    /// program. A plan that does not exist, or has no programs or no oscillators, is a Fault.
    void crea_records_realtime();

    /// Reads anew which rows the open plan has, as other programs replace them; nothing where none
    /// is open. A plan without programs is a Fault. Where the database cannot be read the sets stay
    /// as they are.
    void reread_plan();

    /// Shows the current program where it is monitored; errors end it silently.
    void mostra_record_realtime();

    /// The channel bandwidth of the current program, MHz; 0 where it has none.
    double bandwidth_of_program() const;
    /// Puts it into its box; a program without one changes nothing.
    void recall_bandwidth();

    /// Of the open plan.
    programme::Oscillators oscillators_of_plan() const;

    /// A meter was connected again: asks it for its unit, which need not be that of the one before.
    void meter_came();

    /// Level unit `index` (a LevelUnit); sent unless a recall is in progress.
    void cmdlev_Click(int index);

    /// Loads the seconds of the chosen delay into `ticks_left`; without a choice they stay.
    void time_delay_Click();

  private:
    void recall_tuning();
    void recall_limits();
    void read_unit();

    link::Link& link_;
    ProgramState& program_;
    db::Database& database_;
    RealtimePanel& panel_;
    RealtimeState& state_;
    Tuning& tuning_;
    dish::Diseqc& diseqc_;
};

}  // namespace m47::realtime
