// SPDX-License-Identifier: GPL-3.0-or-later
#include "set_back.h"

#include "end_signals.h"
#include "port_diagnosis.h"
#include "say_on_stderr.h"
#include "tuning_range.h"

namespace m47::shell {

band::Feed feed_of(const AntennaOptions& antenna) {
    band::Feed feed;
    if (antenna.supply)
        feed.volts = programme::kSupplyVolts[static_cast<std::size_t>(*antenna.supply)];
    // The list of the tone begins with "on".
    if (antenna.tone) feed.tone = *antenna.tone == 0;
    return feed;
}

QString set_meter_back(band::MeterLevels& levels, const Texts& texts) {
    const bool lost = levels.lost();
    const std::vector<Bilingual> left = levels.set_back();
    const QString names = band::names_in(left, texts);
    if ((lost || levels.lost()) && left.empty())
        return QStringLiteral("the link to the meter was lost; it is set as it was before");
    if (lost || levels.lost())
        return QStringLiteral("the link to the meter was lost, so these were not set back: %1")
            .arg(names);
    if (left.empty()) return {};
    return QStringLiteral(
               "the meter did not tell or take how it was set before, so these were not set back: "
               "%1")
        .arg(names);
}

void begin_run(Texts& texts, MeterConnection& connection) {
    texts.language = kEnglish;
    link::Link& link = connection.link();
    link.interrupted = [] { return platform::times_told_to_end() > 0; };
    link.cut_off = [] { return platform::times_told_to_end() > 1; };
    link.on_refused = [&texts, &link] { say_of_run(link::refused_text(link.refused(), texts)); };
}

}  // namespace m47::shell
