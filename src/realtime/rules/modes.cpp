// SPDX-License-Identifier: GPL-3.0-or-later
#include "modes.h"

#include <algorithm>
#include <utility>

#include "box_numbers.h"
#include "commands.h"
#include "fault.h"
#include "measures.h"
#include "numbers.h"
#include "program_row.h"
#include "tables.h"
#include "time_delays.h"

namespace m47::realtime {
namespace {

constexpr int kTone22kOff = 1;  // the second entry of `k22_state`

constexpr Bilingual kRateLost{"Symbol rate not kept: type it again",
                              "Symbol rate non conservata: scriverla di nuovo"};

constexpr Bilingual kNoPrograms{
    "The plan has no programs: make one on the plan screen.",
    "Il piano non ha programmi: crearne uno nella schermata dei piani."};
constexpr Bilingual kNoOscillators{
    "The plan has no row for its oscillators: store one of its programs on the plan screen.",
    "Il piano non ha la riga degli oscillatori: memorizzare un suo programma nella schermata dei "
    "piani."};

/// While it lives the controls change without sending their commands.
class RecallGuard {
  public:
    explicit RecallGuard(RealtimeState& state) : state_(state) { state_.recall_in_progress = true; }
    ~RecallGuard() { state_.recall_in_progress = false; }
    RecallGuard(const RecallGuard&) = delete;
    RecallGuard& operator=(const RecallGuard&) = delete;

  private:
    RealtimeState& state_;
};

/// The unit index in an answer: what is no number, or none of the meter's three units, is 0.
int unit_of(const QString& reply) {
    const int index = static_cast<int>(std::clamp(link::meter_value(reply), -1.0, 3.0));
    return index >= kDbuv && index <= kDbm ? index : kDbuv;
}

}  // namespace

void Modes::Form_Load() {
    state_.field_separator = u'\t';
    panel_.repaint();
    {
        const RecallGuard guard(state_);
        link_.send(link::command::kMeasure);
        link_.send(link::command::kFullAttenuation);
        panel_.satlnb_state = 0;
        configurazione_prmt();
        read_unit();
        panel_.repaint();
        link_.send(link::command::kNoOscillator);
        link_.send(link::command::kFrequency + QStringLiteral(" 1000"));
        panel_.time_delay = 0;
        time_delay_Click();
        state_.acq_kind = 1;
        state_.plan_run_active = false;
    }
    if (program_.corrected.complete) tuning_.start_noise_boxes();
    panel_.repaint();
}

void Modes::read_unit() {
    // With no answer the unit that the program works in stays.
    const std::optional<QString> unit = link_.ask(link::command::query(link::command::kUnit));
    cmdlev_Click(unit ? unit_of(*unit) : program_.unit_index);
}

void Modes::meter_came() {
    const RecallGuard guard(state_);
    read_unit();
    panel_.repaint();
}

void Modes::Form_Activate() {
    link_.send(link::command::kFullAttenuation);
    // By default always back to analog, though the frame of the digital measures stays.
    const bool digital = program_.corrected.keep_mode && panel_.satdigmea_visible;
    state_.meas_mode = digital ? kDigitalMode : kAnalogMode;
    panel_.digitalresults_visible = digital;
    panel_.analogresults_visible = !digital;
    panel_.repaint();
}

void Modes::analogmode() {
    state_.meas_mode = kAnalogMode;
    panel_.satdigmea_visible = false;
    panel_.analogresults_visible = true;
    panel_.digitalresults_visible = false;
}

void Modes::digitalmode() {
    if (!panel_.sat_opt_visible) return;
    panel_.satdigmea_visible = true;
    state_.meas_mode = kDigitalMode;
    for (const int measure : {kChber, kPvBer, kCfo, kMer})
        panel_.meas_stated_enabled[static_cast<std::size_t>(measure)] = true;
    panel_.meas_stated_enabled[kRu] = false;
    panel_.rucomune_enabled = false;
    if (!link_.commands_suspended) configurazione_prmt();
    panel_.digitalresults_visible = true;
    panel_.analogresults_visible = false;
}

void Modes::configurazione_prmt() {
    diseqc_.starteast_s_Click();
    panel_.repaint();
    diseqc_.startwest_s_Click();
    panel_.repaint();
    link_.send(link::command::kToneOff);
    panel_.k22_state = kTone22kOff;
    if (!link_.can_send()) return;
    const std::optional<QString> rate = link_.ask(link::command::query(link::command::kSymbolRate));
    tuning_.show_answer(rate, panel_.srqpsk_txt, kRateLost);
    panel_.srqpsk_txt = panel_.srqpsk_txt.trimmed();
}

void Modes::crea_records_realtime() {
    rs_programs = database_.of_plan(QLatin1String(db::table::kProgrammi), panel_.grp_name);
    rs_config = database_.of_plan(QLatin1String(db::table::kConfigurazione), panel_.grp_name);
    if (rs_programs->empty()) throw Fault(kNoPrograms);
    if (rs_config->empty()) throw Fault(kNoOscillators);
    rs_programs->move_first();
    rs_config->move_first();
    mostra_record_realtime();
    rs_programs->move_first();
    rs_config->move_first();
}

void Modes::reread_plan() {
    if (!rs_programs) return;
    db::Recordset programs =
        database_.of_plan(QLatin1String(db::table::kProgrammi), panel_.grp_name);
    db::Recordset config =
        database_.of_plan(QLatin1String(db::table::kConfigurazione), panel_.grp_name);
    // Only now nothing can fail any more.
    rs_programs = std::move(programs);
    rs_config = std::move(config);
    if (rs_programs->empty()) throw Fault(kNoPrograms);
}

void Modes::mostra_record_realtime() {
    try {
        if (!rs_programs || !programme::ProgramRow(*rs_programs).monitored()) return;
        panel_.prog_num = programme::ProgramRow(*rs_programs).pg_num();
        {
            const RecallGuard guard(state_);
            recall_tuning();
        }
        recall_limits();
        panel_.results_of_before = true;
    } catch (const Fault&) {
        // The controls stay as far as they were set.
    }
    panel_.repaint();
}

void Modes::recall_tuning() {
    const programme::ProgramRow program(*rs_programs);
    panel_.fsat = program.plain(&programme::ProgramRecord::frequenza);
    const bool direct = program.direct();
    if (direct != panel_.locopt[0]) {
        panel_.locopt = {direct, !direct};
        tuning_.locopt_Click(direct ? 0 : 1);
    }
    const std::optional<int> entry = program.oscillator();
    // The third and fourth are sent by a pass that tunes everything, and shown by it.
    if (entry && *entry <= 1)
        panel_.ol_freq = oscillators_of_plan()[static_cast<std::size_t>(*entry)];
    panel_.satlnb_state = program.whole(&programme::ProgramRecord::lnb_volt);
    panel_.k22_state = program.whole(&programme::ProgramRecord::K22);
    const std::optional<bool> digital = program.digital();
    if (digital == false) analogmode();
    if (digital == true) digitalmode();
    panel_.srqpsk_txt = program.text(&programme::ProgramRecord::qpsk_symbolrate);
    if (program_.corrected.plan_width) recall_bandwidth();
    tuning_.start_noise_boxes();
}

double Modes::bandwidth_of_program() const {
    return programme::ProgramRow(*rs_programs).number(&programme::ProgramRecord::satchbw);
}

void Modes::recall_bandwidth() {
    const double mhz = bandwidth_of_program();
    if (mhz > 0) panel_.chbws = programme::bandwidth_box_text(mhz);
}

programme::Oscillators Modes::oscillators_of_plan() const {
    return programme::read_oscillators(*rs_config);
}

void Modes::recall_limits() {
    const programme::ProgramRow program(*rs_programs);
    for (const LimitBox& limit : limit_boxes()) panel_.*limit.text = program.text(limit.stored);
}

void Modes::cmdlev_Click(int index) {
    panel_.cmdlev = index;
    // What is shown was measured in the unit before.
    if (panel_.without_level()) panel_.level_unit = unit_name(index);
    if (!state_.recall_in_progress)
        link_.send(link::command::kUnit + link::format_number(index, " 00"));
    program_.unit_index = index;
}

void Modes::time_delay_Click() {
    const int index = panel_.time_delay;
    if (index < 0 || index >= static_cast<int>(kTimeDelays.size())) return;
    state_.ticks_left = kTimeDelays[static_cast<std::size_t>(index)].seconds;
}

}  // namespace m47::realtime
