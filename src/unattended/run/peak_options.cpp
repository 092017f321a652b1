// SPDX-License-Identifier: GPL-3.0-or-later
#include "peak_options.h"

#include <QRegularExpression>
#include <cmath>

#include "option_words.h"
#include "peak_search.h"

namespace m47::unattended {
QString read_peak_span(const QCommandLineParser& parser, Options& options) {
    const QString name = QStringLiteral("peak");
    if (!parser.isSet(name)) return {};
    static const QRegularExpression kForm(QStringLiteral("^\\d{1,2}(\\.\\d)?$"));
    const QString given = parser.value(name);
    const double degrees = given.toDouble();
    if (!kForm.match(given).hasMatch() || degrees < peak::kLeastSpan || degrees > peak::kMostSpan)
        return refused(QStringLiteral("--peak takes a SPAN from %1 to %2 degrees")
                           .arg(peak::kLeastSpan)
                           .arg(peak::kMostSpan),
                       given);
    options.peak_span = static_cast<int>(std::lround(degrees * peak::kStepsOfDegree));
    return {};
}

QString check_peak(const QCommandLineParser& parser, const Options& options) {
    if (options.on_port == 0) return QStringLiteral("--peak needs --on-port");
    if (options.frequency.isEmpty()) return QStringLiteral("--peak needs --freq");
    for (const char* other :
         {"measure",         "sweep",      "carriers", "scan-table",     "open",
          "create-database", "corrected",  "analog",   "digital",        "diseqc",
          "bandwidth",       "alarm",      "confirm",  "count",          "log",
          "format",          "screenshot", "plan",     "passes",         "every",
          "full-tune",       "reconnect",  "replay",   "problem-report", "site"})
        if (parser.isSet(QLatin1String(other)))
            return QStringLiteral("--%1 does not go with --peak").arg(QLatin1String(other));
    if (!options.move_the_dish)
        return QStringLiteral(
            "--peak turns the dish: --move-the-dish says that nobody stands there");
    return {};
}

}  // namespace m47::unattended
