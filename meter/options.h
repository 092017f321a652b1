// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "faults.h"
#include "sky_options.h"

namespace meter {

/// The command line, with the values that hold when nothing is said.
struct Options {
    std::string link;
    std::string version_text = "V3.1.0 PLUS";
    std::optional<std::size_t> logger_bytes;
    bool no_satellites = false;
    std::uint64_t seed = 1;
    double baud_factor = 1.0;
    double delay_ms = 2.0;
    std::vector<Fault> faults;
    int fault_after = 0;
    std::string fault_on;
    double late_seconds = 3.0;
    SkyOptions sky;
    std::string trace;
    std::string state;
    bool help = false;
    bool version = false;
};

/// Reads the arguments (program name left out); the text of the complaint when they are wrong.
std::variant<Options, std::string> parse_options(const std::vector<std::string>& arguments);

/// The text of --help.
std::string help_text();

}  // namespace meter
