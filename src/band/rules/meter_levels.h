// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "level_asker.h"
#include "link.h"

namespace m47::band {

/// How the LNB is fed for a sweep; what is not set is left as it is.
struct Feed {
    std::optional<int> volts;  ///< 0 off, else 13, 15, 18 or 24
    std::optional<bool> tone;

    bool operator==(const Feed&) const = default;
};

/// The levels of the meter on the line. What it changes of the meter it asks for first, and sets it
/// back at the end.
class MeterLevels : public LevelAsker {
  public:
    explicit MeterLevels(link::Link& link) : link_(link) {}

    /// Notes how the meter is set, tunes it directly, brings the LNB to `feed` and sets all the
    /// attenuation, as before each level. Feeds follow one another without a set_back() between.
    void prepare(const Feed& feed);

    measurement::Reading level(double mhz) override;
    bool lost() const override { return !link_.port_connected; }

    /// Sets back what was changed, also where the work was told to stop. What could not be, as a
    /// technician calls it ("LNB supply"); empty where the meter is as it was.
    std::vector<Bilingual> set_back();

  private:
    /// What the meter said of one setting, and the commands that bring it back.
    struct Kept {
        Bilingual name;
        bool known = false;
        QStringList commands;
    };

    void note();
    void note_feed(const Feed& feed);
    void keep(const Bilingual& name, bool known, const QStringList& commands);
    QString ask(const QString& word);
    void send(const QString& command);
    std::optional<measurement::Reading> ask_level(double mhz);
    bool bring_back(const Kept& kept);

    link::Link& link_;
    bool noted_ = false;
    bool supply_noted_ = false;
    bool tone_noted_ = false;
    std::vector<Kept> kept_;  ///< in the order in which they are brought back
};

/// "LNB supply, frequency" in the language of `texts`.
QString names_in(const std::vector<Bilingual>& names, const Texts& texts);

}  // namespace m47::band
