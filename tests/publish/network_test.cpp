// SPDX-License-Identifier: GPL-3.0-or-later
// The sender of Qt Network against a server that answers as it is told, to the byte.
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QNetworkReply>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

#include "http_sender.h"
#include "part.h"

namespace m47::publish {
namespace {

/// Answers each whole request with the same bytes and closes the connection where it is told to.
class ScriptedServer {
  public:
    explicit ScriptedServer(QTcpServer& server) : server_(server) {
        QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, [this] {
            while (QTcpSocket* const socket = server_.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] { read(*socket); });
        });
        server.listen(QHostAddress::LocalHost);
    }
    QByteArray answer;
    bool closes = false;
    QByteArray request;

    QUrl address(const char* scheme) const {
        return QUrl(QStringLiteral("%1://127.0.0.1:%2/write?db=x")
                        .arg(QLatin1String(scheme))
                        .arg(server_.serverPort()));
    }

  private:
    void read(QTcpSocket& socket) {
        request += socket.readAll();
        if (!request.endsWith("body\n")) return;
        socket.write(answer);
        if (closes) socket.disconnectFromHost();
    }

    QTcpServer& server_;
};

/// What comes of a request to `url`.
std::optional<HttpAnswer> ask(HttpSender& sender, const QUrl& url, double seconds = 5) {
    sender.set_target({url, "Bearer secret"});
    sender.post("body\n");
    QElapsedTimer timer;
    for (timer.start(); static_cast<double>(timer.elapsed()) < seconds * 1000;) {
        sender.work(0.1);
        if (auto answer = sender.answer()) return answer;
    }
    sender.give_up();
    return std::nullopt;
}

}  // namespace

class NetworkTest : public QObject {
    Q_OBJECT

    Part part_{"m47-http"};
    HttpSender* sender_ = nullptr;

  private Q_SLOTS:
    void initTestCase() {
        sender_ = part_.offer<HttpSender>();
        QVERIFY2(sender_, qPrintable(part_.fault()));
    }
    void answers_data();
    void answers();
    void what_goes_over_the_wire();
    void without_an_event_loop_nothing_stays();
    void a_date_to_try_again_data();
    void a_date_to_try_again();
    void a_page_without_an_end_is_not_waited_for();
    void nothing_listens();
    void a_server_that_says_nothing_holds_nothing_up();
    void a_certificate_that_does_not_verify();
};

/// As in a run whose passes follow each other: between two exchanges with the meter the events are
/// worked off, and no loop is ever entered.
void NetworkTest::without_an_event_loop_nothing_stays() {
    QTcpServer listening;
    ScriptedServer server(listening);
    server.answer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
    const auto* sender = dynamic_cast<QObject*>(sender_);
    QVERIFY(sender);
    sender_->set_target({server.address("http"), {}});
    qsizetype held = 0;
    for (int requests = 0; requests < 20; ++requests) {
        sender_->post("body\n");
        std::optional<HttpAnswer> answer;
        QElapsedTimer timer;
        for (timer.start(); !answer && timer.elapsed() < 5000; answer = sender_->answer())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QVERIFY(answer && answer->status == 200);
        server.request.clear();
        // The first one leaves what a connection needs.
        const auto now = sender->findChildren<QObject*>().size();
        if (requests == 0) held = now;
        QVERIFY2(now <= held, qPrintable(QString::number(now)));
        QVERIFY(sender->findChildren<QNetworkReply*>().isEmpty());
    }
}

void NetworkTest::a_page_without_an_end_is_not_waited_for() {
    QTcpServer listening;
    ScriptedServer server(listening);
    server.answer =
        "HTTP/1.1 500 Fault\r\nContent-Length: 100000000\r\n\r\nwhy: " + QByteArray(1000000, 'x');
    const auto answer = ask(*sender_, server.address("http"));
    QVERIFY(answer);
    QCOMPARE(answer->status, 500);
    QVERIFY(answer->words.startsWith("why: x") && answer->words.size() <= 400);
    server.request.clear();
    server.answer = "HTTP/1.1 204 No Content\r\n\r\n";
    const auto next = ask(*sender_, server.address("http"));
    QVERIFY(next && next->status == 204);
}

void NetworkTest::a_date_to_try_again_data() {
    QTest::addColumn<QByteArray>("form");
    QTest::newRow("of HTTP") << QByteArray("ddd, dd MMM yyyy hh:mm:ss 'GMT'");
    QTest::newRow("of mail") << QByteArray("ddd, dd MMM yyyy hh:mm:ss '+0000'");
}

void NetworkTest::a_date_to_try_again() {
    QFETCH(QByteArray, form);
    QTcpServer listening;
    ScriptedServer server(listening);
    const QDateTime when = QDateTime::currentDateTimeUtc().addSecs(100);
    const QByteArray date = QLocale::c().toString(when, QString::fromLatin1(form)).toLatin1();
    server.answer = "HTTP/1.1 429 Often\r\nRetry-After: " + date + "\r\nDate: " + date +
                    "\r\nContent-Length: 0\r\n\r\n";
    const auto answer = ask(*sender_, server.address("http"));
    QVERIFY(answer && answer->retry_after);
    QVERIFY2(std::abs(*answer->retry_after - 100) <= 3, server.answer);
    QVERIFY2(answer->ahead && std::abs(*answer->ahead + 100) <= 3, server.answer);
}

void NetworkTest::answers_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("retry_after");
    const auto row = [](const char* name, const QByteArray& bytes, bool closes, int status,
                        double retry_after = -1) {
        QTest::newRow(name) << bytes << closes << status << retry_after;
    };
    row("204", "HTTP/1.1 204 No Content\r\n\r\n", false, 204);
    row("200", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok", false, 200);
    row("400", "HTTP/1.1 400 Bad\r\nContent-Length: 3\r\n\r\nwhy", false, 400);
    row("401", "HTTP/1.1 401 No\r\nWWW-Authenticate: Basic\r\nContent-Length: 0\r\n\r\n", false,
        401);
    row("413", "HTTP/1.1 413 Long\r\nContent-Length: 0\r\n\r\n", false, 413);
    row("429", "HTTP/1.1 429 Often\r\nRetry-After: 7\r\nContent-Length: 0\r\n\r\n", false, 429, 7);
    row("500", "HTTP/1.1 500 Fault\r\nContent-Length: 0\r\n\r\n", false, 500);
    row("503", "HTTP/1.1 503 Busy\r\nRetry-After: 90\r\nContent-Length: 0\r\n\r\n", true, 503, 90);
    // Elsewhere the token is not to go.
    row("302", "HTTP/1.1 302 There\r\nLocation: http://127.0.0.1:1/\r\nContent-Length: 0\r\n\r\n",
        false, 302);
    row("half of its first line", "HTTP/1.1 20", true, 0);
    row("half of its headers", "HTTP/1.1 200 OK\r\nContent-Le", true, 0);
    row("half of its body", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nok", true, 0);
    row("closed at once", "", true, 0);
    row("no HTTP", "SSH-2.0-OpenSSH_9.2\r\n", true, 0);
}

void NetworkTest::answers() {
    QFETCH(QByteArray, bytes);
    QFETCH(bool, closes);
    QFETCH(int, status);
    QFETCH(double, retry_after);
    QTcpServer listening;
    ScriptedServer server(listening);
    server.answer = bytes;
    server.closes = closes;
    const auto answer = ask(*sender_, server.address("http"));
    QVERIFY(answer);
    QCOMPARE(answer->status, status);
    QCOMPARE(answer->retry_after.value_or(-1), retry_after);
    QVERIFY(!answer->words.contains("secret") && !answer->ahead);
    if (status == 400) QCOMPARE(answer->words, "why");
    if (status == 0) QVERIFY(!answer->words.isEmpty());
}

void NetworkTest::what_goes_over_the_wire() {
    QTcpServer listening;
    ScriptedServer server(listening);
    server.answer = "HTTP/1.1 204 No Content\r\n\r\n";
    QVERIFY(ask(*sender_, server.address("http")));
    QVERIFY2(server.request.startsWith("POST /write?db=x HTTP/1.1\r\n"), server.request);
    QVERIFY(server.request.contains("\r\nAuthorization: Bearer secret\r\n"));
    QVERIFY(server.request.endsWith("\r\n\r\nbody\n"));
}

void NetworkTest::nothing_listens() {
    int port = 0;
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        port = server.serverPort();
    }
    const auto answer = ask(*sender_, QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(port)));
    QVERIFY(answer && answer->status == 0 && !answer->words.isEmpty());
}

void NetworkTest::a_server_that_says_nothing_holds_nothing_up() {
    QTcpServer listening;
    ScriptedServer server(listening);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!ask(*sender_, server.address("http"), 0.3));
    QVERIFY(timer.elapsed() < 5000);
    server.answer = "HTTP/1.1 204 No Content\r\n\r\n";
    server.request.clear();
    QVERIFY(ask(*sender_, server.address("http")));
}

void NetworkTest::a_certificate_that_does_not_verify() {
    QTemporaryDir folder;
    const QString key = folder.filePath("key.pem");
    const QString certificate = folder.filePath("certificate.pem");
    QProcess::execute("openssl", {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj",
                                  "/CN=127.0.0.1", "-keyout", key, "-out", certificate});
    QFile key_file(key);
    QVERIFY(key_file.open(QIODevice::ReadOnly));
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificateChain(QSslCertificate::fromPath(certificate));
    configuration.setPrivateKey(QSslKey(key_file.readAll(), QSsl::Rsa));
    QSslServer listening;
    listening.setSslConfiguration(configuration);
    ScriptedServer server(listening);
    server.answer = "HTTP/1.1 204 No Content\r\n\r\n";
    const auto answer = ask(*sender_, server.address("https"));
    QVERIFY(answer);
    QCOMPARE(answer->status, 0);
    QVERIFY(!answer->words.isEmpty());
    QVERIFY(server.request.isEmpty());
}

}  // namespace m47::publish

QTEST_GUILESS_MAIN(m47::publish::NetworkTest)
#include "network_test.moc"
