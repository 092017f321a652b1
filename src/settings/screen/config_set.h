// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "logo.h"
#include "screen.h"
#include "texts.h"

namespace Ui {
class ConfigSet;
}

namespace m47::settings {

/// The screen "Configuration": the meter's logo. The key "time" is shown and does nothing, since
/// the meter has no command for its clock.
class ConfigSet : public Screen {
    Q_OBJECT
  public:
    ConfigSet(link::Link& link, const Texts& texts, QWidget* parent = nullptr);
    ~ConfigSet() override;

    /// Sets the tooltips.
    void Form_Load() override;

  private:
    const Texts& texts_;
    Logo logo_;
    std::unique_ptr<Ui::ConfigSet> ui_;
};

}  // namespace m47::settings
