// SPDX-License-Identifier: GPL-3.0-or-later
#include "options.h"

#include <QCommandLineParser>
#include <QLocale>
#include <QRegularExpression>
#include <cmath>

#include "port_list.h"
#include "screen_table.h"
#include "tuning_range.h"

namespace m47::shell {
namespace {

const QStringList kAlarmNames{QStringLiteral("level"), QStringLiteral("ber"),
                              QStringLiteral("mer")};

void add_options(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        QStringLiteral("Remote control for the M47 TV signal level meter."));
    const QList<QCommandLineOption> options{
        {{"h", "help"}, "Show this help and end."},
        {{"v", "version"}, "Show the version and end."},
        {"directory",
         "Work in DIR instead of the current directory; other relative names start there.", "DIR"},
        {"user-data",
         "Work in $XDG_DATA_HOME/m47-remote (~/.local/share/m47-remote), which is made where it "
         "does not exist."},
        {"port", "The device behind port number N (1 to 10); repeatable.", "N=DEVICE"},
        {"create-database", "First create the database file where it does not exist."},
        {"on-port", "Connect to the meter on port number N at start.", "N"},
        {"open", "Open the screen of toolbar key KEY at start.", "KEY"},
        {"corrected",
         "Start with every entry of the menu \"Corrected behaviour\" ticked; goes with --measure "
         "too."},
        {"measure", "Measure without a window and print each row, TAB-separated."},
        {"analog", "Measure the analog way (the default)."},
        {"digital", "Measure the digital way (QPSK)."},
        {"freq", "Frequency to measure at, 920 to 2150.", "MHZ"},
        {"bandwidth", "Channel bandwidth for the digital channel power, 5 to 36.", "MHZ"},
        {"symbol-rate", "QPSK symbol rate, 1500 to 45000.", "KS"},
        {"alarm",
         "Check limits, NAME one of level, ber, mer; repeatable. With --plan NAME alone: the "
         "limits "
         "are the plan's.",
         "NAME=MIN:MAX"},
        {"confirm",
         "Ask again for a value that lies off the ones before it or crosses a limit; take it when "
         "two answers agree."},
        {"count", "How many measurements to take (default 1).", "K"},
        {"plan", "Measure the monitored programs of the plan NAME.", "NAME"},
        {"passes", "How often to measure the plan (default 1, 0 until told to stop).", "K"},
        {"every", "Begin a pass over the plan every so many SECONDS.", "SECONDS"},
        {"full-tune",
         "Set oscillator, LNB, tone, DiSEqC and bandwidth of each program of the plan too."},
        {"reconnect",
         "Wait for a meter that does not answer at the start, and after a lost link go on when the "
         "plan's meter answers again."},
        {"log", "Append each row to FILE as well.", "FILE"},
        {"screenshot", "Write a picture of the real-time screen at the end.", "FILE"},
        {"import-database",
         "Bring the plans and satellites of OLD, a database file of the old Jet engine, into the "
         "database, print a report and end; what is there under the same name is kept. Ends with "
         "status 4 where the database cannot be used, 5 where OLD cannot be read or the report "
         "not be printed.",
         "OLD"},
    };
    for (const QCommandLineOption& option : options) parser.addOption(option);
}

/// A whole number from `minimum` to `maximum` as the value of `name`; an error text otherwise.
QString read_number(const QCommandLineParser& parser, const QString& name, int minimum, int maximum,
                    int& number) {
    if (!parser.isSet(name)) return {};
    bool good = false;
    const int value = parser.value(name).toInt(&good);
    if (!good || value < minimum || value > maximum)
        return QStringLiteral("--%1 takes a whole number from %2 to %3")
            .arg(name)
            .arg(minimum)
            .arg(maximum);
    number = value;
    return {};
}

/// The limits of the plan hold where an alarm is only named.
QString read_alarm_name(const QString& name, QList<AlarmOption>& alarms) {
    if (!kAlarmNames.contains(name))
        return QStringLiteral("--alarm with --plan takes one of level, ber, mer");
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
        return QStringLiteral("--alarm takes NAME=MIN:MAX with NAME one of level, ber, mer");
    // A value passes between the two, so nothing could.
    if (minimum >= maximum)
        return QStringLiteral("--alarm %1 takes a MIN below its MAX, not %2")
            .arg(match.captured(1), value);
    alarms.append({match.captured(1), match.captured(2), match.captured(3)});
    return {};
}

QString read_alarms(const QCommandLineParser& parser, QList<AlarmOption>& alarms) {
    const auto read = parser.isSet(QStringLiteral("plan")) ? read_alarm_name : read_alarm_limits;
    QString error;
    for (const QString& value : parser.values(QStringLiteral("alarm")))
        if (error.isEmpty()) error = read(value, alarms);
    return error;
}

/// A value that the screen would move into its range without a word.
struct RangedOption {
    const char* name;
    programme::TuningRange range;
    const char* unit;
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
    return QStringLiteral("--%1 takes a number from %2 to %3 %4")
        .arg(name)
        .arg(option.range.minimum)
        .arg(option.range.maximum)
        .arg(QLatin1String(option.unit));
}

/// A measurement without a plan is tuned directly.
QString read_ranged_options(const QCommandLineParser& parser, Options& options) {
    const RangedOption ranged[] = {
        {"freq", programme::tuning_range(true, 0), "MHz", &Options::frequency},
        {"bandwidth",
         {programme::kBandwidthMinimum, programme::kBandwidthMaximum},
         "MHz",
         &Options::bandwidth},
        {"symbol-rate",
         {programme::kSymbolRateMinimum, programme::kSymbolRateMaximum},
         "kS/s",
         &Options::symbol_rate}};
    QString error;
    for (const RangedOption& option : ranged)
        if (error.isEmpty()) error = read_ranged(parser, option, options);
    return error;
}

/// A name that a script left empty is not the same as none.
QString read_names(const QCommandLineParser& parser) {
    for (const char* name : {"directory", "log", "plan", "screenshot"}) {
        const QString option = QString::fromLatin1(name);
        if (parser.isSet(option) && parser.value(option).trimmed().isEmpty())
            return QStringLiteral("--%1 takes a name, not an empty one").arg(option);
    }
    return {};
}

QString read_values(const QCommandLineParser& parser, Options& options) {
    link::PortList entries({.sys = {}, .dev = {}, .reported = [] { return QStringList(); }});
    options.ports = parser.values(QStringLiteral("port"));
    for (const QString& entry : std::as_const(options.ports))
        if (!entries.add(entry))
            return QStringLiteral("--port takes N=DEVICE with N from 1 to 10, not \"%1\"")
                .arg(entry);
    QString error = read_names(parser);
    if (error.isEmpty())
        error = read_number(parser, QStringLiteral("on-port"), 1, link::PortList::kPorts,
                            options.on_port);
    if (error.isEmpty())
        error = read_number(parser, QStringLiteral("count"), 1, 1'000'000'000, options.count);
    if (error.isEmpty())
        error = read_number(parser, QStringLiteral("passes"), 0, 1'000'000'000, options.passes);
    if (error.isEmpty())
        error = read_number(parser, QStringLiteral("every"), 1, 31'536'000, options.every);
    if (error.isEmpty()) error = read_ranged_options(parser, options);
    if (error.isEmpty()) error = read_alarms(parser, options.alarms);
    return error;
}

/// The first of `names` that is on the command line, empty for none.
QString first_set(const QCommandLineParser& parser, std::initializer_list<const char*> names) {
    for (const char* name : names)
        if (parser.isSet(QString::fromLatin1(name))) return QString::fromLatin1(name);
    return {};
}

QString check_measurement(const QCommandLineParser& parser, const Options& options) {
    if (options.on_port == 0) return QStringLiteral("--measure needs --on-port");
    if (parser.isSet(QStringLiteral("analog")) && options.digital)
        return QStringLiteral("--analog and --digital exclude each other");
    if (!options.open.isEmpty()) return QStringLiteral("--open does not go with --measure");
    if (parser.isSet(QStringLiteral("plan"))) {
        // A program of a plan brings its own kind, frequency and symbol rate.
        const QString name =
            first_set(parser, {"analog", "digital", "freq", "symbol-rate", "count"});
        return name.isEmpty() ? QString()
                              : QStringLiteral("--%1 does not go with --plan").arg(name);
    }
    const QString name = first_set(parser, {"passes", "every", "full-tune", "reconnect"});
    if (!name.isEmpty()) return QStringLiteral("--%1 needs --plan").arg(name);
    for (const AlarmOption& alarm : options.alarms)
        if (!options.digital && alarm.name != QLatin1String("level"))
            return QStringLiteral("--alarm %1 needs --digital").arg(alarm.name);
    return {};
}

QString check_combination(const QCommandLineParser& parser, const Options& options) {
    if (options.measure) return check_measurement(parser, options);
    const QString name = first_set(parser, {"analog", "digital", "freq", "bandwidth", "symbol-rate",
                                            "alarm", "confirm", "count", "log", "screenshot",
                                            "plan", "passes", "every", "full-tune", "reconnect"});
    if (!name.isEmpty()) return QStringLiteral("--%1 goes with --measure only").arg(name);
    if (!options.open.isEmpty() && !screen_keys().contains(options.open))
        return QStringLiteral("--open takes one of %1")
            .arg(screen_keys().join(QStringLiteral(", ")));
    return {};
}

QString check_import(const QCommandLineParser& parser) {
    const QString name = QStringLiteral("import-database");
    if (!parser.isSet(name)) return {};
    if (parser.value(name).isEmpty()) return QStringLiteral("--import-database takes a file");
    for (const char* other : {"measure", "open", "on-port", "port", "corrected"})
        if (parser.isSet(QString::fromLatin1(other)))
            return QStringLiteral("--import-database does not go with --%1")
                .arg(QLatin1String(other));
    return {};
}

Options wrong(const QString& error) {
    Options options;
    options.action = Options::Action::wrong;
    options.error = error;
    return options;
}

/// What needs no check.
void read_choices(const QCommandLineParser& parser, Options& options) {
    options.directory = parser.value(QStringLiteral("directory"));
    options.user_data = parser.isSet(QStringLiteral("user-data"));
    options.create_database = parser.isSet(QStringLiteral("create-database"));
    options.open = parser.value(QStringLiteral("open"));
    options.corrected = parser.isSet(QStringLiteral("corrected"));
    options.measure = parser.isSet(QStringLiteral("measure"));
    options.digital = parser.isSet(QStringLiteral("digital"));
    options.plan = parser.value(QStringLiteral("plan"));
    options.confirm = parser.isSet(QStringLiteral("confirm"));
    options.full_tune = parser.isSet(QStringLiteral("full-tune"));
    options.reconnect = parser.isSet(QStringLiteral("reconnect"));
    options.log = parser.value(QStringLiteral("log"));
    options.screenshot = parser.value(QStringLiteral("screenshot"));
    options.import_database = parser.value(QStringLiteral("import-database"));
}

}  // namespace

Options parse_options(const QStringList& arguments) {
    QCommandLineParser parser;
    add_options(parser);
    Options options;
    const bool parsed = parser.parse(QStringList{QStringLiteral("m47-remote")} + arguments);
    if (!parsed) return wrong(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) options.action = Options::Action::help;
    if (parser.isSet(QStringLiteral("version"))) options.action = Options::Action::version;
    if (options.action != Options::Action::run) return options;
    if (!parser.positionalArguments().isEmpty())
        return wrong(QStringLiteral("unexpected argument \"%1\"")
                         .arg(parser.positionalArguments().constFirst()));
    read_choices(parser, options);
    QString error = read_values(parser, options);
    if (error.isEmpty() && options.user_data && parser.isSet(QStringLiteral("directory")))
        error = QStringLiteral("--directory and --user-data exclude each other");
    if (error.isEmpty()) error = check_combination(parser, options);
    if (error.isEmpty()) error = check_import(parser);
    return error.isEmpty() ? options : wrong(error);
}

QString help_text() {
    QCommandLineParser parser;
    add_options(parser);
    // Without a window system there is no program name to show but our own.
    return parser.helpText().replace(QStringLiteral("<executable_name>"),
                                     QStringLiteral("m47-remote"));
}

}  // namespace m47::shell
