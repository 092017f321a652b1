// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_setting.h"

#include <chrono>

#include "handler.h"
#include "key_filter.h"
#include "tooltips.h"
#include "ui_port_setting.h"

namespace m47 {
namespace {

/// An adapter that is plugged in or out while the list is looked at shows within this time.
constexpr std::chrono::seconds kLookInterval{1};

}  // namespace

PortSetting::PortSetting(Identification& identification, PortList& ports, QWidget* parent)
    : QWidget(parent),
      identification_(identification),
      ports_(ports),
      ui_(std::make_unique<Ui::PortSetting>()) {
    ui_->setupUi(this);
    new WheelGuard(ui_->porta);
    on(ui_->porta, &QComboBox::activated, this, "porta_Click",
       [this](int index) { identification_.porta_Click(index); });
    connect(&look_timer_, &QTimer::timeout, this, [this] {
        if (isVisible()) show_devices();
    });
    connect(ui_->cmdexit, &QPushButton::clicked, this, &PortSetting::exit_asked);
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

}  // namespace m47
