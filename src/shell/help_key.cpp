// SPDX-License-Identifier: GPL-3.0-or-later
#include "help_key.h"

#include <QApplication>
#include <QKeyEvent>
#include <utility>

namespace m47::shell {

HelpKey::HelpKey(QWidget& main_window, std::function<void(const QString& page)> open)
    : main_window_(main_window), open_(std::move(open)) {
    qApp->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
    const auto* key = static_cast<const QKeyEvent*>(event);
    QWidget* window = static_cast<QWidget*>(watched)->window();
    const bool help = key->key() == Qt::Key_F1 && key->modifiers() == Qt::NoModifier;
    if (!help || key->isAutoRepeat() || window == &main_window_) return false;
    open_(window->property("manual_page").toString());
    return true;
}

}  // namespace m47::shell
