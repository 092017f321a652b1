// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended.h"

#include <csignal>
#include <cstdio>

#include "fault.h"
#include "handler.h"
#include "realtime.h"

namespace m47 {
namespace {

volatile std::sig_atomic_t g_told_to_end = 0;

void tell_to_end(int) {
    g_told_to_end = 1;
}

void listen_to_signals() {
    struct sigaction action {};
    action.sa_handler = tell_to_end;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

void complain(const QString& text) {
    std::fprintf(stderr, "m47-remote: %s\n", text.toLocal8Bit().constData());
}

struct Run {
    Program& program;
    const Options& options;
    Realtime& screen;
    bool alarm_failed = false;
    bool stdout_lost = false;
    bool file_lost = false;
};

void print_row(Run& run, const QStringList& row) {
    const QByteArray line = row.join(run.screen.rules.state.field_separator).toUtf8();
    if (std::printf("%s\n", line.constData()) < 0 || std::fflush(stdout) != 0)
        run.stdout_lost = true;
    if (row.constLast() == QLatin1String("FAIL")) run.alarm_failed = true;
}

void tell_log(Run& run, const QString& reason) {
    if (reason.isEmpty()) return;
    // Told once: a full disk must not bury the rows under its complaints.
    if (!run.file_lost)
        complain(QStringLiteral("the log %1 is not complete: %2").arg(run.options.log, reason));
    run.file_lost = true;
}

void set_alarm(RealtimePanel& panel, const AlarmOption& alarm) {
    const auto set = [&](bool& ticked, QString& minimum, QString& maximum) {
        ticked = true;
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

/// The screen as a technician would set it up for this run.
void set_up(Run& run) {
    RealtimeRules& rules = run.screen.rules;
    run.screen.barracomandi_ButtonClick(run.options.digital ? QStringLiteral("qpsk")
                                                            : QStringLiteral("analogico"));
    if (!run.options.log.isEmpty()) run.screen.open_log(run.options.log);
    if (!run.options.bandwidth.isEmpty()) rules.panel.chbws = run.options.bandwidth;
    if (!run.options.symbol_rate.isEmpty()) rules.panel.srqpsk_txt = run.options.symbol_rate;
    if (!run.options.frequency.isEmpty()) {
        rules.panel.fsat = run.options.frequency;
        rules.tuning.fsat_KeyPress(kEnterKey);
    }
    rules.tick_complete_measures();
    for (const AlarmOption& alarm : run.options.alarms) set_alarm(rules.panel, alarm);
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

void measure_rows(Run& run) {
    for (int taken = 0; taken < run.options.count; ++taken) {
        if (!run.program.link().port_connected || run.stdout_lost) return;
        run.screen.barracomandi_ButtonClick(QStringLiteral("single_acq"));
    }
}

int status_of(const Run& run) {
    if (!run.program.link().port_connected && !g_told_to_end) {
        complain(QStringLiteral("the link to the meter was lost"));
        return kNoLink;
    }
    if (run.stdout_lost || run.file_lost) return kOutputLost;
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
    screen->rules.cycle.on_log_written = [&run](const QString& reason) { tell_log(run, reason); };
    try {
        program.identify(options.on_port);
        if (!program.link().port_connected) {
            complain(program.window().status().reason().isEmpty()
                         ? QStringLiteral("no meter answers on port %1").arg(options.on_port)
                         : program.window().status().reason());
            return kNoLink;
        }
        screen->Form_Load();
        screen->Form_Activate();
        set_up(run);
        measure_rows(run);
    } catch (const Interrupted&) {
        // The rows that were printed stand; a measurement that was not finished is none.
    }
    write_screenshot(run);
    return status_of(run);
}

}  // namespace m47
