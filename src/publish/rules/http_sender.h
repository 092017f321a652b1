// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <QtPlugin>
#include <optional>

namespace m47::publish {

/// Where a request goes and what it says of who sends it.
struct HttpTarget {
    QUrl url;
    QByteArray authorization;  ///< the whole header's value; empty without one
};

/// What came of a request.
struct HttpAnswer {
    int status = 0;                       ///< of HTTP; 0 where no whole answer came
    std::optional<double> retry_after{};  ///< seconds, as the engine asked for
    QString words{};                      ///< why none came, or the begin of what it said
    std::optional<double> ahead{};        ///< seconds of this machine's clock before the engine's
};

/// The engine has what it was sent, as HTTP says it.
inline bool is_taken(const HttpAnswer& answer) {
    constexpr int kGoodFrom = 200;
    constexpr int kGoodTo = 299;
    return answer.status >= kGoodFrom && answer.status <= kGoodTo;
}

/// Sends one request at a time and waits for nothing. The libraries behind it are many and only who
/// publishes needs them.
class HttpSender {
  public:
    virtual ~HttpSender() = default;

    /// Where what post() is given goes from now on.
    virtual void set_target(const HttpTarget& target) = 0;
    /// Begins to send `body`; not while another one is under way.
    virtual void post(const QByteArray& body) = 0;
    /// The answer once it is there, told once.
    virtual std::optional<HttpAnswer> answer() = 0;
    /// Forgets the request under way.
    virtual void give_up() = 0;
    /// Works for at most `seconds`, less where an answer comes before.
    virtual void work(double seconds) = 0;
};

}  // namespace m47::publish

#define M47_HTTP_SENDER "org.m47remote.HttpSender/1"
Q_DECLARE_INTERFACE(m47::publish::HttpSender, M47_HTTP_SENDER)
