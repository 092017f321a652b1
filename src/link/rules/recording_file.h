// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "line_recorder.h"
#include "stream_file.h"

namespace m47::link {

/// A recording in a file: each line is there as soon as it has happened, whatever becomes of the
/// program then.
class RecordingFile : public RecordingSink {
  public:
    /// What stood in the file before is gone.
    explicit RecordingFile(const QString& path) : file_(path) {}

    /// Why it cannot be opened.
    std::error_code fault() const { return file_.fault(); }
    std::error_code put(std::string_view lines) noexcept override { return file_.put(lines); }

  private:
    platform::StreamFile file_;
};

}  // namespace m47::link
