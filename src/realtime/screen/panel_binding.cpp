// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel_binding.h"

#include <QCheckBox>
#include <initializer_list>

#include "control_array.h"
#include "fault.h"
#include "lamp_colours.h"
#include "measures.h"
#include "read_out.h"
#include "time_delays.h"
#include "ui_realtime.h"

namespace m47::realtime {
namespace {

/// A control that the table of measures names. The form has it, or the screen does not open.
template <class Control>
Control* named(const QWidget* screen, const char* name) {
    auto* found = screen->findChild<Control*>(QString::fromLatin1(name));
    if (!found) throw Fault(std::string("the screen has no control ") + name);
    return found;
}

}  // namespace

void PanelBinding::join() {
    join_tuning();
    join_acquisition();
    ui_.diseqc->join(panel_, joints_);
    join_measures();
    join_limits();
    join_frames();
    join_keys();
    join_menu();
}

void PanelBinding::join_tuning() {
    joints_.text(ui_.fsat, panel_.fsat);
    joints_.text(ui_.ol_freq, panel_.ol_freq);
    joints_.text(ui_.srqpsk_txt, panel_.srqpsk_txt);
    joints_.text(ui_.chbws, panel_.chbws);
    joints_.ticked(ui_.locopt_0, panel_.locopt[0]);
    joints_.ticked(ui_.locopt_1, panel_.locopt[1]);
    joints_.enabled(ui_.ol_freq, panel_.ol_freq_enabled);
    joints_.entry(ui_.satlnb_state, panel_.satlnb_state);
    joints_.entry(ui_.k22_state, panel_.k22_state);
    joints_.entry(ui_.lnb_supply, panel_.lnb_supply);
    joints_.entry(ui_.atten_list, panel_.atten_list);
}

void PanelBinding::join_acquisition() {
    for (const TimeDelay& delay : kTimeDelays)
        ui_.time_delay->addItem(QString::fromLatin1(delay.entry));
    joints_.entry(ui_.time_delay, panel_.time_delay);
    joints_.text(ui_.time_act, panel_.time_act);
    joints_.text(ui_.time_left, panel_.time_left);
    joints_.also([this] { ui_.time_state->set_colour(shown_colour(panel_.time_state)); });
    joints_.text(ui_.cmdstart, panel_.cmdstart);
    joints_.text(ui_.grp_name, panel_.grp_name);
    joints_.text(ui_.prog_num, panel_.prog_num);
}

template <class Flags>
void PanelBinding::join_ticks(const char* name, Flags& flags) {
    const ControlArray<QCheckBox> boxes(screen_, QString::fromLatin1(name));
    if (boxes.size() != flags.size())
        throw Fault(std::string("control array ") + name + " has another size");
    for (std::size_t k = 0; k < flags.size(); ++k) joints_.ticked(boxes[k], flags[k]);
}

void PanelBinding::join_measures() {
    join_ticks("meas_stated", panel_.meas_stated);
    join_ticks("meas_statea", panel_.meas_statea);
    join_ticks("alarm_stated", panel_.alarm_stated);
    join_ticks("alarm_statea", panel_.alarm_statea);
    join_lamps();
    const ControlArray<QCheckBox> boxes(screen_, QStringLiteral("meas_stated"));
    for (std::size_t k = 0; k < boxes.size(); ++k)
        joints_.enabled(boxes[k], panel_.meas_stated_enabled[k]);
    joints_.enabled(ui_.rucomune, panel_.rucomune_enabled);
    for (const Measure& measure : measures()) join_result(measure);
}

void PanelBinding::join_lamps() {
    const ControlArray<Lamp> lamps(screen_, QStringLiteral("alarm_light"));
    for (std::size_t k = 0; k < panel_.alarm_light.size(); ++k)
        joints_.also([this, lamp = lamps[k], k] {
            lamp->set_colour(shown_colour(panel_.alarm_light[k]));
            lamp->set_dimmed(panel_.results_of_before);
        });
}

void PanelBinding::join_result(const Measure& measure) {
    auto* result = named<ReadOut>(screen_, measure.result);
    joints_.text(result, panel_.*measure.shown);
    joints_.also([this, result] { result->set_dimmed(panel_.results_of_before); });
    // Levels alone are asked in a unit that the user chooses.
    using measurement::Quantity;
    if (measure.quantity != Quantity::level && measure.quantity != Quantity::noise) return;
    auto* unit = named<QLabel>(screen_, std::string(measure.result).append("_unit").c_str());
    joints_.text(unit, panel_.level_unit);
}

void PanelBinding::join_limits() {
    for (const LimitBox& limit : limit_boxes()) {
        auto* box = named<QLineEdit>(screen_, limit.control.name);
        joints_.text(box, panel_.*limit.text);
        joints_.enabled(box, panel_.limits_enabled);
    }
}

void PanelBinding::join_frames() {
    joints_.visible(ui_.sat_opt, panel_.sat_opt_visible);
    joints_.enabled(ui_.sat_opt, panel_.sat_opt_enabled);
    joints_.visible(ui_.satdigmea, panel_.satdigmea_visible);
    joints_.visible(ui_.analogresults, panel_.analogresults_visible);
    joints_.visible(ui_.digitalresults, panel_.digitalresults_visible);
    joints_.visible(ui_.timer_opt, panel_.timer_opt_visible);
    for (QWidget* control :
         std::initializer_list<QWidget*>{ui_.grp_label, ui_.grp_name, ui_.pglabel, ui_.prog_num})
        joints_.visible(control, panel_.plan_controls_visible);
}

void PanelBinding::join_keys() {
    for (QAction* key :
         {ui_.previous, ui_.next, ui_.previous_prog, ui_.next_prog, ui_.multiple_acq})
        joints_.visible(key, panel_.plan_keys_visible);
    joints_.visible(ui_.single_acq, panel_.single_acq_visible);
    joints_.also([this] {
        ui_.analogico->setChecked(panel_.analogresults_visible);
        ui_.qpsk->setChecked(panel_.digitalresults_visible);
        ui_.single->setChecked(!panel_.plan_controls_visible);
        ui_.group->setChecked(panel_.plan_controls_visible);
    });
}

void PanelBinding::join_menu() {
    joints_.also([this] {
        ui_.cmdlev_0->setChecked(panel_.cmdlev == 0);
        ui_.cmdlev_1->setChecked(panel_.cmdlev == 1);
        ui_.cmdlev_2->setChecked(panel_.cmdlev == 2);
    });
    joints_.text(ui_.noise_freqa, panel_.noise_freqa);
    joints_.text(ui_.noise_freqd, panel_.noise_freqd);
    for (QWidget* control : std::initializer_list<QWidget*>{ui_.noise_labela, ui_.noise_freqa,
                                                            ui_.noise_labeld, ui_.noise_freqd})
        joints_.visible(control, choices_.complete);
}

}  // namespace m47::realtime
