// SPDX-License-Identifier: GPL-3.0-or-later
#include "keyboard_access.h"

#include <QAbstractItemView>
#include <QAction>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>

namespace m47 {
namespace {

QString spoken(QString caption) {
    caption.remove(u'&');
    caption = caption.trimmed();
    while (caption.endsWith(u':')) caption.chop(1);
    return caption;
}

QString label_of(const QWidget* control) {
    for (const QLabel* label : control->window()->findChildren<QLabel*>())
        if (label->buddy() == control) return spoken(label->text());
    return {};
}

/// The label to the left of a control in its row, for a control that no label is tied to.
QString neighbour_of(const QWidget* control) {
    const QLabel* nearest = nullptr;
    const QWidget* around = control->parentWidget();
    if (!around) return {};
    for (const QLabel* label : around->findChildren<QLabel*>(Qt::FindDirectChildrenOnly)) {
        const bool same_row = qAbs(label->geometry().center().y() -
                                   control->geometry().center().y()) < control->height();
        if (!same_row || label->x() >= control->x() || label->text().isEmpty()) continue;
        if (!nearest || label->x() > nearest->x()) nearest = label;
    }
    return nearest ? spoken(nearest->text()) : QString();
}

/// The caption of the tab whose page a control stands on.
QString tab_of(const QWidget* control) {
    for (QWidget* around = control->parentWidget(); around; around = around->parentWidget()) {
        const auto* tabs = qobject_cast<const QTabWidget*>(around);
        if (!tabs) continue;
        for (int page = 0; page < tabs->count(); ++page)
            if (tabs->widget(page) == control || tabs->widget(page)->isAncestorOf(control))
                return spoken(tabs->tabText(page));
    }
    return {};
}

void name_button(QToolButton* button, const QAction* action) {
    const auto rename = [button, action] { button->setAccessibleName(action->toolTip()); };
    rename();
    QObject::connect(action, &QAction::changed, button, rename);
}

void open_toolbar(QToolBar* bar) {
    for (QAction* action : bar->actions()) {
        auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(action));
        if (!button) continue;
        button->setFocusPolicy(Qt::TabFocus);
        name_button(button, action);
    }
    // What finds no room on a narrow window is behind this button.
    if (auto* more = bar->findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button"))) {
        more->setFocusPolicy(Qt::TabFocus);
        more->setAccessibleName(QStringLiteral("…"));
    }
}

void name_control(QWidget* control) {
    if (!control->accessibleName().isEmpty()) return;
    const auto* button = qobject_cast<const QAbstractButton*>(control);
    if (button && !button->text().isEmpty()) return;
    QString name = control->toolTip();
    if (name.isEmpty()) name = label_of(control);
    if (name.isEmpty()) name = neighbour_of(control);
    if (const auto* tabs = qobject_cast<const QTabBar*>(control); tabs && name.isEmpty())
        name = tabs->tabText(tabs->currentIndex());
    if (name.isEmpty()) name = tab_of(control);
    if (!name.isEmpty()) control->setAccessibleName(name);
}

}  // namespace

void open_to_keyboard(QWidget* screen) {
    for (QToolBar* bar : screen->findChildren<QToolBar*>()) open_toolbar(bar);
    for (auto* view : screen->findChildren<QAbstractItemView*>()) view->setTabKeyNavigation(false);
    for (QWidget* control : screen->findChildren<QWidget*>())
        if (control->focusPolicy() & Qt::TabFocus) name_control(control);
}

}  // namespace m47
