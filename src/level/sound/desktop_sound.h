// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <memory>

#include "sound_output.h"

class QAudioSink;

namespace m47::level {

/// The desktop's own sound device.
class DesktopSound : public QObject, public SoundOutput {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_SOUND_OUTPUT)
    Q_INTERFACES(m47::level::SoundOutput)
  public:
    DesktopSound();
    ~DesktopSound() override;

    bool open(int rate, double seconds) override;
    void close() override;
    void play(const QByteArray& samples) override;

  private:
    std::unique_ptr<QAudioSink> sink_;
};

}  // namespace m47::level
