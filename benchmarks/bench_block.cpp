// SPDX-License-Identifier: GPL-3.0-or-later
// Times a full slot block to the simulated meter, which answers each record at the pace of the
// wire, at each of the three paces that a day has. Compares with what the pacing allows at best: a
// tick behind each character and the half second of rest behind the block. Ends with status 1 when
// the bound is missed.
#include <QCoreApplication>
#include <QProcess>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

#include "clock_tick.h"
#include "event_loop_view.h"
#include "figure.h"
#include "link.h"
#include "real_clock.h"
#include "real_port.h"
#include "slot_block.h"

namespace {

using std::chrono::duration_cast;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr int kBlocks = 5;
constexpr double kPause = 0.5;
constexpr double kMostTimesTheFloor = 1.05;

double seconds(nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

QString full_block() {
    QByteArray tuning;
    for (qsizetype at = 0; at < m47::asl::SlotBlock::kTuningBytes; ++at)
        tuning += static_cast<char>(at * 5 + 1);
    const m47::asl::SlotBlock slot = m47::asl::SlotBlock::of(tuning, QStringLiteral("BENCH 13E"));
    return m47::asl::slot_header(3) + u'\r' + slot.text();
}

/// What a block that begins now needs: its first tick has begun already; the pause ends on the
/// first reading beyond it.
double floor_time(const m47::link::Clock& clock, qsizetype characters) {
    const double tick = seconds(m47::link::clock_tick(
        duration_cast<nanoseconds>(std::chrono::duration<float>(clock.now()))));
    const auto whole_ticks = static_cast<double>(characters - 1);
    return clock.until_next_tick() + whole_ticks * tick + (std::floor(kPause / tick) + 1) * tick;
}

/// One run whose clock starts at `hour`. Wall time over the floor; nothing without an answer.
std::optional<double> run_at(std::chrono::hours hour, const QString& device) {
    const auto begin = steady_clock::now();
    m47::link::RealClock clock([=] { return hour + (steady_clock::now() - begin); });
    m47::link::RealPort port;
    bench::EventLoopView view;
    m47::link::Link link(port, clock, view);
    port.select(device);
    link.port_connected = true;
    const QString block = full_block();
    double wall = 0;
    double floor = 0;
    double longest = 0;
    for (int sent = 0; sent < kBlocks; ++sent) {
        const auto start = steady_clock::now();
        floor += floor_time(clock, block.size() + 1);
        if (!link.send_block(block)) return std::nullopt;
        const double one = seconds(steady_clock::now() - start);
        wall += one;
        longest = std::max(longest, one);
    }
    std::printf(
        "from %02d:00: %d blocks of %d characters in %.3f s (longest %.3f s), floor %.3f s\n",
        static_cast<int>(hour.count()), kBlocks, static_cast<int>(block.size() + 1), wall, longest,
        floor);
    return wall / floor;
}

/// The device of a meter that answers at the pace of the wire; empty when it does not start.
QString start_meter(QProcess& meter) {
    meter.start(QStringLiteral(METER_PROGRAM), QStringList());
    if (!meter.waitForStarted()) return {};
    while (!meter.canReadLine())
        if (!meter.waitForReadyRead()) return {};
    return QString::fromLocal8Bit(meter.readLine()).trimmed();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QProcess meter;
    const QString device = start_meter(meter);
    bool within = !device.isEmpty();
    double worst = 0;
    for (const int hour : {5, 10, 20}) {
        const std::optional<double> ratio = run_at(std::chrono::hours{hour}, device);
        within = within && ratio && *ratio <= kMostTimesTheFloor;
        worst = std::max(worst, ratio.value_or(0));
        if (ratio)
            std::printf("  wall / floor: %.3f (bound %.2f)\n", *ratio, kMostTimesTheFloor);
        else
            std::puts("  no answer");
    }
    if (worst > 0)
        bench::print_figure("block transfer, worst of the three paces", worst, kMostTimesTheFloor,
                            "pacing + the half second of rest");
    std::puts(within ? "within the bound" : "THE BOUND IS MISSED");
    meter.terminate();
    meter.waitForFinished();
    return within ? 0 : 1;
}
