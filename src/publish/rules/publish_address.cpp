// SPDX-License-Identifier: GPL-3.0-or-later
#include "publish_address.h"

#include <QRegularExpression>
#include <QUrlQuery>
#include <algorithm>

#include "plain_file.h"

namespace m47::publish {
namespace {

constexpr qint64 kLongestSecret = 16384;  // bytes of its file

/// Keys that engines take a secret by.
bool holds_secret(const QUrl& url) {
    static const QStringList kSecrets{QStringLiteral("u"),
                                      QStringLiteral("p"),
                                      QStringLiteral("user"),
                                      QStringLiteral("token"),
                                      QStringLiteral("authKey"),
                                      QStringLiteral("password"),
                                      QStringLiteral("access_token"),
                                      QStringLiteral("api_key")};
    const auto items = QUrlQuery(url).queryItems();
    return std::any_of(items.begin(), items.end(), [](const auto& item) {
        return kSecrets.contains(item.first, Qt::CaseInsensitive);
    });
}

/// An engine that takes nanoseconds for another unit drops all rows, and says that it took them.
bool has_other_precision(const QUrl& url) {
    const QString name = QStringLiteral("precision");
    const QString precision = QUrlQuery(url).queryItemValue(name);
    return QUrlQuery(url).hasQueryItem(name) && precision != QLatin1String("ns") &&
           precision != QLatin1String("n");
}

QString fault_of(const QUrl& url) {
    if (!url.userInfo().isEmpty() || holds_secret(url))
        return QStringLiteral(
            "--publish takes no user, password or token: these go into the file of "
            "--publish-token-file or into M47_PUBLISH_TOKEN");
    const bool web =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !web || url.host().isEmpty() || url.hasFragment() || url.port() == 0)
        return QStringLiteral(
            "--publish takes an address such as http://host:8428/write or https://host/path");
    if (has_other_precision(url))
        return QStringLiteral(
            "--publish sends times in nanoseconds: an address takes precision=ns or none");
    return {};
}

}  // namespace

QUrl publish_address(const QString& text, QString& error) {
    QUrl url(text.trimmed(), QUrl::StrictMode);
    error = fault_of(url);
    if (!error.isEmpty()) return {};
    if (url.path().isEmpty() || url.path() == QLatin1String("/"))
        url.setPath(QStringLiteral("/write"));
    return url;
}

QByteArray authorization(const QByteArray& secret) {
    if (secret.isEmpty()) return {};
    return secret.contains(':') ? "Basic " + secret.toBase64() : "Bearer " + secret;
}

QByteArray read_secret(const QString& path, QString& error) {
    const platform::FileReading reading = platform::read_plain_file(path, kLongestSecret);
    const QByteArray secret = reading.bytes.split('\n').constFirst().trimmed();
    const bool printable = std::all_of(secret.begin(), secret.end(),
                                       [](char letter) { return letter > ' ' && letter < '\x7f'; });
    if (reading.fault != platform::FileFault::none)
        error = QStringLiteral("the file of --publish-token-file cannot be read");
    else if (secret.isEmpty() || !printable)
        error = QStringLiteral(
            "the file of --publish-token-file needs a token or user:password in its first line");
    else
        return secret;
    return {};
}

qint64 outbox_limit(const QString& text) {
    static const QRegularExpression kForm(QStringLiteral("^([0-9]{1,15})([kKmMgG]?)$"));
    constexpr qint64 kKibi = 1024;
    constexpr qint64 kLeast = kKibi * kKibi;
    constexpr qint64 kMost = kKibi * kKibi * kKibi * kKibi;
    const QRegularExpressionMatch match = kForm.match(text.trimmed());
    if (!match.hasMatch()) return 0;
    qint64 bytes = match.captured(1).toLongLong();
    const auto powers = QStringLiteral("kmg").indexOf(match.captured(2).toLower());
    if (bytes > kMost) return 0;
    for (qsizetype power = 0; power <= powers && !match.captured(2).isEmpty(); ++power)
        bytes *= kKibi;
    return bytes < kLeast || bytes > kMost ? 0 : bytes;
}

}  // namespace m47::publish
