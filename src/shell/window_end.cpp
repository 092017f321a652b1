// SPDX-License-Identifier: GPL-3.0-or-later
#include "window_end.h"

#include <QApplication>
#include <QProgressDialog>
#include <QTimer>
#include <chrono>

#include "end_signals.h"
#include "end_told.h"

namespace m47::shell {
namespace {

/// Timers rest while a handler waits for the meter.
constexpr std::chrono::milliseconds kAfterTheExchange{1};

constexpr Bilingual kIdle{"no exchange with the meter was running",
                          "nessuno scambio con lo strumento era in corso"};

/// What is being printed looks at its dialog between two pages.
void cancel_printing() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* progress = qobject_cast<QProgressDialog*>(window)) progress->cancel();
}

}  // namespace

WindowEnd::WindowEnd(Program& program)
    : program_(program), told_(platform::end_signal_descriptor(), QSocketNotifier::Read) {
    program_.link().interrupted = [] { return platform::times_told_to_end() > 0; };
    program_.link().cut_off = [] { return platform::times_told_to_end() > 1; };
    connect(&told_, &QSocketNotifier::activated, this, [this] {
        told_.setEnabled(false);
        end_when_free();
    });
}

WindowEnd::~WindowEnd() {
    program_.link().interrupted = nullptr;
    program_.link().cut_off = nullptr;
}

void WindowEnd::end_when_free() {
    if (program_.window().status().pumping()) {
        QTimer::singleShot(kAfterTheExchange, this, [this] { end_when_free(); });
        return;
    }
    program_.window().keep_places();
    cancel_printing();
    // Of the boxes that are open too.
    QApplication::exit();
}

int WindowEnd::tell(const Program& program) {
    tell_end(program.left_off().value_or(Said{kIdle, {}}), program.state().texts);
    return platform::end_signal_status();
}

}  // namespace m47::shell
