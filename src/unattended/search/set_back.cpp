// SPDX-License-Identifier: GPL-3.0-or-later
#include "set_back.h"

#include "end_signals.h"
#include "port_diagnosis.h"
#include "say_on_stderr.h"
#include "tuning_range.h"
#include "unattended.h"

namespace m47::unattended {

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
    const QString refused = levels.refused();
    const std::vector<Bilingual> left = levels.set_back();
    const QString names = band::names_in(left, texts);
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

void begin_run(Texts& texts, MeterConnection& connection) {
    texts.language = kEnglish;
    link::Link& link = connection.link();
    link.interrupted = [] { return platform::times_told_to_end() > 0; };
    link.cut_off = [] { return platform::times_told_to_end() > 1; };
}

bool meter_answers(MeterConnection& connection, int number) {
    connection.identify(number);
    if (connection.link().port_connected) return true;
    say_of_run(no_meter_text(connection, number));
    return false;
}

}  // namespace m47::unattended
