// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <set>
#include <vector>

#include "band_curve.h"

namespace m47::band {

/// What is swept, MHz of the intermediate band, both ends included.
struct SweepSpan {
    double from = 920;
    double to = 2150;
    /// Asks every so many MHz and nowhere else; nothing: coarsely first, then where something is.
    std::optional<double> step{};
};

/// Which frequency is asked next. It asks coarsely first, close enough to meet every carrier of 4
/// MHz and each valley of 3 dB, and then only where the answers show a peak, a valley or an edge,
/// down to 1 MHz.
class SweepPlan {
  public:
    explicit SweepPlan(const SweepSpan& span);

    /// The next frequency to ask for, MHz; nothing at the end.
    std::optional<double> next();
    /// What the meter gave for it; no number where it gave nothing, which is not asked again.
    void take(const Sample& answer);

    const BandCurve& curve() const { return curve_; }
    const SweepSpan& span() const { return span_; }
    int asked() const { return asked_; }
    /// How many questions it will be, as far as that is known now; it grows while carriers show.
    int expected() const;

  private:
    std::optional<double> refinement() const;
    std::optional<double> beside_extremes() const;
    std::optional<double> at_shoulders() const;
    std::optional<double> at_edges() const;
    std::optional<double> on_slopes() const;
    std::optional<double> between(std::size_t low, std::size_t high, double finest,
                                  double guess) const;
    std::optional<double> halved(std::size_t low, std::size_t high, double finest) const;
    std::optional<double> narrowed(std::size_t place, double finest) const;

    SweepSpan span_;
    BandCurve curve_;
    std::vector<double> coarse_;
    std::size_t coarse_asked_ = 0;
    std::set<double> silent_;  ///< MHz at which the meter gave nothing
    int asked_ = 0;
};

}  // namespace m47::band
