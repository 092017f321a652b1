// SPDX-License-Identifier: GPL-3.0-or-later
// The least that a program with such a window can be: a main window around an empty area. With an
// argument it shows that in its status line, which takes the fonts that the area does without.
#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QStatusBar>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QMdiArea(&window));
    if (argc > 1) window.statusBar()->showMessage(QString::fromLocal8Bit(argv[1]));
    window.resize(1100, 720);
    window.show();
    return QApplication::exec();
}
