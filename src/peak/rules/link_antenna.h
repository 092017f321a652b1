// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "antenna.h"
#include "link.h"

namespace m47::peak {

/// The dish behind the meter on the line, where the meter is tuned already. The meter does not tell
/// when the motor has turned, so that is waited for.
class LinkAntenna : public Antenna {
  public:
    explicit LinkAntenna(link::Link& link) : link_(link) {}

    bool drive(int steps) override;
    void stop() noexcept override;
    std::optional<double> level() override;
    /// Takes six seconds, and leaves the meter in its measuring mode, without attenuation until the
    /// next level.
    std::optional<double> mer() override;

  private:
    link::Link& link_;
    bool attenuated_ = false;
};

}  // namespace m47::peak
