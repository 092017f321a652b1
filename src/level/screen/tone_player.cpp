// SPDX-License-Identifier: GPL-3.0-or-later
#include "tone_player.h"

#include <utility>

#include "level_tone.h"

namespace m47::level {
TonePlayer::TonePlayer(const QStringList& folders) : part_("m47-sound", folders) {}

TonePlayer::~TonePlayer() {
    close();
}

bool TonePlayer::open() {
    auto* const sound = part_.offer<SoundOutput>();
    const bool ready = sound && sound->open(LevelTone::kSampleRate, kSeconds);
    open_ = ready ? sound : nullptr;
    return ready;
}

void TonePlayer::close() {
    if (SoundOutput* const sound = std::exchange(open_, nullptr)) sound->close();
}

void TonePlayer::play(double level, double seconds) {
    if (open_) open_->play(LevelTone::samples(LevelTone::pitch(level), seconds));
}

void TonePlayer::chime() {
    // A fourth, high above where most levels sound.
    constexpr double kFirstHz = 1568;
    constexpr double kSecondHz = 2093;
    if (open_)
        open_->play(LevelTone::samples(kFirstHz, kChimeSeconds / 3) +
                    LevelTone::samples(kSecondHz, kChimeSeconds * 2 / 3));
}

}  // namespace m47::level
