// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>
#include <exception>
#include <string>
#include <variant>
#include <vector>

#include "device_link.h"
#include "instrument.h"
#include "options.h"
#include "pty_line.h"
#include "server.h"
#include "signals.h"
#include "trace.h"

namespace {

constexpr int kStatusFailed = 1;
constexpr int kStatusUsage = 2;

int complain(const std::string& text, int status) {
    std::fprintf(stderr, "m47-meter: %s\n", text.c_str());
    return status;
}

int serve(const meter::Options& options) {
    meter::Trace trace;
    if (!trace.open(options.trace)) return complain("cannot write " + options.trace, kStatusFailed);
    meter::Instrument instrument(options);
    // Before the device path is announced: who reads it may end the meter at once.
    meter::listen_to_signals();
    meter::PtyLine line;
    meter::DeviceLink link;
    if (!options.link.empty()) link.create(options.link, line.path());
    std::printf("%s\n", line.path().c_str());
    std::fflush(stdout);
    meter::Server(options, line, instrument, trace).run();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const auto parsed = meter::parse_options({argv + 1, argv + argc});
        if (const auto* complaint = std::get_if<std::string>(&parsed))
            return complain(*complaint + " (try --help)", kStatusUsage);
        const auto& options = std::get<meter::Options>(parsed);
        if (options.help) {
            std::fputs(meter::help_text().c_str(), stdout);
            return 0;
        }
        if (options.version) {
            std::puts("m47-meter " METER_VERSION);
            return 0;
        }
        return serve(options);
    } catch (const std::exception& failure) {
        return complain(failure.what(), kStatusFailed);
    }
}
