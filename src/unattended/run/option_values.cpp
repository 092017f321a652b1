// SPDX-License-Identifier: GPL-3.0-or-later
#include "option_values.h"

#include <QLocale>
#include <QRegularExpression>
#include <cmath>

#include "antenna_options.h"
#include "database.h"
#include "identify_options.h"
#include "option_words.h"
#include "peak_options.h"
#include "plan_name.h"
#include "port_list.h"
#include "publish_options.h"
#include "stored_names.h"
#include "sweep_options.h"
#include "tuning_range.h"
#include "visit_options.h"

namespace m47::unattended {
namespace {

const QStringList kAlarmNames{QStringLiteral("level"), QStringLiteral("ber"),
                              QStringLiteral("mer")};

/// The same twice is no contradiction.
QString check_given_once(const QCommandLineParser& parser) {
    static const QStringList kRepeatable{QStringLiteral("port"), QStringLiteral("alarm")};
    const QStringList names = parser.optionNames();
    for (const QString& name : names) {
        const QStringList values = parser.values(name);
        if (kRepeatable.contains(name)) continue;
        // What was given may hold what is not to be told.
        if (name == QLatin1String("publish") && values.size() > 1)
            return QStringLiteral("--publish takes one address");
        for (const QString& value : values)
            if (value != values.constFirst())
                return given_twice(QStringLiteral("--") + name, values.constFirst(), value);
    }
    return {};
}

/// A whole number from `minimum` to `maximum` as the value of `name`; an error text otherwise.
QString read_number(const QCommandLineParser& parser, const QString& name, int minimum, int maximum,
                    int& number) {
    if (!parser.isSet(name)) return {};
    bool good = false;
    const int value = parser.value(name).toInt(&good);
    if (!good || value < minimum || value > maximum)
        return refused(QStringLiteral("--%1 takes a whole number from %2 to %3")
                           .arg(name)
                           .arg(minimum)
                           .arg(maximum),
                       parser.value(name));
    number = value;
    return {};
}

/// The limits of the plan hold where an alarm is only named.
QString read_alarm_name(const QString& name, QList<AlarmOption>& alarms) {
    if (!kAlarmNames.contains(name))
        return refused(QStringLiteral("--alarm with --plan takes one of level, ber, mer"), name);
    alarms.append({name, {}, {}});
    return {};
}

QString read_alarm_limits(const QString& value, QList<AlarmOption>& alarms) {
    static const QRegularExpression kForm(QStringLiteral("^([a-z]+)=([^:]*):([^:]*)$"));
    const QRegularExpressionMatch match = kForm.match(value);
    bool minimum_good = false;
    bool maximum_good = false;
    const double minimum = match.captured(2).toDouble(&minimum_good);
    const double maximum = match.captured(3).toDouble(&maximum_good);
    if (!kAlarmNames.contains(match.captured(1)) || !minimum_good || !maximum_good ||
        !std::isfinite(minimum) || !std::isfinite(maximum))
        return refused(
            QStringLiteral("--alarm takes NAME=MIN:MAX with NAME one of level, ber, mer"), value);
    // A value passes between the two, so nothing could.
    if (minimum >= maximum)
        return refused(
            QStringLiteral("--alarm %1 takes a MIN below its MAX").arg(match.captured(1)), value);
    alarms.append({match.captured(1), match.captured(2), match.captured(3)});
    return {};
}

/// The limits that `alarms` holds for the one behind them already, where they are others.
QString check_alarm_once(const QList<AlarmOption>& alarms) {
    const AlarmOption& last = alarms.constLast();
    for (const AlarmOption& alarm : alarms)
        if (alarm.name == last.name && alarm.text() != last.text())
            return given_twice(QStringLiteral("--alarm ") + alarm.name, alarm.text(), last.text());
    return {};
}

QString read_alarms(const QCommandLineParser& parser, QList<AlarmOption>& alarms) {
    const auto read = parser.isSet(QStringLiteral("plan")) ? read_alarm_name : read_alarm_limits;
    const QStringList values = parser.values(QStringLiteral("alarm"));
    for (const QString& value : values) {
        QString error = read(value, alarms);
        if (error.isEmpty()) error = check_alarm_once(alarms);
        if (!error.isEmpty()) return error;
    }
    return {};
}

/// A value that the screen would move into its range without a word.
struct RangedOption {
    const char* name;
    programme::TuningRange range;
    QString unit;
    QString Options::*text;
};

QString read_ranged(const QCommandLineParser& parser, const RangedOption& option,
                    Options& options) {
    const QString name = QLatin1String(option.name);
    if (!parser.isSet(name)) return {};
    bool good = false;
    const QString text = parser.value(name);
    const double value =
        QString(text).replace(QLocale().decimalPoint(), QStringLiteral(".")).toDouble(&good);
    options.*option.text = text;
    if (good && value >= option.range.minimum && value <= option.range.maximum) return {};
    return refused(QStringLiteral("--%1 takes a number from %2 to %3 %4")
                       .arg(name)
                       .arg(option.range.minimum)
                       .arg(option.range.maximum)
                       .arg(option.unit),
                   text);
}

/// A measurement without a plan is tuned directly, or through the oscillator that was given.
RangedOption frequency_option(const AntennaOptions& antenna) {
    const auto& oscillator = antenna.oscillator;
    const QString unit = oscillator ? QStringLiteral("MHz with --oscillator %1").arg(*oscillator)
                                    : QStringLiteral("MHz");
    return {"freq", programme::tuning_range(!oscillator, oscillator.value_or(0)), unit,
            &Options::frequency};
}

QString read_ranged_options(const QCommandLineParser& parser, Options& options) {
    const RangedOption ranged[] = {frequency_option(options.antenna),
                                   {"bandwidth",
                                    {programme::kBandwidthMinimum, programme::kBandwidthMaximum},
                                    QStringLiteral("MHz"),
                                    &Options::bandwidth},
                                   {"symbol-rate",
                                    {programme::kSymbolRateMinimum, programme::kSymbolRateMaximum},
                                    QStringLiteral("kS/s"),
                                    &Options::symbol_rate}};
    QString error;
    for (const RangedOption& option : ranged)
        if (error.isEmpty()) error = read_ranged(parser, option, options);
    return error;
}

QString read_format(const QCommandLineParser& parser, Options& options) {
    static const QStringList kFormats{QStringLiteral("tsv"), QStringLiteral("csv"),
                                      QStringLiteral("json")};
    std::optional<int> place;
    const QString error = read_choice(parser, QStringLiteral("format"), kFormats, place);
    if (place) options.format = static_cast<measurement::OutputFormat>(*place);
    return error;
}

/// A name that a script left empty is not the same as none.
QString check_names(const QCommandLineParser& parser, const Offer& offer) {
    for (const char* name :
         {"directory", "log", "plan", "screenshot", "trace", "replay", "problem-report",
          "scan-table", "scan-tables", "import-database", "site", "config", "publish",
          "publish-site", "publish-meter", "publish-token-file"}) {
        const QString option = QString::fromLatin1(name);
        if (parser.isSet(option) && parser.value(option).trimmed().isEmpty())
            return QStringLiteral("--%1 takes a name, not an empty one").arg(option);
    }
    const QString open = QStringLiteral("open");
    if (parser.isSet(open) && !offer.screens.contains(parser.value(open)))
        return refused(
            QStringLiteral("--open takes one of %1").arg(offer.screens.join(QStringLiteral(", "))),
            parser.value(open));
    return {};
}

/// Split at the first "=", as file names have one more often than plans.
QString read_plan_file_option(const QCommandLineParser& parser, const QString& option,
                              PlanFileOption& read) {
    if (!parser.isSet(option)) return {};
    const QString value = parser.value(option);
    const qsizetype equals = value.indexOf(u'=');
    const QString plan = value.left(equals).trimmed();
    const QString file = value.mid(equals + 1);
    if (equals < 0 || plan.isEmpty() || file.trimmed().isEmpty())
        return refused(QStringLiteral("--%1 takes NAME=FILE").arg(option), value);
    if (programme::plan_name(plan) != db::stored_plan_name(plan))
        return refused(QStringLiteral("--%1 takes a plan's name of at most %2 characters")
                           .arg(option)
                           .arg(kLongestName),
                       plan);
    read = {plan, file};
    return {};
}

QString read_plan_files(const QCommandLineParser& parser, Options& options) {
    const QString error =
        read_plan_file_option(parser, QStringLiteral("export-plan"), options.export_plan);
    return error.isEmpty()
               ? read_plan_file_option(parser, QStringLiteral("import-plan"), options.import_plan)
               : error;
}

QString read_ports(const QCommandLineParser& parser, Options& options) {
    link::PortList entries({.sys = {}, .dev = {}, .reported = [] { return QStringList(); }});
    options.ports = parser.values(QStringLiteral("port"));
    QMap<int, QString> given;
    for (const QString& entry : std::as_const(options.ports)) {
        if (!entries.add(entry))
            return refused(QStringLiteral("--port takes N=DEVICE with N from 1 to 10"), entry);
        const int number = entry.section(u'=', 0, 0).toInt();
        const QString before = given.value(number, entry);
        if (before.section(u'=', 1) != entry.section(u'=', 1))
            return given_twice(QStringLiteral("--port %1").arg(number), before, entry);
        given.insert(number, entry);
    }
    return {};
}

QString read_whole_numbers(const QCommandLineParser& parser, Options& options) {
    constexpr int kMostTimes = 1'000'000'000;
    constexpr int kYear = 31'536'000;  // seconds
    struct WholeNumber {
        const char* name;
        int minimum;
        int maximum;
        int Options::*number;
    };
    const WholeNumber numbers[] = {{"on-port", 1, link::PortList::kPorts, &Options::on_port},
                                   {"count", 1, kMostTimes, &Options::count},
                                   {"passes", 0, kMostTimes, &Options::passes},
                                   {"every", 1, kYear, &Options::every}};
    QString error;
    for (const WholeNumber& number : numbers)
        if (error.isEmpty())
            error = read_number(parser, QLatin1String(number.name), number.minimum, number.maximum,
                                options.*number.number);
    return error;
}

/// Where the rows go, and how.
QString read_destinations(const QCommandLineParser& parser, Options& options) {
    QString error = read_format(parser, options);
    if (error.isEmpty()) error = read_visit(parser, options);
    if (error.isEmpty()) error = read_publish(parser, options);
    return error;
}

}  // namespace

QString read_values(const QCommandLineParser& parser, const Offer& offer, Options& options) {
    QString error = check_given_once(parser);
    if (error.isEmpty()) error = check_names(parser, offer);
    if (error.isEmpty()) error = read_ports(parser, options);
    if (error.isEmpty()) error = read_whole_numbers(parser, options);
    if (error.isEmpty()) error = read_antenna_options(parser, options.antenna);
    if (error.isEmpty()) error = read_ranged_options(parser, options);
    if (error.isEmpty()) error = read_sweep_span(parser, options);
    if (error.isEmpty()) error = read_peak_span(parser, options);
    if (error.isEmpty()) error = read_identify(parser, options);
    if (error.isEmpty()) error = read_destinations(parser, options);
    if (error.isEmpty()) error = read_plan_files(parser, options);
    if (error.isEmpty()) error = read_alarms(parser, options.alarms);
    return error;
}

}  // namespace m47::unattended
