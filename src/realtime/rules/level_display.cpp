// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_display.h"

#include "program_state.h"
#include "trend_reading.h"

namespace m47 {
namespace {

constexpr Bilingual kLevelMeasuring{"Measuring…", "Misura in corso…"};
constexpr Bilingual kLevelNoLink{"The meter is not connected", "Lo strumento non è collegato"};
constexpr Bilingual kLevelNone{"No measurement yet", "Ancora nessuna misura"};
constexpr Bilingual kLevelNow{"Measured %1 s ago", "Misurato %1 s fa"};
constexpr Bilingual kLevelOld{"OLD: measured %1 ago", "VECCHIO: misurato %1 fa"};

Reading reading_of_level(const QString& level) {
    return reading_of(Quantity::level, level.toLatin1().toStdString());
}

QString span_text(int seconds) {
    if (seconds < 60) return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return QStringLiteral("%1:%2 min").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
    return QStringLiteral("%1 h").arg(seconds / 3600);
}

QString name_of(const LevelMeasurement& of) {
    QStringList parts;
    if (!of.plan.isEmpty()) parts += of.plan;
    if (!of.program.isEmpty()) parts += of.program;
    parts += of.frequency + QStringLiteral(" MHz");
    return parts.join(QStringLiteral("  ·  "));
}

}  // namespace

void LevelDisplay::measured(const LevelMeasurement& measurement, double now) {
    last_ = measurement;
    at_ = now;
    running_ = false;
}

bool LevelDisplay::live(double now, bool linked) const {
    return last_ && linked && !running_ && now - at_ <= kLiveSeconds;
}

std::optional<double> LevelDisplay::dbuv() const {
    if (!last_) return {};
    const Reading reading = reading_of_level(last_->level);
    if (!reading.measured()) return {};
    return static_cast<double>(reading.value) + unit_offset(last_->unit);
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
    const Reading reading = reading_of_level(last_->level);
    picture.value = reading.measured() ? last_->level.trimmed() : QStringLiteral("—");
    picture.unit = unit_name(last_->unit);
    picture.name = name_of(*last_);
    picture.verdict = last_->verdict;
    if (!live(now, linked)) return picture;
    picture.colour = LevelColour::live;
    if (last_->verdict == QLatin1String("PASS")) picture.colour = LevelColour::pass;
    if (last_->verdict == QLatin1String("FAIL")) picture.colour = LevelColour::fail;
    return picture;
}

}  // namespace m47
