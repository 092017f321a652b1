// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTranslator>

#include "texts.h"

namespace m47::shell {

/// The words of the toolkit itself, such as "Yes" or "Look in:", in the language of the program
/// rather than that of the desktop. Where the toolkit's translations are not installed they stay
/// English.
class ToolkitLanguage {
  public:
    ToolkitLanguage() = default;
    ~ToolkitLanguage();
    ToolkitLanguage(const ToolkitLanguage&) = delete;
    ToolkitLanguage& operator=(const ToolkitLanguage&) = delete;

    /// Takes the language that is in use now; dialogs that are open follow.
    void follow(const Texts& texts);

  private:
    QTranslator italian_;
    bool in_use_ = false;
};

}  // namespace m47::shell
