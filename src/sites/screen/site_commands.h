// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QUuid>
#include <QWidget>

#include "open_sites.h"
#include "program_state.h"

namespace m47::sites {

// What the keys and entries of the sites' files do, with their dialogs over `parent`. To be run as
// a handler: what cannot be read or written is a Fault.

/// "Import log…": asks for a log and makes visits of it, at `proposed` or where the user says.
void import_log(QWidget* parent, OpenSites& sites, const ProgramState& program,
                const QUuid& proposed = {});

/// "Export sites…": asks which ones, with `chosen` ticked, and writes them into one file.
void export_sites(QWidget* parent, OpenSites& sites, const ProgramState& program,
                  const QList<QUuid>& chosen = {});

/// "Import sites…": asks for such a file, shows what it would change and takes it.
void import_sites(QWidget* parent, OpenSites& sites, const ProgramState& program);

}  // namespace m47::sites
