// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "fault.h"
#include "handler.h"
#include "plan_run.h"
#include "realtime.h"

namespace m47 {
namespace {

/// How often the run has been told to end.
volatile std::sig_atomic_t g_told_to_end = 0;

void tell_to_end(int) {
    if (g_told_to_end < 2) g_told_to_end = g_told_to_end + 1;
}

void listen_to_signals() {
    struct sigaction action {};
    action.sa_handler = tell_to_end;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

/// The line on a terminal that tells how far the run is.
class ProgressLine {
  public:
    void show(const QString& text) {
        if (isatty(STDERR_FILENO) == 0) return;
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

void complain(const QString& text) {
    g_progress_line.clear();
    std::fprintf(stderr, "m47-remote: %s\n", text.toLocal8Bit().constData());
}

struct Run {
    Program& program;
    const Options& options;
    Realtime& screen;
    bool alarm_failed = false;
    bool stdout_lost = false;
    bool file_lost = false;
    bool row_missing = false;
};

void print_row(Run& run, const QStringList& row) {
    if (isatty(STDOUT_FILENO) != 0) g_progress_line.clear();
    const QByteArray line = row.join(run.screen.rules.state.field_separator).toUtf8();
    if (std::printf("%s\n", line.constData()) < 0 || std::fflush(stdout) != 0)
        run.stdout_lost = true;
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
                 .arg(run.screen.rules.panel.fsat, command));
}

void set_alarm(RealtimePanel& panel, const AlarmOption& alarm) {
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

/// The screen as a technician would set it up for either kind of run.
void set_up(Run& run) {
    RealtimeRules& rules = run.screen.rules;
    if (!run.options.log.isEmpty()) run.screen.open_log(run.options.log);
    if (!run.options.bandwidth.isEmpty()) rules.panel.chbws = run.options.bandwidth;
    for (const AlarmOption& alarm : run.options.alarms) set_alarm(rules.panel, alarm);
}

/// One measurement, taken again where an answer was doubtful. False when its row is missing.
bool take_row(Run& run) {
    for (int tried = 0; tried < PlanRun::kMostTries; ++tried) {
        run.screen.barracomandi_ButtonClick(QStringLiteral("single_acq"));
        if (run.screen.rules.cycle.doubt().isEmpty()) return true;
    }
    return false;
}

void measure_rows(Run& run) {
    RealtimeRules& rules = run.screen.rules;
    run.screen.barracomandi_ButtonClick(run.options.digital ? QStringLiteral("qpsk")
                                                            : QStringLiteral("analogico"));
    set_up(run);
    if (!run.options.symbol_rate.isEmpty()) rules.panel.srqpsk_txt = run.options.symbol_rate;
    if (!run.options.frequency.isEmpty()) {
        rules.panel.fsat = run.options.frequency;
        rules.tuning.fsat_KeyPress(kEnterKey);
    }
    rules.tick_measures(rules.state.meas_mode);
    for (int taken = 0; taken < run.options.count; ++taken) {
        if (!run.program.link().port_connected || run.stdout_lost) return;
        run.row_missing = !take_row(run) || run.row_missing;
    }
}

/// Opens the screen, as the meter and the panel are prepared for it.
void open_screen(Run& run) {
    run.screen.Form_Load();
    run.screen.Form_Activate();
}

/// Identifies the meter again and prepares it. A signal ends the trying at once.
bool connect_again(Run& run) {
    run.program.link().interrupted = [] { return g_told_to_end > 0; };
    if (run.program.reconnect()) open_screen(run);
    run.program.link().interrupted = [] { return g_told_to_end > 1; };
    return run.program.link().port_connected;
}

/// False, with a complaint, where there is nothing to measure.
bool plan_is_there(Run& run) {
    Acquisition& walk = run.screen.rules.acquisition;
    const QString name = run.options.plan.trimmed().toUpper();
    if (!walk.choose_plan(name)) {
        complain(QStringLiteral("there is no plan %1").arg(name));
        return false;
    }
    if (walk.monitored_programs() > 0) return true;
    complain(QStringLiteral("no program of the plan %1 is monitored").arg(name));
    return false;
}

void measure_plan(Run& run) {
    set_up(run);
    for (const int mode : {kAnalogMode, kDigitalMode}) run.screen.rules.tick_measures(mode);
    // Told to end once, the running measurement is finished; told twice, not even that.
    run.program.link().interrupted = [] { return g_told_to_end > 1; };
    PlanRun plan_run(run.program.link(), run.screen.rules,
                     {.passes = run.options.passes,
                      .every = run.options.every,
                      .reconnect = run.options.reconnect});
    plan_run.told_to_stop = [&run] { return g_told_to_end > 0 || run.stdout_lost; };
    plan_run.connect = [&run] { return connect_again(run); };
    plan_run.on_progress = [](const QString& text) { g_progress_line.show(text); };
    plan_run.on_remark = complain;
    plan_run.run();
    run.row_missing = plan_run.missing() > 0;
    g_progress_line.clear();
}

void write_screenshot(Run& run) {
    if (run.options.screenshot.isEmpty()) return;
    run.screen.rules.panel.repaint();
    run.screen.resize(run.screen.sizeHint().expandedTo({900, 560}));
    const QPixmap picture = run.screen.grab();
    // The kind follows from the name; a name that tells none is PNG.
    if (picture.save(run.options.screenshot) || picture.save(run.options.screenshot, "PNG")) return;
    complain(QStringLiteral("cannot write the picture %1").arg(run.options.screenshot));
    run.file_lost = true;
}

int status_of(const Run& run) {
    if (!run.program.link().port_connected && !g_told_to_end) {
        complain(QStringLiteral("the link to the meter was lost"));
        return kNoLink;
    }
    if (run.stdout_lost || run.file_lost || run.row_missing) return kOutputLost;
    return run.alarm_failed ? kAlarmFailed : kGood;
}

}  // namespace

int run_unattended(Program& program, const Options& options) {
    listen_to_signals();
    set_fault_reporter([](QWidget*, const QString& what) { complain(what); });
    program.link().interrupted = [] { return g_told_to_end != 0; };
    Realtime* screen = program.make_realtime(&program.window());
    Run run{program, options, *screen};
    screen->rules.cycle.on_row = [&run](const QStringList& row) { print_row(run, row); };
    screen->rules.cycle.on_measured = [&run](const Measurement& measurement) {
        if (measurement.verdict == Verdict::fail) run.alarm_failed = true;
    };
    screen->rules.cycle.on_log_written = [&run](const QString& reason) { tell_log(run, reason); };
    program.state().costs.on_cost = [&program](const Bilingual& text) {
        complain(program.state().texts.pick(text));
    };
    screen->rules.cycle.on_doubt = [&run](const QString& command) { tell_doubt(run, command); };
    try {
        if (!options.plan.isEmpty() && !plan_is_there(run)) return kDatabase;
        program.identify(options.on_port);
        if (!program.link().port_connected) {
            complain(program.window().status().reason().isEmpty()
                         ? QStringLiteral("no meter answers on port %1").arg(options.on_port)
                         : program.window().status().reason());
            return kNoLink;
        }
        open_screen(run);
        if (options.plan.isEmpty())
            measure_rows(run);
        else
            measure_plan(run);
    } catch (const Interrupted&) {
        // The rows that were printed stand; a measurement that was not finished is none.
    }
    write_screenshot(run);
    return status_of(run);
}

}  // namespace m47
