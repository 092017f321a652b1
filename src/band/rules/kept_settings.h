// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "link.h"

namespace m47::band {

/// How the LNB is fed; what is not set is left as it is.
struct Feed {
    std::optional<int> volts;  ///< 0 off, else 13, 15, 18 or 24
    std::optional<bool> tone;

    bool operator==(const Feed&) const = default;
};

/// What of the meter is going to be changed, as it was before: asked for once, and set back at the
/// end.
class KeptSettings {
  public:
    explicit KeptSettings(link::Link& link) : link_(link) {}

    // Each asks the meter at its first call alone.
    /// Oscillator, frequency and attenuator; asks for the unit as well, which nobody changes.
    void note_tuning();
    /// Supply and tone, where `feed` has something for them.
    void note_feed(const Feed& feed);
    void note_symbol_rate();
    /// From here on the meter is not what it was: until then there is nothing to set back.
    void changed() { changed_ = true; }

    /// Sets back what was noted, also where the work was told to stop. What could not be, as a
    /// technician calls it ("LNB supply"); empty where the meter is as it was.
    std::vector<Bilingual> set_back();

  private:
    /// What the meter said of one setting, and the commands that bring it back.
    struct Kept {
        Bilingual name;
        bool known = false;
        QStringList commands;
    };

    void keep(const Bilingual& name, bool known, const QStringList& commands);
    QString ask(const QString& word);
    bool bring_back(const Kept& kept);

    link::Link& link_;
    bool tuning_noted_ = false;
    bool supply_noted_ = false;
    bool tone_noted_ = false;
    bool rate_noted_ = false;
    bool changed_ = false;
    std::vector<Kept> kept_;  ///< in the order in which they are brought back
};

/// "ATTEN 06", as the meter takes a number of two digits.
QString with_digits(const QString& word, int value);

/// "LNB supply, frequency" in the language of `texts`.
QString names_in(const std::vector<Bilingual>& names, const Texts& texts);

}  // namespace m47::band
