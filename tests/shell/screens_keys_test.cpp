// SPDX-License-Identifier: GPL-3.0-or-later
// Every key of every screen is pressed where there is little it can do: something is to be seen of
// it each time, if only in words.
#include <QHelpEvent>
#include <QTabWidget>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>

#include "plan_sets.h"
#include "screens_test.h"

namespace m47::shell {
namespace {

/// The toolkit's own, and those that leave.
bool is_key(const QAction* action, const Screen* screen) {
    if (action->isSeparator() || action->menu() || action->objectName().isEmpty()) return false;
    // What is in force is checked, and that is how it is seen.
    if (action->isCheckable() && action->isChecked() && action->objectName() != u"cmdtable")
        return false;
    const auto* place = qobject_cast<const QWidget*>(action->parent());
    return action->isVisible() && action->isEnabled() && action->objectName() != u"cmdexit" &&
           place && place->isVisible() && (place == screen || screen->isAncestorOf(place));
}

bool is_key(const QAbstractButton* button) {
    // A radio button that is in force, and what a tick changes, are seen as they are. A key with a
    // menu shows that, whose entries are pressed by themselves.
    if (const auto* push = qobject_cast<const QPushButton*>(button); push && push->menu())
        return false;
    const bool key = qobject_cast<const QPushButton*>(button) ||
                     (qobject_cast<const QToolButton*>(button) &&
                      !qobject_cast<const QToolBar*>(button->parentWidget()));
    return key && button->isVisible() && button->isEnabled() && !button->objectName().isEmpty() &&
           button->objectName() != u"cmdexit";
}

}  // namespace

/// What can be seen: the window, and the entries of its menus, which are closed.
QByteArray ScreensTest::sight() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QByteArray seen;
    for (const QAction* action : window().findChildren<QAction*>())
        seen += action->text().toUtf8() + char('0' + action->isChecked() + 2 * action->isEnabled());
    const QImage image = window().grab().toImage();
    return seen + QByteArray::fromRawData(reinterpret_cast<const char*>(image.constBits()),
                                          image.sizeInBytes());
}

/// Presses a key by `press`; true where something was seen of it.
bool ScreensTest::seen_of(const std::function<void()>& press) {
    window().show_notice(QString());
    window().show_progress(QString());
    const QByteArray before = sight();
    pressed_boxes_->take_seen();
    if (line_) line_->take_commands();
    press();
    const bool sent = line_ && !line_->take_commands().isEmpty();
    if (auto* level = window().findChild<QWidget*>("level_view"); level && level->isVisible()) {
        level->close();
        return true;
    }
    return sent || !pressed_boxes_->take_seen().isEmpty() || sight() != before;
}

/// The keys of all screens of which nothing was seen, as "screen: key".
QStringList ScreensTest::silent_keys() {
    BoxAnswers boxes;
    pressed_boxes_ = &boxes;
    QStringList silent;
    for (const ScreenEntry& entry : screen_table()) {
        window().open_screen(QString::fromLatin1(entry.key));
        QPointer<Screen> screen = window().screen_of(QString::fromLatin1(entry.key));
        const auto note = [&](const QObject* key, const std::function<void()>& press) {
            const QString name = QString::fromLatin1(entry.key) + ": " + key->objectName();
            // The key before may have brought another screen up.
            if (window().front_key() != QLatin1String(entry.key))
                window().open_screen(QString::fromLatin1(entry.key));
            if (!seen_of(press)) silent += name;
        };
        const auto walk = [&](const auto& actions) {
            for (QAction* key : actions)
                if (is_key(key, screen)) note(key, [key] { key->trigger(); });
            for (QAbstractButton* key : screen->findChildren<QAbstractButton*>())
                if (is_key(key)) note(key, [key] { key->click(); });
        };
        QList<QAction*> actions = screen->findChildren<QAction*>();
        walk(actions);
        // The other way round they find another state, and other pages are in front.
        for (auto* pages : screen->findChildren<QTabWidget*>()) pages->setCurrentIndex(1);
        std::reverse(actions.begin(), actions.end());
        walk(actions);
    }
    pressed_boxes_ = nullptr;
    return silent;
}

void ScreensTest::no_key_is_silent_without_a_meter() {
    end_program();
    start_program({1366, 768});
    find<QAction>("cmdinglese")->trigger();
    const QStringList silent = silent_keys();
    QVERIFY2(silent.isEmpty(), qPrintable(silent.join(u'\n')));
}

void ScreensTest::no_key_is_silent_without_a_plan() {
    QSqlDatabase file = program().database().connection();
    for (const char* table : {"programmi", "gruppo", "configurazione"})
        QVERIFY(QSqlQuery(file).exec(QStringLiteral("DELETE FROM %1").arg(table)));
    find<QAction>("cmdinglese")->trigger();
    const QStringList silent = silent_keys();
    QVERIFY2(silent.isEmpty(), qPrintable(silent.join(u'\n')));
}

void ScreensTest::no_key_is_silent_with_a_meter() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    const QStringList silent = silent_keys();
    QVERIFY2(silent.isEmpty(), qPrintable(silent.join(u'\n')));
}

void ScreensTest::an_empty_slot_and_an_empty_logger_say_so() {
    MeterInProcess& meter = start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    const auto* notice = find<QLabel>("corrected_notice");
    find<QAction>("asl")->trigger();
    Screen* satellites = window().screen_of("asl");
    auto* slots_of_meter = find<QListWidget>("listastr", satellites);
    const auto empty = slots_of_meter->findItems("**********", Qt::MatchContains);
    QVERIFY(!empty.isEmpty());
    for (const char* key : {"cmddelstr", "cmdaddindb"}) {
        window().show_notice(QString());
        slots_of_meter->setCurrentItem(
            slots_of_meter->findItems("**********", Qt::MatchContains)[0]);
        find<QPushButton>(key, satellites)->click();
        QVERIFY2(notice->text().contains("is empty"), key);
    }
    BoxAnswers boxes;
    QString compared;
    boxes.answer([&](QDialog* view) {
        compared = view->findChild<QLabel*>("compare_result")->text();
        view->reject();
    });
    slots_of_meter->setCurrentItem(slots_of_meter->findItems("**********", Qt::MatchContains)[0]);
    find<QAction>("cmdcompare", satellites)->trigger();
    QVERIFY2(compared.contains("is empty"), qPrintable(compared));
    find<QAction>("download")->trigger();
    Screen* logger = window().screen_of("download");
    find<QPushButton>("cmdclearall", logger)->click();
    window().show_notice(QString());
    find<QPushButton>("cmddownload", logger)->click();
    QVERIFY2(notice->text().contains("has no logs"), qPrintable(notice->text()));
    meter.on_command = nullptr;
}

void ScreensTest::every_shortcut_of_a_key_stands_in_its_tooltip() {
    int found = 0;
    for (const ScreenEntry& entry : screen_table()) {
        window().open_screen(QString::fromLatin1(entry.key));
        for (auto* button : window().findChildren<QToolButton*>()) {
            const QAction* action = button->defaultAction();
            if (!action || action->shortcut().isEmpty() || !button->isVisible()) continue;
            QHelpEvent asked(QEvent::ToolTip, button->rect().center(),
                             button->mapToGlobal(button->rect().center()));
            QCoreApplication::sendEvent(button, &asked);
            for (const QKeySequence& keys : action->shortcuts())
                QVERIFY2(QToolTip::text().contains(keys.toString(QKeySequence::NativeText)),
                         qPrintable(action->objectName() + ": " + QToolTip::text()));
            ++found;
        }
    }
    // Seven of the main window on each of the screens, and those of plans and measuring.
    QVERIFY2(found > 7 * 7 + 4, qPrintable(QString::number(found)));
    QToolTip::hideText();
}

}  // namespace m47::shell
