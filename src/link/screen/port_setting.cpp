// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_setting.h"

#include <QAbstractItemView>
#include <chrono>

#include "port_delegate.h"
#include "tooltips.h"
#include "ui_port_setting.h"

namespace m47::link {
namespace {

/// An adapter that is plugged in or out while the list is looked at shows within this time.
constexpr std::chrono::seconds kLookInterval{1};

constexpr Bilingual kInUse{"%1, in use", "%1, in uso"};
constexpr Bilingual kSimulated{"No meter here? Use the simulated one",
                               "Nessuno strumento qui? Usa quello simulato"};
constexpr Bilingual kSimulatedTip{"Everything can be tried with it; what it measures is made up",
                                  "Permette di provare tutto; ciò che misura è inventato"};
constexpr Bilingual kNoDevice{"No device stands behind this number.",
                              "Nessun dispositivo corrisponde a questo numero."};

}  // namespace

PortSetting::PortSetting(Identification& identification, PortList& ports, QWidget* parent)
    : Screen(parent),
      identification_(identification),
      ports_(ports),
      ui_(std::make_unique<Ui::PortSetting>()) {
    ui_->setupUi(this);
    when(ui_->porta, &QComboBox::activated, "porta_Click", [this](int index) {
        identification_.porta_Click(index);
        show_devices();
    });
    when(ui_->port_simulated, &QPushButton::clicked, "port_simulated_Click",
         [this] { simulated_Click(); });
    ui_->porta->setItemDelegate(new PortDelegate(ui_->porta));
    connect(ui_->porta, &QComboBox::currentIndexChanged, this, &PortSetting::show_chosen);
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
    ui_->port_simulated->setText(identification_.texts().pick(kSimulated));
    ui_->port_simulated->setToolTip(identification_.texts().pick(kSimulatedTip));
    show_devices();
    // Nothing is chosen yet, or the port in use is.
    ui_->porta->setCurrentIndex(identification_.port_in_use() - 1);
    look_timer_.start(kLookInterval);
}

void PortSetting::show_devices() {
    ports_.refresh();
    bool some = false;
    for (int index = 0; index < ui_->porta->count(); ++index) {
        show_device(index, ports_.device(index + 1));
        some = some || !ports_.description(index + 1).isEmpty();
    }
    ui_->port_simulated->setVisible(!some);
    // As wide as what stands in it: the numbers alone are narrow.
    ui_->porta->view()->setMinimumWidth(ui_->porta->view()->sizeHintForColumn(0));
    show_chosen();
}

void PortSetting::simulated_Click() {
    Q_EMIT simulated_asked();
    show_devices();
    ui_->porta->setCurrentIndex(identification_.port_in_use() - 1);
}

void PortSetting::show_device(int index, const QString& device) {
    const QString what = ports_.description(index + 1);
    const bool in_use = identification_.port_in_use() == index + 1;
    QComboBox* list = ui_->porta;
    list->setItemData(index, device.isEmpty() ? QStringLiteral("-") : plain_tooltip(device),
                      Qt::ToolTipRole);
    list->setItemData(index, in_use ? Said{kInUse, {what}}.in(identification_.texts()) : what,
                      PortDelegate::kDescriptionRole);
    list->setItemData(index, in_use, PortDelegate::kInUseRole);
}

void PortSetting::show_chosen() {
    const int index = ui_->porta->currentIndex();
    const QString what = ui_->porta->itemData(index, PortDelegate::kDescriptionRole).toString();
    const bool none = index >= 0 && what.isEmpty();
    ui_->port_device->setText(none ? identification_.texts().pick(kNoDevice) : what);
}

}  // namespace m47::link
