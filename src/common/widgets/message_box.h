// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMessageBox>

namespace m47 {

/// Shows a message box over `parent`, waits for its end and returns the button pressed. The text
/// stands there as it is: a name that looks like mark-up is still a name.
QMessageBox::StandardButton show_message_box(
    QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text,
    QMessageBox::StandardButtons buttons = QMessageBox::Ok);

/// A question with Yes and No before something that cannot be taken back: `text`, and in smaller
/// letters below it what it does, or what goes and what is kept. No is what Enter answers. True for
/// Yes.
bool ask_first(QWidget* parent, const QString& title, const QString& text,
               const QString& consequence);

}  // namespace m47
