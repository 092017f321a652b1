// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::probe {

/// Measures as its command line says, with nobody at a screen and without what screens take;
/// returns the exit status.
int run_probe(int argc, char** argv);

}  // namespace m47::probe
