// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine_processes.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QThread>
#include <QUrl>

namespace m47::publish {

int free_port() {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

EngineProcess::EngineProcess(const QString& program, const QStringList& options, int port)
    : program_(program), options_(options), port_(port) {}

bool EngineProcess::start() {
    process_ = std::make_unique<ChildProcess>();
    process_->process().setStandardErrorFile(QProcess::nullDevice());
    process_->process().setStandardOutputFile(QProcess::nullDevice());
    process_->process().start(program_, options_);
    if (!process_->process().waitForStarted()) return false;
    const QDeadlineTimer deadline(20000);
    while (!deadline.hasExpired()) {
        if (!get(address("/health")).isEmpty()) return true;
        QThread::msleep(50);
    }
    return false;
}

void EngineProcess::kill() {
    if (!process_) return;
    process_->kill_now();
    process_.reset();
}

QString EngineProcess::address(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port_).arg(path);
}

std::unique_ptr<EngineProcess> store_in(const QString& folder) {
    const int port = free_port();
    const QStringList options{"-storageDataPath=" + folder + "/store",
                              QStringLiteral("-httpListenAddr=127.0.0.1:%1").arg(port),
                              "-dedup.minScrapeInterval=1ms",
                              "-memory.allowedBytes=64MB",
                              "-search.latencyOffset=0s",
                              "-storage.minFreeDiskSpaceBytes=4MB"};
    return std::make_unique<EngineProcess>("victoria-metrics", options, port);
}

std::unique_ptr<EngineProcess> agent_in(const QString& folder, const EngineProcess& store) {
    const int port = free_port();
    const QStringList options{"-remoteWrite.url=" + store.address("/api/v1/write"),
                              "-remoteWrite.tmpDataPath=" + folder + "/agent",
                              QStringLiteral("-httpListenAddr=127.0.0.1:%1").arg(port),
                              "-memory.allowedBytes=64MB"};
    return std::make_unique<EngineProcess>("vmagent", options, port);
}

QByteArray get(const QString& address) {
    QNetworkAccessManager manager;
    QNetworkRequest request{QUrl(address)};
    request.setTransferTimeout(5000);
    const std::unique_ptr<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) loop.exec();
    return reply->error() == QNetworkReply::NoError ? reply->readAll() : QByteArray();
}

QList<QJsonObject> exported(const EngineProcess& store, const QString& selector) {
    get(store.address("/internal/force_flush"));
    const QByteArray lines = get(store.address(
        "/api/v1/export?match%5B%5D=" + QString::fromLatin1(QUrl::toPercentEncoding(selector))));
    QList<QJsonObject> series;
    for (const QByteArray& line : lines.split('\n'))
        if (!line.isEmpty()) series += QJsonDocument::fromJson(line).object();
    return series;
}

}  // namespace m47::publish
