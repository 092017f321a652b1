// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "band_desk.h"
#include "database.h"
#include "mdi.h"
#include "meter_connection.h"
#include "open_sites.h"
#include "program_state.h"
#include "screen.h"
#include "visit_of_window.h"

namespace m47::shell {

class StartDesk;

/// What screens are made of; it outlives them.
struct ScreenParts {
    M47MDI& window;
    unattended::MeterConnection& connection;
    ProgramState& state;
    db::Database& database;
    StartDesk& start;
    sites::OpenSites& sites;
    sites::VisitOfWindow& visit;
    band::BandDesk& band;
};

/// The toolbars of the main window: the keys that technicians know, and those that came later.
enum class KeyBar { commands, instruments };

/// A screen of the main window.
struct ScreenEntry {
    const char* key;          ///< names its button in the toolbar, the icon and the stored place
    const char* title;        ///< of that button
    Bilingual word;           ///< under its icon
    Qt::Key shortcut;         ///< of that button, together with Ctrl
    KeyBar bar;               ///< where it stands
    const char* manual_page;  ///< opened by F1
    Screen* (*make)(const ScreenParts& parts);
};

/// All screens, in the order of their toolbars.
std::span<const ScreenEntry> screen_table();

/// Their keys.
QStringList screen_keys();

}  // namespace m47::shell
