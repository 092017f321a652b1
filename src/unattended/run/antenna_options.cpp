// SPDX-License-Identifier: GPL-3.0-or-later
#include "antenna_options.h"

#include <QStringList>

#include "diseqc_commands.h"
#include "option_words.h"
#include "oscillators.h"

namespace m47::unattended {
namespace {

/// As the lists of the real-time screen have them.
const QStringList kSupplies{QStringLiteral("off"), QStringLiteral("13"), QStringLiteral("15"),
                            QStringLiteral("18"), QStringLiteral("24")};
const QStringList kTones{QStringLiteral("on"), QStringLiteral("off")};

/// Where the list has `text`, in whatever letters and with single blanks.
QStringList places_of_command(const QString& text) {
    QStringList places;
    for (std::size_t place = 0; place < programme::kDiseqcCommands.size(); ++place) {
        const QString listed = QString::fromLatin1(programme::kDiseqcCommands[place]).simplified();
        if (listed.compare(text.simplified(), Qt::CaseInsensitive) == 0)
            places += QString::number(place);
    }
    return places;
}

QString read_diseqc(const QCommandLineParser& parser, std::optional<int>& command) {
    const QString name = QStringLiteral("diseqc");
    if (!parser.isSet(name)) return {};
    const QString given = parser.value(name);
    const QStringList places = places_of_command(given);
    if (places.size() > 1)
        return QStringLiteral("--diseqc takes %1, which are both called \"")
                   .arg(places.join(QStringLiteral(" or "))) +
               given + u'"';
    bool good = false;
    const int place = (places.isEmpty() ? given : places.constFirst()).toInt(&good);
    if (!good || place < 0 || place > programme::kDiseqcNone)
        return refused(QStringLiteral("--diseqc takes a number from 0 to %1 or a text of the list")
                           .arg(programme::kDiseqcNone),
                       given);
    command = place;
    return {};
}

QString read_oscillator(const QCommandLineParser& parser, std::optional<int>& oscillator) {
    const QString name = QStringLiteral("oscillator");
    if (!parser.isSet(name)) return {};
    bool good = false;
    const int mhz = parser.value(name).toInt(&good);
    if (!good || !programme::is_oscillator(mhz))
        return refused(QStringLiteral("--oscillator takes a whole number from %1 to %2")
                           .arg(programme::kOscillatorMinimum)
                           .arg(programme::kOscillatorMaximum),
                       parser.value(name));
    oscillator = mhz;
    return {};
}

}  // namespace

QString read_antenna_options(const QCommandLineParser& parser, AntennaOptions& antenna) {
    QString error = read_oscillator(parser, antenna.oscillator);
    if (error.isEmpty())
        error = read_choice(parser, QStringLiteral("lnb"), kSupplies, antenna.supply);
    if (error.isEmpty()) error = read_choice(parser, QStringLiteral("tone"), kTones, antenna.tone);
    if (error.isEmpty()) error = read_diseqc(parser, antenna.diseqc);
    return error;
}

}  // namespace m47::unattended
