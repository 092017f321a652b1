// SPDX-License-Identifier: GPL-3.0-or-later
// The least that a program with such a window can be: a main window around an empty area.
#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QMdiArea(&window));
    window.resize(1100, 720);
    window.show();
    return QApplication::exec();
}
