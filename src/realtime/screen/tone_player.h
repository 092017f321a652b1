// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioSink>
#include <memory>

namespace m47 {

/// Plays a tone for each measurement on the desktop's sound device. Sound is short and ends by
/// itself: no tone goes on for a value that is old.
class TonePlayer {
  public:
    /// True when there is a device to play on.
    bool open();
    void close() { sink_.reset(); }
    /// Plays the tone of `level` dBuV; nothing where no device is open.
    void play(double level);

  private:
    std::unique_ptr<QAudioSink> sink_;
};

}  // namespace m47
