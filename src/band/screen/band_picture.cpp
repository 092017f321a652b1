// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_picture.h"

#include <algorithm>
#include <cmath>

#include "measurement.h"

namespace m47::band {
namespace {

constexpr Bilingual kBandAxis{"IF (MHz)", "IF (MHz)"};
constexpr Bilingual kSkyAxis{"RF (MHz)", "RF (MHz)"};
constexpr Bilingual kLevelAxis{"Level (%1)", "Livello (%1)"};
constexpr Bilingual kLevelAlone{"Level", "Livello"};
constexpr Bilingual kDifferenceAxis{"Difference (dB)", "Differenza (dB)"};

/// In the order of Trace.
constexpr std::array<Bilingual, kTraces> kTraceNames{{{"reference", "riferimento"},
                                                      {"average", "media"},
                                                      {"max hold", "massimi"},
                                                      {"live", "attuale"},
                                                      {"difference", "differenza"}}};
constexpr qsizetype kLongestFlag = 14;
const QString kNoLevel = QStringLiteral("–");

Curve drawn(const BandCurve& curve, const SweepTerms& terms) {
    Curve made;
    for (std::size_t k = 0; k < curve.size(); ++k) {
        made.mhz += on_axis(curve.mhz(k), terms);
        made.db += curve.level(k);
    }
    // An oscillator above the band turns it round.
    if (made.mhz.size() < 2 || made.mhz.constFirst() < made.mhz.constLast()) return made;
    std::ranges::reverse(made.mhz);
    std::ranges::reverse(made.db);
    return made;
}

QString flag_text(const Carrier& carrier) {
    if (carrier.name.size() <= kLongestFlag) return carrier.name;
    return carrier.name.left(kLongestFlag - 1) + u'…';
}

QString level_text(const Sample& sample, const SweepTerms& terms) {
    return measurement::reading_text(measurement::Quantity::level, sample.level) + u' ' +
           measurement::unit_text(terms.unit);
}

/// The level that a marker at `mhz` reads. A pass that has not come there yet has none, nor has one
/// that goes elsewhere.
std::optional<Sample> marked_level(const BandCurve& live, double mhz) {
    return live.level_at(mhz) ? nearest_level(live, mhz) : std::nullopt;
}

/// Where a marker at `mhz` stands: each pass asks at frequencies of its own.
double place_of(const BandCurve& live, double mhz) {
    const std::optional<Sample> marked = marked_level(live, mhz);
    return marked ? marked->mhz : mhz;
}

QString with_sign(double value) {
    return (value < 0 ? QString() : QStringLiteral("+")) + QString::number(value, 'f', 1);
}

}  // namespace

SweepTerms terms_of(const BandState& state, const BandChoice& choice) {
    SweepTerms terms{state.feed, {}, state.unit};
    if (choice.in_the_sky) terms.oscillator = oscillator_of(choice, state.feed);
    return terms;
}

double on_axis(double mhz, const SweepTerms& terms) {
    return terms.oscillator ? sky_frequency(mhz, *terms.oscillator) : mhz;
}

double in_the_band(double mhz, const SweepTerms& terms) {
    return terms.oscillator ? std::abs(mhz - *terms.oscillator) : mhz;
}

std::vector<FoundCarrier> carriers_in(const BandState& state, const SweepTerms& terms,
                                      const std::vector<ListedTransponder>& listed) {
    const BandCurve& live = state.traces.live();
    std::vector<Carrier> carriers =
        find_carriers(live, measured_filter(live).value_or(kUsualFilter));
    name_carriers(carriers, listed, terms);
    std::vector<FoundCarrier> found;
    found.reserve(carriers.size());
    for (const Carrier& carrier : carriers) found.push_back({carrier, terms});
    return found;
}

BandPicture picture_of(const BandState& state, const SweepTerms& terms, const BandLook& look,
                       const BandCurve* reference, const std::vector<FoundCarrier>& carriers,
                       const Texts& texts) {
    BandPicture picture;
    picture.frequency_caption = texts.pick(look.in_the_sky ? kSkyAxis : kBandAxis);
    const QString unit = measurement::unit_text(state.unit);
    picture.level_caption = texts.pick(unit.isEmpty() ? kLevelAlone : kLevelAxis);
    if (!unit.isEmpty()) picture.level_caption = picture.level_caption.arg(unit);
    picture.difference_caption = texts.pick(kDifferenceAxis);
    const BandTraces& traces = state.traces;
    const auto draw = [&](Trace trace, const BandCurve& curve) {
        const auto place = static_cast<std::size_t>(trace);
        if (look.traces[place]) picture.curves[place] = drawn(curve, terms);
        picture.curves[place].name = texts.pick(kTraceNames[place]);
    };
    draw(Trace::live, traces.live());
    draw(Trace::max_hold, traces.max_hold());
    draw(Trace::average, traces.average());
    draw(Trace::reference, reference ? *reference : BandCurve());
    draw(Trace::difference, reference ? difference(traces.live(), *reference) : BandCurve());
    for (const FoundCarrier& found : carriers)
        picture.flags.push_back(
            {on_axis(found.carrier.centre, terms), found.carrier.level, flag_text(found.carrier)});
    for (std::size_t k = 0; k < kMarkers; ++k)
        if (look.markers[k])
            picture.markers[k] = {true, on_axis(place_of(traces.live(), *look.markers[k]), terms)};
    return picture;
}

void fit_axis(BandPicture& picture, double from, double to, const BandState& state,
              const SweepTerms& terms) {
    picture.from = from;
    picture.to = to;
    const BandCurve& live = state.traces.live();
    if (live.empty()) return;
    const auto [low, high] =
        std::minmax({on_axis(live.mhz(0), terms), on_axis(live.mhz(live.size() - 1), terms)});
    picture.from = std::min(from, low);
    picture.to = std::max(to, high);
}

QString markers_text(const BandState& state, const BandLook& look, const SweepTerms& terms) {
    const BandCurve& live = state.traces.live();
    QStringList parts;
    std::array<std::optional<Sample>, kMarkers> marked;
    for (std::size_t k = 0; k < kMarkers; ++k) {
        if (!look.markers[k]) continue;
        marked[k] = marked_level(live, *look.markers[k]);
        parts += QStringLiteral("%1:  %2 MHz  %3")
                     .arg(k + 1)
                     .arg(on_axis(place_of(live, *look.markers[k]), terms), 0, 'f', 1)
                     .arg(marked[k] ? level_text(*marked[k], terms) : kNoLevel);
    }
    const auto& [first, second] = marked;
    if (first && second)
        parts += QStringLiteral("2−1:  %1 MHz  %2 dB")
                     .arg(with_sign(on_axis(second->mhz, terms) - on_axis(first->mhz, terms)),
                          with_sign(static_cast<double>(second->level.value) -
                                    static_cast<double>(first->level.value)));
    return parts.join(QStringLiteral("     "));
}

std::optional<Sample> nearest_level(const BandCurve& curve, double mhz) {
    if (curve.empty()) return std::nullopt;
    return *std::ranges::min_element(
        curve.samples(), {}, [mhz](const Sample& sample) { return std::abs(sample.mhz - mhz); });
}

std::optional<Sample> next_level(const BandCurve& curve, double mhz, bool up) {
    const auto& samples = curve.samples();
    const auto here = std::ranges::lower_bound(samples, mhz, {}, &Sample::mhz);
    if (samples.empty()) return std::nullopt;
    if (here == samples.end()) return samples.back();
    if (up) return here + 1 == samples.end() ? *here : *(here + 1);
    return here == samples.begin() ? *here : *(here - 1);
}

}  // namespace m47::band
