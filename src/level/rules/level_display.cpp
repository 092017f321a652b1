// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_display.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "mer_margin.h"

namespace m47::level {
namespace {

constexpr Bilingual kLevelMeasuring{"Measuring…", "Misura in corso…"};
constexpr Bilingual kLevelNoLink{"The meter is not connected", "Lo strumento non è collegato"};
constexpr Bilingual kLevelNone{"No measurement yet", "Ancora nessuna misura"};
constexpr Bilingual kLevelNow{"Measured %1 s ago", "Misurato %1 s fa"};
constexpr Bilingual kLevelOld{"OLD: measured %1 ago", "VECCHIO: misurato %1 fa"};
constexpr Bilingual kNotInLast{"No value in the last measurement",
                               "Nessun valore nell'ultima misura"};
constexpr Bilingual kLevelRepeated{"Level alone, repeated", "Solo il livello, ripetuto"};
constexpr Bilingual kCnRepeated{"C/N alone, repeated", "Solo il C/N, ripetuto"};
constexpr Bilingual kMerRepeated{"MER alone, repeated", "Solo il MER, ripetuto"};
constexpr Bilingual kLevelBroken{"OLD: no level for %1", "VECCHIO: nessun livello da %1"};
constexpr Bilingual kValueBroken{"OLD: no value for %1", "VECCHIO: nessun valore da %1"};
constexpr Bilingual kNoLevelYet{"No level for %1", "Nessun livello da %1"};
constexpr Bilingual kNoValueYet{"No value for %1", "Nessun valore da %1"};
constexpr Bilingual kBelow{"%1 dB below the peak", "%1 dB sotto il massimo"};
constexpr Bilingual kAtPeak{"at the peak", "al massimo"};
constexpr Bilingual kMargin{"MER: %1", "MER: %1"};
constexpr Bilingual kPeak{"Peak %1 %2", "Massimo %1 %2"};

// What the meter can read, in dBuV.
constexpr double kBarFrom = 20;
constexpr double kBarTo = 120;

// No C/N or MER is higher.
constexpr double kRatioBarTo = 40;
/// A ratio that sounds like a level: 15 dB like 60 dBuV.
constexpr double kRatioHeard = 45;
// The meter tells tenths; what differs by less is the same.
constexpr double kSame = 0.05;

constexpr std::array kShown{measurement::Quantity::level, measurement::Quantity::cn,
                            measurement::Quantity::mer};

// The line has no check sum: what no meter can read was no peak, but a digit that came as another.
constexpr double kBeyondBar = 20;

bool beyond_the_meter(measurement::Quantity quantity, double value) {
    const bool level = quantity == measurement::Quantity::level;
    return value > (level ? kBarTo : kRatioBarTo) + kBeyondBar;
}

double on_bar(measurement::Quantity quantity, double value) {
    const bool level = quantity == measurement::Quantity::level;
    const double from = level ? kBarFrom : 0;
    const double to = level ? kBarTo : kRatioBarTo;
    return std::clamp((value - from) / (to - from), 0.0, 1.0);
}

/// Of two readings of the same number the one beyond the range is the higher one.
int height_of(measurement::RangeMark mark) {
    if (mark == measurement::RangeMark::none) return 0;
    return mark == measurement::RangeMark::above ? 1 : -1;
}

QString name_of(measurement::Quantity quantity) {
    switch (quantity) {
        case measurement::Quantity::cn:
            return QStringLiteral("C/N");
        case measurement::Quantity::mer:
            return QStringLiteral("MER");
        default:
            return {};
    }
}

const Bilingual& repeated_words(measurement::Quantity quantity) {
    if (quantity == measurement::Quantity::cn) return kCnRepeated;
    return quantity == measurement::Quantity::mer ? kMerRepeated : kLevelRepeated;
}

/// Values of two programs, two presentations or two units have no peak in common: the meter turns
/// one unit into another by more digits than it tells.
bool same_signal(const measurement::Measurement& one, const measurement::Measurement& other) {
    return one.program == other.program && one.mode == other.mode &&
           one.frequency == other.frequency && one.oscillator == other.oscillator &&
           one.unit == other.unit;
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
    if (last_ && !same_signal(*last_, measurement)) forget_peaks();
    new_peak_ = false;
    last_ = measurement;
    at_ = now;
    running_ = false;
    hold_peaks();
}

void LevelDisplay::hold_peaks() {
    for (const measurement::Quantity quantity : kShown) {
        const std::optional<double> value = value_of(quantity);
        if (!value || beyond_the_meter(quantity, *value)) continue;
        std::optional<Peak>& peak = peaks_[static_cast<std::size_t>(quantity)];
        if (quantity == quantity_) new_peak_ = peak && *value > peak->value + kSame;
        const measurement::RangeMark mark = last_->reading(quantity).mark;
        const auto higher = std::pair(*value, height_of(mark));
        if (!peak || higher > std::pair(peak->value, height_of(peak->mark)))
            peak = Peak{*value, mark};
    }
}

void LevelDisplay::forget_peaks() {
    peaks_ = {};
    new_peak_ = false;
}

void LevelDisplay::forget_peak() {
    peaks_[static_cast<std::size_t>(quantity_)].reset();
    new_peak_ = false;
}

void LevelDisplay::show(measurement::Quantity quantity) {
    quantity_ = quantity;
    new_peak_ = false;
}

void LevelDisplay::opens() {
    show(measurement::Quantity::level);
    forget_peaks();
    hold_peaks();
}

void LevelDisplay::repeats(bool on, double now) {
    repeating_ = on;
    repeated_since_ = now;
}

bool LevelDisplay::live(double now, bool linked) const {
    const double limit = repeating_ ? kRepeatedSeconds : kLiveSeconds;
    return last_ && linked && !running_ && now - at_ <= limit;
}

/// dB by which dBuV are more than what is shown.
double LevelDisplay::offset(measurement::Quantity quantity) const {
    if (quantity != measurement::Quantity::level || !last_) return 0;
    return unit_offset(last_->unit.value_or(kDbuv));
}

QString LevelDisplay::unit() const {
    if (quantity_ != measurement::Quantity::level) return QStringLiteral("dB");
    return measurement::unit_text(last_->unit);
}

std::optional<double> LevelDisplay::value_of(measurement::Quantity quantity) const {
    if (!last_) return {};
    const measurement::Reading& reading = last_->reading(quantity);
    if (!reading.measured()) return {};
    return static_cast<double>(reading.value) + offset(quantity);
}

QString LevelDisplay::margin_text(const Texts& texts) const {
    const QString words = measurement::margin_words(measurement::alarm_margin(*last_), texts);
    if (words.isEmpty() || quantity_ == measurement::Quantity::mer) return words;
    return texts.pick(kMargin).arg(words);
}

std::optional<double> LevelDisplay::heard() const {
    const std::optional<double> value = held();
    if (!value || quantity_ == measurement::Quantity::level) return value;
    return *value + kRatioHeard;
}

QString LevelDisplay::age_text(double now, bool linked, const Texts& texts) const {
    if (!linked) return texts.pick(kLevelNoLink);
    if (repeating_) return repeated_text(now, texts);
    if (running_) return texts.pick(kLevelMeasuring);
    if (!last_) return texts.pick(kLevelNone);
    // The age is that of a value: a dash has none, whatever else was measured.
    if (!held()) return texts.pick(kNotInLast);
    const int seconds = static_cast<int>(now - at_);
    if (live(now, linked)) return texts.pick(kLevelNow).arg(seconds);
    return texts.pick(kLevelOld).arg(span_text(seconds));
}

QString LevelDisplay::repeated_text(double now, const Texts& texts) const {
    if (live(now, true)) return texts.pick(repeated_words(quantity_));
    // Until the first value is here, none at all looks like a slow one.
    if (running_ && now - repeated_since_ <= kLiveSeconds) return texts.pick(kLevelMeasuring);
    return broken_text(now - (running_ ? repeated_since_ : at_), texts);
}

QString LevelDisplay::broken_text(double seconds, const Texts& texts) const {
    const bool level = quantity_ == measurement::Quantity::level;
    const Bilingual& words =
        last_ ? (level ? kLevelBroken : kValueBroken) : (level ? kNoLevelYet : kNoValueYet);
    return texts.pick(words).arg(span_text(static_cast<int>(seconds)));
}

QString LevelDisplay::peak_text(const LevelPicture& picture, const Texts& texts) const {
    const measurement::Reading highest{static_cast<float>(peak()->value - offset(quantity_)),
                                       peak()->mark};
    return texts.pick(kPeak)
        .arg(measurement::reading_text(quantity_, highest), picture.unit)
        .trimmed();
}

/// Of a value at an end of the meter's range, and of a peak there, nobody knows how far beyond it
/// they are: the one is lower by more, and of two nothing can be told.
QString LevelDisplay::below_text(const Texts& texts) const {
    using measurement::RangeMark;
    const RangeMark mark = last_->reading(quantity_).mark;
    const double below = peak()->value - *held();
    if (mark == RangeMark::above || peak()->mark == RangeMark::below) return {};
    const bool more = mark == RangeMark::below || peak()->mark == RangeMark::above;
    if (below < kSame && !more) return texts.pick(kAtPeak);
    return texts.pick(kBelow).arg((more ? QStringLiteral(">") : QString()) +
                                  QString::number(below, 'f', 1));
}

void LevelDisplay::show_peak(LevelPicture& picture, const Texts& texts) const {
    if (!peak()) return;
    picture.bar_peak = on_bar(quantity_, peak()->value);
    picture.peak = peak_text(picture, texts);
    if (held() && !beyond_the_meter(quantity_, *held())) picture.below = below_text(texts);
}

LevelPicture LevelDisplay::picture(double now, bool linked, const Texts& texts) const {
    LevelPicture picture;
    picture.age = age_text(now, linked, texts);
    picture.name = name_of(quantity_);
    if (!last_) {
        picture.value = QStringLiteral("—");
        return picture;
    }
    const measurement::Reading& reading = last_->reading(quantity_);
    picture.value =
        reading.measured() ? measurement::reading_text(quantity_, reading) : QStringLiteral("—");
    picture.unit = unit();
    QStringList names{picture.name, name_of(*last_)};
    names.removeAll(QString());
    picture.name = names.join(QStringLiteral("  ·  "));
    picture.verdict = measurement::verdict_text(last_->verdict);
    if (const std::optional<double> value = held()) picture.bar = on_bar(quantity_, *value);
    show_peak(picture, texts);
    picture.margin = margin_text(texts);
    if (!live(now, linked)) return picture;
    picture.colour = LevelColour::live;
    if (last_->verdict == measurement::Verdict::pass) picture.colour = LevelColour::pass;
    if (last_->verdict == measurement::Verdict::fail) picture.colour = LevelColour::fail;
    return picture;
}

}  // namespace m47::level
