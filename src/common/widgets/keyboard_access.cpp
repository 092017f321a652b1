// SPDX-License-Identifier: GPL-3.0-or-later
#include "keyboard_access.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAction>
#include <QComboBox>
#include <QHelpEvent>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>

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

/// What the tooltip of a toolbar button shows: its text and how the key is pressed.
class ShortcutTip : public QObject {
  public:
    ShortcutTip(QToolButton* button, const QAction* action) : QObject(button), action_(action) {
        button->installEventFilter(this);
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::ToolTip || action_->shortcut().isEmpty()) return false;
        const QString keys = action_->shortcut().toString(QKeySequence::NativeText);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           QStringLiteral("%1 (%2)").arg(action_->toolTip(), keys),
                           static_cast<QWidget*>(watched));
        return true;
    }

  private:
    const QAction* action_;
};

/// Leaves PgUp and PgDn to a control that pages by them, where they are shortcuts of the screen.
class PagingKeys : public QObject {
  public:
    explicit PagingKeys(QWidget* control) : QObject(control) { control->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        // It comes to whatever lies around the control with the keyboard, too.
        if (event->type() != QEvent::ShortcutOverride ||
            !static_cast<QWidget*>(watched)->hasFocus())
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool paging = key->key() == Qt::Key_PageUp || key->key() == Qt::Key_PageDown;
        if (paging && key->modifiers() == Qt::NoModifier) event->accept();
        return false;
    }
};

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
        new ShortcutTip(button, action);
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
    for (QWidget* control : screen->findChildren<QWidget*>())
        if (pages_by_keyboard(control)) new PagingKeys(control);
}

bool pages_by_keyboard(const QWidget* control) {
    return qobject_cast<const QAbstractScrollArea*>(control) ||
           qobject_cast<const QAbstractSlider*>(control) || qobject_cast<const QComboBox*>(control);
}

}  // namespace m47
