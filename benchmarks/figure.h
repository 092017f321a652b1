// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>

namespace bench {

/// Prints a line of the table of benchmarks: what was measured, its ratio to the floor or peer
/// `against`, and the most that is wanted.
inline void print_figure(const char* what, double ratio, double target, const char* against) {
    std::printf("figure\t%s\t%.3f\t%.2f\t%s\n", what, ratio, target, against);
}

}  // namespace bench
