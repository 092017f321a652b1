// SPDX-License-Identifier: GPL-3.0-or-later
#include "change.h"

#include <cmath>

namespace m47::sites {
namespace {

using measurement::Quantity;
using measurement::RangeMark;
using measurement::Reading;

constexpr Bilingual kUnchanged{"unchanged", "invariato"};
constexpr Bilingual kMore{"%1 dB more", "%1 dB in più"};
constexpr Bilingual kLess{"%1 dB less", "%1 dB in meno"};
constexpr Bilingual kDecadesWorse{"%1 decades worse", "peggiore di %1 decadi"};
constexpr Bilingual kDecadesBetter{"%1 decades better", "migliore di %1 decadi"};
constexpr Bilingual kAtLeast{"at least %1", "almeno %1"};
constexpr Bilingual kAtMost{"at most %1", "al più %1"};
constexpr Bilingual kNoLess{"no less", "non meno"};
constexpr Bilingual kNoMore{"no more", "non di più"};
constexpr Bilingual kNoBetter{"no better", "non migliore"};
constexpr Bilingual kNoWorse{"no worse", "non peggiore"};

/// Readings and changes are told in tenths: what differs by less is the same.
constexpr double kShown = 0.05;
constexpr double kLeastRate = 1e-8;

/// Where a value can lie; a side that is open is nothing.
struct Span {
    std::optional<double> least;
    std::optional<double> most;
};

std::optional<Span> span_of(Quantity quantity, const Reading& reading) {
    if (!reading.measured()) return {};
    const bool rate = measurement::is_error_rate(quantity);
    // Without a wrong bit it is as the meter tells the least it can: "<1.0E-8".
    const bool none_wrong = rate && reading.value <= 0;
    const double number = none_wrong ? kLeastRate : static_cast<double>(reading.value);
    const double value = rate ? std::log10(number) : number;
    Span span{value, value};
    if (reading.mark == RangeMark::below || none_wrong) span.least.reset();
    if (reading.mark == RangeMark::above) span.most.reset();
    return span;
}

/// Readings are single precision: what lies beyond that is taken off, so that 58.3 is 2 dB more
/// than 56.3 and a threshold of 2 dB is met.
std::optional<double> less(const std::optional<double>& one, const std::optional<double>& other) {
    constexpr double kParts = 1e4;
    if (!one || !other) return {};
    return std::round((*one - *other) * kParts) / kParts;
}

QString tenths(double value) {
    // No "-0.0".
    return QString::number(std::fabs(value) < kShown ? 0 : value, 'f', 1);
}

QString with_sign(double value) {
    return (value >= kShown ? QStringLiteral("+") : QString()) + tenths(value);
}

QString amount_words(Quantity quantity, double by, const Texts& texts) {
    const bool more = by > 0;
    if (measurement::is_error_rate(quantity))
        return texts.pick(more ? kDecadesWorse : kDecadesBetter).arg(tenths(std::fabs(by)));
    return texts.pick(more ? kMore : kLess).arg(tenths(std::fabs(by)));
}

/// What is bounded by nothing more or less.
QString none_words(Quantity quantity, bool from_below, const Texts& texts) {
    if (measurement::is_error_rate(quantity)) return texts.pick(from_below ? kNoBetter : kNoWorse);
    return texts.pick(from_below ? kNoLess : kNoMore);
}

}  // namespace

std::optional<double> Change::exactly() const {
    return least && most ? least : std::nullopt;
}

std::optional<Change> change_between(Quantity quantity, const Reading& earlier,
                                     const Reading& later) {
    const std::optional<Span> before = span_of(quantity, earlier);
    const std::optional<Span> after = span_of(quantity, later);
    if (!before || !after) return {};
    const Change change{less(after->least, before->most), less(after->most, before->least)};
    if (!change.least && !change.most) return {};
    return change;
}

Change loss_of(Quantity quantity, const Change& change) {
    if (measurement::is_error_rate(quantity)) return change;
    const auto negated = [](const std::optional<double>& side) {
        return side ? std::optional(-*side) : std::nullopt;
    };
    return {negated(change.most), negated(change.least)};
}

double in_dbuv(double level, LevelUnit unit) {
    // At 75 ohm 1 mW is 273.9 mV. The meter's limits reckon with a rounded 109 dB instead.
    constexpr double kOhms = 75;
    if (unit == kDbmv) return level + 60;
    return unit == kDbm ? level + 90 + 10 * std::log10(kOhms) : level;
}

QString change_text(const std::optional<Change>& change) {
    if (!change) return QStringLiteral("–");
    if (change->exactly()) return with_sign(*change->least);
    return change->least ? u'≥' + with_sign(*change->least) : u'≤' + with_sign(*change->most);
}

QString change_words(Quantity quantity, const std::optional<Change>& change, const Texts& texts) {
    if (!change) return {};
    if (const std::optional<double> value = change->exactly())
        return std::fabs(*value) < kShown ? texts.pick(kUnchanged)
                                          : amount_words(quantity, *value, texts);
    const double side = change->least ? *change->least : *change->most;
    if (std::fabs(side) < kShown) return none_words(quantity, change->least.has_value(), texts);
    const QString amount = amount_words(quantity, side, texts);
    // "At most 3 dB more" bounds a rise from above, "at most -3 dB" is a fall of at least 3 dB.
    const bool outward = change->least ? side > 0 : side < 0;
    return texts.pick(outward ? kAtLeast : kAtMost).arg(amount);
}

}  // namespace m47::sites
