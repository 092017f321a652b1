// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <optional>

#include "measurement.h"
#include "texts.h"

namespace m47::level {

/// What a level seen from afar is drawn in: a colour of its own for each outcome only while the
/// value is live.
enum class LevelColour { live, pass, fail, stale };

/// What the large display shows.
struct LevelPicture {
    QString value;    ///< "58.3", "<20.0", a dash where nothing was measured
    QString unit;     ///< "dBuV"; empty where it is not known
    QString name;     ///< plan, program and frequency
    QString verdict;  ///< "PASS", "FAIL" or empty
    QString age;      ///< how old the value is, or that a measurement runs
    QString peak;     ///< "Peak 61.2 dBuV"; empty before the first value
    QString below;    ///< "0.8 dB below the peak"; empty before the first value
    /// "3.2 dB left": the MER above its alarm minimum; empty where that is not in force.
    QString margin;
    LevelColour colour = LevelColour::stale;
    /// How much of the bar is filled, and where the mark of the peak stands on it: 0 to 1 from 20
    /// to 120 dBuV, of C/N and MER from 0 to 40 dB. Nothing where there is no value.
    std::optional<double> bar;
    std::optional<double> bar_peak;
};

/// The level, C/N or MER for somebody who stands three metres away. It never shows an old value as
/// a live one: that turns grey after kLiveSeconds, when the next measurement begins, and when the
/// link is lost. While the level is repeated alone one value follows the other, and
/// kRepeatedSeconds without one make it old; the first one may take kLiveSeconds. Times are in
/// seconds on any clock that only goes forward.
class LevelDisplay {
  public:
    static constexpr double kLiveSeconds = 10;
    static constexpr double kRepeatedSeconds = 2;

    void measured(const measurement::Measurement& measurement, double now);
    /// A measurement begins: what is shown is that of the one before.
    void begins() { running_ = true; }
    /// It has ended, with or without a row.
    void ended() { running_ = false; }

    /// The level is repeated alone from now on, or no longer.
    void repeats(bool on, double now);
    bool repeating() const { return repeating_; }
    /// The level is shown first, and what stands there is the first peak of each quantity.
    void opens();
    /// The highest value of what is shown is held from here on anew.
    void forget_peak();
    /// Shows `quantity` (level, C/N or MER) from now on, with the peak that it had meanwhile.
    void show(measurement::Quantity quantity);
    measurement::Quantity quantity() const { return quantity_; }
    /// The last value is higher than all those before it that were held.
    bool new_peak() const { return new_peak_; }

    bool live(double now, bool linked) const;
    LevelPicture picture(double now, bool linked, const Texts& texts) const;

    /// What the tone follows: the level in dBuV, one of an unknown unit as it stands; C/N and MER
    /// so that 15 dB sound like 60 dBuV. Nothing where the last measurement brought no number.
    std::optional<double> heard() const;

  private:
    struct Peak {
        double value;  ///< dBuV or dB
        /// Where the meter's range ended there, the peak itself is beyond it.
        measurement::RangeMark mark;
    };

    QString age_text(double now, bool linked, const Texts& texts) const;
    QString repeated_text(double now, const Texts& texts) const;
    QString broken_text(double seconds, const Texts& texts) const;
    QString unit() const;
    QString margin_text(const Texts& texts) const;
    double offset(measurement::Quantity quantity) const;
    std::optional<double> value_of(measurement::Quantity quantity) const;
    std::optional<double> held() const { return value_of(quantity_); }
    const std::optional<Peak>& peak() const { return peaks_[static_cast<std::size_t>(quantity_)]; }
    void hold_peaks();
    void forget_peaks();
    QString peak_text(const LevelPicture& picture, const Texts& texts) const;
    QString below_text(const Texts& texts) const;
    void show_peak(LevelPicture& picture, const Texts& texts) const;

    std::optional<measurement::Measurement> last_;
    double at_ = 0;
    double repeated_since_ = 0;
    bool running_ = false;
    bool repeating_ = false;
    bool new_peak_ = false;
    measurement::Quantity quantity_ = measurement::Quantity::level;
    /// The highest of each quantity, of what has been received lately.
    std::array<std::optional<Peak>, measurement::kAllQuantities> peaks_{};
};

}  // namespace m47::level
