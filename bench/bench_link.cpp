// SPDX-License-Identifier: GPL-3.0-or-later
// Times 100 level queries over a real line, or over a pseudo-terminal on which a thread answers at
// the pace of the wire, at each of the three paces that a day has. Prints how near they come to
// what pacing and meter allow, and what waiting costs the processor.
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QString>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <optional>
#include <thread>
#include <vector>

#include "clock_tick.h"
#include "link.h"
#include "real_clock.h"
#include "real_port.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::duration_cast;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr int kTransactions = 100;
constexpr int kSlowTransactions = 3;
constexpr nanoseconds kCharacter = nanoseconds{11 * 1'000'000'000LL / 38'400};
constexpr nanoseconds kMeterDelay = 5ms;
constexpr nanoseconds kSlowMeterDelay = 1500ms;
const QByteArray kQuery = "LEVANL?";
const QByteArray kAnswer = "LEVANL?\r73.5\rOK\r";
const QByteArray kSlowQuery = "ATTEN?";
const QByteArray kSlowAnswer = "ATTEN?\r2\rOK\r";

double seconds(nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

nanoseconds meter_time() {
    return kMeterDelay + kAnswer.size() * kCharacter;
}

/// A meter on a pseudo-terminal of its own: a fixed time to think, then the answer at 38400 baud.
class PacedMeter {
  public:
    PacedMeter() {
        char path[128];
        if (openpty(&master_, &slave_, path, nullptr, nullptr) != 0) return;
        termios raw{};
        tcgetattr(slave_, &raw);
        cfmakeraw(&raw);
        tcsetattr(slave_, TCSANOW, &raw);
        device_ = QString::fromLocal8Bit(path);
        thread_ = std::thread([this] { run(); });
    }
    ~PacedMeter() {
        ending_ = true;
        if (thread_.joinable()) thread_.join();
        close(slave_);
        close(master_);
    }
    PacedMeter(const PacedMeter&) = delete;
    PacedMeter& operator=(const PacedMeter&) = delete;

    const QString& device() const { return device_; }

  private:
    void run() {
        QByteArray command;
        while (!ending_) {
            pollfd line{master_, POLLIN, 0};
            char character = 0;
            if (poll(&line, 1, 50) != 1 || read(master_, &character, 1) != 1) continue;
            command += character;
            if (character != '\r') continue;
            const bool slow = command.startsWith(kSlowQuery);
            answer(steady_clock::now() + (slow ? kSlowMeterDelay : kMeterDelay),
                   slow ? kSlowAnswer : kAnswer);
            command.clear();
        }
    }

    void answer(steady_clock::time_point due, const QByteArray& text) const {
        for (const char character : text) {
            due += kCharacter;
            std::this_thread::sleep_until(due);
            if (write(master_, &character, 1) != 1) return;
        }
    }

    int master_ = -1;
    int slave_ = -1;
    QString device_;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

/// The windows that wait meanwhile.
class EventLoopView : public m47::LinkView {
  public:
    void show_progress_bar() override {}
    void set_progress(int value) override { progress_ = value; }
    int progress() const override { return progress_; }
    int progress_maximum() const override { return 100; }
    void set_hourglass(bool) override {}
    void set_port_state(const QString&, bool) override {}
    void pump() override { QCoreApplication::processEvents(); }

  private:
    int progress_ = 0;
};

nanoseconds processor_time() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    const auto time = [](const timeval& value) {
        return std::chrono::seconds{value.tv_sec} + std::chrono::microseconds{value.tv_usec};
    };
    return time(usage.ru_utime) + time(usage.ru_stime);
}

/// What a transaction that begins now needs: one tick behind each character but the first, whose
/// tick has begun already, and the meter from the CR on, during which the last tick passes too.
double ideal_time(const m47::Clock& clock) {
    const double to_tick = clock.until_next_tick();
    const float reading = clock.now();
    const double tick =
        seconds(m47::clock_tick(duration_cast<nanoseconds>(std::chrono::duration<float>(reading))));
    const auto ticks_to_cr = static_cast<double>(kQuery.size() - 1);
    return to_tick + ticks_to_cr * tick + std::max(tick, seconds(meter_time()));
}

struct Result {
    double wall = 0;
    double ideal = 0;
    double processor = 0;
    std::vector<double> each;
};

/// `count` transactions of `query`; nothing when one is not answered.
std::optional<Result> measure(m47::Link& link, const QByteArray& query, int count) {
    Result result;
    const nanoseconds used = processor_time();
    const auto begin = steady_clock::now();
    for (int i = 0; i < count; ++i) {
        const auto start = steady_clock::now();
        result.ideal += ideal_time(link.clock());
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

/// One run whose clock starts at `hour`. False when the meter does not answer.
bool run_at(std::chrono::hours hour, const QString& device, bool own_meter) {
    const auto begin = steady_clock::now();
    m47::RealClock clock([=] { return hour + (steady_clock::now() - begin); });
    m47::RealPort port;
    EventLoopView view;
    m47::Link link(port, clock, view);
    port.select(device);
    link.port_connected = true;
    const std::optional<Result> quick = measure(link, kQuery, kTransactions);
    if (!quick) return false;
    print(*quick, own_meter);
    if (!own_meter) return true;
    const std::optional<Result> slow = measure(link, kSlowQuery, kSlowTransactions);
    if (!slow) return false;
    std::printf("  processor share while waiting for an answer: %.2f %% (target 3 %%)\n",
                share(*slow));
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::optional<PacedMeter> meter;
    if (argc < 2) meter.emplace();

    const QString device = meter ? meter->device() : QString::fromLocal8Bit(argv[1]);
    for (const std::chrono::hours hour : {5h, 10h, 20h}) {
        std::printf("from %02d:00\n", static_cast<int>(hour.count()));
        if (run_at(hour, device, meter.has_value())) continue;
        std::fprintf(stderr, "no answer on %s\n", qPrintable(device));
        return 1;
    }
    return 0;
}
