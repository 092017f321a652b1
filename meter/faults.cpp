// SPDX-License-Identifier: GPL-3.0-or-later
#include "faults.h"

#include <algorithm>
#include <array>

#include "text.h"

namespace meter {

namespace {

constexpr std::size_t kEndOfAnswer = 3;  // "OK" and CR

std::string echo(const FaultContext& context) {
    return context.line + "\r";
}

void answer_error(Delivery& delivery, const FaultContext& context) {
    delivery.bytes = echo(context) + "ERROR\r";
}

void answer_command_error(Delivery& delivery, const FaultContext& context) {
    delivery.bytes = echo(context) + "COMMAND ERROR\r";
}

void keep_silent(Delivery& delivery, const FaultContext&) {
    delivery.bytes.clear();
}

void send_garbage(Delivery& delivery, const FaultContext& context) {
    delivery.bytes.clear();
    const std::size_t length = 16 + context.noise.below(17);
    for (std::size_t i = 0; i < length; ++i) delivery.bytes += context.noise.line_noise();
}

void cut_answer(Delivery& delivery, const FaultContext& context) {
    const std::size_t echoed = echo(context).size();
    delivery.bytes.resize(echoed + (delivery.bytes.size() - echoed) / 2);
}

void come_late(Delivery& delivery, const FaultContext& context) {
    delivery.wait_seconds = context.late_seconds;
}

void fall_asleep(Delivery& delivery, const FaultContext&) {
    delivery.bytes.clear();
    delivery.falls_asleep = true;
}

void drop_line(Delivery& delivery, const FaultContext& context) {
    cut_answer(delivery, context);
    delivery.ending = Ending::close_line;
}

void unplug(Delivery& delivery, const FaultContext&) {
    delivery.ending = Ending::unplug;
}

void leave_out_echo(Delivery& delivery, const FaultContext& context) {
    delivery.bytes.erase(0, echo(context).size());
}

void spoil_echo(Delivery& delivery, const FaultContext& context) {
    const std::size_t at = context.noise.below(context.line.size());
    delivery.bytes[at] = delivery.bytes[at] == '#' ? '*' : '#';
}

void add_noise(Delivery& delivery, const FaultContext& context) {
    for (int i = 0; i < 3; ++i) {
        const std::size_t room = delivery.bytes.size() - kEndOfAnswer + 1;
        const auto at = static_cast<std::ptrdiff_t>(context.noise.below(room));
        delivery.bytes.insert(delivery.bytes.begin() + at, context.noise.line_noise());
    }
}

void spoil_record(Delivery& delivery, const FaultContext& context) {
    std::vector<std::size_t> digits;
    const std::string& bytes = delivery.bytes;
    const std::string mark = "\rS1";
    for (auto at = bytes.find(mark); at != std::string::npos; at = bytes.find(mark, at + 1))
        for (auto digit = at + mark.size(); digit < bytes.find('\r', at + 1); ++digit)
            digits.push_back(digit);
    if (!digits.empty()) {
        char& digit = delivery.bytes[digits[context.noise.below(digits.size())]];
        digit = digit == '0' ? '1' : '0';
    }
}

void trickle(Delivery& delivery, const FaultContext& context) {
    delivery.bytes = echo(context);
    delivery.ending = Ending::trickle;
}

void never_end(Delivery& delivery, const FaultContext& context) {
    delivery.bytes = echo(context);
    delivery.ending = Ending::endless;
}

constexpr std::array kKinds{
    FaultKind{"error", "answers ERROR", false, answer_error},
    FaultKind{"commanderror", "answers COMMAND ERROR", false, answer_command_error},
    FaultKind{"silence", "sends nothing", false, keep_silent},
    FaultKind{"garbage", "sends random bytes instead of the answer", false, send_garbage},
    FaultKind{"partial", "sends the echo and half of what follows", true, cut_answer},
    FaultKind{"late", "sends the answer late (--late)", true, come_late},
    FaultKind{"asleep", "ignores everything until a lone CR arrives", false, fall_asleep},
    FaultKind{"drop", "closes the line in the middle of the answer", true, drop_line},
    FaultKind{"unplug", "closes the line behind a good answer", true, unplug},
    FaultKind{"noecho", "answers without the echo", true, leave_out_echo},
    FaultKind{"wrongecho", "spoils one character of the echo", true, spoil_echo},
    FaultKind{"noise", "mixes three noise bytes into a good answer", true, add_noise},
    FaultKind{"badrecord", "spoils one digit of an S-record in the answer", true, spoil_record},
    FaultKind{"trickle", "sends a byte now and then, never OK", false, trickle},
    FaultKind{"endless", "sends bytes at full speed, never OK", false, never_end},
};

}  // namespace

std::span<const FaultKind> fault_kinds() {
    return kKinds;
}

std::optional<Fault> parse_fault(std::string_view text) {
    const auto colon = text.find(':');
    const auto name = text.substr(0, colon);
    const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                    [&](const FaultKind& kind) { return kind.name == name; });
    if (found == kKinds.end()) return std::nullopt;
    Fault fault{&*found, std::nullopt};
    if (colon != std::string_view::npos) {
        fault.remaining = whole_number(text.substr(colon + 1), 1, 999999999);
        if (!fault.remaining) return std::nullopt;
    }
    return fault;
}

FaultPlan::FaultPlan(std::vector<Fault> faults, int after, std::string on)
    : faults_(std::move(faults)), after_(after), on_(std::move(on)) {}

const FaultKind* FaultPlan::next(std::string_view line) {
    if (line.find(on_) == std::string_view::npos) return nullptr;
    if (after_ > 0) {
        --after_;
        return nullptr;
    }
    for (Fault& fault : faults_) {
        if (!fault.remaining) return fault.kind;
        if (*fault.remaining > 0) {
            --*fault.remaining;
            return fault.kind;
        }
    }
    return nullptr;
}

}  // namespace meter
