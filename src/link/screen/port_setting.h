// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <memory>

#include "identification.h"

namespace Ui {
class PortSetting;
}

namespace m47 {

/// The screen "RS232 Port Setting": the user picks the port that the meter hangs on.
class PortSetting : public QWidget {
    Q_OBJECT
  public:
    PortSetting(Identification& identification, PortList& ports, QWidget* parent = nullptr);
    ~PortSetting() override;

    /// Fills the list of ports; each entry's tooltip names the device behind it.
    void Form_Load();

  Q_SIGNALS:
    /// The button "&Exit": the screen asks to be closed.
    void exit_asked();

  private:
    Identification& identification_;
    PortList& ports_;
    std::unique_ptr<Ui::PortSetting> ui_;
};

}  // namespace m47
