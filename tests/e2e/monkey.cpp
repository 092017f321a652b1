// SPDX-License-Identifier: GPL-3.0-or-later
#include "monkey.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QScreen>
#include <QTest>
#include <QToolBar>
#include <QWheelEvent>

namespace m47 {
namespace {

/// How often a box is poked at before it is closed.
constexpr int kPatience = 4;

const QList<int> kKeys{Qt::Key_Return,   Qt::Key_Enter,  Qt::Key_Tab,   Qt::Key_Backtab,
                       Qt::Key_Escape,   Qt::Key_Delete, Qt::Key_Home,  Qt::Key_End,
                       Qt::Key_Left,     Qt::Key_Right,  Qt::Key_Up,    Qt::Key_Down,
                       Qt::Key_PageUp,   Qt::Key_Space,  Qt::Key_F1,    Qt::Key_F4,
                       Qt::Key_PageDown, Qt::Key_Menu,   Qt::Key_Minus, Qt::Key_Backspace,
                       Qt::Key_Plus,     Qt::Key_A,      Qt::Key_C,     Qt::Key_V,
                       Qt::Key_X,        Qt::Key_Z,      Qt::Key_1,     Qt::Key_9};

const QList<Qt::KeyboardModifiers> kModifiers{Qt::NoModifier,    Qt::NoModifier,
                                              Qt::NoModifier,    Qt::ControlModifier,
                                              Qt::ShiftModifier, Qt::AltModifier};

QString name_of(const QObject* object) {
    return QString::fromLatin1(object->metaObject()->className()) + u' ' + object->objectName();
}

}  // namespace

Monkey::Monkey(QMainWindow& window, const QString& folder, quint32 seed)
    : window_(window), folder_(folder), random_(seed) {
    look_out();
}

QString Monkey::strange_text() {
    switch (below(9)) {
        case 0:
            return QString::number(below(30000));
        case 1:
            return QString::number(random_.generateDouble() * 3000, 'f', 3);
        case 2:
            return QStringLiteral("'; DROP TABLE programmi; --");
        case 3:
            return QStringLiteral("\" OR \"\"=\"");
        case 4:
            return QString(1 + below(300), QChar(0x21 + below(90)));
        case 5:
            return QStringLiteral("\u05E9\u05DC\u05D5\u05DD \u202E 12.5 \u0645\u0631\u062D\u0628");
        case 6:
            return QStringLiteral("1000\rLOGO X\n\t\b\x1b[2J\x7f");
        case 7:
            return QStringLiteral("-1e308");
        default:
            return QStringLiteral("\U0001F4E1 \u20AC\u00E0%1%n%s");
    }
}

QString Monkey::step() {
    const int deed = below(8);
    if (deed < 2) return press_action(window_.findChildren<QAction*>());
    if (deed < 4) return press_key_of_a_screen();
    return poke_widget();
}

/// The toolbars' keys are what most of the work is done with.
QString Monkey::press_key_of_a_screen() {
    QList<QAction*> keys;
    for (const QToolBar* bar : window_.findChildren<QToolBar*>())
        if (bar->isVisible()) keys += bar->actions();
    return press_action(keys);
}

QString Monkey::press_action(const QList<QAction*>& from) {
    QList<QAction*> actions;
    for (QAction* action : from)
        if (action->isEnabled() && !action->isSeparator()) actions += action;
    if (actions.isEmpty()) return QStringLiteral("nothing to press");
    QAction* action = pick(actions);
    const QString what = QStringLiteral("trigger ") + name_of(action) + u' ' + action->text();
    action->trigger();
    // It has closed the program; somebody starts it again.
    if (!window_.isVisible()) window_.show();
    return what;
}

QString Monkey::poke_widget() {
    QList<QWidget*> seen;
    for (QWidget* widget : window_.findChildren<QWidget*>())
        if (widget->isVisible() && widget->focusPolicy() != Qt::NoFocus) seen += widget;
    if (seen.isEmpty()) return QStringLiteral("nothing to poke");
    const QPointer<QWidget> widget = pick(seen);
    const int deed = below(5);
    const QString what = QStringLiteral("deed %1 on ").arg(deed) + name_of(widget);
    if (deed == 0 || deed == 1) click(widget);
    if (deed == 2) press_key(widget);
    if (deed == 3) type(widget);
    if (deed == 4) turn_wheel(widget);
    if (!window_.isVisible()) window_.show();
    return what;
}

void Monkey::click(QWidget* widget) {
    // What lies in a scrolled area takes its clicks through the viewport.
    auto* view = qobject_cast<QAbstractScrollArea*>(widget);
    const QPointer<QWidget> target = view ? view->viewport() : widget;
    const QPoint at(below(qMax(1, target->width())), below(qMax(1, target->height())));
    const auto button = one_in(8) ? Qt::RightButton : Qt::LeftButton;
    QTest::mouseClick(target, button, pick(kModifiers), at);
    if (target && one_in(6)) QTest::mouseDClick(target, button, {}, at);
}

void Monkey::press_key(QWidget* widget) {
    if (!widget->isEnabled()) return;
    const QPointer<QWidget> target = widget;
    widget->setFocus();
    const int times = 1 + below(3);
    for (int k = 0; k < times && target; ++k)
        QTest::keyClick(target.data(), static_cast<Qt::Key>(pick(kKeys)), pick(kModifiers));
}

void Monkey::type(QWidget* widget) {
    if (!widget->isEnabled()) return;
    const QPointer<QWidget> target = widget;
    widget->setFocus();
    if (one_in(2)) {
        QApplication::clipboard()->setText(strange_text());
        QTest::keyClick(target.data(), Qt::Key_A, Qt::ControlModifier);
        if (target) QTest::keyClick(target.data(), Qt::Key_V, Qt::ControlModifier);
    } else {
        const QString digits = QString::number(below(99999));
        for (const QChar digit : digits)
            if (target) QTest::keyClick(target.data(), digit.toLatin1());
    }
    if (target && one_in(2)) QTest::keyClick(target.data(), Qt::Key_Return);
}

void Monkey::turn_wheel(QWidget* widget) {
    const QPointF at = QRectF(widget->rect()).center();
    QWheelEvent event(at, widget->mapToGlobal(at), {}, {0, one_in(2) ? 120 : -120}, Qt::NoButton,
                      pick(kModifiers), Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

/// Each look has a timer of its own: what it does can open the next box and wait for its answer.
void Monkey::look_out() {
    QTimer::singleShot(1, this, [this] {
        look_out();
        handle_front();
    });
}

/// Whatever stands in front of the window and keeps a handler waiting.
void Monkey::handle_front() {
    if (QWidget* popup = QApplication::activePopupWidget()) {
        const QPointer<QWidget> shown = popup;
        QTest::keyClick(popup, one_in(2) ? Qt::Key_Down : Qt::Key_Up);
        if (shown) QTest::keyClick(shown.data(), one_in(2) ? Qt::Key_Return : Qt::Key_Escape);
        if (shown) shown->close();
        return;
    }
    QWidget* front = QApplication::activeModalWidget();
    if (!front) return;
    auto* dialog = qobject_cast<QDialog*>(front);
    if (!dialog) {
        front->close();
        return;
    }
    if (dialog != known_) {
        known_ = dialog;
        tries_ = 0;
        note(dialog);
    }
    if (++tries_ > kPatience)
        dialog->reject();
    else
        answer(dialog);
}

void Monkey::note(QDialog* dialog) {
    ++boxes[QString::fromLatin1(dialog->metaObject()->className()) + u' ' + dialog->windowTitle()];
    const auto* box = qobject_cast<QMessageBox*>(dialog);
    const bool told = box && box->icon() == QMessageBox::Critical;
    if (told && box->windowTitle() == QLatin1String("M47")) faults_told += box->text();
}

void Monkey::answer(QDialog* dialog) {
    if (auto* files = qobject_cast<QFileDialog*>(dialog)) {
        // Never outside the folder, and nothing of the dialog's own commands on files.
        if (one_in(2)) return files->reject();
        const bool save = files->acceptMode() == QFileDialog::AcceptSave;
        const QStringList names{QStringLiteral("a.dwl"), QStringLiteral("b.log"),
                                QStringLiteral("c.tsv"), QStringLiteral("d.asl")};
        files->setDirectory(folder_);
        files->selectFile(pick(names));
        if (!save) files->setFileMode(QFileDialog::AnyFile);
        static_cast<QDialog*>(files)->accept();
        return;
    }
    // Nor a file that is printed into.
    if (dialog->inherits("QPrintDialog")) return dialog->reject();
    QList<QWidget*> seen;
    for (QWidget* widget : dialog->findChildren<QWidget*>())
        if (widget->isVisible() && widget->focusPolicy() != Qt::NoFocus) seen += widget;
    if (seen.isEmpty()) return dialog->reject();
    QWidget* widget = pick(seen);
    if (qobject_cast<QAbstractButton*>(widget))
        QTest::mouseClick(widget, Qt::LeftButton);
    else
        type(widget);
}

}  // namespace m47
