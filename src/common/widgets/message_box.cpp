// SPDX-License-Identifier: GPL-3.0-or-later
#include "message_box.h"

namespace m47 {

QMessageBox::StandardButton show_message_box(QWidget* parent, QMessageBox::Icon icon,
                                             const QString& title, const QString& text,
                                             QMessageBox::StandardButtons buttons) {
    QMessageBox box(icon, title, QString(), buttons, parent);
    // Before the text, which Qt would look at otherwise.
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

}  // namespace m47
