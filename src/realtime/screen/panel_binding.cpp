// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel_binding.h"

#include <QAction>
#include <QPushButton>

#include "fault.h"
#include "measures.h"
#include "time_delays.h"

namespace m47 {
namespace {

QColor lamp_colour(LampColour colour) {
    switch (colour) {
        case LampColour::red:
            return QColor::fromRgb(kRed);
        case LampColour::green:
            return QColor::fromRgb(kGreen);
        case LampColour::grey:
            break;
    }
    return QColor::fromRgb(kGrey);
}

}  // namespace

template <class Control>
Control* PanelBinding::control(const char* name) const {
    auto* found = screen_->findChild<Control*>(QString::fromLatin1(name));
    if (!found) throw Fault(std::string("the screen has no control ") + name);
    return found;
}

PanelBinding::PanelBinding(QMainWindow* screen, RealtimePanel& panel,
                           const CorrectedBehaviour& choices)
    : screen_(screen), panel_(panel), choices_(choices) {
    bind_tuning();
    bind_diseqc();
    bind_measures();
    bind_frames();
    bind_keys();
    bind_menu();
    show();
}

void PanelBinding::show() {
    for (const auto& show_one : shows_) show_one();
}

void PanelBinding::bind_text(const char* name, QString& text) {
    auto* box = control<QLineEdit>(name);
    QObject::connect(box, &QLineEdit::textChanged, screen_,
                     [&text](const QString& typed) { text = typed; });
    shows_.emplace_back([box, &text] {
        if (box->text() != text) box->setText(text);
    });
}

void PanelBinding::bind_result(const char* name, const QString& text) {
    auto* label = control<QLabel>(name);
    shows_.emplace_back([label, &text] { label->setText(text); });
}

void PanelBinding::bind_list(const char* name, int& index) {
    auto* list = control<QComboBox>(name);
    QObject::connect(list, &QComboBox::currentIndexChanged, screen_,
                     [&index](int chosen) { index = chosen; });
    shows_.emplace_back([list, &index] { list->setCurrentIndex(index); });
}

void PanelBinding::bind_visible(const char* name, const bool& visible) {
    auto* widget = control<QWidget>(name);
    shows_.emplace_back([widget, &visible] { widget->setVisible(visible); });
}

void PanelBinding::bind_enabled(const char* name, const bool& enabled) {
    auto* widget = control<QWidget>(name);
    shows_.emplace_back([widget, &enabled] { widget->setEnabled(enabled); });
}

template <class Button, class Flags>
void PanelBinding::bind_buttons(const char* name, Flags& flags) {
    const ControlArray<Button> buttons(screen_, QString::fromLatin1(name));
    if (buttons.size() != flags.size())
        throw Fault(std::string("control array ") + name + " has another size");
    for (std::size_t k = 0; k < flags.size(); ++k) {
        Button* button = buttons[k];
        bool& flag = flags[k];
        QObject::connect(button, &Button::toggled, screen_, [&flag](bool on) { flag = on; });
        shows_.emplace_back([button, &flag] {
            if (button->isChecked() != flag && (flag || !button->autoExclusive()))
                button->setChecked(flag);
        });
    }
}

void PanelBinding::bind_lamps() {
    const ControlArray<Lamp> lamps(screen_, QStringLiteral("alarm_light"));
    for (std::size_t k = 0; k < panel_.alarm_light.size(); ++k)
        shows_.emplace_back(
            [this, lamp = lamps[k], k] { lamp->set_colour(lamp_colour(panel_.alarm_light[k])); });
}

void PanelBinding::bind_tuning() {
    bind_text("fsat", panel_.fsat);
    bind_text("ol_freq", panel_.ol_freq);
    bind_text("srqpsk_txt", panel_.srqpsk_txt);
    bind_text("chbws", panel_.chbws);
    bind_buttons<QRadioButton>("locopt", panel_.locopt);
    bind_enabled("ol_freq", panel_.ol_freq_enabled);
    bind_list("satlnb_state", panel_.satlnb_state);
    bind_list("k22_state", panel_.k22_state);
    bind_list("lnb_supply", panel_.lnb_supply);
    bind_list("atten_list", panel_.atten_list);
    auto* delays = control<QComboBox>("time_delay");
    for (const TimeDelay& delay : kTimeDelays) delays->addItem(QString::fromLatin1(delay.entry));
    bind_list("time_delay", panel_.time_delay);
    bind_result("time_act", panel_.time_act);
    bind_result("time_left", panel_.time_left);
    auto* state = control<Lamp>("time_state");
    shows_.emplace_back([this, state] { state->set_colour(lamp_colour(panel_.time_state)); });
    auto* start = control<QPushButton>("cmdstart");
    shows_.emplace_back([this, start] { start->setText(panel_.cmdstart); });
    bind_text("grp_name", panel_.grp_name);
    bind_result("prog_num", panel_.prog_num);
}

void PanelBinding::bind_diseqc() {
    bind_text("storesat", panel_.storesat);
    bind_text("recallsat", panel_.recallsat);
    bind_text("starteast_s", panel_.starteast_s);
    bind_text("starteast_t", panel_.starteast_t);
    bind_text("startwest_s", panel_.startwest_s);
    bind_text("startwest_t", panel_.startwest_t);
    bind_box_colour("starteast_s", panel_.starteast_s_colour);
    bind_box_colour("starteast_t", panel_.starteast_t_colour);
    bind_box_colour("startwest_s", panel_.startwest_s_colour);
    bind_box_colour("startwest_t", panel_.startwest_t_colour);
}

void PanelBinding::bind_box_colour(const char* name, const LampColour& colour) {
    auto* box = control<QLineEdit>(name);
    shows_.emplace_back([box, &colour] {
        const QColor wanted = lamp_colour(colour);
        QPalette colours = box->palette();
        if (colours.color(QPalette::Base) == wanted) return;
        colours.setColor(QPalette::Base, wanted);
        // Black can be read on both colours, whatever the palette of the desktop.
        colours.setColor(QPalette::Text, Qt::black);
        box->setPalette(colours);
    });
}

void PanelBinding::bind_measures() {
    bind_buttons<QCheckBox>("meas_stated", panel_.meas_stated);
    bind_buttons<QCheckBox>("meas_statea", panel_.meas_statea);
    bind_buttons<QCheckBox>("alarm_stated", panel_.alarm_stated);
    bind_buttons<QCheckBox>("alarm_statea", panel_.alarm_statea);
    bind_lamps();
    const ControlArray<QCheckBox> boxes(screen_, QStringLiteral("meas_stated"));
    for (std::size_t k = 0; k < boxes.size(); ++k)
        shows_.emplace_back(
            [this, box = boxes[k], k] { box->setEnabled(panel_.meas_stated_enabled[k]); });
    bind_enabled("rucomune", panel_.rucomune_enabled);
    for (const Measure& measure : measures()) bind_result(measure.result, panel_.*measure.shown);
    for (const LimitBox& limit : limit_boxes()) {
        bind_text(limit.control.name, panel_.*limit.text);
        bind_enabled(limit.control.name, panel_.limits_enabled);
    }
}

void PanelBinding::bind_frames() {
    bind_visible("sat_opt", panel_.sat_opt_visible);
    bind_enabled("sat_opt", panel_.sat_opt_enabled);
    bind_visible("satdigmea", panel_.satdigmea_visible);
    bind_visible("analogresults", panel_.analogresults_visible);
    bind_visible("digitalresults", panel_.digitalresults_visible);
    bind_visible("timer_opt", panel_.timer_opt_visible);
    for (const char* name : {"grp_label", "grp_name", "pglabel", "prog_num"})
        bind_visible(name, panel_.plan_controls_visible);
}

void PanelBinding::bind_keys() {
    const auto bind_key = [this](const char* name, const bool& visible) {
        auto* key = control<QAction>(name);
        shows_.emplace_back([key, &visible] { key->setVisible(visible); });
    };
    for (const char* name : {"previous", "next", "previous_prog", "next_prog", "multiple_acq"})
        bind_key(name, panel_.plan_keys_visible);
    bind_key("single_acq", panel_.single_acq_visible);
}

void PanelBinding::bind_menu() {
    const ControlArray<QAction> units(screen_, QStringLiteral("cmdlev"));
    for (std::size_t k = 0; k < units.size(); ++k)
        shows_.emplace_back(
            [this, unit = units[k], k] { unit->setChecked(panel_.cmdlev == static_cast<int>(k)); });
    bind_text("noise_freqa", panel_.noise_freqa);
    bind_text("noise_freqd", panel_.noise_freqd);
    for (const char* name : {"noise_labela", "noise_freqa", "noise_labeld", "noise_freqd"})
        bind_visible(name, choices_.complete);
}

}  // namespace m47
