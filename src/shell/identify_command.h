// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "choice_panel.h"
#include "database.h"
#include "identification_run.h"
#include "link.h"
#include "mdi.h"
#include "plan_import.h"
#include "program_state.h"

namespace m47::shell {

/// The menu entry and key "Identify satellite…".
class IdentifyCommand {
  public:
    /// All outlive it; the dialog stands over `window`.
    IdentifyCommand(const ProgramState& program, link::Link& link, const db::Database& database,
                    M47MDI& window);

    /// Opens the dialog, with the choice as it was left last. What measures by itself is not
    /// disturbed: the user is told to stop it first.
    void cmdidentify_Click();

  private:
    void offer(const std::vector<plans::ImportCandidate>& programs);
    void find_peak(const identify::Asked& carrier);

    const ProgramState& program_;
    link::Link& link_;
    const db::Database& database_;
    M47MDI& window_;
    identify::ChoiceBoxes boxes_;
};

}  // namespace m47::shell
