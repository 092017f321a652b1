// SPDX-License-Identifier: GPL-3.0-or-later
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <QApplication>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "application.h"
#include "display.h"

namespace m47::shell {

namespace {

void close_each_box() {
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [] {
        if (QWidget* box = QApplication::activeModalWidget()) box->close();
    });
    timer->start(20);
}

/// The program's status after all its boxes have been closed; -1 where it crashed.
int status_of_windows(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "m47-remote");
    const pid_t child = ::fork();
    if (child == 0) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qAddPreRoutine(close_each_box);
        ::_exit(
            run_program(static_cast<int>(arguments.size()), const_cast<char**>(arguments.data())));
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

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

    /// The statuses of a start with windows, whose message waits in a box for the user.
    void a_start_without_folder_or_database_ends_with_its_status() {
        const QTemporaryDir folder;
        const QByteArray missing = folder.filePath(QStringLiteral("none")).toLocal8Bit();
        QCOMPARE(status_of_windows({"--directory", missing.constData()}), 4);
        QCOMPARE(status_of_windows({"--directory", qPrintable(folder.path())}), 4);
    }
};

}  // namespace m47::shell

QTEST_APPLESS_MAIN(m47::shell::DisplayTest)
#include "display_test.moc"
