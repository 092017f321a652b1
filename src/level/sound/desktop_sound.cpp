// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop_sound.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QMediaDevices>

namespace m47::level {

DesktopSound::DesktopSound() = default;

DesktopSound::~DesktopSound() = default;

bool DesktopSound::open(int rate, double seconds) {
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) return false;
    QAudioFormat format;
    format.setSampleRate(rate);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Int16);
    if (!device.isFormatSupported(format)) return false;
    sink_ = std::make_unique<QAudioSink>(device, format);
    // The whole tone goes to the device at once: nobody feeds it while the meter is waited for.
    sink_->setBufferSize(format.bytesForDuration(static_cast<qint64>(seconds * 2e6)));
    return true;
}

void DesktopSound::close() {
    sink_.reset();
}

void DesktopSound::play(const QByteArray& samples) {
    if (!sink_) return;
    sink_->reset();
    if (QIODevice* device = sink_->start()) device->write(samples);
}

}  // namespace m47::level
