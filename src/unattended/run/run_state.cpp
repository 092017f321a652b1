// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_state.h"

#include <cstdio>

#include "say_on_stderr.h"

namespace m47::unattended {
namespace {

/// The line on a terminal that tells how far the run is.
bool g_progress_shown = false;

}  // namespace

void complain(const QString& text) {
    clear_progress();
    say_of_run(text);
}

void show_progress(const QString& text) {
    if (!platform::is_terminal(platform::kStandardErrors)) return;
    std::fprintf(stderr, "\r%s\033[K", text.toLocal8Bit().constData());
    std::fflush(stderr);
    g_progress_shown = true;
}

void clear_progress() {
    if (g_progress_shown) std::fputs("\r\033[K", stderr);
    g_progress_shown = false;
}

}  // namespace m47::unattended
