// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "options.h"

namespace m47::unattended {

/// A line of a configuration file: an option by its name, and its value where it takes one.
struct ConfigurationLine {
    int number = 0;
    QString name;
    QString value;
    bool has_value = false;

    /// As it would stand on the command line.
    QString argument() const;
};

/// What is wrong with a line, in a sentence with file and line; 0 where it is of no line.
struct ConfigurationFault {
    QString text;
    int line = 0;
};

/// A configuration file: what its lines say, and what is wrong with those that say nothing.
struct Configuration {
    QString file;
    std::vector<ConfigurationLine> lines;
    std::vector<ConfigurationFault> faults;

    /// `sentence` about an option, with the file and the line that gives it; as it is where none
    /// does.
    ConfigurationFault located(const QString& sentence) const;
    /// The line that `sentence` is about, nothing where it is about none.
    std::optional<std::size_t> place_of(const QString& sentence) const;
    QStringList arguments() const;
};

/// Reads the file `path`, for a program with the options of `offer`. Lines are `NAME = VALUE`;
/// "yes" and "no" for an option without a value. What begins with "#" or ";" is a comment.
Configuration read_configuration(const QString& path, const Offer& offer);

/// Leaves out what the command line says in another way: that goes before the file.
void give_way(Configuration& configuration, const QCommandLineParser& command_line);

}  // namespace m47::unattended
