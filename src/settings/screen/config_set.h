// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>
#include <memory>

#include "logo.h"
#include "texts.h"

namespace Ui {
class ConfigSet;
}

namespace m47 {

/// The screen "Configuration": the meter's logo. The key "time" is shown and does nothing, since
/// the meter has no command for its clock.
class ConfigSet : public QMainWindow {
    Q_OBJECT
  public:
    ConfigSet(Link& link, const Texts& texts, QWidget* parent = nullptr);
    ~ConfigSet() override;

    /// Sets the tooltips.
    void Form_Load();

    /// A click on the toolbar key `key`.
    void Toolbar1_ButtonClick(const QString& key);

  Q_SIGNALS:
    /// The menu entry "&Exit": the screen asks to be closed.
    void exit_asked();

  private:
    void logo_txt_KeyPress();

    const Texts& texts_;
    Logo logo_;
    std::unique_ptr<Ui::ConfigSet> ui_;
};

}  // namespace m47
