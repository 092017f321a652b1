// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "database.h"
#include "line_recording.h"
#include "meter_connection.h"
#include "problem_report.h"

class QWidget;

namespace m47::shell {

/// The menu entry "Report a problem…".
class ProblemCommand {
  public:
    /// All outlive it; its boxes stand over `window`.
    ProblemCommand(const ProgramState& program, unattended::MeterConnection& connection,
                   const db::Database& database, const unattended::LineRecording& recording,
                   QWidget& window);

    /// Shows what the report has in it, asks for a file and writes it. Cancelled it writes nothing.
    void cmdproblem_Click();

    /// What there is to tell, with the picture of the window and, not wanted, the plans.
    std::vector<unattended::ProblemItem> items();

  private:
    void save(const std::vector<unattended::ProblemItem>& items);

    const ProgramState& program_;
    unattended::MeterConnection& connection_;
    const db::Database& database_;
    const unattended::LineRecording& recording_;
    QWidget& window_;
};

}  // namespace m47::shell
