// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChar>
#include <QString>
#include <map>
#include <vector>

namespace m47::measurement {

/// What a question of a measurement reads. Levels and ratios are in dB, error rates without unit,
/// the offset in MHz, the attenuation in steps of 10 dB.
enum class AskedFor {
    level,
    ranging_level,
    channel_power,
    cn,
    noise,
    channel_ber,
    corrected_ber,
    offset,
    mer,
    attenuation,
};

/// One number of an answer and its range mark, a null character where it has none.
struct AskedValue {
    AskedFor asked = AskedFor::level;
    double value = 0;
    QChar mark;
};
using AskedValues = std::vector<AskedValue>;

/// Both can be readings of one thing: as near to each other as those of a steady signal.
bool agree(const AskedValue& one, const AskedValue& other);
/// All of them, in their order.
bool agree(const AskedValues& ones, const AskedValues& others);

/// What each program's readings were lately, and so which new one surprises.
class Scatter {
  public:
    /// `reading` lies outside what the last ones of `program` allow, or there were too few.
    bool surprises(const QString& program, const AskedValue& reading) const;

    /// Counts `reading` among those of `program`; the oldest is forgotten.
    void add(const QString& program, const AskedValue& reading);

  private:
    std::map<std::pair<QString, AskedFor>, AskedValues> lately_;
};

}  // namespace m47::measurement
