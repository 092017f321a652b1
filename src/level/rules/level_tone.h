// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace m47::level {

/// A short tone whose pitch follows the level, for somebody who turns a dish and cannot look: 10 dB
/// are an octave, so that half a dB is clearly heard.
class LevelTone {
  public:
    static constexpr int kSampleRate = 44100;  ///< samples a second, mono, 16 bits each
    static constexpr double kLowestHz = 110;
    static constexpr double kHighestHz = 3520;

    /// The pitch of `level` dBuV in Hz: 440 at 60 dBuV, within kLowestHz to kHighestHz.
    static double pitch(double level);

    /// `seconds` of a tone of `hertz` as samples in the byte order of this machine. It swells and
    /// fades, so that no click is heard at its ends.
    static QByteArray samples(double hertz, double seconds);
};

}  // namespace m47::level
