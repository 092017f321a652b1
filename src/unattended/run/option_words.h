// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <optional>

namespace m47::unattended {

/// "RULE, not "GIVEN"": what an option takes, and what stood there.
QString refused(const QString& rule, const QString& given);

/// What `option` was given before, with another value: nobody can know which is meant.
QString given_twice(const QString& option, const QString& one, const QString& other);

/// The place of what the option `name` was given in `choices`, where it was given at all. One
/// sentence where it is none of them.
QString read_choice(const QCommandLineParser& parser, const QString& name,
                    const QStringList& choices, std::optional<int>& place);

}  // namespace m47::unattended
