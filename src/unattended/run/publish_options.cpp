// SPDX-License-Identifier: GPL-3.0-or-later
#include "publish_options.h"

#include "option_words.h"
#include "publish_address.h"

namespace m47::unattended {

QString read_publish(const QCommandLineParser& parser, Options& options) {
    PublishOptions& publish = options.publish;
    publish.site = parser.value(QStringLiteral("publish-site")).simplified();
    publish.meter = parser.value(QStringLiteral("publish-meter")).simplified();
    publish.token_file = parser.value(QStringLiteral("publish-token-file"));
    QString error;
    if (parser.isSet(QStringLiteral("publish")))
        publish.address = publish::publish_address(parser.value(QStringLiteral("publish")), error);
    const QString limit = QStringLiteral("outbox-limit");
    if (!error.isEmpty() || !parser.isSet(limit)) return error;
    publish.limit = publish::outbox_limit(parser.value(limit));
    if (publish.limit > 0) return {};
    return refused(QStringLiteral("--outbox-limit takes a size from 1M to 1024G, such as 512M"),
                   parser.value(limit));
}

QString check_publish(const QCommandLineParser& parser) {
    if (parser.isSet(QStringLiteral("publish"))) return {};
    for (const char* name : {"publish-site", "publish-meter", "publish-token-file", "outbox-limit"})
        if (parser.isSet(QLatin1String(name)))
            return QStringLiteral("--%1 needs --publish").arg(QLatin1String(name));
    return {};
}

}  // namespace m47::unattended
