// SPDX-License-Identifier: GPL-3.0-or-later
#include "configuration.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <algorithm>

#include "option_list.h"
#include "plain_file.h"
#include "say_on_stderr.h"

namespace m47::unattended {
namespace {

constexpr qint64 kLongestFile = qint64{1024} * 1024;

/// Not of a file: they say what is done with it, or that nothing is.
const QStringList kOfTheCommandLine{QStringLiteral("config"), QStringLiteral("check-config"),
                                    QStringLiteral("help"),   QStringLiteral("version"),
                                    QStringLiteral("h"),      QStringLiteral("v")};

/// What excludes each other, so that one of them on the command line means: not the other one.
const QStringList kPairs[] = {{QStringLiteral("analog"), QStringLiteral("digital")},
                              {QStringLiteral("directory"), QStringLiteral("user-data")}};

enum class Kind { unknown, with_value, switch_alone };

/// What an option is, found by what a parser says of it.
Kind kind_of(const QString& name, QCommandLineParser& parser) {
    if (kOfTheCommandLine.contains(name)) return Kind::unknown;
    if (parser.parse({QString(), QStringLiteral("--") + name})) return Kind::switch_alone;
    return parser.unknownOptionNames().isEmpty() ? Kind::with_value : Kind::unknown;
}

bool is_yes(const QString& value) {
    return QStringList{QStringLiteral("yes"), QStringLiteral("true"), QStringLiteral("on"),
                       QStringLiteral("1")}
        .contains(value, Qt::CaseInsensitive);
}

bool is_no(const QString& value) {
    return QStringList{QStringLiteral("no"), QStringLiteral("false"), QStringLiteral("off"),
                       QStringLiteral("0")}
        .contains(value, Qt::CaseInsensitive);
}

ConfigurationFault fault_at(const QString& file, int line, const QString& sentence) {
    return {QStringLiteral("%1:%2: %3").arg(file).arg(line).arg(sentence), line};
}

/// Quotes keep blanks at the ends.
QString unquoted(const QString& value) {
    const bool quoted = value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"');
    return quoted ? value.sliced(1, value.size() - 2) : value;
}

/// Adds what `text` says to `read`. What is wrong with it, empty for nothing.
QString read_line(const QString& text, QCommandLineParser& parser, ConfigurationLine line,
                  Configuration& read) {
    if (text.startsWith(u'[')) return QStringLiteral("there are no sections, \"%1\"").arg(text);
    const qsizetype equals = text.indexOf(u'=');
    line.name = text.left(equals).trimmed();
    line.value = equals < 0 ? QString() : unquoted(text.mid(equals + 1).trimmed());
    switch (kind_of(line.name, parser)) {
        case Kind::unknown:
            return QStringLiteral("there is no key \"%1\"").arg(line.name);
        case Kind::with_value:
            if (equals < 0)
                return QStringLiteral("the key \"%1\" needs a value behind \"=\"").arg(line.name);
            line.has_value = true;
            break;
        case Kind::switch_alone:
            if (is_no(line.value)) return {};
            if (equals >= 0 && !is_yes(line.value))
                return QStringLiteral("the key \"%1\" takes yes or no, not \"%2\"")
                    .arg(line.name, line.value);
            break;
    }
    read.lines.push_back(line);
    return {};
}

}  // namespace

QString ConfigurationLine::argument() const {
    const QString word = QStringLiteral("--") + name;
    return has_value ? word + u'=' + value : word;
}

std::optional<std::size_t> Configuration::place_of(const QString& sentence) const {
    static const QRegularExpression kOption(QStringLiteral("--([a-z][a-z-]*)"));
    auto options = kOption.globalMatch(sentence);
    while (options.hasNext()) {
        const QString name = options.next().captured(1);
        std::optional<std::size_t> found;
        for (std::size_t place = 0; place < lines.size(); ++place) {
            if (lines[place].name != name) continue;
            const bool told = sentence.endsWith(u'"' + lines[place].value + u'"');
            if (!found || told) found = place;
            if (told) break;
        }
        if (found) return found;
    }
    return std::nullopt;
}

ConfigurationFault Configuration::located(const QString& sentence) const {
    const std::optional<std::size_t> place = place_of(sentence);
    return place ? fault_at(file, lines[*place].number, sentence) : ConfigurationFault{sentence};
}

QStringList Configuration::arguments() const {
    QStringList words;
    for (const ConfigurationLine& line : lines) words.append(line.argument());
    return words;
}

Configuration read_configuration(const QString& path, const Offer& offer) {
    Configuration read{path, {}, {}};
    const platform::FileReading file = platform::read_plain_file(path, kLongestFile);
    if (file.fault != platform::FileFault::none) {
        const QString reason = why_not_read(file, QStringLiteral("it is longer than 1 MiB"));
        read.faults.push_back({QStringLiteral("cannot read %1: %2").arg(path, reason)});
        return read;
    }
    QCommandLineParser parser;
    add_options(parser, offer);
    const QByteArrayList lines = file.bytes.split('\n');
    for (int number = 1; number <= lines.size(); ++number) {
        QStringDecoder decode(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
        const QString text = QString(decode(lines[number - 1])).trimmed();
        if (text.isEmpty() || text.startsWith(u'#') || text.startsWith(u';')) continue;
        const bool is_text = !decode.hasError() && !text.contains(QChar::Null);
        const QString fault = is_text ? read_line(text, parser, {number, {}, {}, false}, read)
                                      : QStringLiteral("the line is no text in UTF-8");
        if (fault.isEmpty()) continue;
        read.faults.push_back(fault_at(path, number, fault));
    }
    return read;
}

void give_way(Configuration& configuration, const QCommandLineParser& command_line) {
    std::erase_if(configuration.lines, [&](const ConfigurationLine& line) {
        if (command_line.isSet(line.name)) return true;
        return std::ranges::any_of(kPairs, [&](const QStringList& pair) {
            return pair.contains(line.name) &&
                   (command_line.isSet(pair[0]) || command_line.isSet(pair[1]));
        });
    });
}

}  // namespace m47::unattended
