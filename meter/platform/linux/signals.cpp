// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals.h"

#include <signal.h>

namespace meter {

namespace {

volatile sig_atomic_t stop_requested = 0;
volatile sig_atomic_t state_requested = 0;

void on_stop(int) {
    stop_requested = 1;
}

void on_state(int) {
    state_requested = 1;
}

void handle_signal(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

}  // namespace

void listen_to_signals() {
    handle_signal(SIGINT, on_stop);
    handle_signal(SIGTERM, on_stop);
    handle_signal(SIGHUP, on_stop);
    handle_signal(SIGUSR1, on_state);
    handle_signal(SIGPIPE, SIG_IGN);
}

bool told_to_stop() {
    return stop_requested != 0;
}

bool state_asked_for() {
    const bool asked = state_requested != 0;
    if (asked) state_requested = 0;
    return asked;
}

}  // namespace meter
