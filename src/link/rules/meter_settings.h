// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <map>
#include <optional>

namespace m47::link {

/// How the meter is set as far as the line has shown: what it was told last, or said when it was
/// asked. A reading holds by these, not by what a screen has in its boxes.
class MeterSettings {
  public:
    /// Takes in `command`, which the meter has answered with `answer`.
    void take(const QString& command, const QString& answer);

    /// Nobody knows whether the meter has done `command`: what it sets is no longer known.
    void doubt(const QString& command);

    /// Another meter may be on the line: nothing is known of it.
    void forget() { *this = MeterSettings(); }

    /// Index of the level unit (0 to 2); nothing where it is not known.
    std::optional<int> unit() const { return unit_; }
    /// MHz; nothing where it is not known.
    std::optional<double> frequency() const { return frequency_; }
    /// The local oscillator in use, MHz; nothing where there is none or its frequency is not known.
    std::optional<double> oscillator() const { return oscillator_; }

  private:
    void take_oscillator(const QString& argument);
    void take_answered_oscillator(const QString& answer);

    std::optional<int> unit_;
    std::optional<double> frequency_;
    std::optional<double> oscillator_;
    std::map<int, double> stored_;  ///< MHz, by the number of the oscillator
};

}  // namespace m47::link
