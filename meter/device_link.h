// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace meter {

/// A symbolic link to the device, removed at the end if it still leads there.
class DeviceLink {
  public:
    DeviceLink() = default;
    ~DeviceLink();

    DeviceLink(const DeviceLink&) = delete;
    DeviceLink& operator=(const DeviceLink&) = delete;

    /// Makes `link` lead to `device`, in place of an older symbolic link. Throws
    /// std::system_error when something other than a symbolic link stands there.
    void create(const std::string& link, const std::string& device);

    /// The device is gone, and its number is given to somebody else next: removes the link, as the
    /// desktop does with an unplugged adapter.
    void remove();

    /// As it was before remove(), to another device now; nothing without a link.
    void lead_to(const std::string& device);

  private:
    std::string link_;
    std::string device_;
};

}  // namespace meter
