// SPDX-License-Identifier: GPL-3.0-or-later
#include "end_signals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

namespace m47::platform {
namespace {

constexpr int kStatusOfSignals = 128;
constexpr int kPatience = 3;
/// A terminal that closes and the shell in it tell the same, as does Ctrl+C through a wrapper.
constexpr long long kOnce = 300;  // ms

// Any thread may be the one that takes a signal.
std::atomic<int> g_times{0};
std::atomic<int> g_first{0};
std::atomic<int> g_asked{0};
std::atomic<int> g_descriptor{-1};
std::atomic<long long> g_last{0};  // ms

long long milliseconds_now() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1'000'000;
}

void tell_to_end(int signal) {
    const int error = errno;
    long long last = g_last;
    const long long now = milliseconds_now();
    // Where another thread was quicker it has taken the same.
    if ((last != 0 && now - last < kOnce) || !g_last.compare_exchange_strong(last, now)) return;
    if (g_times == 0) g_first = signal;
    if (++g_times >= kPatience) _exit(kStatusOfSignals + signal);
    const std::uint64_t one = 1;
    if (g_descriptor >= 0) static_cast<void>(!write(g_descriptor, &one, sizeof one));
    errno = error;
}

void ask_to_read_again(int) {
    ++g_asked;
}

void do_nothing(int) {}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    // One at a time: they share what they note.
    for (const int other : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&action.sa_mask, other);
    sigaction(signal, &action, nullptr);
}

bool ignored(int signal) {
    struct sigaction present {};
    return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

QString name_of(int signal) {
    switch (signal) {
        case SIGINT:
            return QStringLiteral("SIGINT");
        case SIGHUP:
            return QStringLiteral("SIGHUP");
        default:
            return QStringLiteral("SIGTERM");
    }
}

}  // namespace

void let_writes_fail() {
    // Not ignored: that would be handed on to whatever this program starts.
    for (const int signal : {SIGPIPE, SIGXFSZ})
        if (!ignored(signal)) handle(signal, do_nothing);
}

void listen_to_end_signals() {
    if (g_descriptor < 0) g_descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    handle(SIGINT, tell_to_end);
    handle(SIGTERM, tell_to_end);
    // Under nohup the run outlives its terminal.
    if (!ignored(SIGHUP)) handle(SIGHUP, tell_to_end);
}

void let_hangups_ask(bool ask) {
    if (!ignored(SIGHUP)) handle(SIGHUP, ask ? ask_to_read_again : tell_to_end);
}

int times_asked_to_read_again() {
    return g_asked;
}

int times_told_to_end() {
    return g_times;
}

QString first_end_signal_name() {
    return name_of(g_first);
}

int end_signal_descriptor() {
    return g_descriptor;
}

int end_signal_status() {
    return kStatusOfSignals + g_first;
}

}  // namespace m47::platform
