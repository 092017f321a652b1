// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "decibel.h"
#include "front.h"

namespace m47::identify {
namespace {

constexpr double kListedRate = 0.01;
/// Where a demodulator locks, dB of C/N, and how sharply.
constexpr double kNeeded = 6.2;
constexpr double kNeededSpread = 0.7;
constexpr double kLockOfUnlisted = 0.04;
constexpr double kLockOfNothing = 0.002;
constexpr double kMostLock = 0.97;
/// How well an offset is told, MHz, by the grid of drifts too.
constexpr double kOffsetSpread = 0.5;
constexpr double kCaptureSpread = 0.25;

double logistic(double x) {
    return 1 / (1 + std::exp(-x));
}

/// The chance that a demodulator captures a carrier: the drift is known to a fraction of a MHz.
double captured(const Carrier& carrier, const LockTry& trial, double drift) {
    if (!carrier.lockable || std::abs(carrier.rate - trial.rate) > kListedRate * trial.rate)
        return 0;
    const double off = std::abs(carrier.if_mhz + drift - trial.if_mhz);
    return logistic((kCapture * trial.rate - off) / kCaptureSpread);
}

/// How well an offset fits a carrier, against one from anywhere in the capture range.
double offset_density(const LockTry& trial, const Carrier& carrier, double drift) {
    if (!trial.locked || !trial.offset) return 1;
    const double off = (*trial.offset - (carrier.if_mhz + drift - trial.if_mhz)) / kOffsetSpread;
    return std::exp(-off * off / 2) / (kOffsetSpread * 2.5066) * 2 * kCapture * trial.rate;
}

}  // namespace

double Front::lock_density(const Cell& cell, const LockTry& trial) const {
    const double drift = drifts_[cell.setting.drift];
    std::vector<Heard> on_axis;
    const Mixture held = mixture_at(cell, trial.state, trial.if_mhz, &on_axis);
    const auto shares = held.shares(static_cast<float>(trial.above));
    const double carriers = std::max(0.01, ratio(trial.above) - 1);
    double locked = 0;
    double known = 0;
    for (unsigned which = 0; which < 1U << held.parts(); ++which) {
        known += shares[which];
        int strongest = -1;
        double sum = 0;
        for (int k = held.parts() - 1; k >= 0; --k)
            if ((which >> k & 1U) != 0) {
                strongest = k;
                sum += on_axis[static_cast<std::size_t>(k)].part.power;
            }
        if (strongest < 0) {
            locked += shares[which] * kLockOfNothing;
            continue;
        }
        const Heard& best = on_axis[static_cast<std::size_t>(strongest)];
        const Emitter* emitter = best.emitter;
        if (emitter == nullptr) {
            locked += shares[which] * kLockOfUnlisted;
            continue;
        }
        const double capture = captured(emitter->carrier, trial, drift);
        const double own = carriers * best.part.power / sum;
        // The demodulator's filter is as wide as the carrier.
        const double filled = std::min(1.0, best.share);
        const double cn = 10 * std::log10(own / filled / (1 + carriers - own));
        locked += shares[which] *
                  (kLockOfNothing + capture * kMostLock * logistic((cn - kNeeded) / kNeededSpread) *
                                        offset_density(trial, emitter->carrier, drift));
    }
    locked += std::max(0.0, 1 - known) * kLockOfUnlisted;
    return trial.locked ? std::max(locked, 1e-4) : std::max(1 - locked, 1 - kMostLock);
}

void Front::take(const LockTry& trial) {
    for (Cell& cell : cells_) cell.log += static_cast<float>(std::log(lock_density(cell, trial)));
}

double Front::lock_chance(const LockTry& trial) const {
    LockTry heard = trial;
    heard.locked = true;
    heard.offset.reset();
    return lock_density(cells_[most_], heard);
}

}  // namespace m47::identify
