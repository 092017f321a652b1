// SPDX-License-Identifier: GPL-3.0-or-later
#include "tone_player.h"

#include <QCoreApplication>
#include <QDir>
#include <utility>

#include "level_tone.h"

namespace m47::level {
namespace {

constexpr double kToneSeconds = 0.4;

/// The first of `folders` that has the part, or the last, which a fault then names.
QString sound_path(const QStringList& folders) {
    QString path;
    for (const QString& folder : folders) {
        path = folder + QStringLiteral("/libm47-sound.so");
        if (QFile::exists(path)) break;
    }
    return path;
}

}  // namespace

TonePlayer::TonePlayer(const QStringList& folders) : folders_(folders) {}

TonePlayer::~TonePlayer() {
    close();
}

QStringList TonePlayer::sound_folders() {
    const QDir program(QCoreApplication::applicationDirPath());
    return {program.filePath(QStringLiteral("plugins")),
            QDir::cleanPath(program.filePath(QStringLiteral(M47_PLUGIN_FOLDER)))};
}

SoundOutput* TonePlayer::output() {
    // The loader forgets the name of a file that it does not find.
    const QString path = sound_path(folders_);
    if (loader_.fileName().isEmpty()) loader_.setFileName(path);
    auto* output = qobject_cast<SoundOutput*>(loader_.instance());
    fault_ = output ? QString() : path;
    return output;
}

bool TonePlayer::open() {
    SoundOutput* const sound = output();
    const bool ready = sound && sound->open(LevelTone::kSampleRate, kToneSeconds);
    open_ = ready ? sound : nullptr;
    return ready;
}

void TonePlayer::close() {
    if (SoundOutput* const sound = std::exchange(open_, nullptr)) sound->close();
}

void TonePlayer::play(double level) {
    if (open_) open_->play(LevelTone::samples(LevelTone::pitch(level), kToneSeconds));
}

}  // namespace m47::level
