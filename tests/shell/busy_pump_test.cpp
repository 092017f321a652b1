// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDialog>
#include <QElapsedTimer>
#include <QPaintEvent>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include "busy_pump.h"

namespace m47 {
namespace {

class PaintCounter : public QWidget {
  public:
    int paints = 0;

  protected:
    void paintEvent(QPaintEvent*) override { ++paints; }
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

}  // namespace m47

QTEST_MAIN(m47::BusyPumpTest)
#include "busy_pump_test.moc"
