// SPDX-License-Identifier: GPL-3.0-or-later
// The sweep of the whole band, 920 to 2150 MHz, on seeded skies: how many exchanges it needs beside
// the plain one of 1 MHz, and what of the carriers that the meter's filter shows it finds. Ends
// with status 1 when a bound is missed.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "carriers.h"
#include "dish_beam.h"
#include "figure.h"
#include "lnb.h"
#include "orbit.h"
#include "orbit_reception.h"
#include "scan_tables.h"
#include "sweep_plan.h"

namespace {

constexpr int kSkies = 50;
constexpr std::uint64_t kFirstSeed = 1;
constexpr double kFilter = 8;
constexpr double kRollOff = 0.35;
constexpr double kJitter = 0.2;
constexpr int kExchangesOfALevel = 2;
/// What has to be found: a carrier so many dB above the valleys beside it and so many MHz wide.
constexpr double kLeastHeight = 3;
constexpr double kLeastWidth = 4;
// Of the orbit: how far its neighbours are looked at, degrees, and what of it counts, dB.
constexpr std::size_t kManyTransponders = 20;
constexpr double kReach = 6;
constexpr double kOverlaid = 15;
constexpr double kFaint = 6;
constexpr double kMostExchanges = 1.0 / 3;
constexpr double kMostMissed = 0.03;
constexpr double kMostMadeUp = 0.01;

struct InTheSky {
    double centre;
    double width;    ///< between the half-power points: the symbol rate
    double density;  ///< dBuV in 1 MHz
};

/// One state of the LNB: carriers with raised-cosine edges over a tilted floor.
struct Sky {
    std::vector<InTheSky> carriers;
    double floor;
    double tilt;
};

/// The share of the density of `carrier` at `mhz`.
double shape(const InTheSky& carrier, double mhz) {
    const double off = std::abs(mhz - carrier.centre);
    const double edge = carrier.width * kRollOff / 2;
    const double from = carrier.width / 2 - edge;
    if (off <= from) return 1;
    if (off >= carrier.width / 2 + edge) return 0;
    return 0.5 * (1 + std::cos(M_PI * (off - from) / (2 * edge)));
}

/// What the filter lets through, dBuV.
double level(const Sky& sky, double mhz) {
    constexpr int kParts = 64;
    double power = 0;
    const double floor = sky.floor + sky.tilt * (mhz - 920) / 1230;
    for (int part = 0; part < kParts; ++part) {
        const double at = mhz + kFilter * ((part + 0.5) / kParts - 0.5);
        power += m47::band::power_of(floor);
        for (const InTheSky& carrier : sky.carriers)
            if (std::abs(at - carrier.centre) < carrier.width)
                power += m47::band::power_of(carrier.density) * shape(carrier, at);
    }
    return m47::band::level_of(power * kFilter / kParts);
}

/// A band as satellites have it: a raster of wide transponders, some of them split into narrow
/// carriers, with gaps, off-air ones and differences of some dB.
Sky make_sky(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    const auto uniform = [&random](double low, double high) {
        return low + (high - low) * static_cast<double>(random() >> 11) / 9007199254740992.0;
    };
    Sky sky{{}, uniform(20, 26), uniform(-4, 2)};
    const double usual = uniform(6, 24);
    double at = 920 + uniform(0, 40);
    while (at < 2150) {
        const double gap = uniform(0, 1) < 0.3 ? uniform(20, 90) : uniform(1, 12);
        const bool narrow = uniform(0, 1) < 0.35;
        const double width = narrow ? uniform(2.5, 12) : uniform(20, 32);
        const double centre = at + gap + width * (1 + kRollOff) / 2;
        at = centre + width * (1 + kRollOff) / 2;
        sky.carriers.push_back({centre, width, sky.floor + usual + uniform(-5, 5)});
    }
    return sky;
}

/// One state of a converter at a dish under the orbit of the simulated meter, at a position of
/// chance that has many transponders, its neighbours and the other polarisation with them.
Sky orbit_sky(const meter::ScanTables& tables, std::uint64_t seed) {
    std::vector<double> positions;
    for (const meter::ListedPosition& position : tables.positions())
        if (position.transponders.size() >= kManyTransponders) positions.push_back(position.east);
    std::mt19937_64 random(seed * 104729);
    const double east = positions[random() % positions.size()];
    const bool high = random() % 2 == 0;
    const bool tone = random() % 2 == 0;
    meter::OrbitOptions options;
    options.seed = seed;
    const meter::Orbit orbit(tables, options);
    const meter::Lnb lnb;
    Sky sky{{}, meter::orbit_noise_density(920), 0};
    sky.tilt = meter::orbit_noise_density(2150) - sky.floor;
    for (const meter::OnAir& on_air : orbit.around(east, kReach)) {
        const double mhz = on_air.transponder.mhz;
        const auto converted = meter::converted(lnb, tone, mhz);
        if (!converted) continue;
        const double width = meter::beam_width(options.dish_cm, mhz);
        const double loss = meter::beam_loss(meter::arc_between(east, on_air.east), width) +
                            meter::polarisation_loss(lnb, high, on_air.transponder.polarisation);
        const double if_mhz = *converted + orbit.drift_mhz();
        sky.carriers.push_back({if_mhz, on_air.transponder.symbol_rate / 1000.0,
                                on_air.cn_db + loss + meter::orbit_noise_density(if_mhz)});
    }
    std::ranges::sort(sky.carriers, {}, &InTheSky::centre);
    return sky;
}

/// Another carrier of some strength lies over it, so it does not show as one of its own.
bool is_overlaid(const std::vector<InTheSky>& carriers, const InTheSky& carrier) {
    return std::ranges::any_of(carriers, [&](const InTheSky& other) {
        return &other != &carrier && other.density > carrier.density - kOverlaid &&
               std::abs(other.centre - carrier.centre) < (other.width + carrier.width) / 2;
    });
}

double floor_at(const Sky& sky, double mhz) {
    return sky.floor + sky.tilt * (mhz - 920) / 1230;
}

/// It is as strong as the noise, which makes 3 dB of its own.
bool is_seen(const Sky& sky, const InTheSky& carrier) {
    return carrier.density >= floor_at(sky, carrier.centre);
}

/// There is something of it above the noise.
bool is_there(const Sky& sky, const InTheSky& carrier) {
    return carrier.density >= floor_at(sky, carrier.centre) - kFaint;
}

struct Truth {
    InTheSky carrier;
    double height;  ///< above the valleys beside it, as the filter shows them
};

double lowest(const Sky& sky, double from, double to) {
    double found = 1e9;
    for (double mhz = from; mhz <= to; mhz += 0.5) found = std::min(found, level(sky, mhz));
    return found;
}

std::vector<Truth> truths_of(const Sky& sky) {
    std::vector<InTheSky> seen;
    for (const InTheSky& carrier : sky.carriers)
        if (is_there(sky, carrier)) seen.push_back(carrier);
    std::vector<Truth> truths;
    for (std::size_t k = 0; k < seen.size(); ++k) {
        const InTheSky& here = seen[k];
        const double left = k > 0 ? seen[k - 1].centre : 920;
        const double right = k + 1 < seen.size() ? seen[k + 1].centre : 2150;
        // What an end of the band cuts has no centre that could be seen.
        if (here.centre - here.width / 2 - kFilter < 920) continue;
        if (here.centre + here.width / 2 + kFilter > 2150) continue;
        if (!is_seen(sky, here) || is_overlaid(seen, here)) continue;
        // In its middle; at its edges a neighbour shows.
        const double top = level(sky, here.centre);
        const double valley =
            std::max(lowest(sky, left, here.centre), lowest(sky, here.centre, right));
        truths.push_back({here, top - valley});
    }
    return truths;
}

struct Score {
    int wanted = 0;  ///< carriers that have to be found
    int found = 0;   ///< of these, with their centre and width
    int listed = 0;
    int made_up = 0;  ///< of those listed
    int questions = 0;
};

bool fits(const InTheSky& carrier, const m47::band::Carrier& listed) {
    return std::abs(listed.centre - carrier.centre) <= 1.5 &&
           std::abs(listed.width - carrier.width) <= std::max(3.0, 0.2 * carrier.width);
}

bool is_real(const Sky& sky, const m47::band::Carrier& listed) {
    return std::ranges::any_of(sky.carriers, [&](const InTheSky& carrier) {
        return is_there(sky, carrier) &&
               std::abs(carrier.centre - listed.centre) <= carrier.width / 2 + 2;
    });
}

m47::band::SweepPlan sweep(const Sky& sky, std::uint64_t seed, const m47::band::SweepSpan& span) {
    std::mt19937_64 jitter(seed * 7919);
    m47::band::SweepPlan plan(span);
    while (const auto mhz = plan.next()) {
        const double noise = static_cast<double>(jitter() >> 11) / 9007199254740992.0;
        const double value = level(sky, *mhz) + kJitter * (2 * noise - 1);
        plan.take({*mhz, {static_cast<float>(std::round(value * 10) / 10)}});
    }
    return plan;
}

void score_sky(const Sky& sky, std::uint64_t seed, const m47::band::SweepSpan& span, Score& score) {
    const m47::band::SweepPlan plan = sweep(sky, seed, span);
    score.questions += plan.asked();
    const double filter = m47::band::measured_filter(plan.curve()).value_or(kFilter);
    const auto listed = m47::band::find_carriers(plan.curve(), filter);
    score.listed += static_cast<int>(listed.size());
    for (const auto& carrier : listed)
        if (!is_real(sky, carrier)) ++score.made_up;
    for (const Truth& truth : truths_of(sky)) {
        if (truth.height < kLeastHeight || truth.carrier.width < kLeastWidth) continue;
        ++score.wanted;
        const bool found =
            std::ranges::any_of(listed, [&](const auto& one) { return fits(truth.carrier, one); });
        if (found) ++score.found;
    }
}

using Skies = std::vector<Sky>;

Score score_all(const Skies& skies, const m47::band::SweepSpan& span, const char* name) {
    Score score;
    std::uint64_t seed = kFirstSeed;
    for (const Sky& sky : skies) score_sky(sky, seed++, span, score);
    std::printf("  %-22s %7d exchanges, %d of %d carriers found, %d of %d listed not there\n", name,
                score.questions * kExchangesOfALevel, score.found, score.wanted, score.made_up,
                score.listed);
    return score;
}

bool compare(const Skies& skies, const char* name) {
    std::printf("920 to 2150 MHz on %zu %s, seeds from %llu\n", skies.size(), name,
                static_cast<unsigned long long>(kFirstSeed));
    const Score plain = score_all(skies, {920, 2150, 1.0}, "every 1 MHz");
    const Score clever = score_all(skies, {920, 2150, {}}, "where something is");
    const double exchanges = static_cast<double>(clever.questions) / plain.questions;
    const double missed = 1 - static_cast<double>(clever.found) / clever.wanted;
    const double made_up = static_cast<double>(clever.made_up) / clever.listed;
    const std::string of = std::string(", ") + name;
    bench::print_figure(("sweep: exchanges" + of).c_str(), exchanges, kMostExchanges,
                        "a sweep of 1 MHz");
    bench::print_figure(("sweep: missed or wrong" + of).c_str(), missed, kMostMissed,
                        "all that show 3 dB");
    bench::print_figure(("sweep: not there" + of).c_str(), made_up, kMostMadeUp, "all listed");
    return exchanges <= kMostExchanges && missed <= kMostMissed && made_up <= kMostMadeUp;
}

}  // namespace

int main() {
    Skies chance;
    Skies orbit;
    const meter::ScanTables tables = meter::ScanTables::read("/usr/share/dvb/dvb-s");
    for (std::uint64_t seed = kFirstSeed; seed < kFirstSeed + kSkies; ++seed) {
        chance.push_back(make_sky(seed));
        orbit.push_back(orbit_sky(tables, seed));
    }
    const bool first = compare(chance, "skies of chance");
    const bool second = compare(orbit, "skies of the orbit");
    std::puts(first && second ? "within the bounds" : "A BOUND IS MISSED");
    return first && second ? 0 : 1;
}
