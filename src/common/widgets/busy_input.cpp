// SPDX-License-Identifier: GPL-3.0-or-later
#include "busy_input.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabBar>
#include <QToolButton>
#include <algorithm>
#include <array>
#include <utility>

#include "keyboard_access.h"

namespace m47 {
namespace {

constexpr const char* kKept = "m47_keep_while_busy";
constexpr const char* kAtOnce = "m47_act_while_busy";

bool& busy_shown() {
    static bool shown = false;
    return shown;
}

bool is_kept(const QObject* control) {
    return control && control->property(kKept).toBool();
}

/// A place whose content the wait itself may exchange takes nothing in it.
bool is_refused(const QWidget* place) {
    for (; place; place = place->parentWidget()) {
        const QVariant said = place->property(kKept);
        if (said.isValid()) return !said.toBool();
    }
    return false;
}

template <class... Kinds>
bool is_one_of(const QWidget* widget) {
    return (qobject_cast<const Kinds*>(widget) || ...);
}

bool entry_is_kept(const QMenu& menu, QPoint place) {
    const QAction* entry = menu.actionAt(place);
    return !entry || entry->menu() || is_kept(entry);
}

/// A list of a combo box is a view too, but choosing from it is no looking.
bool belongs_to_a_choice(const QWidget* widget) {
    for (; widget; widget = widget->parentWidget())
        if (qobject_cast<const QComboBox*>(widget)) return true;
    return false;
}

bool is_text_box(const QWidget* widget) {
    return is_one_of<QLineEdit, QPlainTextEdit>(widget) && !belongs_to_a_choice(widget);
}

/// Scrolls or shows, and sends nothing.
bool is_view(const QWidget* widget) {
    if (belongs_to_a_choice(widget)) return false;
    return is_one_of<QTabBar, QScrollBar, QHeaderView, QAbstractItemView, QMdiSubWindow, QMenuBar,
                     QCheckBox>(widget) ||
           is_text_box(widget);
}

/// The cross of a tab is a child of the bar, and a click on it one on the bar.
bool is_cross_of_tab(const QWidget* widget) {
    return is_one_of<QAbstractButton>(widget) && !is_one_of<QToolButton>(widget) &&
           is_one_of<QTabBar>(widget->parentWidget());
}

bool moves_about(const QWidget* focus, int key) {
    // Elsewhere these two take the screen to another program.
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) return pages_by_keyboard(focus);
    return key >= Qt::Key_Home && key <= Qt::Key_Down;
}

/// What belongs to typing: without "select all" the next digits would land beside the old ones.
bool edits(const QKeyEvent& key) {
    constexpr std::array kSequences{QKeySequence::SelectAll, QKeySequence::Cut,
                                    QKeySequence::Copy,      QKeySequence::Paste,
                                    QKeySequence::Undo,      QKeySequence::Redo};
    if (std::ranges::any_of(kSequences, [&](auto sequence) { return key.matches(sequence); }))
        return true;
    if (key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete) return true;
    const bool command = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    return !command && !key.text().isEmpty() && key.text().front().isPrint();
}

/// Whether the user can see what has the action.
bool is_in_front(const QAction* action) {
    const QList<QObject*> owners = action->associatedObjects();
    return std::ranges::any_of(owners, [](const QObject* owner) {
        const auto* widget = qobject_cast<const QWidget*>(owner);
        return widget && widget->isVisible() && widget->isActiveWindow();
    });
}

/// The action with the property `name` and the shortcut that the key is.
QAction* action_of(const QKeyEvent& key, const char* name) {
    const QKeySequence pressed(key.keyCombination());
    QAction* found = nullptr;
    for (const QWidget* window : QApplication::topLevelWidgets())
        for (QAction* action : window->findChildren<QAction*>())
            if (action->property(name).toBool() && action->shortcuts().contains(pressed) &&
                (!found || is_in_front(action)))
                found = action;
    return found;
}

bool has(const QObject* control, const char* name) {
    return control && control->property(name).toBool();
}

}  // namespace

void act_while_busy(QObject* control) {
    control->setProperty(kAtOnce, true);
}

bool press_acts_at_once(const QWidget* target) {
    const auto* key = qobject_cast<const QToolButton*>(target);
    return has(target, kAtOnce) || (key && has(key->defaultAction(), kAtOnce));
}

bool key_acts_at_once(const QWidget* focus, const QKeyEvent& key) {
    // A view that opens at once is left at once too.
    const int own = qobject_cast<const QAbstractButton*>(focus) ? Qt::Key_Space : Qt::Key_Escape;
    return (key.key() == own && has(focus, kAtOnce)) || action_of(key, kAtOnce);
}

QAction* kept_action(const QKeyEvent& key) {
    return action_of(key, kKept);
}

void show_busy(bool on) {
    if (std::exchange(busy_shown(), on) == on) return;
    for (const QWidget* window : QApplication::topLevelWidgets())
        for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) button->update();
}

void forget_busy() {
    busy_shown() = false;
}

bool busy_is_shown() {
    return busy_shown();
}

void keep_while_busy(QObject* control, bool keep) {
    control->setProperty(kKept, keep);
}

bool press_is_kept(const QWidget* target, QPoint place) {
    if (const auto* menu = qobject_cast<const QMenu*>(target)) return entry_is_kept(*menu, place);
    const auto* key = qobject_cast<const QToolButton*>(target);
    if (is_kept(target) || (key && is_kept(key->defaultAction()))) return true;
    if (is_refused(target)) return false;
    // The page of a view is a child of it.
    return is_view(target) || is_cross_of_tab(target) ||
           (target && !is_one_of<QAbstractButton>(target) && is_view(target->parentWidget()));
}

bool key_is_kept(const QWidget* focus, const QKeyEvent& key) {
    if (key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab) return true;
    if (kept_action(key)) return true;
    if (!focus) return false;
    if (is_kept(focus) && (key.key() == Qt::Key_Space || focus->isWindow())) return true;
    if (is_refused(focus)) return false;
    if (is_text_box(focus)) return moves_about(focus, key.key()) || edits(key);
    return moves_about(focus, key.key()) && is_view(focus);
}

}  // namespace m47
