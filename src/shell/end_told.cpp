// SPDX-License-Identifier: GPL-3.0-or-later
#include "end_told.h"

#include "end_signals.h"
#include "say_on_stderr.h"

namespace m47::shell {
namespace {

constexpr Bilingual kEnded{"ended by %1: %2", "terminato da %1: %2"};

}  // namespace

void tell_end(const Said& how_far, const Texts& texts) {
    const QString line =
        Said{kEnded, {platform::first_end_signal_name(), how_far.in(texts)}}.in(texts);
    unattended::say_on_stderr(line, unattended::Subsystem::kEnd);
}

}  // namespace m47::shell
