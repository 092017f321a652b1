// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

#include "port_lock.h"
#include "texts.h"

namespace m47 {

/// Keeps a second start of this program off a device for as long as this one uses it. The port
/// itself is open only during an exchange, so that its own lock leaves gaps. A device is known by
/// its number, whatever path leads to it. The system takes the claim of a process that has ended.
class PortClaim {
  public:
    /// `folders` are tried in their order; every program of a machine has to try the same.
    explicit PortClaim(QStringList folders = usual_folders());
    ~PortClaim();
    PortClaim(const PortClaim&) = delete;
    PortClaim& operator=(const PortClaim&) = delete;

    /// Claims `device` in place of the one before. False where another process has it: holder()
    /// says which. A device that is not there, or a machine without a folder for the claim, needs
    /// none.
    bool take(const QString& device);
    void release();

    /// Who has the device that take() was refused last; nothing when it was not.
    const std::optional<PortHolder>& holder() const { return holder_; }

    static QStringList usual_folders();

  private:
    bool lock(const QByteArray& path);

    QStringList folders_;
    int file_ = -1;
    QByteArray path_;
    std::optional<PortHolder> holder_;
};

/// Who has `device`, and what helps.
QString claim_text(const PortHolder& holder, const QString& device, const Texts& texts);

}  // namespace m47
