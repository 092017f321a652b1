// SPDX-License-Identifier: GPL-3.0-or-later
#include "mixture.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace m47::identify {
namespace {

/// The meter's scatter and what the noise floor is off, dB.
constexpr float kJitter = 0.3F;
/// The chance that something of the other polarisation is there.
constexpr float kCrossedChance = 0.1F;
constexpr float kOfSquareRoot = 0.39894228F;  // 1 / sqrt(2 pi)
/// Of a level for which there is no explanation at all.
constexpr float kOutlier = 1e-4F;
constexpr float kBelowNoise = 0.5F;
/// Less than this part of the noise is not worth a case of its own.
constexpr float kFaint = 0.08F;
/// What is so many times less probable than the most that it adds nothing.
constexpr float kNothingLeft = 20;
/// Of what nobody lists so much fills the filter.
constexpr float kFull = 0.6F;
constexpr float kStraySpread = 1.2F;  // dB
constexpr float kMostOff = 5;         // such spreads

/// dB that a small part more makes: 10 / ln 10.
constexpr float kDbOfPart = 4.343F;

float db_of(float ratio) {
    constexpr float kDbOfTwo = 3.0103F;
    return kDbOfTwo * std::log2(ratio);
}

}  // namespace

float Stray::chance() const {
    constexpr float kAll = 0.6F;
    float sum = 0;
    for (const Source& source : sources) sum += source.chance;
    return std::min(sum, kAll);
}

void Mixture::count_parts(const std::vector<Part>& parts) {
    while (count_ < kMost && static_cast<std::size_t>(count_) < parts.size() &&
           parts[static_cast<std::size_t>(count_)].power > kFaint)
        ++count_;
}

/// Each case is one with a part less, and that part.
void Mixture::weigh_cases(const std::vector<Part>& parts, Rest rest) {
    std::array<float, 1 << kMost> sums{rest.power};
    std::array<float, 1 << kMost> squares{};
    cases_[0].weight = 1;
    float all = 1;
    for (unsigned which = 1; which < 1U << count_; ++which) {
        const auto last = static_cast<unsigned>(std::bit_width(which) - 1);
        const unsigned without = which ^ 1U << last;
        const Part& part = parts[last];
        if ((part.excluded & which) != 0) continue;
        sums[which] = sums[without] + part.power;
        squares[which] = squares[without] + part.variance * part.power * part.power;
        cases_[which].weight = cases_[without].weight * part.odds;
        all += cases_[which].weight;
    }
    const float apart = kDbOfPart * kDbOfPart * rest.variance;
    for (unsigned which = 0; which < 1U << count_; ++which) {
        Case& one = cases_[which];
        one.weight /= all;
        if (one.weight <= 0) continue;
        const float sum = sums[which];
        one.db = db_of(sum);
        one.variance = kJitter * kJitter + (squares[which] + apart) / (sum * sum);
    }
}

Mixture::Mixture(const std::vector<Part>& parts, float crossed, const Stray& stray)
    : stray_(stray), stray_chance_(stray.chance()) {
    count_parts(parts);
    Rest rest{1, 0};
    for (auto k = static_cast<std::size_t>(count_); k < parts.size(); ++k) {
        const float mean = parts[k].power * parts[k].chance;
        rest.power += mean;
        rest.variance += mean * (parts[k].power - mean);
    }
    weigh_cases(parts, rest);
    crossed_ = cases_[0];
    crossed_.weight *= kCrossedChance;
    cases_[0].weight -= crossed_.weight;
    crossed_.db = db_of(rest.power + crossed);
}

float Mixture::density(const Case& one, float above) const {
    if (one.weight <= 0) return 0;
    const float off = above - one.db;
    const float far = off * off / (2 * one.variance);
    if (far > kNothingLeft) return 0;
    return (1 - stray_chance_) * one.weight * kOfSquareRoot / std::sqrt(one.variance) *
           std::exp(-far);
}

float Mixture::stray_density(float above) const {
    const float least = -kBelowNoise;
    float sum = 0;
    for (const Stray::Source& source : stray_.sources) {
        if (source.chance <= 0) continue;
        const float off = (above - source.usual) / kStraySpread;
        const float highest = source.usual + kStraySpread + stray_.narrow;
        if (off < kMostOff)
            sum += kFull * source.chance * kOfSquareRoot / kStraySpread * std::exp(-off * off / 2);
        if (above > least && above < highest)
            sum += (1 - kFull) * source.chance / (highest - least);
    }
    return sum;
}

float Mixture::log_density(float above) const {
    float sum = kOutlier + stray_density(above) + density(crossed_, above);
    for (unsigned which = 0; which < 1U << count_; ++which) sum += density(cases_[which], above);
    return std::log(sum);
}

Mixture::Mean Mixture::mean() const {
    float mean = crossed_.weight * crossed_.db;
    for (unsigned which = 0; which < 1U << count_; ++which)
        mean += cases_[which].weight * cases_[which].db;
    float variance = 0;
    for (unsigned which = 0; which < 1U << count_; ++which) {
        const float off = cases_[which].db - mean;
        variance += cases_[which].weight * (cases_[which].variance + off * off);
    }
    return {mean, variance + kJitter * kJitter};
}

Mixture::Mean Mixture::usual_log() const {
    constexpr float kLowest = -1.5F;
    constexpr float kStep = 0.15F;
    constexpr int kSteps = 240;
    float weight = 0;
    float mean = 0;
    float squares = 0;
    for (int k = 0; k < kSteps; ++k) {
        const float log = log_density(kLowest + kStep * static_cast<float>(k));
        const float density = std::exp(log) - kOutlier;
        weight += density;
        mean += density * log;
        squares += density * log * log;
    }
    mean /= weight;
    return {mean, squares / weight - mean * mean};
}

std::array<float, 1 << Mixture::kMost> Mixture::shares(float above) const {
    std::array<float, 1 << kMost> shares{};
    float sum = kOutlier + stray_density(above) + density(crossed_, above);
    for (unsigned which = 0; which < 1U << count_; ++which) {
        shares[which] = density(cases_[which], above);
        sum += shares[which];
    }
    shares[0] += density(crossed_, above);
    for (float& share : shares) share /= sum;
    return shares;
}

}  // namespace m47::identify
