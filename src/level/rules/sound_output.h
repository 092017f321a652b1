// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QtPlugin>

namespace m47::level {

/// A sound device of the desktop. The libraries behind it are many and large and few need them, so
/// that it is loaded when the first tone is asked for.
class SoundOutput {
  public:
    virtual ~SoundOutput() = default;

    /// Prepares the device for tones of at most `seconds`, mono, 16 bits a sample, `rate` samples a
    /// second. False when there is no device, or none that can play these.
    virtual bool open(int rate, double seconds) = 0;
    virtual void close() = 0;
    /// Plays `samples` in the byte order of this machine, in place of what is still being played.
    virtual void play(const QByteArray& samples) = 0;
};

}  // namespace m47::level

#define M47_SOUND_OUTPUT "org.m47remote.SoundOutput/1"
Q_DECLARE_INTERFACE(m47::level::SoundOutput, M47_SOUND_OUTPUT)
