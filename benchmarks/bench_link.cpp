// SPDX-License-Identifier: GPL-3.0-or-later
// Times 100 level queries and the upload of a plan of 100 programs over a real line, or over a
// pseudo-terminal on which a thread answers at the pace of the wire, at each of the three paces
// that a day has. Prints how near they come to what pacing and meter allow, what waiting costs the
// processor, and what a recording of the line takes of a transaction.
#include <sys/resource.h>

#include <QCoreApplication>
#include <QString>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <vector>

#include "clock_tick.h"
#include "event_loop_view.h"
#include "figure.h"
#include "instant_meter.h"
#include "link.h"
#include "paced_meter.h"
#include "real_clock.h"
#include "real_port.h"
#include "recording_file.h"
#include "recording_port.h"
#include "upload_commands.h"

namespace {

using namespace std::chrono_literals;
using bench::seconds;
using std::chrono::duration_cast;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr int kTransactions = 100;
constexpr int kSlowTransactions = 3;
constexpr int kInstantTransactions = 2000;
/// Taken in turns with and without a recording, so that what else goes on meets both.
constexpr int kRecordedTurns = 5;
constexpr nanoseconds kMeterDelay = 5ms;
constexpr nanoseconds kSlowMeterDelay = 1500ms;
const QByteArray kQuery = "LEVANL?";
const QByteArray kAnswer = "LEVANL?\r73.5\rOK\r";
const QByteArray kSlowQuery = "ATTEN?";
const QByteArray kSlowAnswer = "ATTEN?\r2\rOK\r";

/// What the meter says to `command`: every setting is accepted.
QByteArray answer_to(const QByteArray& command) {
    if (command == kQuery) return kAnswer;
    return command == kSlowQuery ? kSlowAnswer : command + "\rOK\r";
}

nanoseconds meter_time(const QByteArray& command) {
    return kMeterDelay + answer_to(command).size() * bench::kCharacter;
}

nanoseconds thinking_time(const QByteArray& command) {
    return command == kSlowQuery ? kSlowMeterDelay : kMeterDelay;
}

nanoseconds processor_time() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    const auto time = [](const timeval& value) {
        return std::chrono::seconds{value.tv_sec} + std::chrono::microseconds{value.tv_usec};
    };
    return time(usage.ru_utime) + time(usage.ru_stime);
}

struct Result {
    double wall = 0;
    double ideal = 0;
    double processor = 0;
    std::vector<double> each;
};

/// `count` transactions of `query`; nothing when one is not answered.
std::optional<Result> measure(m47::link::Link& link, const QByteArray& query, int count) {
    Result result;
    const nanoseconds used = processor_time();
    const auto begin = steady_clock::now();
    for (int i = 0; i < count; ++i) {
        const auto start = steady_clock::now();
        result.ideal += bench::ideal_time(link.clock(), query, meter_time(query));
        if (!link.send(QString::fromLatin1(query))) return std::nullopt;
        result.each.push_back(seconds(steady_clock::now() - start));
    }
    result.wall = seconds(steady_clock::now() - begin);
    result.processor = seconds(processor_time() - used);
    std::sort(result.each.begin(), result.each.end());
    return result;
}

double share(const Result& result) {
    return 100 * result.processor / result.wall;
}

void print(const Result& quick, bool own_meter) {
    std::printf("  %d transactions in %.3f s (median %.2f ms, longest %.2f ms)\n", kTransactions,
                quick.wall, quick.each[kTransactions / 2] * 1e3, quick.each.back() * 1e3);
    if (own_meter)
        std::printf("  wall / (pacing + meter time): %.3f (target 1.05)\n",
                    quick.wall / quick.ideal);
    std::printf("  processor share, transactions back to back: %.2f %%\n", share(quick));
}

/// The ratios of all runs, the worst of each kind.
struct Ratios {
    double wall = 0;
    double waiting = 0;
    double upload = 0;
    double recording = 0;
};

/// A link whose clock starts at `hour`.
struct Line {
    Line(std::chrono::hours hour, const QString& device) {
        const auto begin = steady_clock::now();
        clock.emplace([=] { return hour + (steady_clock::now() - begin); });
        link.emplace(port, *clock, view);
        port.select(device);
        link->port_connected = true;
    }
    m47::link::RealPort port;
    bench::EventLoopView view;
    std::optional<m47::link::RealClock> clock;
    std::optional<m47::link::Link> link;
};

/// One run whose clock starts at `hour`. False when the meter does not answer.
bool run_at(std::chrono::hours hour, const QString& device, bool own_meter, Ratios& ratios) {
    Line line(hour, device);
    const std::optional<Result> quick = measure(*line.link, kQuery, kTransactions);
    if (!quick) return false;
    print(*quick, own_meter);
    if (!own_meter) return true;
    const std::optional<Result> slow = measure(*line.link, kSlowQuery, kSlowTransactions);
    if (!slow) return false;
    std::printf("  processor share while waiting for an answer: %.2f %% (target 3 %%)\n",
                share(*slow));
    ratios.wall = std::max(ratios.wall, quick->wall / quick->ideal);
    ratios.waiting = std::max(ratios.waiting, slow->processor / slow->wall);
    return true;
}

m47::plans::UploadPlan full_plan() {
    m47::plans::UploadPlan plan;
    plan.bandwidth = QStringLiteral("36");
    plan.oscillators = {QStringLiteral("9750"), QStringLiteral("10600"), QString(), QString()};
    for (int number = 0; number < 100; ++number) {
        m47::programme::ProgramRecord program;
        program.pg_num = QString::number(number);
        program.frequenza = QString::number(11700 + number * 10);
        program.loc_osc0 = 1;
        program.sat_ad = true;
        program.qpsk_symbolrate = QStringLiteral("27500");
        program.lnb_volt = 1 + number % 2;
        program.K22 = 1;
        program.logger_pos = QString::number(number % 42);
        program.logger_state = number < 42;
        plan.programs.push_back(program);
    }
    return plan;
}

/// The upload at the quickest pace of a day, command by command. False when one is refused.
bool run_upload(const QString& device, Ratios& ratios) {
    Line line(5h, device);
    double ideal = 0;
    const QStringList commands = m47::plans::upload_commands(full_plan(), m47::plans::kAppend, {});
    const auto begin = steady_clock::now();
    for (const QString& command : commands) {
        ideal += bench::ideal_time(*line.clock, command.toLatin1(), meter_time(command.toLatin1()));
        if (!line.link->send(command) || line.link->last_answer() != u"OK") return false;
    }
    const double wall = seconds(steady_clock::now() - begin);
    ratios.upload = wall / ideal;
    std::printf(
        "upload of 100 programs: %d commands in %.3f s, wall / (pacing + meter time): %.3f\n",
        static_cast<int>(commands.size()), wall, ratios.upload);
    return true;
}

/// Seconds of a transaction with a meter that answers at once, at the least.
double instant_transaction(const QString& recording) {
    bench::SteppingClock clock;
    bench::EventLoopView view;
    bench::InstantMeter meter(kAnswer);
    m47::link::LineRecorder recorder(clock);
    m47::link::RecordingPort line(meter, recorder);
    m47::link::Link link(line, clock, view);
    link.port_connected = true;
    if (!recording.isEmpty())
        recorder.start(std::make_unique<m47::link::RecordingFile>(recording), "bench");
    const auto begin = steady_clock::now();
    for (int i = 0; i < kInstantTransactions; ++i)
        if (!link.send(QString::fromLatin1(kQuery))) return 0;
    return seconds(steady_clock::now() - begin) / kInstantTransactions;
}

/// What a recording costs each transaction, against the time that the shortest transaction takes
/// on the wire at the quickest pace of a day.
void run_recorded(Ratios& ratios) {
    const QTemporaryDir folder;
    double with = 1;
    double without = 1;
    for (int turn = 0; turn < kRecordedTurns; ++turn) {
        without = std::min(without, instant_transaction({}));
        with = std::min(with, instant_transaction(folder.filePath("line.trace")));
    }
    const double on_the_wire =
        static_cast<double>(kQuery.size() + 1) * seconds(m47::link::clock_tick(5h)) +
        seconds(meter_time(kQuery));
    ratios.recording = (on_the_wire + with - without) / on_the_wire;
    std::printf("recording the line: %.1f us more in a transaction of %.1f ms\n",
                (with - without) * 1e6, on_the_wire * 1e3);
}

void print_figures(const Ratios& ratios) {
    bench::print_figure("transaction, worst of the three paces", ratios.wall, 1.05,
                        "pacing + meter time");
    bench::print_figure("processor share while waiting", ratios.waiting, 0.03, "wall time");
    bench::print_figure("transaction while the line is recorded", ratios.recording, 1.01,
                        "without a recording");
    bench::print_figure("upload of a plan of 100 programs", ratios.upload, 1.05,
                        "pacing + meter time");
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::optional<bench::PacedMeter> meter;
    if (argc < 2) meter.emplace(answer_to, thinking_time);

    const QString device = meter ? meter->device() : QString::fromLocal8Bit(argv[1]);
    Ratios ratios;
    bool answered = true;
    for (const std::chrono::hours hour : {5h, 10h, 20h}) {
        std::printf("from %02d:00\n", static_cast<int>(hour.count()));
        answered = answered && run_at(hour, device, meter.has_value(), ratios);
    }
    if (meter) answered = answered && run_upload(device, ratios);
    if (!answered) {
        std::fprintf(stderr, "no answer on %s\n", qPrintable(device));
        return 1;
    }
    run_recorded(ratios);
    if (meter) print_figures(ratios);
    return 0;
}
