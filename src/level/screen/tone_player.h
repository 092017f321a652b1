// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

class QAudioSink;

namespace m47 {

/// Plays a tone for each measurement on the desktop's sound device. Sound is short and ends by
/// itself: no tone goes on for a value that is old.
class TonePlayer {
  public:
    TonePlayer();
    ~TonePlayer();

    /// True when the desktop has a sound device.
    static bool device_present();

    /// True when there is a device to play on.
    bool open();
    void close();
    /// Plays the tone of `level` dBuV; nothing where no device is open.
    void play(double level);

  private:
    std::unique_ptr<QAudioSink> sink_;
};

}  // namespace m47
