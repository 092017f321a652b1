// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

int main(int argc, char** argv) {
    return m47::probe::run_probe(argc, argv);
}
