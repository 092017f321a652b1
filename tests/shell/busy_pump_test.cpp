// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QDialog>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPaintEvent>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWidget>
#include <QWindow>

#include "busy_input.h"
#include "busy_pump.h"
#include "busy_style.h"

namespace m47::shell {
namespace {

class PaintCounter : public QWidget {
  public:
    int paints = 0;

  protected:
    void paintEvent(QPaintEvent*) override { ++paints; }
};

class KeyCounter : public QWidget {
  public:
    int keys = 0;

  protected:
    void keyPressEvent(QKeyEvent*) override { ++keys; }
};

/// As a transaction waits: slices of sleep with the pump in between.
void wait_busily(BusyPump& pump, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        QTest::qSleep(5);
        pump.pump();
    }
}

/// A window with a button that deletes, two controls that end something, a tab bar and a box.
struct Stand {
    BusyPump pump;
    QMainWindow window;
    QPushButton* clear = new QPushButton("Clear All");
    QPushButton* stop = new QPushButton("Stop");
    QTabBar* tabs = new QTabBar;
    QLineEdit* box = new QLineEdit;
    QToolBar* toolbar = window.addToolBar("keys");
    QAction* end = toolbar->addAction("end");
    int clicks = 0;
    int stops = 0;
    int ends = 0;

    Stand() {
        auto* middle = new QWidget;
        auto* layout = new QVBoxLayout(middle);
        for (const char* text : {"Page", "Trend"}) tabs->addTab(text);
        for (QWidget* control : std::initializer_list<QWidget*>{clear, stop, tabs, box})
            layout->addWidget(control);
        window.setCentralWidget(middle);
        end->setShortcut(Qt::CTRL | Qt::Key_E);
        keep_while_busy(stop);
        keep_while_busy(end);
        QObject::connect(clear, &QPushButton::clicked, &window, [this] { ++clicks; });
        QObject::connect(stop, &QPushButton::clicked, &window, [this] { ++stops; });
        QObject::connect(end, &QAction::triggered, &window, [this] { ++ends; });
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window)) qFatal("the window does not come up");
    }
    QWindow* handle() const { return window.windowHandle(); }
    /// Where a click on `control` goes, in the window; of tabs the corner.
    QPoint place_of(const QWidget* control) const {
        const QPoint inside = control == tabs ? QPoint() : control->rect().center();
        return control->mapTo(&window, inside);
    }
    // As the desktop brings it: to the window. (What QTest sends there lets the queue run dry.)
    void mouse(const QWindow* to, QEvent::Type type, QPoint place) const {
        const bool down = type != QEvent::MouseButtonRelease;
        QMouseEvent event(type, place, to->mapToGlobal(place), Qt::LeftButton,
                          down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(const_cast<QWindow*>(to), &event);
    }
    void click(const QWindow* to, QPoint place) const {
        mouse(to, QEvent::MouseButtonPress, place);
        mouse(to, QEvent::MouseButtonRelease, place);
    }
    void click(const QWidget* control, QPoint inside = {}) const {
        click(handle(), place_of(control) + inside);
    }
    static void key(QWindow* to, QEvent::Type type, int code, const QString& text,
                    bool repeats = false, Qt::KeyboardModifiers held = Qt::NoModifier) {
        QKeyEvent event(type, code, held, text, repeats);
        QCoreApplication::sendEvent(to, &event);
    }
    /// What the desktop brings while the meter is waited for.
    void in_the_wait(const std::function<void()>& input) {
        QMetaObject::invokeMethod(&window, input, Qt::QueuedConnection);
        pump.pump();
    }
    void enter(QEvent::Type type, bool repeats) const {
        key(handle(), type, Qt::Key_Return, "\r", repeats);
    }
    void press(int code, const QString& text) const {
        key(handle(), QEvent::KeyPress, code, text);
        key(handle(), QEvent::KeyRelease, code, text);
    }
};

}  // namespace

class BusyPumpTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void windows_repaint_while_the_meter_is_waited_for() {
        BusyPump pump;
        PaintCounter window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const int before = window.paints;
        window.update();
        wait_busily(pump, 100);
        QVERIFY(window.paints > before);
    }

    void the_cross_of_a_tab_closes_it_behind_the_wait() {
        Stand stand;
        stand.tabs->setTabsClosable(true);
        int closed = 0;
        connect(stand.tabs, &QTabBar::tabCloseRequested, this, [&closed] { ++closed; });
        QCoreApplication::processEvents();
        const QWidget* cross = stand.tabs->tabButton(1, QTabBar::RightSide);
        QVERIFY(cross && cross->isVisible());
        stand.in_the_wait([&] { stand.click(cross); });
        QCOMPARE(closed, 0);
        QTRY_COMPARE(closed, 1);
    }

    void ticks_come_late_and_once() {
        BusyPump pump;
        QTimer timer;
        int ticks = 0;
        connect(&timer, &QTimer::timeout, this, [&ticks] { ++ticks; });
        timer.start(20);
        wait_busily(pump, 200);
        QCOMPARE(ticks, 0);
        QCoreApplication::processEvents();
        QCOMPARE(ticks, 1);
    }

    void a_window_closes_after_the_handler_not_inside_it() {
        BusyPump pump;
        QWidget window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        bool asked = false;
        // As the desktop asks: through the event queue, in the middle of the wait.
        QMetaObject::invokeMethod(
            &window,
            [&] {
                asked = true;
                window.close();
            },
            Qt::QueuedConnection);
        wait_busily(pump, 50);
        QVERIFY(asked);
        QVERIFY(window.isVisible());
        QTRY_VERIFY(!window.isVisible());
    }

    void a_window_stays_as_long_as_a_box_of_its_handler_stands_before_it() {
        BusyPump pump;
        auto* window = new QWidget;
        window->setAttribute(Qt::WA_DeleteOnClose);
        const QPointer<QWidget> alive(window);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QMetaObject::invokeMethod(
            window, [window] { window->close(); }, Qt::QueuedConnection);
        wait_busily(pump, 20);
        bool stayed = false;
        {
            QDialog box(window);
            QTimer::singleShot(120, &box, [&] {
                stayed = alive && alive->isVisible();
                box.accept();
            });
            box.exec();
        }
        QVERIFY(stayed);
        QTRY_VERIFY(!alive);
    }

    void a_kept_window_with_the_keyboard_takes_its_keys_behind_the_wait() {
        BusyPump pump;
        KeyCounter window;
        window.setFocusPolicy(Qt::StrongFocus);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.setFocus();
        pump.pump();
        QTest::keyClick(window.windowHandle(), Qt::Key_T);
        QCOMPARE(window.keys, 0);
        keep_while_busy(&window);
        for (const Qt::Key key : {Qt::Key_T, Qt::Key_Space, Qt::Key_Escape}) {
            pump.pump();
            QTest::keyClick(window.windowHandle(), key);
        }
        QCOMPARE(window.keys, 3);
    }

    void a_click_of_the_wait_is_dropped() {
        Stand stand;
        stand.click(stand.clear);
        QCOMPARE(stand.clicks, 1);
        stand.pump.pump();
        // As they come out of the queue behind the wait, the second as that of a double click.
        stand.click(stand.clear);
        const QPoint place = stand.place_of(stand.clear);
        stand.mouse(stand.handle(), QEvent::MouseButtonDblClick, place);
        stand.mouse(stand.handle(), QEvent::MouseButtonRelease, place);
        QCOMPARE(stand.clicks, 1);
        QVERIFY(!stand.clear->isDown());
        QTest::qWait(20);
        stand.click(stand.clear);
        QCOMPARE(stand.clicks, 2);
    }

    void what_is_kept_and_what_only_shows_works_behind_the_wait() {
        Stand stand;
        stand.pump.pump();
        stand.click(stand.stop);
        QCOMPARE(stand.stops, 1);
        stand.click(stand.toolbar->widgetForAction(stand.end));
        QCOMPARE(stand.ends, 1);
        stand.click(stand.tabs, stand.tabs->tabRect(1).center());
        QCOMPARE(stand.tabs->currentIndex(), 1);
        keep_while_busy(stand.stop, false);
        stand.click(stand.stop);
        QCOMPARE(stand.stops, 1);
    }

    void what_acts_at_once_is_done_in_the_middle_of_the_wait() {
        Stand stand;
        act_while_busy(stand.stop);
        stand.in_the_wait([&] {
            stand.click(stand.clear);
            stand.click(stand.stop);
        });
        QCOMPARE(stand.stops, 1);
        QCOMPARE(stand.clicks, 0);
        QTest::qWait(20);
        QCOMPARE(stand.stops, 1);
        QCOMPARE(stand.clicks, 0);
    }

    void a_shortcut_that_acts_at_once_is_not_waited_with() {
        Stand stand;
        act_while_busy(stand.end);
        bool in_the_wait = false;
        connect(stand.end, &QAction::triggered, this, [&] { in_the_wait = stand.pump.pumping(); });
        stand.in_the_wait([&] { QTest::keyClick(stand.handle(), Qt::Key_E, Qt::ControlModifier); });
        QCOMPARE(stand.ends, 1);
        QVERIFY(in_the_wait);
    }

    void what_only_shows_waits_for_the_end_of_the_wait() {
        Stand stand;
        stand.box->setFocus();
        stand.in_the_wait([&] {
            stand.click(stand.tabs, stand.tabs->tabRect(1).center());
            for (const char digit : {'1', '7'}) stand.press(digit, QChar(digit));
            QTest::keyClick(stand.handle(), Qt::Key_E, Qt::ControlModifier);
        });
        QCOMPARE(stand.tabs->currentIndex(), 0);
        QCOMPARE(stand.box->text(), QString());
        QCOMPARE(stand.ends, 0);
        // What comes behind it does not get before it.
        stand.press('5', "5");
        QCOMPARE(stand.tabs->currentIndex(), 1);
        QCOMPARE(stand.ends, 1);
        QCOMPARE(stand.box->text(), QString("175"));
        QTest::qWait(20);
        QCOMPARE(stand.box->text(), QString("175"));
    }

    void what_waited_does_not_go_behind_a_box() {
        Stand stand;
        stand.in_the_wait([&] { stand.click(stand.toolbar->widgetForAction(stand.end)); });
        QDialog box(&stand.window);
        QTimer::singleShot(100, &box, &QDialog::accept);
        box.exec();
        QCOMPARE(stand.ends, 0);
    }

    void keys_that_would_be_dropped_are_dimmed_in_a_long_wait() {
        const std::unique_ptr<QStyle> style(new BusyStyle);
        Stand stand;
        for (QWidget* control : std::initializer_list<QWidget*>{stand.clear, stand.stop})
            control->setStyle(style.get());
        const QImage clear = stand.clear->grab().toImage();
        const QImage stop = stand.stop->grab().toImage();
        stand.pump.pump();
        QVERIFY(!busy_is_shown());
        wait_busily(stand.pump, 400);
        QVERIFY(busy_is_shown());
        QVERIFY(stand.clear->grab().toImage() != clear);
        QVERIFY(stand.stop->grab().toImage() == stop);
        QVERIFY(stand.clear->isEnabled());
        QTest::qWait(20);
        QVERIFY(!busy_is_shown());
        QVERIFY(stand.clear->grab().toImage() == clear);
    }

    void a_click_that_was_begun_before_the_wait_ends_behind_it() {
        Stand stand;
        const QPoint place = stand.place_of(stand.clear);
        stand.mouse(stand.handle(), QEvent::MouseButtonPress, place);
        stand.pump.pump();
        stand.mouse(stand.handle(), QEvent::MouseButtonRelease, place);
        QCOMPARE(stand.clicks, 1);
    }

    void a_menu_opens_behind_the_wait_and_its_entries_are_dropped() {
        Stand stand;
        QMenu menu;
        int deleted = 0;
        int left = 0;
        connect(menu.addAction("Delete"), &QAction::triggered, this, [&] { ++deleted; });
        QAction* leave = menu.addAction("Exit");
        keep_while_busy(leave);
        connect(leave, &QAction::triggered, this, [&] { ++left; });
        const auto choose = [&](QAction* entry) {
            menu.popup({10, 10});
            QVERIFY(QTest::qWaitForWindowExposed(&menu));
            QTest::qWait(20);
            stand.pump.pump();
            stand.click(menu.windowHandle(), menu.actionGeometry(entry).center());
            menu.hide();
        };
        choose(menu.actions()[0]);
        QCOMPARE(deleted, 0);
        choose(leave);
        QCOMPARE(left, 1);
    }

    void a_shortcut_of_the_wait_is_dropped_unless_it_is_kept() {
        Stand stand;
        QAction erase;
        int erased = 0;
        erase.setShortcut(Qt::CTRL | Qt::Key_D);
        stand.window.addAction(&erase);
        connect(&erase, &QAction::triggered, this, [&] { ++erased; });
        QTest::keyClick(stand.handle(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(erased, 1);
        stand.pump.pump();
        QTest::keyClick(stand.handle(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(erased, 1);
        stand.pump.pump();
        QTest::keyClick(stand.handle(), Qt::Key_E, Qt::ControlModifier);
        QCOMPARE(stand.ends, 1);
    }

    void what_is_typed_into_a_box_stays_but_enter_does_not() {
        Stand stand;
        int entered = 0;
        connect(stand.box, &QLineEdit::returnPressed, this, [&] { ++entered; });
        stand.box->setFocus();
        stand.pump.pump();
        for (const char digit : {'1', '1', '0', '0'}) stand.press(digit, QChar(digit));
        stand.press(Qt::Key_Backspace, "\b");
        stand.press(Qt::Key_Return, "\r");
        QCOMPARE(stand.box->text(), QString("110"));
        QCOMPARE(entered, 0);
        QTest::qWait(20);
        stand.press(Qt::Key_Return, "\r");
        QCOMPARE(entered, 1);
    }

    void what_is_typed_takes_the_place_of_what_was_selected() {
        Stand stand;
        stand.box->setText("1000");
        stand.box->setFocus();
        stand.pump.pump();
        Stand::key(stand.handle(), QEvent::KeyPress, Qt::Key_A, "\x01", false, Qt::ControlModifier);
        for (const char digit : {'1', '7'}) stand.press(digit, QChar(digit));
        QCOMPARE(stand.box->text(), QString("17"));
    }

    void where_the_wait_exchanges_the_content_nothing_is_taken() {
        Stand stand;
        keep_while_busy(stand.window.centralWidget(), false);
        stand.box->setText("1000");
        stand.box->setFocus();
        stand.pump.pump();
        stand.press('1', "1");
        stand.click(stand.tabs);
        QCOMPARE(stand.box->text(), QString("1000"));
        stand.click(stand.stop);
        QCOMPARE(stand.stops, 1);
        QTest::qWait(20);
        stand.box->setFocus();
        stand.press('1', "1");
        QCOMPARE(stand.box->text(), QString("10001"));
    }

    void a_held_enter_does_nothing_until_it_is_let_go() {
        Stand stand;
        int entered = 0;
        connect(stand.box, &QLineEdit::returnPressed, this, [&] { ++entered; });
        stand.box->setFocus();
        stand.pump.pump();
        stand.enter(QEvent::KeyPress, true);
        QTest::qWait(20);
        stand.enter(QEvent::KeyRelease, true);
        stand.enter(QEvent::KeyPress, true);
        QCOMPARE(entered, 0);
        stand.enter(QEvent::KeyRelease, false);
        stand.enter(QEvent::KeyPress, false);
        QCOMPARE(entered, 1);
    }

    void a_box_behind_the_wait_is_not_answered_by_a_key_from_before_it() {
        Stand stand;
        stand.pump.pump();
        QMessageBox box(QMessageBox::Question, "M47", "Delete?", QMessageBox::Yes | QMessageBox::No,
                        &stand.window);
        box.setDefaultButton(QMessageBox::Yes);
        QMetaObject::invokeMethod(
            &box,
            [&] {
                Stand::key(box.windowHandle(), QEvent::KeyPress, Qt::Key_Return, "\r");
                const QWidget* yes = box.button(QMessageBox::Yes);
                stand.click(box.windowHandle(), yes->mapTo(&box, yes->rect().center()));
            },
            Qt::QueuedConnection);
        bool stood = false;
        QTimer::singleShot(150, &box, [&] {
            stood = box.isVisible();
            const QWidget* no = box.button(QMessageBox::No);
            stand.click(box.windowHandle(), no->mapTo(&box, no->rect().center()));
        });
        QCOMPARE(box.exec(), int(QMessageBox::No));
        QVERIFY(stood);
    }

    void it_does_not_run_inside_itself() {
        BusyPump pump;
        bool inner_returned = false;
        QMetaObject::invokeMethod(
            this,
            [&] {
                QVERIFY(pump.pumping());
                pump.pump();
                inner_returned = true;
            },
            Qt::QueuedConnection);
        pump.pump();
        QVERIFY(inner_returned);
        QVERIFY(!pump.pumping());
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::BusyPumpTest)
#include "busy_pump_test.moc"
