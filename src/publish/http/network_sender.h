// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <memory>

#include "http_sender.h"

class QNetworkReply;

namespace m47::publish {

/// Requests by Qt Network. A certificate that does not verify ends a request, and no redirection is
/// followed: it could lead the token elsewhere.
class NetworkSender : public QObject, public HttpSender {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_HTTP_SENDER)
    Q_INTERFACES(m47::publish::HttpSender)
  public:
    NetworkSender();
    ~NetworkSender() override;

    void set_target(const HttpTarget& target) override { target_ = target; }
    void post(const QByteArray& body) override;
    std::optional<HttpAnswer> answer() override;
    void give_up() override;
    void work(double seconds) override;

  private:
    void forget();

    HttpTarget target_;
    QNetworkAccessManager manager_{this};
    std::unique_ptr<QNetworkReply> reply_;
};

}  // namespace m47::publish
