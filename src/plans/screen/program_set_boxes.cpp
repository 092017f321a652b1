// SPDX-License-Identifier: GPL-3.0-or-later
// What the boxes, lists and menu entries of the plan screen do.
#include <array>

#include "key_filter.h"
#include "plan_keys.h"
#include "program_checks.h"
#include "program_set.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

constexpr qsizetype kOscillatorLength = 6;

}  // namespace

void ProgramSet::connect_boxes() {
    for (QLineEdit* limit : {ui_->lev_mintxt, ui_->lev_maxtxt})
        connect(limit, &QLineEdit::textEdited, this, [this] { typed_offset_ = offset(); });
    const auto check = [this](QLineEdit* box, const char* name, auto on_enter, auto on_leaving) {
        when(box, &QLineEdit::returnPressed, name, on_enter);
        filters_.push_back(std::make_unique<LeaveFilter>(
            box, [this, name, on_leaving] { handle(name, on_leaving); }));
    };
    check(
        ui_->prog_num, "prog_num_KeyPress",
        [this] {
            check_prog_num();
            store_as_new();
        },
        [this] { check_prog_num(); });
    const auto frequency = [this] { sat_freq_KeyPress(); };
    check(ui_->sat_freq_txt, "sat_freq_KeyPress", frequency, frequency);
    const auto rate = [this] {
        ui_->srqpsk_txt->setText(checked_symbol_rate(ui_->srqpsk_txt->text()));
    };
    check(ui_->srqpsk_txt, "srqpsk_txt_KeyPress", rate, rate);
    check(
        ui_->chbw_txt, "chbw_txt_KeyPress",
        [this] { ui_->chbw_txt->setText(bandwidth_on_enter(ui_->chbw_txt->text())); },
        [this] { ui_->chbw_txt->setText(bandwidth_on_leaving(ui_->chbw_txt->text())); });
}

void ProgramSet::connect_oscillators() {
    QLineEdit* box = ui_->ol_optval->lineEdit();
    // What is typed belongs to the chosen entry: neither completion nor an equal entry elsewhere
    // may choose another one.
    ui_->ol_optval->setCompleter(nullptr);
    disconnect(box, SIGNAL(editingFinished()), ui_->ol_optval, nullptr);
    connect(box, &QLineEdit::textEdited, this, [box](const QString& text) {
        if (text.size() > kOscillatorLength) box->setText(text.left(kOscillatorLength));
    });
    when(box, &QLineEdit::returnPressed, "ol_optval_KeyPress", [this] { ol_optval_KeyPress(); });
    filters_.push_back(std::make_unique<LeaveFilter>(ui_->ol_optval, [this] {
        handle("ol_optval_LostFocus", [this] { sat_freq_KeyPress(); });
    }));
    when(ui_->ol_optval, &QComboBox::activated, "ol_optval_Click", [this] { sat_freq_KeyPress(); });
    for (QRadioButton* option : {ui_->ol_opt_0, ui_->ol_opt_1})
        when(option, &QRadioButton::clicked, "ol_opt_Click", [this] {
            boxes_.follow_tuning();
            sat_freq_KeyPress();
        });
}

void ProgramSet::connect_lists() {
    for (QComboBox* list : {ui_->diseqc_cmd, ui_->diseqc_cmd2, ui_->k22_state, ui_->lnb_state})
        new KeyFilter(list, QStringLiteral(" "));
    filters_.push_back(std::make_unique<TypedKeyFilter>(ui_->logger_pos, [this] {
        handle("logger_pos_KeyPress", [this] { store_record(true); });
    }));
    connect(ui_->cmd_dig, &QCheckBox::toggled, this, [this] { boxes_.follow_digital(); });
}

void ProgramSet::connect_menu() {
    const std::array<QAction*, 3> units{ui_->cmdlev_0, ui_->cmdlev_1, ui_->cmdlev_2};
    for (std::size_t k = 0; k < units.size(); ++k)
        connect(units[k], &QAction::triggered, this,
                [this, k] { cmdlev_Click(static_cast<int>(k)); });
    const auto entry = [this](QAction* action, const char* name, void (ProgramSet::*handler)()) {
        when(action, &QAction::triggered, name, [this, handler] { (this->*handler)(); });
    };
    entry(ui_->cmdimport, "cmdimport_Click", &ProgramSet::cmdimport_Click);
    entry(ui_->cmdexport, "cmdexport_Click", &ProgramSet::cmdexport_Click);
    entry(ui_->cmdcopyprog, "cmdcopyprog_Click", &ProgramSet::cmdcopyprog_Click);
    entry(ui_->cmdcopyplan, "cmdcopyplan_Click", &ProgramSet::cmdcopyplan_Click);
}

void ProgramSet::check_prog_num() {
    ui_->prog_num->setText(checked_program_number(ui_->prog_num->text()));
}

void ProgramSet::sat_freq_KeyPress() {
    ui_->sat_freq_txt->setText(checked_frequency(ui_->sat_freq_txt->text(),
                                                 ui_->ol_opt_0->isChecked(), boxes_.oscillator()));
}

void ProgramSet::ol_optval_KeyPress() {
    boxes_.set_oscillator(checked_oscillator(boxes_.oscillator()));
    if (lacks_program()) return;
    const Outcome outcome = unless_changed([this] {
        sets_.store_oscloc(boxes_.read(), boxes_.oscillator(), known_);
        return Outcome::stored;
    });
    if (outcome == Outcome::stored) store_record(true);
}

void ProgramSet::cmdlev_Click(int index) {
    program_.unit_index = index;
    show_unit();
}

void ProgramSet::show_unit() {
    const std::array<QAction*, 3> units{ui_->cmdlev_0, ui_->cmdlev_1, ui_->cmdlev_2};
    for (std::size_t k = 0; k < units.size(); ++k)
        units[k]->setChecked(program_.unit_index == static_cast<int>(k));
}

}  // namespace m47::plans
