// SPDX-License-Identifier: GPL-3.0-or-later
#include "extremes.h"

#include <algorithm>

namespace m47::band {
namespace {

/// Goes up the band and turns round wherever the level has come back by `height` from its last
/// extreme: what is less than that is jitter or the shape of one carrier.
class TurningPoints {
  public:
    TurningPoints(const BandCurve& curve, double height) : curve_(curve), height_(height) {}

    std::vector<Peak> peaks() {
        for (std::size_t place = 0; place < curve_.size(); ++place) {
            if (rising_ && curve_.level(place) > curve_.level(highest_)) highest_ = place;
            if (!rising_ && curve_.level(place) < curve_.level(lowest_)) lowest_ = place;
            turn(place);
        }
        if (!rising_)
            add(lowest_);
        else if (!curve_.empty() && curve_.level(highest_) - curve_.level(left()) >= height_)
            add(curve_.size() - 1);
        return peaks_;
    }

  private:
    void turn(std::size_t place) {
        if (rising_ && curve_.level(highest_) - curve_.level(place) >= height_) {
            rising_ = false;
            lowest_ = place;
        } else if (!rising_ && curve_.level(place) - curve_.level(lowest_) >= height_) {
            add(lowest_);
            rising_ = true;
            highest_ = place;
        }
    }

    /// The lowest place since the last peak.
    std::size_t left() const {
        std::size_t lowest = valley_;
        for (std::size_t place = valley_; place < highest_; ++place)
            if (curve_.level(place) < curve_.level(lowest)) lowest = place;
        return lowest;
    }

    /// The peak at the highest place, down to the valley `right`.
    void add(std::size_t right) {
        peaks_.push_back({left(), highest_, right});
        valley_ = right;
    }

    const BandCurve& curve_;
    double height_;
    bool rising_ = true;
    std::size_t valley_ = 0;   ///< behind the last peak
    std::size_t highest_ = 0;  ///< since the last turn
    std::size_t lowest_ = 0;
    std::vector<Peak> peaks_;
};

}  // namespace

std::vector<Peak> find_peaks(const BandCurve& curve, double height) {
    return TurningPoints(curve, height).peaks();
}

double height_of(const BandCurve& curve, const Peak& peak) {
    const double top = curve.level(peak.top);
    return top - std::max(curve.level(peak.left), curve.level(peak.right));
}

}  // namespace m47::band
