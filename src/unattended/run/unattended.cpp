// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended.h"

#include <cstdio>
#include <utility>

#include "alarm_limits.h"
#include "commands.h"
#include "end_signals.h"
#include "enter_key.h"
#include "fault.h"
#include "file_options.h"
#include "line_recording.h"
#include "numbers.h"
#include "plan_run.h"
#include "port_diagnosis.h"
#include "program_row.h"
#include "publishing.h"
#include "realtime_rules.h"
#include "row_output.h"
#include "say_on_stderr.h"
#include "service_notes.h"
#include "standard_streams.h"
#include "tables.h"
#include "unattended_visit.h"
#include "unit_guard.h"

namespace m47::unattended {
namespace {

const QString kNoPlan = QStringLiteral("there is no plan %1");
const QString kNothingMonitored = QStringLiteral("no program of the plan %1 is monitored");

/// The line on a terminal that tells how far the run is.
class ProgressLine {
  public:
    void show(const QString& text) {
        if (!platform::is_terminal(platform::kStandardErrors)) return;
        std::fprintf(stderr, "\r%s\033[K", text.toLocal8Bit().constData());
        std::fflush(stderr);
        shown_ = true;
    }
    void clear() {
        if (shown_) std::fputs("\r\033[K", stderr);
        shown_ = false;
    }

  private:
    bool shown_ = false;
};

ProgressLine g_progress_line;

/// One line on stderr, whatever `text` is made of.
void complain(const QString& text) {
    g_progress_line.clear();
    say_of_run(text);
}

struct Run : RunSoFar {
    Run(const RunSoFar& before, ProgramState& of_program, MeterConnection& way,
        const Options& of_options, const WritePicture& picture)
        : RunSoFar(before),
          state(of_program),
          connection(way),
          options(of_options),
          write_picture(picture) {}

    ProgramState& state;
    MeterConnection& connection;
    const Options& options;
    const WritePicture& write_picture;
    std::unique_ptr<realtime::RealtimeRules> rules;
    RowOutput output{platform::kStandardOutput};
    LineRecording recording{connection.recorder(), state.texts};
    UnattendedVisit visit{options.visit, state.texts};
    ServiceNotes service{connection.link().clock(), ServiceNotes::found()};
    Publishing publishing{options, state.texts};
    UnitGuard unit{connection.link()};
    measurement::Measurement measured{};  ///< of the row that comes next
    bool unit_unknown = false;            ///< that of the row that comes next
    bool link_found = false;              ///< the meter has answered once
    bool wrong_limits = false;
    bool visit_refused = false;  ///< it could not be begun

    /// Nobody gets to see another row.
    bool pointless() const { return output.closed() && options.log.isEmpty(); }
};

void print_row(Run& run, const QStringList& row) {
    if (platform::is_terminal(platform::kStandardOutput)) g_progress_line.clear();
    ++run.rows;
    if (!run.options.format) {
        run.output.write(row.join(run.rules->state.field_separator).toUtf8() + '\n');
        return;
    }
    const int offset = run.connection.link().clock().date_time().offsetFromUtc();
    run.output.write(measurement::output_line(*run.options.format, run.measured, offset));
}

/// Before the first row: a table without rows has its columns too.
void print_names(Run& run) {
    if (!run.options.format || std::exchange(run.names_printed, true)) return;
    const QByteArray names = measurement::output_header(*run.options.format);
    if (!names.isEmpty()) run.output.write(names);
}

void tell_log(Run& run, const QString& reason) {
    if (reason.isEmpty()) return;
    // Told once: a full disk must not bury the rows under its complaints.
    if (!run.file_lost)
        complain(QStringLiteral("the log %1 is not complete: %2").arg(run.options.log, reason));
    run.file_lost = true;
}

/// Each time, with the frequency: the row may come yet.
void tell_doubt(const Run& run, const QString& command) {
    complain(QStringLiteral("no row at %1 MHz: the answer to %2 came late or was spoilt")
                 .arg(run.rules->panel.fsat, command));
}

void set_alarm(realtime::RealtimePanel& panel, const AlarmOption& alarm) {
    const auto set = [&](bool& ticked, QString& minimum, QString& maximum) {
        ticked = true;
        // Those of a plan come with each of its programs.
        if (alarm.minimum.isEmpty()) return;
        minimum = alarm.minimum;
        maximum = alarm.maximum;
    };
    if (alarm.name == QLatin1String("level")) {
        set(panel.alarm_stated[0], panel.lev_mind, panel.lev_maxd);
        set(panel.alarm_statea[0], panel.lev_mina, panel.lev_maxa);
    } else if (alarm.name == QLatin1String("ber")) {
        set(panel.alarm_stated[2], panel.chber_mind, panel.chber_maxd);
    } else {
        set(panel.alarm_stated[3], panel.mer_mind, panel.mer_maxd);
    }
}

/// The panel as a technician would set it up for either kind of run.
void set_up(Run& run) {
    realtime::RealtimeRules& rules = *run.rules;
    if (!run.options.log.isEmpty()) rules.log.open(run.options.log, rules.page);
    if (!run.options.bandwidth.isEmpty()) rules.panel.chbws = run.options.bandwidth;
    for (const AlarmOption& alarm : run.options.alarms) set_alarm(rules.panel, alarm);
}

/// One measurement, taken again where an answer was doubtful. False when its row is missing.
bool take_row(Run& run) {
    for (int tried = 0; tried < acquisition::PlanRun::kMostTries; ++tried) {
        run.rules->measure_once();
        if (run.rules->cycle.doubt().isEmpty()) return true;
    }
    return false;
}

/// A level limit is in the unit that the meter is set to, which is known only now. The screen would
/// move one that the meter cannot measure without a word.
bool level_limits_fit(Run& run) {
    const realtime::RealtimePanel& panel = run.rules->panel;
    for (const AlarmOption& alarm : run.options.alarms) {
        if (run.options.digital || alarm.name != QLatin1String("level")) continue;
        const programme::LevelRange range = programme::level_range(unit_offset(panel.cmdlev));
        if (alarm.minimum.toDouble() >= range.minimum && alarm.maximum.toDouble() <= range.maximum)
            continue;
        complain(QStringLiteral("--alarm level takes limits from %1 to %2 %3, the meter's unit, "
                                "not \"%4\"")
                     .arg(link::plain_text(range.minimum), link::plain_text(range.maximum),
                          unit_name(panel.cmdlev), alarm.text()));
        return false;
    }
    return true;
}

/// In the order of a plan's program, by what the boxes of the screen do. What is not given stays.
void set_antenna(realtime::RealtimeRules& rules, const AntennaOptions& antenna) {
    realtime::RealtimePanel& panel = rules.panel;
    if (antenna.oscillator) {
        panel.ol_freq = QString::number(*antenna.oscillator);
        panel.locopt = {false, true};
        rules.tuning.locopt_Click(1);
    }
    if (antenna.supply) {
        panel.lnb_supply = *antenna.supply;
        rules.tuning.lnb_supply_Click(*antenna.supply);
    }
    if (antenna.tone) {
        panel.k22_state = *antenna.tone;
        rules.tuning.k22_state_Click(*antenna.tone);
    }
    if (antenna.diseqc) rules.diseqc.diseqc_cmd_Click(*antenna.diseqc);
}

void measure_rows(Run& run) {
    run.wrong_limits = !level_limits_fit(run);
    if (run.wrong_limits) return;
    print_names(run);
    realtime::RealtimeRules& rules = *run.rules;
    if (run.options.digital)
        rules.modes.digitalmode();
    else
        rules.modes.analogmode();
    set_up(run);
    if (!run.options.symbol_rate.isEmpty()) rules.panel.srqpsk_txt = run.options.symbol_rate;
    set_antenna(rules, run.options.antenna);
    if (!run.options.frequency.isEmpty()) {
        rules.panel.fsat = run.options.frequency;
        rules.tuning.fsat_KeyPress(kEnterKey);
    }
    rules.tick_measures(rules.state.meas_mode);
    for (int taken = 0; taken < run.options.count; ++taken) {
        if (!run.connection.link().port_connected || run.pointless()) return;
        run.row_missing = !take_row(run) || run.row_missing;
    }
}

/// The meter takes fewer digits than a number on the command line may have.
void tell_rounded(const Options& options) {
    const auto tell = [](const char* name, const QString& text, const char* unit,
                         const auto& form_of) {
        const double given = link::typed_value(text);
        const double set = link::typed_value(form_of(given));
        if (set == given) return;
        complain(QStringLiteral("--%1: %2 %3 is set as %4")
                     .arg(QLatin1String(name), link::plain_text(given), QLatin1String(unit),
                          link::plain_text(set)));
    };
    const auto whole = [](double number) { return link::format_number(number, "0"); };
    tell("freq", options.frequency, "MHz",
         [](double mhz) { return link::format_freq(link::plain_text(mhz)); });
    tell("bandwidth", options.bandwidth, "MHz", whole);
    tell("symbol-rate", options.symbol_rate, "kS/s", whole);
}

/// Prepares the meter and the panel, as opening the screen does. A signal in it ends the part that
/// runs; the run ends with the next command.
void prepare_meter(Run& run) {
    for (const auto part : {&realtime::Modes::Form_Load, &realtime::Modes::Form_Activate}) {
        try {
            (run.rules->modes.*part)();
        } catch (const Interrupted&) {
            continue;
        }
    }
}

/// Who reads the rows has to know where those of another meter may begin.
void tell_other_device(const Run& run) {
    if (run.connection.other_device()) complain(run.connection.fault());
}

/// What the meter says of itself is part of the visit.
bool begin_visit(Run& run) {
    if (!run.visit.wanted()) return true;
    link::Link& link = run.connection.link();
    const QString logo = link.ask(link::command::query(link::command::kLogo)).value_or(QString());
    return run.visit.begin({.instrument = run.state.meter_version,
                            .logo = logo,
                            .plan = run.options.plan.trimmed().toUpper()},
                           link.clock().date_time());
}

/// The work ends before its next command where the program was told `times` times to end. Each
/// command is also a sign of life.
void stop_when_told(Run& run, int times) {
    run.connection.link().interrupted = [&run, times] {
        run.service.alive();
        return platform::times_told_to_end() >= times;
    };
}

/// SIGHUP does not end this run but has its configuration read again.
bool rereads(const Run& run) {
    return !run.options.configuration.isEmpty() && !run.options.plan.isEmpty() &&
           run.options.read_again != nullptr;
}

/// Why `plan` cannot be measured; empty where it can. In sets of its own, as the run may still
/// stand at a program.
QString plan_fault(const db::Database& database, const QString& plan) try {
    const QString name = plan.trimmed().toUpper();
    if (name.isEmpty()) return {};
    if (database.of_plan(QLatin1String(db::table::kGruppo), name).empty()) return kNoPlan.arg(name);
    db::Recordset programs = database.of_plan(QLatin1String(db::table::kProgrammi), name);
    for (; !programs.empty() && !programs.end_of_set(); programs.move_next())
        if (programme::ProgramRow(programs).monitored()) return {};
    return kNothingMonitored.arg(name);
} catch (const Fault& fault) {
    return QString::fromUtf8(fault.what());
}

/// Why a run cannot go on with `next` in place of `before`; empty where it can.
QString refusal_of(const Options& next, const Run& run) {
    const Options& before = run.options;
    if (next.action != Options::Action::run) return next.error;
    if (next.directory != before.directory || next.user_data != before.user_data)
        return QStringLiteral("another folder to work in takes a new start");
    const QString fault = plan_fault(run.rules->database, next.plan);
    return fault.isEmpty() ? file_option_fault(next, run.state.base_dir) : fault;
}

/// True where the configuration was asked for again and is good: the run goes on with that. A bad
/// one is told, and the one before stays in force.
bool read_again(Run& run) {
    const int times = platform::times_asked_to_read_again();
    if (times == std::exchange(run.asked, times)) return false;
    Options next = run.options.read_again();
    const QString refusal = refusal_of(next, run);
    if (!refusal.isEmpty()) {
        complain(QStringLiteral("the configuration stays as it was: %1").arg(refusal));
        return false;
    }
    complain(QStringLiteral("the configuration %1 was read again").arg(next.configuration));
    // The rows of both go into one visit.
    next.visit.resumed = next.visit.resumed || next.visit.site == run.options.visit.site;
    run.next = std::move(next);
    return true;
}

/// Looks for the meter: on its port at the start, afterwards behind the device where it was.
bool identify_meter(Run& run) {
    if (run.link_found)
        run.connection.reconnect();
    else
        run.connection.identify(run.options.on_port);
    run.publishing.link_is(run.connection.link().port_connected);
    if (!run.connection.link().port_connected) return false;
    run.link_found = true;
    run.service.ready();
    prepare_meter(run);
    run.unit.begin();
    run.visit_refused = !begin_visit(run);
    return true;
}

/// The same within a run over a plan. A signal ends the trying at once.
bool connect_again(Run& run) {
    run.publishing.link_is(false);
    const bool told = run.connection.other_device();
    tell_other_device(run);
    // A loss within an exchange does not show what came behind it.
    run.connection.identification().on_another_device = [&run, told] {
        if (!told) tell_other_device(run);
    };
    stop_when_told(run, 1);
    identify_meter(run);
    run.connection.identification().on_another_device = nullptr;
    stop_when_told(run, 2);
    if (run.connection.link().port_connected) run.publishing.reconnected();
    return run.connection.link().port_connected;
}

/// False, with a complaint, where there is nothing to measure.
bool plan_is_there(Run& run) {
    realtime::PlanWalk& plans = run.rules->plans;
    const QString name = run.options.plan.trimmed().toUpper();
    if (!plans.choose_plan(name)) {
        complain(kNoPlan.arg(name));
        return false;
    }
    if (plans.monitored_programs() > 0) return true;
    complain(kNothingMonitored.arg(name));
    return false;
}

/// Takes over what a run over a plan came to, also where a second signal broke it off.
struct KeepOutcome {
    Run& run;
    const acquisition::PlanRun& plan_run;
    ~KeepOutcome() {
        run.incomplete = plan_run.incomplete() || run.incomplete;
        run.row_missing = plan_run.missing() > 0 || run.row_missing;
    }
};

void measure_plan(Run& run) {
    print_names(run);
    set_up(run);
    for (const int mode : {realtime::kAnalogMode, realtime::kDigitalMode})
        run.rules->tick_measures(mode);
    // Told to end once, the running measurement is finished; told twice, not even that.
    stop_when_told(run, 2);
    run.service.ready();
    acquisition::PlanRun plan_run(run.connection.link(), *run.rules,
                                  {.passes = run.options.passes,
                                   .every = run.options.every,
                                   .reconnect = run.options.reconnect});
    plan_run.told_to_stop = [&run] {
        run.service.alive();
        return platform::times_told_to_end() > 0 || run.pointless();
    };
    if (rereads(run)) plan_run.told_to_pause = [&run] { return read_again(run); };
    plan_run.connect = [&run] { return connect_again(run); };
    plan_run.on_progress = [&run](const QString& text) {
        g_progress_line.show(text);
        run.service.status(text);
    };
    plan_run.on_remark = [&run](const QString& text) {
        complain(text);
        run.service.status(text, true);
    };
    plan_run.pass_time = [&run](double seconds) { run.publishing.pass_time(seconds); };
    plan_run.on_pass = [&run](double seconds) { run.publishing.pass_ended(seconds); };
    const KeepOutcome outcome{run, plan_run};
    // How it ended shows in the link, the signals and the rows; see status_of().
    static_cast<void>(plan_run.run());
}

void write_screenshot(Run& run) {
    const QString& name = run.options.screenshot;
    if (name.isEmpty()) return;
    const QString reason = run.write_picture(std::move(run.rules), name);
    if (reason.isEmpty()) return;
    complain(QStringLiteral("cannot write the picture %1: %2").arg(name, reason));
    run.file_lost = true;
}

/// What the meter refused until the link counted as lost; empty where it was lost otherwise.
QString refusal_of(const Run& run) {
    const QString& refused = run.connection.link().refused();
    return refused.isEmpty() ? QString()
                             : QStringLiteral(": ") + link::refusal_text(refused, run.state.texts);
}

/// A run that was told to end is good for what it has measured.
int status_of(const Run& run) {
    if (run.wrong_limits) return kUsage;
    if (!run.connection.link().port_connected) {
        tell_other_device(run);
        complain(platform::times_told_to_end() > 0
                     ? QStringLiteral("ended without a link to the meter")
                     : QStringLiteral("the link to the meter was lost") + refusal_of(run));
        return kNoLink;
    }
    if (run.file_lost || run.row_missing) return kOutputLost;
    if (run.visit.unreadable()) return kDatabase;
    if (run.rows == 0) complain(QStringLiteral("nothing was measured"));
    if (run.incomplete || run.rows == 0 || run.visit.not_compared()) return kIncomplete;
    return run.alarm_failed ? kAlarmFailed : kGood;
}

/// What outlives the run as a number, in an engine or with a visit, is to have the right unit.
measurement::Measurement with_its_unit(const Run& run, measurement::Measurement measurement) {
    if (run.unit_unknown) measurement.unit.reset();
    return measurement;
}

/// False, with a complaint, where nothing can be measured: `status` says why then.
bool prepare(Run& run, int& status) {
    if (!run.options.plan.isEmpty() && !plan_is_there(run)) {
        status = kDatabase;
        return false;
    }
    if (!run.visit.look_at(run.state.base_dir + QLatin1String(sites::kSitesFile))) {
        status = kDatabase;
        return false;
    }
    if (identify_meter(run)) {
        status = run.visit_refused ? kDatabase : kGood;
        return !run.visit_refused;
    }
    complain(no_meter_text(run.connection, run.options.on_port));
    status = kNoLink;
    return run.options.reconnect;
}

/// What is told while the run measures.
void listen_to_rules(Run& run) {
    run.output.on_remark = complain;
    run.visit.on_remark = complain;
    run.publishing.on_remark = complain;
    run.unit.on_remark = complain;
    realtime::MeasureCycle& cycle = run.rules->cycle;
    cycle.on_row = [&run](const QStringList& row) { print_row(run, row); };
    cycle.before_row = [&run](const measurement::Measurement& measurement, std::string_view line,
                              const QDateTime& moment) {
        const bool lasts = run.publishing.wanted() || run.visit.wanted();
        run.unit_unknown = lasts && run.unit.has_strayed();
        run.publishing.before_row(with_its_unit(run, measurement), line, moment);
    };
    cycle.on_measured = [&run](const measurement::Measurement& measurement) {
        run.publishing.after_row();
        run.measured = with_its_unit(run, measurement);
        run.visit.take(run.measured, run.connection.link().clock().date_time().offsetFromUtc());
        if (measurement.verdict == measurement::Verdict::fail) run.alarm_failed = true;
    };
    cycle.on_log_written = [&run](const QString& reason) { tell_log(run, reason); };
    cycle.on_doubt = [&run](const QString& command) {
        run.publishing.taken_again();
        tell_doubt(run, command);
    };
    run.state.costs.on_cost = [&state = run.state](const Bilingual& text) {
        complain(state.texts.pick(text));
    };
}

/// What cannot be recorded stops no measurement.
void record_line(Run& run) {
    run.recording.on_lost = complain;
    if (!run.options.trace.isEmpty()) run.recording.start(run.options.trace);
}

/// One that goes on opens its outbox again: nothing is left in another one without a word.
void end_publishing(Run& run) {
    const auto told = [] { return platform::times_told_to_end() > 1; };
    if (!run.next) return run.publishing.finish(kLongestEngineWait, told);
    const QString& folder = run.state.base_dir;
    if (outbox_file(*run.next, folder) != outbox_file(run.options, folder))
        run.publishing.finish(kLongestHandover, told);
}

int end_part(Run& run, RunSoFar& so_far) {
    g_progress_line.clear();
    if (!run.next) run.service.stopping();
    // One that goes on with the same site is not at its end.
    if (!run.next || run.next->visit.site != run.options.visit.site)
        run.visit.end(run.connection.link().clock().date_time());
    if (!run.next) write_screenshot(run);
    end_publishing(run);
    run.output.finish(kLongestReaderWait, [] { return platform::times_told_to_end() > 1; });
    run.file_lost = run.file_lost || run.output.lost() || run.recording.lost() ||
                    run.visit.lost() || run.publishing.lost();
    run.alarm_failed = run.alarm_failed || run.visit.worse();
    so_far = run;
    return run.next ? kGood : status_of(run);
}

}  // namespace

QString no_meter_text(const MeterConnection& connection, int number) {
    const QString reason = connection.fault();
    return reason.isEmpty() ? QStringLiteral("no meter answers on port %1").arg(number) : reason;
}

int run_part(ProgramState& state, db::Database& database, MeterConnection& connection,
             const Options& options, const WritePicture& write_picture, RunSoFar& so_far) {
    state.texts.language = kEnglish;
    Run run(so_far, state, connection, options, write_picture);
    run.rules = std::make_unique<realtime::RealtimeRules>(connection.link(), state, database);
    stop_when_told(run, 1);
    connection.link().cut_off = [] { return platform::times_told_to_end() > 1; };
    platform::let_hangups_ask(rereads(run));
    // Whoever watches was told so before and goes on watching.
    if (run.parts++ > 0) run.service.ready();
    listen_to_rules(run);
    tell_rounded(options);
    record_line(run);
    run.publishing.open(connection.link().clock(), state.base_dir);
    try {
        int status = kGood;
        if (!prepare(run, status)) {
            end_publishing(run);
            return status;
        }
        if (options.plan.isEmpty())
            measure_rows(run);
        else
            measure_plan(run);
    } catch (const Interrupted&) {
        // The rows that were printed stand; a measurement that was not finished is none.
        run.next.reset();
    } catch (const Fault& fault) {
        complain(fault.text(state.texts));
        run.visit.end(connection.link().clock().date_time());
        run.next.reset();
        end_publishing(run);
        return kDatabase;
    }
    return end_part(run, so_far);
}

int run_unattended(ProgramState& state, db::Database& database, MeterConnection& connection,
                   const Options& options, const WritePicture& write_picture) {
    RunSoFar so_far;
    return run_part(state, database, connection, options, write_picture, so_far);
}

}  // namespace m47::unattended
