// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include "part.h"
#include "sound_output.h"

namespace m47::level {

/// Plays a tone for each measurement on the desktop's sound device. Sound is short and ends by
/// itself: no tone goes on for a value that is old.
class TonePlayer {
  public:
    /// `folders` are searched for the part of the program that knows the device.
    explicit TonePlayer(const QStringList& folders = Part::usual_folders());
    ~TonePlayer();
    TonePlayer(const TonePlayer&) = delete;
    TonePlayer& operator=(const TonePlayer&) = delete;

    /// True when there is a device to play on.
    bool open();
    void close();
    static constexpr double kSeconds = 0.4;        ///< of the tone of a measurement
    static constexpr double kBriefSeconds = 0.12;  ///< of one among many a second
    static constexpr double kChimeSeconds = 0.3;   ///< of the chime

    /// Plays the tone of `level` dBuV for `seconds`, kSeconds at most; nothing where no device is
    /// open.
    void play(double level, double seconds = kSeconds);

    /// Plays two rising notes, for a new peak; nothing where no device is open.
    void chime();

    /// The file of that part where it could not be loaded; empty when it was, or was not needed
    /// yet.
    const QString& fault() const { return part_.fault(); }

  private:
    Part part_;
    SoundOutput* open_ = nullptr;  ///< the device while it is open
};

}  // namespace m47::level
