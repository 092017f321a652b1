// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify_options.h"

#include "option_words.h"

namespace m47::unattended {
namespace {

const QString kTables = QStringLiteral("scan-tables");
const QString kArc = QStringLiteral("arc");
const QString kFromPlans = QStringLiteral("candidates-from-plans");
const QString kCircular = QStringLiteral("circular");
const QString kDish = QStringLiteral("dish");

/// Universal without a word: who has another one names its oscillator.
identify::Lnb lnb_of(const QCommandLineParser& parser, const Options& options) {
    const auto& oscillator = options.antenna.oscillator;
    identify::Lnb lnb =
        oscillator ? identify::Lnb::single(*oscillator) : identify::Lnb::universal();
    lnb.circular = parser.isSet(kCircular);
    return lnb;
}

QString read_dish(const QCommandLineParser& parser, std::optional<int>& dish) {
    if (!parser.isSet(kDish)) return {};
    bool good = false;
    const int value = parser.value(kDish).toInt(&good);
    if (!good || value < identify::kLeastDish || value > identify::kMostDish)
        return refused(QStringLiteral("--dish takes whole centimetres from %1 to %2")
                           .arg(identify::kLeastDish)
                           .arg(identify::kMostDish),
                       parser.value(kDish));
    dish = value;
    return {};
}

}  // namespace

QString read_identify(const QCommandLineParser& parser, Options& options) {
    if (!parser.isSet(QStringLiteral("identify"))) return {};
    identify::CandidateChoice choice;
    choice.lnb = lnb_of(parser, options);
    choice.plans = parser.isSet(kFromPlans);
    if (parser.isSet(kTables)) choice.folder = parser.value(kTables);
    if (parser.isSet(kArc)) {
        choice.part = identify::arc_part_of(parser.value(kArc));
        if (!choice.part)
            return refused(QStringLiteral("--arc takes two places as 10E:30E or 5.5W:20E"),
                           parser.value(kArc));
    }
    if (QString error = read_dish(parser, choice.dish); !error.isEmpty()) return error;
    options.identify = choice;
    return {};
}

QString check_identify(const QCommandLineParser& parser, const Options& options) {
    if (options.on_port == 0) return QStringLiteral("--identify needs --on-port");
    for (const char* other :
         {"measure", "sweep",     "peak",        "carriers",  "scan-table",     "move-the-dish",
          "open",    "corrected", "analog",      "digital",   "freq",           "lnb",
          "tone",    "diseqc",    "bandwidth",   "alarm",     "confirm",        "count",
          "log",     "format",    "screenshot",  "plan",      "passes",         "every",
          "replay",  "full-tune", "symbol-rate", "reconnect", "problem-report", "create-database",
          "site"})
        if (parser.isSet(QLatin1String(other)))
            return QStringLiteral("--%1 does not go with --identify").arg(QLatin1String(other));
    if (!options.identify->plans) return {};
    for (const QString& tables : {kTables, kArc})
        if (parser.isSet(tables))
            return QStringLiteral("--%1 does not go with --%2").arg(tables, kFromPlans);
    return {};
}

QString check_without_identify(const QCommandLineParser& parser) {
    for (const QString& option : {kTables, kArc, kFromPlans, kCircular, kDish})
        if (parser.isSet(option))
            return QStringLiteral("--%1 goes with --identify only").arg(option);
    return {};
}

}  // namespace m47::unattended
