// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <cstdint>
#include <functional>
#include <optional>

#include "candidate_choice.h"
#include "measurement_output.h"
#include "sweep_plan.h"

namespace m47::unattended {

/// One alarm of an unattended measurement: its limits as they would be typed on the screen, or none
/// where those of a plan hold.
struct AlarmOption {
    QString name;  ///< "level", or with --digital "ber" or "mer"
    QString minimum;
    QString maximum;

    /// As it is written on the command line.
    QString text() const {
        return minimum.isEmpty() ? name : name + u'=' + minimum + u':' + maximum;
    }
};

/// What brings the antenna to a measurement without a plan; what is not set is left as it is. The
/// numbers are places in the lists of the real-time screen.
struct AntennaOptions {
    std::optional<int> oscillator;  ///< MHz; nothing: tuned directly
    std::optional<int> supply;      ///< off, 13 V, 15 V, 18 V, 24 V
    std::optional<int> tone;        ///< on, off
    std::optional<int> diseqc;      ///< of kDiseqcCommands
};

/// A plan and the file that it goes into or comes from.
struct PlanFileOption {
    QString plan;
    QString file;

    bool asked() const { return !file.isEmpty(); }
};

/// At which site a run is kept as a visit, and what it is compared with.
struct VisitOptions {
    enum class Compared : std::uint8_t { none, first, last, of_date };

    QString site;           ///< empty: the run is no visit
    double worse_than = 2;  ///< dB of level or MER
    QDate date;             ///< of the visit it is compared with
    Compared compared = Compared::none;
    bool resumed = false;  ///< go on with a visit that was cut off
};

/// Where the rows of a run are published, and by which names.
struct PublishOptions {
    QUrl address;   ///< of an engine; empty: they are not
    QString site;   ///< empty: the machine's name
    QString meter;  ///< empty: the name of its device
    QString token_file;
    qint64 limit = qint64{1024} * 1024 * 1024;  ///< bytes of the outbox
};

/// What the command line asks for.
struct Options {
    enum class Action { run, help, version, check, wrong };

    Action action = Action::run;
    int on_port = 0;  ///< port to identify at start, 0 for none
    int count = 1;
    int passes = 1;
    int every = 0;  ///< seconds from pass to pass
    /// How the rows go to stdout; nothing: as they stand on the page.
    std::optional<measurement::OutputFormat> format;

    bool user_data = false;  ///< work in the user's data folder
    bool create_database = false;
    bool corrected = false;  ///< start with every corrected behaviour
    bool measure = false;
    bool digital = false;
    bool reconnect = false;
    bool full_tune = false;
    bool confirm = false;    ///< ask twice for what surprises
    bool overwrite = false;  ///< the file of export_plan may be replaced

    QString error;          ///< one line, when the action is wrong
    QString configuration;  ///< the file whose keys were taken over, with its whole path
    std::function<Options()> read_again{};  ///< the command line and that file anew
    QStringList faults;  ///< all that is wrong with a file to be checked, a line each
    QString directory;
    QStringList ports;  ///< "N=DEVICE"
    QString open;       ///< toolbar key of a screen to open at start

    QString frequency;    ///< MHz, as it would be typed; empty leaves the screen's own
    QString bandwidth;    ///< MHz
    QString symbol_rate;  ///< kS/s
    AntennaOptions antenna;
    QList<AlarmOption> alarms;
    QString plan;  ///< measure the monitored programs of this plan
    VisitOptions visit;
    PublishOptions publish;
    QString log;
    QString screenshot;
    QString trace;           ///< record the line into this file
    QString replay;          ///< connect the meter of this recording
    QString problem_report;  ///< write a report of a problem into this file

    /// Sweep so much of the intermediate band; nothing: no sweep.
    std::optional<band::SweepSpan> sweep;
    bool carriers = false;  ///< of the sweep the carriers alone
    QString scan_table;     ///< that names them, empty for none

    /// Bring the dish to its peak, so many steps of the motor to either side; nothing: no search.
    std::optional<int> peak_span;
    bool move_the_dish = false;  ///< nobody stands at it

    /// Find out which of these satellites the dish looks at; nothing: it is not asked.
    std::optional<identify::CandidateChoice> identify;

    QString import_database;  ///< a file of the old engine to import, empty for none
    PlanFileOption export_plan;
    PlanFileOption import_plan;

    /// Nothing is shown and nobody is asked.
    bool unattended() const {
        return measure || sweep || peak_span || identify || !import_database.isEmpty() ||
               export_plan.asked() || import_plan.asked() || !problem_report.isEmpty();
    }
};

/// Which of the options a program takes.
struct Offer {
    QString program;        ///< its name
    QStringList screens{};  ///< the keys that --open takes
    QString folder{};       ///< where a relative name of --config starts; empty: the current one
    /// It measures and does nothing else: what has to do with windows or other work is refused.
    bool only_measures = false;
};

/// Reads the command line without its first word (the program's name).
Options parse_options(const QStringList& arguments, const Offer& offer);

/// The text of --help.
QString help_text(const Offer& offer);

}  // namespace m47::unattended
