// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "running_process.h"

namespace m47::platform {

/// A file that one process at a time has, which any user may come to claim. The system takes it
/// from a process that has ended.
class ClaimFile {
  public:
    ClaimFile() = default;
    ~ClaimFile();
    ClaimFile(const ClaimFile&) = delete;
    ClaimFile& operator=(const ClaimFile&) = delete;

    /// True when the claim at `path` is ours; else it cannot be made there, or holder() has it.
    bool take(const QString& path);
    void release();
    /// Lets go of the claim, but leaves its file, as the end of the process would.
    void leave();

    /// Who has the claim that take() was refused last; nothing when it was not.
    const std::optional<RunningProcess>& holder() const { return holder_; }

  private:
    int file_ = -1;
    QByteArray path_;
    std::optional<RunningProcess> holder_;
};

/// A name for the device at `path`, the same whatever path leads to it and of no other device;
/// nothing where no such device is there.
std::optional<QString> name_of_device(const QString& path);

}  // namespace m47::platform
