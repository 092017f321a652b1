// SPDX-License-Identifier: GPL-3.0-or-later
// Linked into a program with windows: when its first window is painted, it prints the memory it
// then has in use (bytes) and ends.
#include <unistd.h>

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QTimer>
#include <cstdio>
#include <fstream>

namespace {

long long resident_bytes() {
    long long pages = 0;
    long long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

class FirstPaint : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject* receiver, QEvent* event) override {
        // Any part of it: what lies in a window may cover it wholly.
        const auto* widget = qobject_cast<QWidget*>(receiver);
        if (event->type() != QEvent::Paint || !widget) return false;
        if (!qobject_cast<QMainWindow*>(widget->window())) return false;
        qApp->removeEventFilter(this);
        // Behind the painting of what lies in the window.
        QTimer::singleShot(0, qApp, [] {
            std::printf("%lld\n", resident_bytes());
            std::fflush(stdout);
            QCoreApplication::quit();
        });
        return false;
    }
};

void wait_for_first_paint() {
    qApp->installEventFilter(new FirstPaint(qApp));
}
Q_COREAPP_STARTUP_FUNCTION(wait_for_first_paint)

}  // namespace
