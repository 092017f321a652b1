// SPDX-License-Identifier: GPL-3.0-or-later
#include "option_words.h"

namespace m47::unattended {

QString refused(const QString& rule, const QString& given) {
    return rule + QStringLiteral(", not \"") + given + u'"';
}

QString given_twice(const QString& option, const QString& one, const QString& other) {
    return option + QStringLiteral(" is given twice, as \"") + one +
           QStringLiteral("\" and as \"") + other + u'"';
}

QString read_choice(const QCommandLineParser& parser, const QString& name,
                    const QStringList& choices, std::optional<int>& place) {
    if (!parser.isSet(name)) return {};
    const auto found = static_cast<int>(choices.indexOf(parser.value(name)));
    if (found < 0)
        return refused(
            QStringLiteral("--%1 takes one of %2").arg(name, choices.join(QStringLiteral(", "))),
            parser.value(name));
    place = found;
    return {};
}

}  // namespace m47::unattended
