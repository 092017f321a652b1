// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

namespace m47 {

/// Prints `text` as plain lines on the default printer. Where there is none the print dialog is
/// offered over `screen` (a PDF can be chosen there). False when the user cancelled or the printer
/// cannot be used.
bool print_text(QWidget* screen, const QString& title, const QString& text);

}  // namespace m47
