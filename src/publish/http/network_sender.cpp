// SPDX-License-Identifier: GPL-3.0-or-later
#include "network_sender.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace m47::publish {
namespace {

constexpr qint64 kMostWords = 400;   // bytes of what an engine says
constexpr qint64 kMostHeld = 16384;  // the same, of a page without an end

/// Seconds from now to a date in the form that HTTP has for it, which mail does not know.
std::optional<double> seconds_to(const QByteArray& date) {
    const QString text = QString::fromLatin1(date).replace(QLatin1String("GMT"), "+0000");
    const QDateTime moment = QDateTime::fromString(text, Qt::RFC2822Date);
    if (!moment.isValid()) return {};
    return static_cast<double>(QDateTime::currentDateTimeUtc().secsTo(moment));
}

/// Seconds, or a date.
std::optional<double> retry_after(const QNetworkReply& reply) {
    if (!reply.hasRawHeader("Retry-After")) return {};
    const QByteArray text = reply.rawHeader("Retry-After").trimmed();
    bool is_number = false;
    const double seconds = text.toDouble(&is_number);
    return is_number ? seconds : seconds_to(text);
}

std::optional<double> ahead_of(const QNetworkReply& reply) {
    const std::optional<double> engine = seconds_to(reply.rawHeader("Date").trimmed());
    return engine ? std::optional(-*engine) : std::nullopt;
}

/// An answer that broke off is none, whatever its first line said.
bool is_whole(QNetworkReply::NetworkError error) {
    return error == QNetworkReply::NoError || error >= QNetworkReply::ContentAccessDenied;
}

HttpAnswer answer_of(QNetworkReply& reply) {
    HttpAnswer answer;
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (!is_whole(reply.error()) || status == 0) {
        answer.words = reply.errorString();
        return answer;
    }
    answer.status = status;
    answer.retry_after = retry_after(reply);
    answer.ahead = ahead_of(reply);
    answer.words = QString::fromUtf8(reply.read(kMostWords));
    return answer;
}

}  // namespace

NetworkSender::NetworkSender() = default;

NetworkSender::~NetworkSender() {
    give_up();
}

void NetworkSender::post(const QByteArray& body) {
    QNetworkRequest request(target_.url);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QByteArrayLiteral("text/plain; charset=utf-8"));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    if (!target_.authorization.isEmpty())
        request.setRawHeader("Authorization", target_.authorization);
    reply_.reset(manager_.post(request, body));
    reply_->setReadBufferSize(kMostHeld);
}

std::optional<HttpAnswer> NetworkSender::answer() {
    if (!reply_) return {};
    if (!reply_->isFinished() && reply_->bytesAvailable() < kMostHeld) return {};
    HttpAnswer answer = answer_of(*reply_);
    give_up();
    return answer;
}

void NetworkSender::give_up() {
    if (!reply_) return;
    // One that has ended can not be ended once more.
    if (reply_->isRunning()) reply_->abort();
    forget();
}

/// A run without pauses never comes back to an event loop, which alone would take away what is to
/// go later: a request would stay in memory each time.
void NetworkSender::forget() {
    reply_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void NetworkSender::work(double seconds) {
    constexpr double kMilliseconds = 1000;
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * kMilliseconds) + 1, &loop, &QEventLoop::quit);
    if (reply_) connect(reply_.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply_ || !reply_->isFinished()) loop.exec();
}

}  // namespace m47::publish
