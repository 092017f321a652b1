// SPDX-License-Identifier: GPL-3.0-or-later
// Clicks as a desktop brings them, through an X server of the test's own: what other tests put into
// the queue of events by themselves comes otherwise than what was left lying in the window system.
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include "busy_input.h"
#include "busy_pump.h"
#include "level_view.h"
#include "program_in_folder.h"

namespace m47::shell {
namespace {

void xdotool(const QStringList& arguments) {
    QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), arguments), 0);
}

QStringList pointer_to(const QWidget& control) {
    const QPoint place = control.mapToGlobal(control.rect().center());
    return {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())};
}

void click(const QWidget& control) {
    xdotool(pointer_to(control) + QStringList{QStringLiteral("click"), QStringLiteral("1")});
}

/// A key whose handler waits for the meter the first time it runs, while the user clicks on.
struct Stand {
    BusyPump pump;
    QWidget window;
    QPushButton clear{QStringLiteral("Clear Last")};
    QPushButton stop{QStringLiteral("Stop")};
    int clears = 0;
    int stops = 0;

    explicit Stand(QPushButton Stand::*clicked_meanwhile) {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&clear);
        layout->addWidget(&stop);
        keep_while_busy(&stop);
        QObject::connect(&stop, &QPushButton::clicked, &window, [this] { ++stops; });
        QObject::connect(&clear, &QPushButton::clicked, &window, [this, clicked_meanwhile] {
            if (++clears > 1) return;
            click(this->*clicked_meanwhile);
            QElapsedTimer waited;
            waited.start();
            while (waited.elapsed() < 300) {
                QTest::qSleep(5);
                pump.pump();
            }
        });
        window.resize(300, 200);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window)) qFatal("the window does not come up");
    }
};

}  // namespace

class DesktopInputTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private Q_SLOTS:
    void cleanup() { end_program(); }

    void keys_are_seen_while_the_level_is_repeated() {
        // One exchange follows the other.
        new_folder();
        start_at_one_level({800, 600});
        window().open_screen("realtime");
        find<QAction>("cmdlevelview")->trigger();
        auto* view = find<level::LevelView>("level_view");
        QVERIFY(QTest::qWaitForWindowExposed(view));
        xdotool({"windowfocus", QString::number(view->winId())});
        QTRY_COMPARE(QApplication::focusWidget(), view);
        for (const bool repeats : {true, false, true}) {
            xdotool({"key", "space"});
            QTRY_COMPARE(view->repeating(), repeats);
        }
        xdotool({"key", "Escape"});
        QTRY_VERIFY(!view->isVisible() && !view->repeating());
    }

    void a_click_of_the_wait_is_not_carried_out_with_the_next_move() {
        Stand stand(&Stand::clear);
        click(stand.clear);
        QTRY_COMPARE(stand.clears, 1);
        QTest::qWait(300);
        xdotool(pointer_to(stand.stop));
        QTest::qWait(300);
        QCOMPARE(stand.clears, 1);
        QVERIFY(!stand.clear.isDown());
        click(stand.stop);
        QTRY_COMPARE(stand.stops, 1);
        QCOMPARE(stand.clears, 1);
        click(stand.clear);
        QTRY_COMPARE(stand.clears, 2);
    }

    void stop_works_behind_the_wait_without_a_move() {
        Stand stand(&Stand::stop);
        click(stand.clear);
        QTRY_COMPARE(stand.clears, 1);
        QTRY_COMPARE(stand.stops, 1);
        QCOMPARE(stand.clears, 1);
    }
};

}  // namespace m47::shell

/// Starts an X server, which is gone with the test.
int main(int argc, char** argv) {
    QProcess server;
    server.start(QStringLiteral("Xvfb"), {"-displayfd", "1", "-screen", "0", "800x600x24"});
    while (!server.canReadLine())
        if (!server.waitForReadyRead(30000)) qFatal("Xvfb does not start");
    qputenv("DISPLAY", ":" + server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    // No bus of the desktop takes part; the library that speaks with one leaks.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    int status = 0;
    {
        const QApplication application(argc, argv);
        m47::shell::DesktopInputTest test;
        status = QTest::qExec(&test, argc, argv);
    }
    server.kill();
    server.waitForFinished();
    return status;
}
#include "desktop_input_test.moc"
