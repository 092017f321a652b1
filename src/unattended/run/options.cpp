// SPDX-License-Identifier: GPL-3.0-or-later
#include "options.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "configuration.h"
#include "file_options.h"
#include "identify_options.h"
#include "option_list.h"
#include "option_values.h"
#include "peak_options.h"
#include "program_state.h"
#include "publish_options.h"
#include "texts.h"
#include "visit_options.h"
#include "work_folder.h"

namespace m47::unattended {
namespace {

/// The first of `names` that is on the command line, empty for none.
QString first_set(const QCommandLineParser& parser, std::initializer_list<const char*> names) {
    for (const char* name : names)
        if (parser.isSet(QString::fromLatin1(name))) return QString::fromLatin1(name);
    return {};
}

QString check_measurement(const QCommandLineParser& parser, const Options& options,
                          const Offer& offer) {
    if (options.on_port == 0)
        return QStringLiteral("%1 needs --on-port")
            .arg(offer.only_measures ? offer.program : QStringLiteral("--measure"));
    if (parser.isSet(QStringLiteral("analog"))) {
        const QString name = first_set(parser, {"digital", "bandwidth", "symbol-rate"});
        if (!name.isEmpty())
            return QStringLiteral("--analog and --%1 exclude each other").arg(name);
    }
    if (!options.open.isEmpty()) return QStringLiteral("--open does not go with --measure");
    if (parser.isSet(QStringLiteral("plan"))) {
        // A program of a plan brings its own kind, frequency and symbol rate.
        const QString name = first_set(parser, {"analog", "digital", "freq", "symbol-rate", "count",
                                                "oscillator", "lnb", "tone", "diseqc"});
        return name.isEmpty() ? QString()
                              : QStringLiteral("--%1 does not go with --plan").arg(name);
    }
    const QString name = first_set(parser, {"passes", "every", "full-tune", "reconnect"});
    if (!name.isEmpty()) return QStringLiteral("--%1 needs --plan").arg(name);
    // The frequency before is one of another band.
    if (options.antenna.oscillator && options.frequency.isEmpty())
        return QStringLiteral("--oscillator needs --freq");
    for (const AlarmOption& alarm : options.alarms)
        if (!options.digital && alarm.name != QLatin1String("level"))
            return QStringLiteral("--alarm %1 needs --digital").arg(alarm.name);
    return {};
}

QString check_sweep(const QCommandLineParser& parser, const Options& options) {
    if (options.on_port == 0) return QStringLiteral("--sweep needs --on-port");
    const QString name =
        first_set(parser, {"measure",    "open",    "create-database", "corrected", "analog",
                           "digital",    "freq",    "diseqc",          "bandwidth", "symbol-rate",
                           "alarm",      "confirm", "count",           "log",       "format",
                           "screenshot", "plan",    "passes",          "every",     "full-tune",
                           "reconnect",  "replay",  "problem-report",  "site"});
    if (!name.isEmpty()) return QStringLiteral("--%1 does not go with --sweep").arg(name);
    if (options.scan_table.isEmpty()) return {};
    if (!options.carriers) return QStringLiteral("--scan-table needs --carriers");
    // Nobody knows else where in the sky a carrier is.
    if (!options.antenna.oscillator) return QStringLiteral("--scan-table needs --oscillator");
    return {};
}

/// What a start that opens the window does not take.
QString check_nothing_measured(const QCommandLineParser& parser) {
    if (parser.isSet(QStringLiteral("oscillator")))
        return QStringLiteral(
            "--oscillator goes with --measure, --sweep, --peak or --identify only");
    QString name = first_set(parser, {"lnb", "tone"});
    if (!name.isEmpty())
        return QStringLiteral("--%1 goes with --measure, --sweep or --peak only").arg(name);
    if (parser.isSet(QStringLiteral("freq")))
        return QStringLiteral("--freq goes with --measure or --peak only");
    if (parser.isSet(QStringLiteral("symbol-rate")))
        return QStringLiteral("--symbol-rate goes with --measure or --peak only");
    name = first_set(parser, {"analog", "digital", "bandwidth", "alarm", "confirm", "count", "log",
                              "format", "screenshot", "plan", "passes", "every", "full-tune",
                              "reconnect", "diseqc", "site", "publish"});
    if (!name.isEmpty()) return QStringLiteral("--%1 goes with --measure only").arg(name);
    return {};
}

QString check_combination(const QCommandLineParser& parser, const Options& options,
                          const Offer& offer) {
    if (options.identify) return check_identify(parser, options);
    const QString unused = check_without_identify(parser);
    if (!unused.isEmpty()) return unused;
    if (options.peak_span) return check_peak(parser, options);
    if (options.move_the_dish) return QStringLiteral("--move-the-dish goes with --peak only");
    if (options.sweep) return check_sweep(parser, options);
    for (const char* option : {"carriers", "scan-table"})
        if (parser.isSet(QString::fromLatin1(option)))
            return QStringLiteral("--%1 goes with --sweep only").arg(QLatin1String(option));
    if (options.measure) return check_measurement(parser, options, offer);
    return check_nothing_measured(parser);
}

/// Alone it is written at once, of a machine on which nothing was recorded yet.
QString check_problem_report(const QCommandLineParser& parser, const Options& options) {
    if (options.problem_report.isEmpty() || options.measure) return {};
    const QString name = first_set(parser, {"open", "trace", "corrected", "create-database"});
    return name.isEmpty()
               ? QString()
               : QStringLiteral("--%1 goes with --problem-report in a --measure only").arg(name);
}

/// What works on the database alone and ends: one of them, and nothing of a meter or a window.
QString check_database_work(const QCommandLineParser& parser) {
    const QString work = first_set(parser, {"import-database", "export-plan", "import-plan"});
    if (parser.isSet(QStringLiteral("overwrite")) && work != QLatin1String("export-plan"))
        return QStringLiteral("--overwrite goes with --export-plan only");
    if (work.isEmpty()) return {};
    for (const char* other :
         {"measure", "sweep", "peak", "identify", "open", "on-port", "port", "corrected", "trace",
          "replay", "problem-report", "export-plan", "import-plan"})
        if (work != QLatin1String(other) && parser.isSet(QString::fromLatin1(other)))
            return QStringLiteral("--%1 does not go with --%2").arg(work, QLatin1String(other));
    return {};
}

/// It is for whoever looks, and brings its meter along.
QString check_replay(const QCommandLineParser& parser) {
    const QString other = first_set(parser, {"measure", "on-port"});
    if (other.isEmpty() || !parser.isSet(QStringLiteral("replay"))) return {};
    return QStringLiteral("--replay does not go with --%1").arg(other);
}

/// It is a run's.
QString check_configuration(const QCommandLineParser& parser, const Options& options) {
    if (!parser.isSet(QStringLiteral("config")))
        return parser.isSet(QStringLiteral("check-config"))
                   ? QStringLiteral("--check-config needs --config")
                   : QString();
    return options.measure ? QString() : QStringLiteral("--config goes with --measure only");
}

Options wrong(const QString& error) {
    Options options;
    options.action = Options::Action::wrong;
    options.error = on_one_line(error);
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
    options.move_the_dish = parser.isSet(QStringLiteral("move-the-dish"));
    options.carriers = parser.isSet(QStringLiteral("carriers"));
    options.scan_table = parser.value(QStringLiteral("scan-table"));
    options.log = parser.value(QStringLiteral("log"));
    options.screenshot = parser.value(QStringLiteral("screenshot"));
    options.problem_report = parser.value(QStringLiteral("problem-report"));
    options.trace = parser.value(QStringLiteral("trace"));
    options.replay = parser.value(QStringLiteral("replay"));
    options.overwrite = parser.isSet(QStringLiteral("overwrite"));
    options.import_database = parser.value(QStringLiteral("import-database"));
}

/// What `parser` holds, each value and all of them together. A sentence about what is wrong.
QString read_options(const QCommandLineParser& parser, const Offer& offer, Options& options) {
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument \"%1\"")
            .arg(parser.positionalArguments().constFirst());
    const QString withheld = withheld_option(parser, offer);
    if (!withheld.isEmpty())
        return QStringLiteral("--%1 does not go with %2").arg(withheld, offer.program);
    read_choices(parser, options);
    options.measure = options.measure || offer.only_measures;
    QString error = read_values(parser, offer, options);
    if (error.isEmpty() && options.user_data && parser.isSet(QStringLiteral("directory")))
        error = QStringLiteral("--directory and --user-data exclude each other");
    if (error.isEmpty()) error = check_configuration(parser, options);
    if (error.isEmpty()) error = check_visit(parser);
    if (error.isEmpty()) error = check_publish(parser);
    if (error.isEmpty()) error = check_combination(parser, options, offer);
    if (error.isEmpty()) error = check_replay(parser);
    if (error.isEmpty()) error = check_database_work(parser);
    if (error.isEmpty()) error = check_problem_report(parser, options);
    return error;
}

/// What is wrong with the options of `configuration` together with the command line, in one
/// sentence; `options` are what both say.
QString read_with(const Configuration& configuration, const QStringList& arguments,
                  const Offer& offer, Options& options) {
    QCommandLineParser parser;
    add_options(parser, offer);
    options = {};
    const QStringList all = QStringList(offer.program) + configuration.arguments() + arguments;
    return parser.parse(all) ? read_options(parser, offer, options) : parser.errorText();
}

/// The same, and what is wrong with the files that both name.
QString check_with(const Configuration& configuration, const QStringList& arguments,
                   const Offer& offer) {
    Options options;
    const QString fault = read_with(configuration, arguments, offer, options);
    options.configuration = configuration.file;
    const QDir folder(QDir(offer.folder).absoluteFilePath(asked_folder(options)));
    return fault.isEmpty() ? file_option_fault(options, folder_with_separator(folder.path()))
                           : fault;
}

/// True where `fault` is about another option than `named`, and only comes of one of `gone`.
bool comes_of(const QStringList& gone, const QString& fault, const QString& named) {
    return std::ranges::any_of(gone, [&](const QString& name) {
        return name != named && fault.contains(QStringLiteral("--") + name);
    });
}

/// All that is wrong with `configuration`, the lines of which it takes away one by one, in the
/// order of the lines. What only comes of a line that is gone is not told.
QStringList all_faults(Configuration configuration, const QStringList& arguments,
                       const Offer& offer) {
    std::vector<ConfigurationFault> faults = configuration.faults;
    const bool unread = !faults.empty();
    QStringList gone;
    for (;;) {
        const QString fault = check_with(configuration, arguments, offer);
        const std::optional<std::size_t> place = configuration.place_of(fault);
        const QString named = place ? configuration.lines[*place].name : QString();
        // What is missing may stand in a line that could not be read.
        const bool own = !fault.isEmpty() && !comes_of(gone, fault, named);
        if (own && (place || !unread)) faults.push_back(configuration.located(fault));
        if (!place) break;
        gone.append(named);
        configuration.lines.erase(configuration.lines.begin() +
                                  static_cast<std::ptrdiff_t>(*place));
    }
    std::ranges::stable_sort(faults, {}, &ConfigurationFault::line);
    QStringList texts;
    for (const ConfigurationFault& fault : faults) texts.append(on_one_line(fault.text));
    return texts;
}

/// `command_line` holds `arguments`.
Options take_configuration(const QCommandLineParser& command_line, const QStringList& arguments,
                           const Offer& offer) {
    // The program may work in another folder when it reads the file again.
    Offer again = offer;
    if (again.folder.isEmpty()) again.folder = QDir::currentPath();
    const QString path = QFileInfo(QDir(again.folder), command_line.value(QStringLiteral("config")))
                             .absoluteFilePath();
    Configuration configuration = read_configuration(path, offer);
    give_way(configuration, command_line);
    if (command_line.isSet(QStringLiteral("check-config"))) {
        Options options;
        options.action = Options::Action::check;
        options.faults = all_faults(configuration, arguments, again);
        return options;
    }
    if (!configuration.faults.empty()) return wrong(configuration.faults.front().text);
    Options options;
    const QString error = read_with(configuration, arguments, offer, options);
    if (!error.isEmpty()) return wrong(configuration.located(error).text);
    options.configuration = path;
    options.read_again = [arguments, again] { return parse_options(arguments, again); };
    return options;
}

}  // namespace

Options parse_options(const QStringList& arguments, const Offer& offer) {
    QCommandLineParser parser;
    add_options(parser, offer);
    Options options;
    const bool parsed = parser.parse(QStringList{offer.program} + arguments);
    if (!parsed) return wrong(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) options.action = Options::Action::help;
    if (parser.isSet(QStringLiteral("version"))) options.action = Options::Action::version;
    if (options.action != Options::Action::run) return options;
    if (!parser.value(QStringLiteral("config")).trimmed().isEmpty())
        return take_configuration(parser, arguments, offer);
    const QString error = read_options(parser, offer, options);
    return error.isEmpty() ? options : wrong(error);
}

QString help_text(const Offer& offer) {
    QCommandLineParser parser;
    add_options(parser, offer);
    // Without a window system there is no program name to show but our own.
    return parser.helpText().replace(QStringLiteral("<executable_name>"), offer.program);
}

}  // namespace m47::unattended
