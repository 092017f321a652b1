// SPDX-License-Identifier: GPL-3.0-or-later
#include "tone_player.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QMediaDevices>

#include "level_tone.h"

namespace m47 {
namespace {

constexpr double kToneSeconds = 0.4;

}  // namespace

TonePlayer::TonePlayer() = default;

TonePlayer::~TonePlayer() = default;

bool TonePlayer::device_present() {
    return !QMediaDevices::defaultAudioOutput().isNull();
}

void TonePlayer::close() {
    sink_.reset();
}

bool TonePlayer::open() {
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) return false;
    QAudioFormat format;
    format.setSampleRate(LevelTone::kSampleRate);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Int16);
    if (!device.isFormatSupported(format)) return false;
    sink_ = std::make_unique<QAudioSink>(device, format);
    // The whole tone goes to the device at once: nobody feeds it while the meter is waited for.
    sink_->setBufferSize(format.bytesForDuration(static_cast<qint64>(kToneSeconds * 2e6)));
    return true;
}

void TonePlayer::play(double level) {
    if (!sink_) return;
    sink_->reset();
    if (QIODevice* device = sink_->start())
        device->write(LevelTone::samples(LevelTone::pitch(level), kToneSeconds));
}

}  // namespace m47
