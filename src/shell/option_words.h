// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::shell {

/// "RULE, not "GIVEN"": what an option takes, and what stood there.
inline QString refused(const QString& rule, const QString& given) {
    return rule + QStringLiteral(", not \"") + given + u'"';
}

/// What `option` was given before, with another value: nobody can know which is meant.
inline QString given_twice(const QString& option, const QString& one, const QString& other) {
    return option + QStringLiteral(" is given twice, as \"") + one +
           QStringLiteral("\" and as \"") + other + u'"';
}

}  // namespace m47::shell
