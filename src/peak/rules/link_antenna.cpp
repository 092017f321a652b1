// SPDX-License-Identifier: GPL-3.0-or-later
#include "link_antenna.h"

#include <cstdlib>

#include "commands.h"
#include "measure_replies.h"
#include "numbers.h"
#include "reading.h"

namespace m47::peak {
namespace {

constexpr double kStepsPerSecond = 15;
constexpr double kUntilItStands = 0.5;
constexpr double kAfterAttenuator = 1;
constexpr double kAfterQpsk = 5;
// What the meter gives for the MER without lock.
constexpr double kNoLockMer = 1.0;

QString drive_command(int steps) {
    const QString& word = link::command::kDiseqcMotor;
    const QString direction = steps > 0 ? QStringLiteral(" 08 ") : QStringLiteral(" 09 ");
    return word + direction + link::format_number(std::abs(steps), "00") + QStringLiteral(" 01");
}

/// Sends what the meter has to be told whatever has happened, the program's end included; without a
/// line there is nobody to tell.
void send_at_the_end(link::Link& link, const QString& command) noexcept {
    ++link.undivided;
    try {
        link.send(command);
    } catch (...) {
        // Each drive ends by itself, and the next user of the meter sets its mode.
    }
    --link.undivided;
}

/// The meter's QPSK mode, while it lives.
class QpskMode {
  public:
    explicit QpskMode(link::Link& link) : link_(link) { link_.send(link::command::kQpskQuality); }
    ~QpskMode() { send_at_the_end(link_, link::command::kMeasure); }
    QpskMode(const QpskMode&) = delete;
    QpskMode& operator=(const QpskMode&) = delete;

  private:
    link::Link& link_;
};

}  // namespace

bool LinkAntenna::drive(int steps) {
    if (!link_.send(drive_command(steps))) return false;
    link_.wait_time(std::abs(steps) / kStepsPerSecond + kUntilItStands);
    return true;
}

void LinkAntenna::stop() noexcept {
    send_at_the_end(link_, link::command::kDiseqcMotor + QStringLiteral(" 00"));
}

std::optional<double> LinkAntenna::level() {
    const link::Measuring measuring(link_);
    if (!attenuated_) {
        if (!link_.send(link::command::kFullAttenuation)) return std::nullopt;
        link_.wait_time(kAfterAttenuator);
        attenuated_ = true;
    }
    const auto answer = link_.ask(link::command::query(link::command::kLevel));
    if (!answer) return std::nullopt;
    const auto reading =
        measurement::reading_of(measurement::Quantity::level, link::trimmed_from(*answer, 2));
    // Beyond the range the reading stands still, which looks like a summit.
    if (!reading.measured() || reading.mark == measurement::RangeMark::above) return std::nullopt;
    return reading.value;
}

std::optional<double> LinkAntenna::mer() {
    const link::Measuring measuring(link_);
    attenuated_ = false;
    link_.send(link::command::kAttenuator + QStringLiteral(" 00"));
    const QpskMode mode(link_);
    link_.wait_time(kAfterQpsk);
    const auto answer = link_.ask(link::command::query(link::command::kQpskQuality));
    const QString label = QStringLiteral("MER   :");
    if (!answer || !answer->contains(label)) return std::nullopt;
    const auto reading = measurement::reading_of(measurement::Quantity::mer,
                                                 link::delete_cr(label, *answer).trimmed());
    if (!reading.measured() || reading.value <= kNoLockMer) return std::nullopt;
    return reading.value;
}

}  // namespace m47::peak
