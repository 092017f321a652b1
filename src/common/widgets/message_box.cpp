// SPDX-License-Identifier: GPL-3.0-or-later
#include "message_box.h"

#include <QTextDocument>

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

bool ask_first(QWidget* parent, const QString& title, const QString& text,
               const QString& consequence) {
    QMessageBox box(QMessageBox::Question, title, QString(), QMessageBox::Yes | QMessageBox::No,
                    parent);
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    // This text has no format of its own: a name in it must not become mark-up.
    box.setInformativeText(Qt::mightBeRichText(consequence) ? consequence.toHtmlEscaped()
                                                            : consequence);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

}  // namespace m47
