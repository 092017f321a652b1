// SPDX-License-Identifier: GPL-3.0-or-later
#include "link_antenna.h"

#include <cstdlib>

#include "commands.h"
#include "fault.h"
#include "measure_replies.h"
#include "numbers.h"
#include "qpsk_mode.h"
#include "reading.h"
#include "work.h"

namespace m47::peak {
namespace {

constexpr double kStepsPerSecond = 15;
constexpr double kUntilItStands = 0.5;
constexpr double kAfterAttenuator = 1;

QString drive_command(int steps) {
    const QString& word = link::command::kDiseqcMotor;
    const QString direction = steps > 0 ? QStringLiteral(" 08 ") : QStringLiteral(" 09 ");
    return word + direction + link::format_number(std::abs(steps), "00") + QStringLiteral(" 01");
}

/// What `asked` gives; nothing where an answer is doubtful.
template <typename Asked>
std::optional<measurement::Reading> sure(Asked asked) {
    try {
        return asked();
    } catch (const DoubtfulAnswer&) {
        return std::nullopt;
    }
}

}  // namespace

bool LinkAntenna::drive(int steps) {
    if (!link_.can_send()) return false;
    unsure_ = link_.ask_once(drive_command(steps)) != QStringLiteral("OK");
    if (unsure_) return false;
    shaft_ += steps;
    link_.wait_time(std::abs(steps) / kStepsPerSecond + kUntilItStands);
    return true;
}

void LinkAntenna::stop() noexcept {
    // The next command takes it away.
    refused_ = link_.refused();
    const link::InOrder in_order(link_);
    stopped_ = link_.can_send() &&
               link::send_at_the_end(link_, link::command::kDiseqcMotor + QStringLiteral(" 00"));
    if (refused_.isEmpty()) refused_ = link_.refused();
}

std::optional<double> LinkAntenna::level() {
    if (strayed_ || !link_.can_send()) return std::nullopt;
    const link::Measuring measuring(link_);
    const auto reading = sure([this] { return ask_level(); });
    if (!reading || !reading->measured()) return std::nullopt;
    strayed_ = unit_.changed_at(reading->value);
    if (strayed_) return std::nullopt;
    tell(measurement::Quantity::level, *reading);
    // Beyond the range the reading stands still, which looks like a summit.
    if (reading->mark == measurement::RangeMark::above) return std::nullopt;
    return reading->value;
}

std::optional<measurement::Reading> LinkAntenna::ask_level() {
    if (!attenuated_) {
        if (!link_.send(link::command::kFullAttenuation)) return std::nullopt;
        link_.wait_time(kAfterAttenuator);
        attenuated_ = true;
    }
    const auto answer = link_.ask(link::command::query(link::command::kLevel));
    if (!answer) return std::nullopt;
    return measurement::reading_of(measurement::Quantity::level, link::trimmed_from(*answer, 2));
}

std::optional<double> LinkAntenna::mer() {
    if (!link_.can_send()) return std::nullopt;
    const link::Measuring measuring(link_);
    attenuated_ = false;
    const auto reading = sure([this] { return ask_mer(); });
    if (!reading || !reading->measured()) return std::nullopt;
    tell(measurement::Quantity::mer, *reading);
    if (reading->value <= link::kNoLockMer) return std::nullopt;
    return reading->value;
}

std::optional<measurement::Reading> LinkAntenna::ask_mer() {
    link_.send(link::command::kAttenuator + QStringLiteral(" 00"));
    link::QpskMode mode(link_);
    mode.enter();
    const auto answer = mode.ask();
    const auto text = answer ? link::labelled(link::kMerLabel, *answer) : std::nullopt;
    if (!text) return std::nullopt;
    return measurement::reading_of(measurement::Quantity::mer, *text);
}

void LinkAntenna::tell(measurement::Quantity quantity, const measurement::Reading& reading) const {
    if (on_reading) on_reading({shaft_, quantity, reading});
}

}  // namespace m47::peak
