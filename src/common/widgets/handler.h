// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QWidget>
#include <functional>
#include <type_traits>

#include "handler_watch.h"
#include "texts.h"

namespace m47 {

/// Shows what a handler could not do. By default a message box over `screen`; an unattended run
/// replaces it.
using FaultReporter = std::function<void(QWidget* screen, const QString& what)>;
void set_fault_reporter(FaultReporter reporter);
void report_fault(QWidget* screen, const QString& what);

/// Faults are told in the language of `texts`, which has to stay until the next call; in English
/// where it is nullptr.
void tell_faults_in(const Texts* texts);

/// Runs `body`. A fault ends it with one message box that says what is wrong; the program goes on.
/// `name` is for developers alone and never shown.
void run_handler(QWidget* screen, const char* name, const std::function<void()>& body);

/// As run_handler, for what has no name to tell anybody: the last trap behind all handlers.
void run_trapped(QWidget* screen, const char* name, const std::function<void()>& body);

/// The name of the handler that runs, of several the innermost; nullptr where none does.
const char* running_handler();

/// Connects `signal` to `body`, run as the handler `name` of `screen`. `body` takes the signal's
/// arguments or none.
template <class Sender, class Signal, class Body>
void on(Sender* sender, Signal signal, QWidget* screen, const char* name, Body body) {
    if constexpr (std::is_invocable_v<Body>) {
        QObject::connect(sender, signal, screen,
                         [screen, name, body] { run_handler(screen, name, body); });
    } else {
        QObject::connect(sender, signal, screen, [screen, name, body](auto argument) {
            run_handler(screen, name, [&] { body(argument); });
        });
    }
}

}  // namespace m47
