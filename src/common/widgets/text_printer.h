// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

#include "texts.h"

namespace m47 {

/// Prints `text` as plain lines on the default printer. Where there is none the print dialog is
/// offered over `screen` (a PDF can be chosen there). The windows stay alive meanwhile: what takes
/// longer shows how far it is and can be cancelled, which leaves no half of a PDF behind. False
/// when the user cancelled, when the printer cannot be used, or when what knows printers is
/// missing, which one message box then says.
bool print_text(QWidget* screen, const QString& title, const QString& text, const Texts& texts);

}  // namespace m47
