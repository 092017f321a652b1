// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::shell {

/// Runs the program with its command line; returns its exit status.
int run_program(int argc, char** argv);

}  // namespace m47::shell
