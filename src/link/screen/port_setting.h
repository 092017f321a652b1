// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <memory>

#include "identification.h"
#include "screen.h"

namespace Ui {
class PortSetting;
}

namespace m47::link {

/// The screen "RS232 Port Setting": the user picks the port that the meter hangs on.
class PortSetting : public Screen {
    Q_OBJECT
  public:
    PortSetting(Identification& identification, PortList& ports, QWidget* parent = nullptr);
    ~PortSetting() override;

    /// Fills the list of ports, which tells what stands behind each number and which is in use, and
    /// follows when a device is plugged in or out.
    void Form_Load() override;

  Q_SIGNALS:
    /// The key that is there while no port is: the meter that comes with the program is wanted.
    void simulated_asked();

  private:
    void show_devices();
    void simulated_Click();
    void show_device(int index, const QString& device);
    /// What stands behind the number that is chosen, beside it.
    void show_chosen();

    Identification& identification_;
    PortList& ports_;
    std::unique_ptr<Ui::PortSetting> ui_;
    QTimer look_timer_;
};

}  // namespace m47::link
