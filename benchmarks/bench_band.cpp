// SPDX-License-Identifier: GPL-3.0-or-later
// Times a sweep on its screen, which draws while it sweeps, over a pseudo-terminal on which a
// thread answers at the pace of the wire: its wall time against what pacing and meter need for the
// exchanges that were made. Ends with status 1 when the bound is missed.
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "band_sweep.h"
#include "event_loop_view.h"
#include "figure.h"
#include "paced_meter.h"
#include "program_state.h"
#include "real_clock.h"
#include "real_port.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr auto kThinking = 5ms;
/// Once in a sweep the meter has to settle.
constexpr double kSettling = 1;
constexpr double kMostOfIdeal = 1.05;
/// The best counts: what else the machine does only adds.
constexpr int kSweeps = 3;

/// Carriers 30 MHz wide, one each 60 MHz.
QByteArray level_at(double mhz) {
    const double off = std::fmod(mhz, 60) - 30;
    return QByteArray::number(42 + 15 / (1 + std::pow(std::abs(off) / 14, 8)), 'f', 1);
}

QByteArray answer_to(const QByteArray& command) {
    static double tuned = 1000;
    if (command.startsWith("FREQ ")) tuned = command.mid(5).toDouble();
    QByteArray value;
    if (command == "LEVANL?")
        value = "  " + level_at(tuned) + '\r';
    else if (command == "FREQ?")
        value = "1178.0\r";
    else if (command.endsWith('?'))
        value = "00\r";
    return command + '\r' + value + "OK\r";
}

/// The line, which notes what each exchange would need at the least.
class NotingPort : public m47::link::RealPort {
  public:
    double ideal = 0;
    int exchanges = 0;
    const m47::link::Clock* clock = nullptr;

    bool open() override {
        command_.clear();
        return RealPort::open();
    }
    bool write(char character) override {
        if (command_.isEmpty()) began_ = clock->until_next_tick();
        if (character != '\r') {
            command_ += character;
            return RealPort::write(character);
        }
        // The first character goes out as the exchange begins.
        const auto meter = kThinking + answer_size(command_) * bench::kCharacter;
        ideal += bench::ideal_time(*clock, command_, meter) - clock->until_next_tick() + began_;
        ++exchanges;
        command_.clear();
        return RealPort::write(character);
    }

  private:
    static qsizetype answer_size(const QByteArray& command) {
        if (command == "LEVANL?") return command.size() + 11;
        if (command == "FREQ?") return command.size() + 11;
        return command.size() + (command.endsWith('?') ? 7 : 4);
    }

    QByteArray command_;
    double began_ = 0;
};

/// Wall time of a sweep by the time it needs at the least; 0 where it found nothing.
double sweep(m47::band::BandSweep& screen, NotingPort& port) {
    port.ideal = 0;
    port.exchanges = 0;
    const auto begin = steady_clock::now();
    screen.findChild<QPushButton*>(QStringLiteral("band_start"))->click();
    const double wall = bench::seconds(steady_clock::now() - begin);
    const double ideal = port.ideal + kSettling;
    std::printf("%s\n  %d exchanges in %.2f s, at the least %.2f s\n",
                qPrintable(screen.findChild<QLabel*>(QStringLiteral("band_result"))->text()),
                port.exchanges, wall, ideal);
    return screen.carriers().empty() ? 0 : wall / ideal;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const bench::PacedMeter meter(answer_to, [](const QByteArray&) { return kThinking; });
    const auto start = steady_clock::now();
    m47::link::RealClock clock([start] { return 10h + (steady_clock::now() - start); });
    NotingPort port;
    port.clock = &clock;
    bench::EventLoopView view;
    m47::link::Link link(port, clock, view);
    port.select(meter.device());
    link.port_connected = true;
    m47::ProgramState state;
    m47::band::BandSweep screen(link, state);
    screen.load();
    screen.resize(1366, 700);
    screen.show();
    QCoreApplication::processEvents();
    screen.findChild<QCheckBox*>(QStringLiteral("band_whole"))->click();
    screen.findChild<QLineEdit*>(QStringLiteral("band_from"))->setText(QStringLiteral("1000"));
    screen.findChild<QLineEdit*>(QStringLiteral("band_to"))->setText(QStringLiteral("1400"));
    double best = 0;
    for (int k = 0; k < kSweeps; ++k) {
        const double ratio = sweep(screen, port);
        if (ratio <= 0 || !link.port_connected) return 1;
        best = k == 0 ? ratio : std::min(best, ratio);
    }
    bench::print_figure("sweep on its screen: wall time", best, kMostOfIdeal,
                        "pacing + meter time");
    return best <= kMostOfIdeal ? 0 : 1;
}
