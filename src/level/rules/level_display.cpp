// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_display.h"

namespace m47::level {
namespace {

constexpr Bilingual kLevelMeasuring{"Measuring…", "Misura in corso…"};
constexpr Bilingual kLevelNoLink{"The meter is not connected", "Lo strumento non è collegato"};
constexpr Bilingual kLevelNone{"No measurement yet", "Ancora nessuna misura"};
constexpr Bilingual kLevelNow{"Measured %1 s ago", "Misurato %1 s fa"};
constexpr Bilingual kLevelOld{"OLD: measured %1 ago", "VECCHIO: misurato %1 fa"};

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
    last_ = measurement;
    at_ = now;
    running_ = false;
}

bool LevelDisplay::live(double now, bool linked) const {
    return last_ && linked && !running_ && now - at_ <= kLiveSeconds;
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
    if (!last_) return texts.pick(kLevelNone);
    const int seconds = static_cast<int>(now - at_);
    if (live(now, linked)) return texts.pick(kLevelNow).arg(seconds);
    return texts.pick(kLevelOld).arg(span_text(seconds));
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
    if (!live(now, linked)) return picture;
    picture.colour = LevelColour::live;
    if (last_->verdict == measurement::Verdict::pass) picture.colour = LevelColour::pass;
    if (last_->verdict == measurement::Verdict::fail) picture.colour = LevelColour::fail;
    return picture;
}

}  // namespace m47::level
