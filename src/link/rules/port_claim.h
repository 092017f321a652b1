// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "claim_file.h"
#include "texts.h"

namespace m47::link {

/// Keeps a second start of this program off a device for as long as this one uses it. The port
/// itself is open only during an exchange, so that its own lock leaves gaps. A device is known by
/// its number, whatever path leads to it. The system takes the claim of a process that has ended.
class PortClaim {
  public:
    /// `folders` are tried in their order; every program of a machine has to try the same.
    explicit PortClaim(QStringList folders = usual_folders());

    /// Claims `device` in place of the one before. False where another process has it: holder()
    /// says which. A device that is not there, or a machine without a folder for the claim, needs
    /// none.
    bool take(const QString& device);
    void release() { file_.release(); }

    /// Who has the device that take() was refused last; nothing when it was not.
    const std::optional<platform::RunningProcess>& holder() const { return file_.holder(); }

    static QStringList usual_folders();

  private:
    QStringList folders_;
    platform::ClaimFile file_;
};

/// Who has `device`, and what helps.
QString claim_text(const platform::RunningProcess& holder, const QString& device,
                   const Texts& texts);

}  // namespace m47::link
