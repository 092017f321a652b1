// SPDX-License-Identifier: GPL-3.0-or-later
#include "device_link.h"

#include <filesystem>
#include <system_error>

namespace meter {

namespace {

namespace fs = std::filesystem;

}  // namespace

DeviceLink::~DeviceLink() {
    remove();
}

void DeviceLink::remove() {
    std::error_code error;
    if (!link_.empty() && fs::read_symlink(link_, error) == device_) fs::remove(link_, error);
}

void DeviceLink::lead_to(const std::string& device) {
    if (!link_.empty()) create(std::string(link_), device);
}

void DeviceLink::create(const std::string& link, const std::string& device) {
    if (fs::is_symlink(fs::symlink_status(link))) fs::remove(link);
    fs::create_symlink(device, link);
    link_ = link;
    device_ = device;
}

}  // namespace meter
