// SPDX-License-Identifier: GPL-3.0-or-later
#include "option_list.h"

namespace m47::unattended {

namespace {

using OptionList = QList<QCommandLineOption>;

/// Where the program works and what it opens.
OptionList start_options(const Offer& offer) {
    return {
        {{"h", "help"}, "Show this help and end."},
        {{"v", "version"}, "Show the version and end."},
        {"config",
         "Take the options that stand in FILE, a line \"NAME = VALUE\" each, as well; what is on "
         "the "
         "command line goes before it. SIGHUP reads it again between two passes over a plan.",
         "FILE"},
        {"check-config",
         "Tell all that is wrong with the --config FILE and end, with status 1 then."},
        {"directory",
         "Work in DIR instead of the current directory; other relative names start there.", "DIR"},
        {"user-data",
         "Work in $XDG_DATA_HOME/m47-remote (~/.local/share/m47-remote), which is made where it "
         "does not exist."},
        {"port", "The device behind port number N (1 to 10); repeatable.", "N=DEVICE"},
        {"create-database", "First create the database file where it does not exist."},
        {"on-port", "Connect to the meter on port number N at start.", "N"},
        {"open",
         QStringLiteral("Open the screen of toolbar key KEY at start: %1.")
             .arg(offer.screens.join(QStringLiteral(", "))),
         "KEY"},
        {"corrected",
         "Start with every entry of the menu \"Corrected behaviour\" ticked; goes with --measure "
         "too."},
        {"trace",
         "Record all that goes over the line into FILE, which is replaced; goes with --measure "
         "too.",
         "FILE"},
        {"replay", "Connect the meter of the recording FILE, which answers as it did then.",
         "FILE"},
        {"problem-report",
         "Write what somebody needs who looks for a fault into FILE, a .tar.gz without names of "
         "people, and end; with --measure at its end.",
         "FILE"},
    };
}

/// What is measured without a window, and what it is held against.
OptionList measurement_options() {
    return {
        {"measure", "Measure without a window and print each row, TAB-separated."},
        {"analog", "Measure the analog way (the default)."},
        {"digital", "Measure the digital way (QPSK)."},
        {"freq",
         "Frequency to measure at, 920 to 2150; that of the sky with --oscillator. The meter takes "
         "tenths, above 2150 whole MHz.",
         "MHZ"},
        {"oscillator", "Measure through the local oscillator of the LNB, 3070 to 12000.", "MHZ"},
        {"lnb", "Set the LNB supply: off, 13, 15, 18 or 24 (V).", "VOLTS"},
        {"tone", "Set the 22 kHz tone: on or off (the default).", "STATE"},
        {"diseqc",
         "Send the DiSEqC command of this number (0 to 73) or text in the list of the real-time "
         "screen.",
         "COMMAND"},
        {"bandwidth", "Channel bandwidth for the digital channel power, 5 to 36, whole.", "MHZ"},
        {"symbol-rate", "QPSK symbol rate, 1500 to 45000, whole.", "KS"},
        {"alarm",
         "Check limits, NAME one of level, ber, mer; repeatable. With --plan NAME alone: the "
         "limits "
         "are the plan's.",
         "NAME=MIN:MAX"},
        {"confirm",
         "Ask again for a value that lies off the ones before it or crosses a limit; take it when "
         "two answers agree."},
        {"count", "How many measurements to take (default 1).", "K"},
    };
}

/// What is swept without a window.
OptionList sweep_options() {
    return {
        {"sweep",
         "Sweep the band without a window and print each level, TAB-separated under a line of "
         "names: 920:2150 is all of it; that of the sky with --oscillator. Every STEP MHz; without "
         "STEP closely only where something is. The meter is set back at the end.",
         "FROM:TO[:STEP]"},
        {"carriers", "With --sweep: print the carriers found in place of the levels."},
        {"scan-table",
         "With --carriers and --oscillator: name the carriers that the DVB scan table FILE lists.",
         "FILE"},
    };
}

/// How a dish on a motor is peaked without a window.
OptionList peak_options() {
    return {
        {"peak",
         "Turn the dish to the peak of the satellite nearest to where it looks, at most SPAN "
         "degrees (1 to 20) to either side, without a window, and print each reading, "
         "TAB-separated under a line of names; needs --freq. The motor is stopped and the meter "
         "set back however it ends; nothing is stored in the motor.",
         "SPAN"},
        {"move-the-dish", "With --peak: nobody stands at the dish, which may turn."},
    };
}

/// How it is found out which satellite a dish looks at.
OptionList identify_options() {
    return {
        {"identify",
         "Find out which satellite the dish looks at without a window and print each question with "
         "its answer and the verdict, TAB-separated under a line of names. The LNB is a universal "
         "one; with --oscillator MHZ it has that one alone (5150: C band). Ends with status 1 "
         "where it is none of the candidates or no satellite. The meter is set back at the end."},
        {"scan-tables",
         "With --identify: the candidates are those of the DVB scan tables in DIR (default "
         "/usr/share/dvb/dvb-s).",
         "DIR"},
        {"arc", "With --identify: only those from FROM to TO, such as 10E:30E or 5.5W:20E.",
         "FROM:TO"},
        {"candidates-from-plans", "With --identify: the candidates are the plans of the database."},
        {"circular", "With --identify: the LNB takes circular polarisation."},
        {"dish",
         "With --identify: the dish has a diameter of CM centimetres, 30 to 1000 (default 80, for "
         "C band 240).",
         "CM"},
    };
}

/// How a plan is measured without a window.
OptionList pass_options() {
    return {
        {"plan", "Measure the monitored programs of the plan NAME.", "NAME"},
        {"passes", "How often to measure the plan (default 1, 0 until told to stop).", "K"},
        {"every", "Begin a pass over the plan every so many SECONDS.", "SECONDS"},
        {"full-tune",
         "Set oscillator, LNB, tone, DiSEqC and bandwidth of each program of the plan too."},
        {"reconnect",
         "Wait for a meter that does not answer at the start, and after a lost link go on when the "
         "plan's meter answers again."},
    };
}

/// Where the rows go.
OptionList output_options() {
    return {
        {"log", "Append each row to FILE as well.", "FILE"},
        {"format",
         "Print the rows as tsv, csv (both under a line of names) or json (an object a line), with "
         "times and numbers that programs read.",
         "FORMAT"},
        {"screenshot", "Write a picture of the real-time screen at the end.", "FILE"},
    };
}

/// How a run is kept as a visit at a site.
OptionList visit_options() {
    return {
        {"site",
         "Keep the rows as a visit at the site NAME in the file sites.sqlite, where both are made "
         "if they are not there.",
         "NAME"},
        {"resume-visit",
         "With --site: go on with the latest visit there where it was cut off; else begin one."},
        {"compare-with",
         "With --site: compare at the end with the visit WHICH there (first, last or that of a "
         "date such as 2026-11-22) and tell on stderr which programs got worse; status 1 where "
         "any did.",
         "WHICH"},
        {"worse-than",
         "With --compare-with: a program got worse that is lost or whose level or MER fell by more "
         "than DB (0 to 100, default 2).",
         "DB"},
    };
}

/// Where the rows are published.
OptionList publish_options() {
    return {
        {"publish",
         "Send each row to the time-series engine at URL in the InfluxDB line protocol, such as "
         "http://host:8428/write. What it does not take waits in an outbox beside the log.",
         "URL"},
        {"publish-site", "With --publish: the tag site of the rows (default the machine's name).",
         "NAME"},
        {"publish-meter",
         "With --publish: the tag meter of the rows (default the name of its device).", "NAME"},
        {"publish-token-file",
         "With --publish: the first line of FILE is the token, or user:password, for the engine; "
         "without it $M47_PUBLISH_TOKEN is.",
         "FILE"},
        {"outbox-limit",
         "With --publish: the outbox takes at most SIZE on the disk, such as 512M (default 1G); "
         "its oldest rows go undelivered then.",
         "SIZE"},
    };
}

/// What is brought into the database and out of it.
OptionList exchange_options() {
    return {
        {"import-database",
         "Bring the plans and satellites of OLD, a database file of the old Jet engine, into the "
         "database, print a report and end; what is there under the same name is kept. Ends with "
         "status 4 where the database cannot be used, 5 where OLD cannot be read or the report "
         "not be printed.",
         "OLD"},
        {"export-plan",
         "Write the plan NAME into FILE, as the plan screen does, and end: separated by commas "
         "where it ends in .csv, else by TAB.",
         "NAME=FILE"},
        {"import-plan",
         "Add the programs in FILE, a plan or a DVB scan table, to the plan NAME, which is made "
         "where there is none, print what was left out and end.",
         "NAME=FILE"},
        {"overwrite", "Let --export-plan replace FILE."},
    };
}

/// What takes a window, or is other work than a measurement.
OptionList beside_measuring() {
    return sweep_options() + peak_options() + identify_options() + exchange_options();
}

/// Of the other subjects: those of windows, and what goes without saying.
const QStringList& names_beside_measuring() {
    static const QStringList names{QStringLiteral("open"), QStringLiteral("replay"),
                                   QStringLiteral("screenshot"), QStringLiteral("measure")};
    return names;
}

QString description(const Offer& offer) {
    return offer.only_measures
               ? QStringLiteral(
                     "Measures with the M47 TV signal level meter, "
                     "without a window, and prints each row.")
               : QStringLiteral("Remote control for the M47 TV signal level meter.");
}

}  // namespace

void add_options(QCommandLineParser& parser, const Offer& offer) {
    parser.setApplicationDescription(description(offer));
    for (const OptionList& subject : {start_options(offer), measurement_options(), pass_options(),
                                      output_options(), visit_options(), publish_options()})
        for (QCommandLineOption option : subject) {
            if (offer.only_measures &&
                names_beside_measuring().contains(option.names().constLast()))
                option.setFlags(QCommandLineOption::HiddenFromHelp);
            parser.addOption(option);
        }
    for (QCommandLineOption option : beside_measuring()) {
        if (offer.only_measures) option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
}

QString withheld_option(const QCommandLineParser& parser, const Offer& offer) {
    if (!offer.only_measures) return {};
    for (const QCommandLineOption& option : beside_measuring())
        if (parser.isSet(option)) return option.names().constFirst();
    for (const QString& name : names_beside_measuring())
        if (name != QLatin1String("measure") && parser.isSet(name)) return name;
    return {};
}

}  // namespace m47::unattended
