// SPDX-License-Identifier: GPL-3.0-or-later
#include "measures.h"

#include <algorithm>

namespace m47::realtime {
namespace {

constexpr const char* kDigits = "0123456789";
constexpr const char* kSigned = "0123456789-";
constexpr const char* kRate = "0123456789eE-";

using Panel = RealtimePanel;

// The slips in these texts ("Minimuml", the repeated ones) are the screen's own.
const Measure kMeasures[] = {
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::level,
     .place = kDcpLevel,
     .box = {"meas_stated_0", "Enable DCP measurement", "Abilita misura DCP"},
     .result = "dcplev",
     .shown = &Panel::dcplev,
     .asked = measurement::AskedFor::channel_power,
     .alarm = {{.row = AlarmRow::dcp_level,
                .place = 0,
                .box = {"alarm_stated_0", "Enable DCP alarm", "Abilita allarme DCP"},
                .minimum = {{"lev_mind", "Minimum alarm level", "Livello minimo d'allarme"},
                            kSigned,
                            &Panel::lev_mind,
                            &programme::ProgramRecord::lev_min},
                .maximum = {{"lev_maxd", "Maximum alarm level", "Livello massimo d'allarme"},
                            kDigits,
                            &Panel::lev_maxd,
                            &programme::ProgramRecord::lev_max}}}},
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::cn,
     .place = kCnDigital,
     .box = {"meas_stated_1", "Enable CN digital measurement", "Abilita misura del C/N digitale"},
     .result = "cndlev",
     .shown = &Panel::cndlev,
     .asked = measurement::AskedFor::cn,
     .alarm = {{.row = AlarmRow::cn_digital,
                .place = 1,
                .box = {"alarm_stated_1", "Enabled CN  alarm", "Abilita allarme DCP"},
                .minimum = {{"cn_mind", "Minimum alarm NOISE level", "Livello minimo CN d'allarme"},
                            kDigits,
                            &Panel::cn_mind,
                            &programme::ProgramRecord::noise_min},
                .maximum = {{"cn_maxd", "Maximum alarm NOISE level",
                             "Livello massimo CN d'allarme"},
                            kDigits,
                            &Panel::cn_maxd,
                            &programme::ProgramRecord::noise_max}}}},
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::noise,
     .place = kNoiseDigital,
     .box = {"meas_stated_2", "Enable DCP noise for digital CN",
             "Abilita misura DCP del noise per CN"},
     .result = "noisedlev",
     .shown = &Panel::noisedlev,
     .asked = measurement::AskedFor::noise},
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::ber,
     .place = kChber,
     .box = {"meas_stated_3", "Enable CHBER measurement", "Abilita misura CHBER"},
     .result = "bercomune",
     .shown = &Panel::bercomune,
     .asked = measurement::AskedFor::channel_ber,
     .label = "CHBER :",
     .alarm = {{.row = AlarmRow::chber,
                .place = 2,
                .box = {"alarm_stated_2", "Enable CHBER alarm", "Abilita allarme CHBER"},
                .minimum = {{"chber_mind", "Minimum alarm CHBER level",
                             "Livello minimo CHBER d'allarme"},
                            kRate,
                            &Panel::chber_mind,
                            &programme::ProgramRecord::chber_min},
                .maximum = {{"chber_maxd", "Maximum alarm CHBER level",
                             "Livello massimo CHBER d'allarme"},
                            kRate,
                            &Panel::chber_maxd,
                            &programme::ProgramRecord::chber_max}}}},
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::pvber,
     .place = kPvBer,
     .box = {"meas_stated_4", "Enable PvBER measurement", "Abilita misura PvBER"},
     .result = "pvbercomune",
     .shown = &Panel::pvbercomune,
     .asked = measurement::AskedFor::corrected_ber,
     .label = "PvBER :"},
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::cfo,
     .place = kCfo,
     .box = {"meas_stated_5", "Enable CFO measurement", "Abilita misura CFO"},
     .result = "cfcomune",
     .shown = &Panel::cfcomune,
     .asked = measurement::AskedFor::offset,
     .label = "CFO   :"},
    {.mode = measurement::MeasureMode::digital,
     .quantity = measurement::Quantity::mer,
     .place = kMer,
     .box = {"meas_stated_6", "Enable CFO measurement", "Abilita misura MER"},
     .result = "mercomune",
     .shown = &Panel::mercomune,
     .asked = measurement::AskedFor::mer,
     .label = "MER   :",
     .alarm = {{.row = AlarmRow::mer,
                .place = 3,
                .box = {"alarm_stated_3", "Enable MER alarm", "Abilita allarme MER"},
                .minimum = {{"mer_mind", "Minimum alarm MER level", "Livello minimo MER d'allarme"},
                            kSigned,
                            &Panel::mer_mind,
                            &programme::ProgramRecord::mer_min},
                .maximum = {{"mer_maxd", "Maximum alarm MER level",
                             "Livello massimo MER d'allarme"},
                            kSigned,
                            &Panel::mer_maxd,
                            &programme::ProgramRecord::mer_max}}}},
    // The meter has no command for it.
    {.mode = measurement::MeasureMode::digital,
     .quantity = {},
     .place = kRu,
     .box = {"meas_stated_7", "Enable RU measurement", "Abilita misura Noise Margin"},
     .result = "rucomune",
     .shown = &Panel::rucomune,
     .asked = {}},
    {.mode = measurement::MeasureMode::analog,
     .quantity = measurement::Quantity::level,
     .place = kLevel,
     .box = {"meas_statea_0", nullptr, "Abilita misura livello"},
     .result = "leva",
     .shown = &Panel::leva,
     .asked = measurement::AskedFor::level,
     .alarm = {{.row = AlarmRow::level_analog,
                .place = 0,
                .box = {"alarm_statea_0", "Enable level alarm", "Abilita allarme livello"},
                .minimum = {{"lev_mina", "Minimum alarm level", "Livello minimo d'allarme"},
                            kSigned,
                            &Panel::lev_mina,
                            &programme::ProgramRecord::lev_min},
                .maximum = {{"lev_maxa", "Maximum alarm level", "Livello massimo d'allarme"},
                            kDigits,
                            &Panel::lev_maxa,
                            &programme::ProgramRecord::lev_max}}}},
    {.mode = measurement::MeasureMode::analog,
     .quantity = measurement::Quantity::cn,
     .place = kCnAnalog,
     .box = {"meas_statea_1", nullptr, "Abilita misura livello C/N"},
     .result = "cnalev",
     .shown = &Panel::cnalev,
     .asked = measurement::AskedFor::cn,
     .alarm = {{.row = AlarmRow::cn_analog,
                .place = 1,
                .box = {"alarm_statea_1", "Enabled CN alarm", "Abilita allarme C/N"},
                .minimum = {{"cn_mina", "Minimuml alarm NOISE level",
                             "Livello minimo CN d'allarme"},
                            kDigits,
                            &Panel::cn_mina,
                            &programme::ProgramRecord::noise_min},
                .maximum = {{"cn_maxa", "Maximum alarm NOISE level",
                             "Livello massimo CN d'allarme"},
                            kDigits,
                            &Panel::cn_maxa,
                            &programme::ProgramRecord::noise_max}}}},
    {.mode = measurement::MeasureMode::analog,
     .quantity = measurement::Quantity::noise,
     .place = kNoiseAnalog,
     .box = {"meas_statea_2", nullptr, "Abilita misura livello del noise per C/N"},
     .result = "noisealev",
     .shown = &Panel::noisealev,
     .asked = measurement::AskedFor::noise},
};

}  // namespace

std::span<const Measure> measures() {
    return kMeasures;
}

const Measure& measure_of(AlarmRow row) {
    return *std::ranges::find_if(kMeasures, [row](const Measure& measure) {
        return measure.alarm && measure.alarm->row == row;
    });
}

bool is_ticked(const Measure& measure, const RealtimePanel& panel) {
    return measure.mode == measurement::MeasureMode::digital ? panel.meas_stated[measure.place]
                                                             : panel.meas_statea[measure.place];
}

bool is_alarm_ticked(const Measure& measure, const RealtimePanel& panel) {
    if (!measure.alarm) return false;
    return measure.mode == measurement::MeasureMode::digital
               ? panel.alarm_stated[measure.alarm->place]
               : panel.alarm_statea[measure.alarm->place];
}

std::vector<LimitBox> limit_boxes() {
    std::vector<LimitBox> boxes;
    for (const Measure& measure : kMeasures) {
        if (!measure.alarm) continue;
        boxes.push_back(measure.alarm->minimum);
        boxes.push_back(measure.alarm->maximum);
    }
    return boxes;
}

}  // namespace m47::realtime
