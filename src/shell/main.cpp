// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"

int main(int argc, char** argv) {
    return m47::shell::run_program(argc, argv);
}
