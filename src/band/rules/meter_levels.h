// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "kept_settings.h"
#include "level_asker.h"
#include "link.h"
#include "unit_watch.h"

namespace m47::band {

/// What the meter's demodulator says of a carrier.
struct Quality {
    measurement::Reading mer;     ///< dB; at its floor without lock
    measurement::Reading offset;  ///< MHz from the frequency that was asked for

    bool measured() const { return mer.measured(); }
    bool locked() const;
};

/// The levels of the meter on the line. What it changes of the meter it asks for first, and sets it
/// back at the end.
class MeterLevels : public LevelAsker {
  public:
    explicit MeterLevels(link::Link& link) : link_(link), kept_(link), unit_(link) {}

    /// Notes how the meter is set, tunes it directly, brings the LNB to `feed` and sets all the
    /// attenuation, as before each level. Feeds follow one another without a set_back() between.
    void prepare(const Feed& feed);

    /// Brings the LNB to another feed behind prepare(), by what differs alone; the attenuation
    /// stays. False where the meter did not surely take it: a level would be one of nobody knows
    /// which feed.
    bool change_feed(const Feed& feed);

    /// Sets the symbol rate of the demodulator. False where the meter did not surely take it.
    bool change_symbol_rate(int kilosymbols);

    measurement::Reading level(double mhz) override;
    /// As link::UnitWatch, since prepare(); also where a level in between told that, and the unit
    /// is the first one again.
    bool unit_changed() { return strayed_ || unit_.changed(); }
    /// A level since prepare() was in another unit.
    bool strayed() const override { return strayed_; }
    /// Where one was: none of those before it can have been.
    bool told_apart() const { return told_apart_; }
    /// Of the carrier at `mhz` of the intermediate band with `kilosymbols` a second; takes six
    /// seconds. One that was not measured where no answer is sure.
    Quality quality(double mhz, int kilosymbols);
    bool lost() const override { return !link_.port_connected; }
    /// The command whose refusal ended the link; empty where none has.
    const QString& refused() const { return link_.refused(); }

    /// As KeptSettings::set_back.
    std::vector<Bilingual> set_back();

  private:
    void send(const QString& command);
    bool take(const QString& command);
    void feed_supply(int volts);
    void feed_tone(bool on);
    void attenuate();
    bool tune(double mhz);
    std::optional<measurement::Reading> ask_level(double mhz);
    void look_at_unit(const measurement::Reading& reading);
    Quality ask_quality(double mhz, int kilosymbols);

    link::Link& link_;
    KeptSettings kept_;
    Feed fed_;  ///< as far as the meter has surely taken it
    bool attenuated_ = false;
    link::UnitWatch unit_;
    bool strayed_ = false;
    bool told_apart_ = false;
    std::vector<double> told_;  ///< the levels since prepare(), as the meter told them
};

}  // namespace m47::band
