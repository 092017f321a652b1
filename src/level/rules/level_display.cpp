// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_display.h"

#include <algorithm>
#include <cmath>

namespace m47::level {
namespace {

constexpr Bilingual kLevelMeasuring{"Measuring…", "Misura in corso…"};
constexpr Bilingual kLevelNoLink{"The meter is not connected", "Lo strumento non è collegato"};
constexpr Bilingual kLevelNone{"No measurement yet", "Ancora nessuna misura"};
constexpr Bilingual kLevelNow{"Measured %1 s ago", "Misurato %1 s fa"};
constexpr Bilingual kLevelOld{"OLD: measured %1 ago", "VECCHIO: misurato %1 fa"};
constexpr Bilingual kLevelRepeated{"Level alone, repeated", "Solo il livello, ripetuto"};
constexpr Bilingual kLevelBroken{"OLD: no level for %1", "VECCHIO: nessun livello da %1"};
constexpr Bilingual kPeak{"Peak %1 %2", "Massimo %1 %2"};

// What the meter can read, in dBuV.
constexpr double kBarFrom = 20;
constexpr double kBarTo = 120;

double on_bar(double dbuv) {
    return std::clamp((dbuv - kBarFrom) / (kBarTo - kBarFrom), 0.0, 1.0);
}

/// Values of two programs, or of two presentations, have no peak in common.
bool same_signal(const measurement::Measurement& one, const measurement::Measurement& other) {
    return one.program == other.program && one.mode == other.mode &&
           one.frequency == other.frequency && one.oscillator == other.oscillator;
}

QString span_text(int seconds) {
    if (seconds < 60) return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return QStringLiteral("%1:%2 min").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
    return QStringLiteral("%1 h").arg(seconds / 3600);
}

QString name_of(const measurement::Measurement& of) {
    QStringList parts;
    if (!of.program.plan.isEmpty()) parts += of.program.plan;
    if (!of.program.number.isEmpty()) parts += of.program.number;
    if (of.frequency) parts += measurement::frequency_text(*of.frequency) + QStringLiteral(" MHz");
    return parts.join(QStringLiteral("  ·  "));
}

}  // namespace

void LevelDisplay::measured(const measurement::Measurement& measurement, double now) {
    if (last_ && !same_signal(*last_, measurement)) forget_peak();
    last_ = measurement;
    at_ = now;
    running_ = false;
    hold_peak();
}

void LevelDisplay::hold_peak() {
    const std::optional<double> level = dbuv();
    if (level) peak_ = std::max(peak_.value_or(*level), *level);
}

void LevelDisplay::repeats(bool on) {
    repeating_ = on;
    if (on) forget_peak();
}

bool LevelDisplay::live(double now, bool linked) const {
    const double limit = repeating_ ? kRepeatedSeconds : kLiveSeconds;
    return last_ && linked && !running_ && now - at_ <= limit;
}

std::optional<double> LevelDisplay::dbuv() const {
    if (!last_) return {};
    const measurement::Reading& reading = last_->reading(measurement::Quantity::level);
    if (!reading.measured()) return {};
    return static_cast<double>(reading.value) + unit_offset(last_->unit.value_or(kDbuv));
}

QString LevelDisplay::age_text(double now, bool linked, const Texts& texts) const {
    if (!linked) return texts.pick(kLevelNoLink);
    if (running_) return texts.pick(kLevelMeasuring);
    if (repeating_) return repeated_text(now, texts);
    if (!last_) return texts.pick(kLevelNone);
    const int seconds = static_cast<int>(now - at_);
    if (live(now, linked)) return texts.pick(kLevelNow).arg(seconds);
    return texts.pick(kLevelOld).arg(span_text(seconds));
}

QString LevelDisplay::repeated_text(double now, const Texts& texts) const {
    if (live(now, true)) return texts.pick(kLevelRepeated);
    if (!last_) return texts.pick(kLevelMeasuring);
    return texts.pick(kLevelBroken).arg(span_text(static_cast<int>(now - at_)));
}

LevelPicture LevelDisplay::picture(double now, bool linked, const Texts& texts) const {
    LevelPicture picture;
    picture.age = age_text(now, linked, texts);
    if (!last_) {
        picture.value = QStringLiteral("—");
        return picture;
    }
    const measurement::Reading& reading = last_->reading(measurement::Quantity::level);
    picture.value = reading.measured()
                        ? measurement::reading_text(measurement::Quantity::level, reading)
                        : QStringLiteral("—");
    picture.unit = measurement::unit_text(last_->unit);
    picture.name = name_of(*last_);
    picture.verdict = measurement::verdict_text(last_->verdict);
    if (const std::optional<double> level = dbuv()) picture.bar = on_bar(*level);
    if (peak_) {
        const double shown = *peak_ - unit_offset(last_->unit.value_or(kDbuv));
        picture.bar_peak = on_bar(*peak_);
        picture.peak =
            texts.pick(kPeak).arg(QString::number(shown, 'f', 1), picture.unit).trimmed();
    }
    if (!live(now, linked)) return picture;
    picture.colour = LevelColour::live;
    if (last_->verdict == measurement::Verdict::pass) picture.colour = LevelColour::pass;
    if (last_->verdict == measurement::Verdict::fail) picture.colour = LevelColour::fail;
    return picture;
}

}  // namespace m47::level
