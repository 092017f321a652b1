// SPDX-License-Identifier: GPL-3.0-or-later
// The least that a program on a serial line can be: it opens the port that is its argument, sends a
// byte and waits for what comes.
#include <QCoreApplication>
#include <QSerialPort>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 2) return 2;
    QSerialPort port(QString::fromLocal8Bit(argv[1]));
    port.setBaudRate(QSerialPort::Baud38400);
    port.setStopBits(QSerialPort::TwoStop);
    if (!port.open(QIODevice::ReadWrite)) return 1;
    QObject::connect(&port, &QSerialPort::readyRead, [&port] { port.readAll(); });
    port.putChar('\r');
    port.flush();
    return QCoreApplication::exec();
}
