// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_panel.h"

#include "alarm_limits.h"
#include "numbers.h"
#include "tables.h"

namespace m47::unattended {
namespace {

void set_alarm(realtime::RealtimePanel& panel, const AlarmOption& alarm) {
    const auto set = [&](bool& ticked, QString& minimum, QString& maximum) {
        ticked = true;
        // Those of a plan come with each of its programs.
        if (alarm.minimum.isEmpty()) return;
        minimum = alarm.minimum;
        maximum = alarm.maximum;
    };
    if (alarm.name == QLatin1String("level")) {
        set(panel.alarm_stated[0], panel.lev_mind, panel.lev_maxd);
        set(panel.alarm_statea[0], panel.lev_mina, panel.lev_maxa);
    } else if (alarm.name == QLatin1String("ber")) {
        set(panel.alarm_stated[2], panel.chber_mind, panel.chber_maxd);
    } else {
        set(panel.alarm_stated[3], panel.mer_mind, panel.mer_maxd);
    }
}

}  // namespace

void set_up(Run& run) {
    realtime::RealtimeRules& rules = *run.rules;
    if (!run.options.log.isEmpty()) rules.log.open(run.options.log, rules.page);
    if (!run.options.bandwidth.isEmpty()) rules.panel.chbws = run.options.bandwidth;
    for (const AlarmOption& alarm : run.options.alarms) set_alarm(rules.panel, alarm);
}

bool level_limits_fit(Run& run) {
    const realtime::RealtimePanel& panel = run.rules->panel;
    for (const AlarmOption& alarm : run.options.alarms) {
        if (run.options.digital || alarm.name != QLatin1String("level")) continue;
        const programme::LevelRange range = programme::level_range(unit_offset(panel.cmdlev));
        if (alarm.minimum.toDouble() >= range.minimum && alarm.maximum.toDouble() <= range.maximum)
            continue;
        complain(QStringLiteral("--alarm level takes limits from %1 to %2 %3, the meter's unit, "
                                "not \"%4\"")
                     .arg(link::plain_text(range.minimum), link::plain_text(range.maximum),
                          unit_name(panel.cmdlev), alarm.text()));
        return false;
    }
    return true;
}

void set_antenna(realtime::RealtimeRules& rules, const AntennaOptions& antenna) {
    realtime::RealtimePanel& panel = rules.panel;
    if (antenna.oscillator) {
        panel.ol_freq = QString::number(*antenna.oscillator);
        panel.locopt = {false, true};
        rules.tuning.locopt_Click(1);
    }
    if (antenna.supply) {
        panel.lnb_supply = *antenna.supply;
        rules.tuning.lnb_supply_Click(*antenna.supply);
    }
    if (antenna.tone) {
        panel.k22_state = *antenna.tone;
        rules.tuning.k22_state_Click(*antenna.tone);
    }
    if (antenna.diseqc) rules.diseqc.diseqc_cmd_Click(*antenna.diseqc);
}

void tell_rounded(const Options& options) {
    const auto tell = [](const char* name, const QString& text, const char* unit,
                         const auto& form_of) {
        const double given = link::typed_value(text);
        const double set = link::typed_value(form_of(given));
        if (set == given) return;
        complain(QStringLiteral("--%1: %2 %3 is set as %4")
                     .arg(QLatin1String(name), link::plain_text(given), QLatin1String(unit),
                          link::plain_text(set)));
    };
    const auto whole = [](double number) { return link::format_number(number, "0"); };
    tell("freq", options.frequency, "MHz",
         [](double mhz) { return link::format_freq(link::plain_text(mhz)); });
    tell("bandwidth", options.bandwidth, "MHz", whole);
    tell("symbol-rate", options.symbol_rate, "kS/s", whole);
}

}  // namespace m47::unattended
