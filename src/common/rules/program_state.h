// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

#include "corrected_behaviour.h"
#include "cost_notices.h"
#include "preferences.h"
#include "texts.h"

namespace m47 {

/// The level units of the meter, in the order of its own unit index.
enum LevelUnit { kDbuv = 0, kDbmv = 1, kDbm = 2 };

/// What every screen shares and no screen owns.
struct ProgramState {
    /// The folder the program works in, as `folder_with_separator` gives it.
    QString base_dir;
    /// The database in use, which no file dialog gives away; empty where there is none.
    QString database_file;
    /// The file of sites and visits, the same; there may be none yet.
    QString sites_file;
    Texts texts;
    Preferences preferences;
    /// What the user has chosen of the menu "Corrected behaviour".
    CorrectedBehaviour corrected;
    /// What the behaviours that are not chosen cost.
    CostNotices costs;
    /// Told of each file that was just written where the user chose; whoever has a place for it
    /// shows it.
    std::function<void(const QString& path)> on_saved;
    void saved(const QString& path) const {
        if (on_saved) on_saved(path);
    }
    /// The version that the meter identified last has told, "PLUS V3.0.5"; empty where none
    /// answers.
    QString meter_version;
    /// The meter is the simulated one that the program itself has started.
    bool simulated_meter = false;
    /// Where that one answers from a recording, the name of its file.
    QString replayed;
    /// It was the simulated one at some time of this run, so that rows of the page may be made up.
    bool simulated_before = false;
    /// The level unit in force, a LevelUnit; shared by the plan and the real-time screen.
    int unit_index = kDbuv;
    /// The name of the logger's temporary file in `base_dir`; empty before the first download.
    QString temp_file_name;
    /// The meter's copy of all its satellite slots, kept between uses of the satellite screen.
    QString master_copy;
};

/// What has to stand over a print where a simulated meter may have measured it; else empty.
QString simulated_mark(const ProgramState& program);

/// What is told of the meter for later: its version, and that it is none where it is none.
QString meter_text(const ProgramState& program);

/// `folder` with one separator at its end: none is added where it ends in one already (a root).
QString folder_with_separator(const QString& folder);

/// The name of a level unit, "dBuV".
QString unit_name(int unit);

/// How many dB a level in `unit` lies below the same level in dBuV: 0, 60 or 109.
double unit_offset(int unit);

}  // namespace m47
