// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "line_recording.h"
#include "mdi.h"
#include "program_state.h"

namespace m47::shell {

/// The menu entry "Record the line…", and what is seen of a recording.
class RecordingCommand {
  public:
    /// All outlive it.
    RecordingCommand(unattended::LineRecording& recording, const ProgramState& program,
                     M47MDI& window);

    /// Asks for a file and records into it; ends the recording where one runs.
    void cmdtrace_Click();

    /// The same language for what is shown.
    void show_texts();

  private:
    void begin();

    unattended::LineRecording& recording_;
    const ProgramState& program_;
    M47MDI& window_;
};

}  // namespace m47::shell
