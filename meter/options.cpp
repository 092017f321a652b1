// SPDX-License-Identifier: GPL-3.0-or-later
#include "options.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "text.h"

namespace meter {

namespace {

constexpr int kLargestCount = 999999999;

/// One option; `take` stores its value and says whether the value was good.
struct Option {
    std::string_view name;
    std::string_view value_name;  ///< empty for an option without a value
    std::string_view help;
    bool (*take)(Options& options, const std::string& value);
    /// Whether it makes sense without a recording, with one, or either way.
    enum class Goes { always, without_recording, with_recording } goes = Goes::always;
};

constexpr auto kSimulated = Option::Goes::without_recording;
constexpr auto kReplayed = Option::Goes::with_recording;

bool take_text(std::string& target, const std::string& value) {
    target = value;
    return !value.empty();
}

bool take_decimal(double& target, const std::string& value) {
    const auto number = decimal_number(value);
    target = number.value_or(target);
    return number.has_value();
}

bool take_count(int& target, const std::string& value) {
    const auto number = whole_number(value, 0, kLargestCount);
    target = number.value_or(target);
    return number.has_value();
}

bool take_logger_bytes(Options& options, const std::string& value) {
    int bytes = 0;
    const bool good = take_count(bytes, value);
    options.logger_bytes = static_cast<std::size_t>(bytes);
    return good;
}

bool take_seed(Options& options, const std::string& value) {
    int seed = 0;
    const bool good = take_count(seed, value);
    options.seed = static_cast<std::uint64_t>(seed);
    return good;
}

bool take_share(double& target, const std::string& value) {
    const auto percent = whole_number(value, 0, 100);
    target = percent.value_or(0);
    return percent.has_value();
}

bool take_sky(Options& options, const std::string& value) {
    options.sky.orbit = value == "orbit";
    const auto kind = sky_kind(value);
    options.sky.kind = kind.value_or(SkyKind::good);
    return options.sky.orbit || kind.has_value();
}

bool take_lnb(Options& options, const std::string& value) {
    const auto lnb = lnb_of_name(value);
    if (lnb) options.sky.lnb = *lnb;
    return lnb.has_value();
}

bool take_dish(Options& options, const std::string& value) {
    const auto centimetres = whole_number(value, 30, 1000);
    if (centimetres) options.sky.chance.dish_cm = *centimetres;
    return centimetres.has_value();
}

bool take_backlash(Options& options, const std::string& value) {
    const auto steps = whole_number(value, 0, kMostBacklash);
    options.sky.backlash = steps.value_or(0);
    return steps.has_value();
}

bool take_cn(Options& options, const std::string& value) {
    options.sky.chance.cn_db = decimal_number(value);
    return options.sky.chance.cn_db.has_value();
}

bool take_fault(Options& options, const std::string& value) {
    const auto fault = parse_fault(value);
    if (fault) options.faults.push_back(*fault);
    return fault.has_value();
}

constexpr std::array kTable{
    Option{"--link", "PATH", "make PATH a symbolic link to the device",
           [](Options& o, const std::string& v) { return take_text(o.link, v); }},
    Option{"--version-text", "TEXT", "firmware version that VER? answers",
           [](Options& o, const std::string& v) { return take_text(o.version_text, v); },
           kSimulated},
    Option{"--logger-bytes", "N", "fill the logger with about N bytes of logs", take_logger_bytes,
           kSimulated},
    Option{"--no-satellites", "", "start with all satellite slots empty",
           [](Options& o, const std::string&) { return o.no_satellites = true; }, kSimulated},
    Option{"--seed", "N", "seed of the measuring jitter and of the orbit (1)", take_seed,
           kSimulated},
    Option{"--baud-factor", "X", "answer at X times 38400 baud; 0: at once (1)",
           [](Options& o, const std::string& v) { return take_decimal(o.baud_factor, v); },
           kSimulated},
    Option{"--delay", "MS", "processing time before an answer (2)",
           [](Options& o, const std::string& v) { return take_decimal(o.delay_ms, v); },
           kSimulated},
    Option{"--fault", "KIND[:N]", "spoil the next N answers, or all; repeatable", take_fault,
           kSimulated},
    Option{"--fault-after", "M", "let M commands through well first",
           [](Options& o, const std::string& v) { return take_count(o.fault_after, v); },
           kSimulated},
    Option{"--fault-on", "TEXT", "only commands that contain TEXT count for faults",
           [](Options& o, const std::string& v) { return take_text(o.fault_on, v); }, kSimulated},
    Option{"--late", "SECONDS", "delay of the fault late (3)",
           [](Options& o, const std::string& v) { return take_decimal(o.late_seconds, v); },
           kSimulated},
    Option{"--sky", "NAME", "good, failing-lnb, off-peak, or orbit: satellites above a dish (good)",
           take_sky, kSimulated},
    Option{"--fade", "DB", "every carrier is weaker by so much, and its C/N and MER lower (0)",
           [](Options& o, const std::string& v) { return take_decimal(o.sky.fade_db, v); },
           kSimulated},
    Option{"--sky-tables", "DIR", "DVB scan tables of the orbit (/usr/share/dvb/dvb-s)",
           [](Options& o, const std::string& v) { return take_text(o.sky.tables, v); }, kSimulated},
    Option{"--dish", "CM", "diameter of the dish, 30 to 1000 (80)", take_dish, kSimulated},
    Option{"--point", "POSITION", "where the dish looks at the start (13.0E)",
           [](Options& o, const std::string& v) { return parse_position(v, o.sky.point_east); },
           kSimulated},
    Option{"--backlash", "N", "steps of play in the motor, 0 to 3 (0)", take_backlash, kSimulated},
    Option{"--lnb", "NAME", "universal, single, circular or c-band (universal)", take_lnb,
           kSimulated},
    Option{"--cn", "DB", "C/N of every satellite on the axis (by its power)", take_cn, kSimulated},
    Option{"--off-air", "PERCENT", "listed transponders that are silent (20)",
           [](Options& o, const std::string& v) {
               return take_share(o.sky.chance.off_air_percent, v);
           },
           kSimulated},
    Option{"--unlisted", "PERCENT", "transponders that no table lists (10)",
           [](Options& o, const std::string& v) {
               return take_share(o.sky.chance.unlisted_percent, v);
           },
           kSimulated},
    Option{"--drift", "MHZ", "the most that the LNB has drifted (3)",
           [](Options& o, const std::string& v) { return take_decimal(o.sky.chance.drift_mhz, v); },
           kSimulated},
    Option{
        "--weather", "DB", "the deepest fade of the satellites (1)",
        [](Options& o, const std::string& v) { return take_decimal(o.sky.chance.weather_db, v); },
        kSimulated},
    Option{"--trace", "FILE", "write every exchange to FILE",
           [](Options& o, const std::string& v) { return take_text(o.trace, v); }},
    Option{"--state", "FILE", "write the kept state to FILE on SIGUSR1 and at the end",
           [](Options& o, const std::string& v) { return take_text(o.state, v); }, kSimulated},
    Option{"--replay", "FILE", "answer as the recording FILE has it",
           [](Options& o, const std::string& v) { return take_text(o.replay, v); }},
    Option{"--speed", "X", "replay X times as fast as recorded; 0: at once (1)",
           [](Options& o, const std::string& v) { return take_decimal(o.speed, v); }, kReplayed},
    Option{"--strict", "", "replay: COMMAND ERROR to what was never recorded",
           [](Options& o, const std::string&) { return o.strict = true; }, kReplayed},
    Option{"--help", "", "show this help and end",
           [](Options& o, const std::string&) { return o.help = true; }},
    Option{"--version", "", "show the version of this program and end",
           [](Options& o, const std::string&) { return o.version = true; }},
};

const Option* find_option(std::string_view name) {
    const auto found = std::find_if(kTable.begin(), kTable.end(),
                                    [&](const Option& option) { return option.name == name; });
    return found == kTable.end() ? nullptr : &*found;
}

/// What does not go with the others; empty where all do.
std::string misplaced(const std::vector<const Option*>& given, bool recording) {
    const auto wrong = recording ? kSimulated : kReplayed;
    const std::string words = recording ? "' does not go with '--replay'" : "' needs '--replay'";
    for (const Option* option : given)
        if (option->goes == wrong) return "option '" + std::string(option->name) + words;
    return {};
}

std::string help_line(std::string_view left, std::string_view right) {
    return "  " + blank_filled(left, 24) + std::string(right) + "\n";
}

}  // namespace

std::variant<Options, std::string> parse_options(const std::vector<std::string>& arguments) {
    Options options;
    std::vector<const Option*> given;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const Option* option = find_option(name);
        if (option == nullptr) return "unknown option '" + argument + "'";
        std::string value;
        if (equals != std::string::npos) {
            if (option->value_name.empty()) return "option '" + name + "' takes no value";
            value = argument.substr(equals + 1);
        } else if (!option->value_name.empty()) {
            if (++i == arguments.size()) return "option '" + name + "' needs a value";
            value = arguments[i];
        }
        if (!option->take(options, value))
            return "bad value '" + value + "' for option '" + name + "'";
        given.push_back(option);
    }
    const std::string complaint = misplaced(given, !options.replay.empty());
    if (!complaint.empty()) return complaint;
    return options;
}

std::string help_text() {
    std::string text =
        "Usage: m47-meter [OPTION]...\n"
        "Simulates the meter on a pseudo-terminal, whose path it prints first.\n\n";
    for (const Option& option : kTable) {
        const std::string gap = option.value_name.empty() ? "" : " ";
        text +=
            help_line(std::string(option.name) + gap + std::string(option.value_name), option.help);
    }
    text += "\nKinds of fault:\n";
    for (const FaultKind& kind : fault_kinds()) text += help_line(kind.name, kind.help);
    return text;
}

}  // namespace meter
