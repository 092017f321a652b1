// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string_view>
#include <system_error>

namespace m47::platform {

/// A file that is written anew from its beginning, for somebody who may read along. A pipe or a
/// device does as well; neither holds the program up: what it does not take is an error.
class StreamFile {
  public:
    /// What stood in the file before is gone.
    explicit StreamFile(const QString& path);
    ~StreamFile();
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    /// Why it cannot be opened.
    std::error_code fault() const { return fault_; }

    /// Puts `bytes` behind what was put before, with a plain write: the next reader sees them, but
    /// they need not be on the medium. What went wrong where something did; a part of `bytes` may
    /// be there then.
    std::error_code put(std::string_view bytes) const noexcept;

  private:
    int descriptor_;
    std::error_code fault_;
};

}  // namespace m47::platform
