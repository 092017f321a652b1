// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_setting.h"

#include "handler.h"
#include "key_filter.h"
#include "ui_port_setting.h"

namespace m47 {

PortSetting::PortSetting(Identification& identification, PortList& ports, QWidget* parent)
    : QWidget(parent),
      identification_(identification),
      ports_(ports),
      ui_(std::make_unique<Ui::PortSetting>()) {
    ui_->setupUi(this);
    new WheelGuard(ui_->porta);
    on(ui_->porta, &QComboBox::activated, this, "porta_Click",
       [this](int index) { identification_.porta_Click(index); });
    connect(ui_->cmdexit, &QPushButton::clicked, this, &PortSetting::exit_asked);
}

PortSetting::~PortSetting() = default;

void PortSetting::Form_Load() {
    ports_.refresh();
    ui_->porta->clear();
    ui_->porta->addItems(port_entries());
    for (int index = 0; index < ui_->porta->count(); ++index) {
        const QString device = ports_.device(index + 1);
        ui_->porta->setItemData(index, device.isEmpty() ? QStringLiteral("-") : device,
                                Qt::ToolTipRole);
    }
    ui_->porta->setCurrentIndex(-1);
}

}  // namespace m47
