// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <memory>

namespace m47::platform {

/// Knows a device again between two openings. Its path does not tell: the name of an adapter, the
/// number of a pseudo-terminal and what a link leads to are given to the next one. A device that
/// was unplugged and plugged in again is another one too, as the meter behind it may be.
class KnownDevice {
  public:
    /// `sys` is the folder in which the system describes its devices.
    explicit KnownDevice(QString sys = QStringLiteral("/sys"));
    ~KnownDevice();
    KnownDevice(const KnownDevice&) = delete;
    KnownDevice& operator=(const KnownDevice&) = delete;

    /// The next device is taken as it is.
    void forget();

    /// True when `descriptor`, just opened at `path`, is the device of the first call after
    /// forget(). False too where that cannot be told.
    bool is_the_same(int descriptor, const QString& path);

  private:
    struct Node;
    bool take(int descriptor, const QString& path);

    QString sys_;
    std::unique_ptr<Node> node_;
};

}  // namespace m47::platform
