// SPDX-License-Identifier: GPL-3.0-or-later
#include "screen.h"

#include <QComboBox>

#include "busy_input.h"
#include "handler.h"
#include "icons.h"
#include "key_filter.h"
#include "keyboard_access.h"
#include "scrolled_body.h"

namespace m47 {

Screen::Screen(QWidget* parent) : QMainWindow(parent) {
    // Its menu would hide the toolbar, and nothing would bring it back.
    setContextMenuPolicy(Qt::NoContextMenu);
}

void Screen::load() {
    let_body_scroll();
    Form_Load();
    // The names are those of the tooltips that stand there now.
    open_to_keyboard(this);
}

void Screen::let_body_scroll() {
    if (!centralWidget() || qobject_cast<ScrolledBody*>(centralWidget())) return;
    QWidget* body = centralWidget();
    auto* area = new ScrolledBody(this);
    area->setObjectName(QStringLiteral("body"));
    // It stays in this window all the time, so that Tab goes through it in the same order.
    area->setWidget(body);
    setCentralWidget(area);
    body->show();
    area->show();
}

void Screen::handle(const char* name, const std::function<void()>& body) {
    joints_.take();
    run_handler(this, name, body);
    joints_.show();
}

void Screen::add_key(const QAction* key, const std::function<void()>& work) {
    keys_.insert(key->objectName(), work);
}

void Screen::take_toolbar(QToolBar* bar) {
    toolbar_handler_ = bar->objectName().toLatin1() + "_ButtonClick";
    for (QAction* key : bar->actions()) key->setIcon(toolbar_icon(key->objectName()));
    connect(bar, &QToolBar::actionTriggered, this,
            [this](const QAction* key) { toolbar_ButtonClick(key->objectName()); });
    words_ = new KeyWords(bar, this);
}

void Screen::show_words(bool wanted) {
    if (words_) words_->show(wanted);
}

void Screen::toolbar_ButtonClick(const QString& key) {
    const auto work = keys_.constFind(key);
    if (work != keys_.constEnd()) return handle(toolbar_handler_.constData(), *work);
    const auto* action = findChild<QAction*>(key);
    Q_EMIT no_work(action ? action->toolTip() : key);
}

void Screen::take_exit(QAction* exit) {
    keep_while_busy(exit);
    connect(exit, &QAction::triggered, this, &Screen::exit_asked);
}

void Screen::take_exit(QAbstractButton* exit) {
    keep_while_busy(exit);
    connect(exit, &QAbstractButton::clicked, this, &Screen::exit_asked);
}

void Screen::guard_lists() {
    for (QComboBox* list : findChildren<QComboBox*>()) new WheelGuard(list);
}

}  // namespace m47
