// SPDX-License-Identifier: GPL-3.0-or-later
#include "set_back.h"

#include "port_diagnosis.h"
#include "tuning_range.h"

namespace m47::unattended {

band::Feed feed_of(const AntennaOptions& antenna) {
    band::Feed feed;
    if (antenna.supply)
        feed.volts = programme::kSupplyVolts[static_cast<std::size_t>(*antenna.supply)];
    // The list of the tone begins with "on".
    if (antenna.tone) feed.tone = *antenna.tone == 0;
    return feed;
}

QString set_meter_back(band::MeterLevels& levels, const Texts& texts, bool told) {
    const bool lost = levels.lost();
    const QString refused = levels.refused();
    const std::vector<Bilingual> left = levels.set_back();
    const QString names = band::names_in(left, texts);
    if (told)
        return left.empty() ? QStringLiteral("the meter is set as it was before")
                            : QStringLiteral("these were not set back: ") + names;
    if (lost || levels.lost()) {
        const QString why = refused.isEmpty() ? QStringLiteral("the link to the meter was lost")
                                              : link::refused_text(refused, texts) +
                                                    QStringLiteral(", which ends the link");
        if (left.empty()) return why + QStringLiteral("; it is set as it was before");
        return why + QStringLiteral(", so these were not set back: ") + names;
    }
    if (left.empty()) return {};
    return QStringLiteral(
               "the meter did not tell or take how it was set before, so these were not set back: "
               "%1")
        .arg(names);
}

}  // namespace m47::unattended
