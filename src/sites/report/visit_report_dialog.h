// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUuid>
#include <vector>

#include "program_state.h"
#include "site_store.h"
#include "site_tables.h"

class QWidget;

namespace m47::sites {

/// Asks for the report on visits at `site`, those of `visits` ticked at first (the latest where it
/// is empty), and saves it as a PDF where the user chooses; what was saved is told to
/// ProgramState::saved. A failure is told in a box and leaves no half file. A StoreFault where
/// `store` cannot be read. All that is handed over has to outlive the call alone.
void show_visit_report(QWidget* parent, const ProgramState& program, const SiteStore& store,
                       const Site& site, const std::vector<QUuid>& visits,
                       const CodeRateOf& code_rate);

}  // namespace m47::sites
