// SPDX-License-Identifier: GPL-3.0-or-later
#include "say_on_stderr.h"

#include <cstdio>

#include "texts.h"

namespace m47::shell {

void say_on_stderr(const QString& text) {
    std::fprintf(stderr, "m47-remote: %s\n", on_one_line(text).toLocal8Bit().constData());
}

}  // namespace m47::shell
