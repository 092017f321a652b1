// SPDX-License-Identifier: GPL-3.0-or-later
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <QTemporaryDir>
#include <QTest>

#include "display.h"

namespace m47 {

class DisplayTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void names_that_lead_nowhere() {
        for (const char* name : {"", "0", ":", ":x", ":-1", ":4242", "unix:4242", "127.0.0.1:4242",
                                 "localhost:4242.0"})
            QVERIFY2(!x_display_reachable(name), name);
    }

    void another_machine_is_believed() { QVERIFY(x_display_reachable("far.example:0")); }

    void a_display_on_the_loopback() {
        const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int number = 600;
        do {
            ++number;
            address.sin_port = htons(static_cast<std::uint16_t>(6000 + number));
        } while (::bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0);
        const QByteArray name = "localhost:" + QByteArray::number(number) + ".0";
        QVERIFY(!x_display_reachable(name));
        QCOMPARE(::listen(server, 1), 0);
        QVERIFY(x_display_reachable(name));
        ::close(server);
    }

    void a_wayland_socket() {
        QTemporaryDir folder(QStringLiteral("/tmp/m47-XXXXXX"));
        qunsetenv("DISPLAY");
        qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
        qputenv("WAYLAND_DISPLAY", "wayland-7");
        QVERIFY(!display_reachable());
        const int server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray path = folder.filePath(QStringLiteral("wayland-7")).toLocal8Bit();
        std::copy(path.begin(), path.end(), address.sun_path);
        QCOMPARE(::bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        QCOMPARE(::listen(server, 1), 0);
        QVERIFY(display_reachable());
        ::close(server);
        QVERIFY(!display_reachable());
    }
};

}  // namespace m47

QTEST_APPLESS_MAIN(m47::DisplayTest)
#include "display_test.moc"
