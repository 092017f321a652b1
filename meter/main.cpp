// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

#include "device_link.h"
#include "instrument.h"
#include "options.h"
#include "pty_line.h"
#include "replay.h"
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

int serve(const meter::Options& options, meter::Responder& responder) {
    meter::Trace trace;
    if (!trace.open(options.trace, "m47-meter " METER_VERSION))
        return complain("cannot write " + options.trace, kStatusFailed);
    // Before the device path is announced: who reads it may end the meter at once.
    meter::listen_to_signals();
    meter::PtyLine line;
    meter::DeviceLink link;
    if (!options.link.empty()) link.create(options.link, line.path());
    std::printf("%s\n", line.path().c_str());
    std::fflush(stdout);
    meter::Server(options, line, link, responder, trace).run();
    return 0;
}

int replay(const meter::Options& options) {
    std::error_code ignored;
    if (std::filesystem::equivalent(options.replay, options.trace, ignored))
        return complain("--replay and --trace name the same file: " + options.trace, kStatusUsage);
    std::ifstream file;
    // A folder can be opened, and a pipe waits for its other end and cannot be sought in.
    if (std::filesystem::is_regular_file(options.replay, ignored))
        file.open(options.replay, std::ios::binary);
    if (!file.is_open())
        return complain("cannot read the recording " + options.replay, kStatusFailed);
    meter::Replay replay(file, options.speed, options.strict);
    if (!replay.fault().empty())
        return complain(options.replay + " " + replay.fault(), kStatusFailed);
    if (!replay.remark().empty()) complain(options.replay + ": " + replay.remark(), 0);
    const int status = serve(options, replay);
    std::fputs(replay.never_recorded().c_str(), stderr);
    return status;
}

int simulate(const meter::Options& options) {
    meter::Instrument instrument(options);
    return serve(options, instrument);
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
        return options.replay.empty() ? simulate(options) : replay(options);
    } catch (const std::exception& failure) {
        return complain(failure.what(), kStatusFailed);
    }
}
