// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_setting.h"

#include <chrono>

#include "tooltips.h"
#include "ui_port_setting.h"

namespace m47::link {
namespace {

/// An adapter that is plugged in or out while the list is looked at shows within this time.
constexpr std::chrono::seconds kLookInterval{1};

}  // namespace

PortSetting::PortSetting(Identification& identification, PortList& ports, QWidget* parent)
    : Screen(parent),
      identification_(identification),
      ports_(ports),
      ui_(std::make_unique<Ui::PortSetting>()) {
    ui_->setupUi(this);
    when(ui_->porta, &QComboBox::activated, "porta_Click",
         [this](int index) { identification_.porta_Click(index); });
    connect(&look_timer_, &QTimer::timeout, this, [this] {
        if (isVisible()) show_devices();
    });
    take_exit(ui_->cmdexit);
    guard_lists();
}

PortSetting::~PortSetting() = default;

void PortSetting::Form_Load() {
    ui_->porta->clear();
    ui_->porta->addItems(port_entries());
    show_devices();
    ui_->porta->setCurrentIndex(-1);
    look_timer_.start(kLookInterval);
}

void PortSetting::show_devices() {
    ports_.refresh();
    for (int index = 0; index < ui_->porta->count(); ++index) {
        const QString device = ports_.device(index + 1);
        ui_->porta->setItemData(
            index, device.isEmpty() ? QStringLiteral("-") : plain_tooltip(device), Qt::ToolTipRole);
    }
}

}  // namespace m47::link
