// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "identifier.h"
#include "meter_levels.h"

namespace m47::identify {

/// The sky through the LNB behind the meter on the line. What it changes of the meter it asks for
/// first, and sets it back at the end.
class LinkSky : public SkyAsker {
  public:
    LinkSky(link::Link& link, const Lnb& lnb) : lnb_(lnb), levels_(link) {}

    /// A level takes two exchanges, another state of the LNB one or two more and 0.1 s, a lock six
    /// seconds; the level behind a lock a second more. Neither level nor lock where the meter gave
    /// no sure answer or nobody answers any more. Told to end, it throws Interrupted.
    Answer ask(const Question& question) override;

    /// As link::UnitWatch, since the first question.
    bool unit_changed() { return levels_.unit_changed(); }

    /// Nobody answers any more.
    bool lost() const { return levels_.lost(); }

    /// As band::KeptSettings::set_back.
    std::vector<Bilingual> set_back();

  private:
    bool feed(int state);

    Lnb lnb_;
    band::MeterLevels levels_;
    bool prepared_ = false;
};

/// How the LNB is fed in one of its states.
band::Feed feed_of(const LnbState& state);

}  // namespace m47::identify
