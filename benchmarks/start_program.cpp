// SPDX-License-Identifier: GPL-3.0-or-later
// The program as it is, but for ending at its first painted window.
#include "application.h"

int main(int argc, char** argv) {
    return m47::shell::run_program(argc, argv);
}
