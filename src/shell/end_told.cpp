// SPDX-License-Identifier: GPL-3.0-or-later
#include "end_told.h"

#include <cstdio>

#include "end_signals.h"

namespace m47::shell {
namespace {

constexpr Bilingual kEnded{"ended by %1: %2", "terminato da %1: %2"};

}  // namespace

void tell_end(const Said& how_far, const Texts& texts) {
    const QString line =
        Said{kEnded, {platform::first_end_signal_name(), how_far.in(texts)}}.in(texts);
    std::fprintf(stderr, "m47-remote: %s\n", on_one_line(line).toLocal8Bit().constData());
}

}  // namespace m47::shell
