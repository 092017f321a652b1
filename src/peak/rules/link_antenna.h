// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "antenna.h"
#include "link.h"
#include "reading.h"
#include "unit_watch.h"

namespace m47::peak {

/// What the meter has said with the shaft at a place.
struct Taken {
    int steps = 0;  ///< of the shaft, east of where it stood first
    measurement::Quantity quantity = measurement::Quantity::level;
    measurement::Reading reading;
};

/// The dish behind the meter on the line, where the meter is tuned already. The meter does not tell
/// when the motor has turned, so that is waited for. A drive is sent once: what was repeated could
/// turn the dish twice.
class LinkAntenna : public Antenna {
  public:
    explicit LinkAntenna(link::Link& link) : link_(link), unit_(link) {}

    /// Told of each reading as it comes.
    std::function<void(const Taken& taken)> on_reading;

    bool drive(int steps) override;
    void stop() noexcept override;
    std::optional<double> level() override;
    /// Takes six seconds, and leaves the meter in its measuring mode, without attenuation until the
    /// next level.
    std::optional<double> mer() override;
    bool unit_changed() override { return strayed_ || unit_.changed(); }
    bool strayed() const override { return strayed_; }

    /// Levels come from here on: their unit is the one that the meter told last.
    void begin() { unit_.begin(); }

    /// The meter has taken the last stop of the motor.
    bool stopped() const { return stopped_; }
    /// Steps that the shaft has turned east of where it stood first; nothing where a drive was not
    /// surely taken.
    std::optional<int> place() const { return unsure_ ? std::nullopt : std::optional(shaft_); }
    /// The command that the meter refused, which ended the link before the motor was stopped or
    /// with that; else empty.
    const QString& refused() const { return refused_; }

  private:
    std::optional<measurement::Reading> ask_level();
    std::optional<measurement::Reading> ask_mer();
    void tell(measurement::Quantity quantity, const measurement::Reading& reading) const;

    link::Link& link_;
    link::UnitWatch unit_;
    int shaft_ = 0;
    bool strayed_ = false;
    bool attenuated_ = false;
    bool stopped_ = false;
    bool unsure_ = false;
    QString refused_;
};

}  // namespace m47::peak
