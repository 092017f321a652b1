// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_boxes.h"

#include <algorithm>

#include "diseqc_commands.h"
#include "fields.h"
#include "numbers.h"
#include "program_limits.h"
#include "ui_program_set.h"

namespace m47 {
namespace {

/// Nothing chosen counts as the first entry.
int chosen_entry(const QComboBox* list) {
    return std::max(0, list->currentIndex());
}

}  // namespace

void PlanBoxes::fill_lists() {
    ui_.logger_pos->clear();
    ui_.logger_pos->addItem(QString());
    for (int line = 0; line <= kLastLoggerLine; ++line)
        ui_.logger_pos->addItem(format_number(line, "00"));
    for (QComboBox* list : {ui_.diseqc_cmd, ui_.diseqc_cmd2}) {
        list->clear();
        for (const char* entry : kDiseqcCommands) list->addItem(QString::fromLatin1(entry));
    }
}

void PlanBoxes::show(const ProgramRecord& record) {
    ui_.prog_num->setText(record.pg_num.trimmed());
    ui_.sat_freq_txt->setText(record.frequenza);
    (record.loc_osc ? ui_.ol_opt_0 : ui_.ol_opt_1)->setChecked(true);
    ui_.ol_optval->setCurrentIndex(static_cast<int>(oscillator_entry(record)));
    ui_.cmd_dig->setChecked(record.sat_ad);
    ui_.srqpsk_txt->setText(record.qpsk_symbolrate);
    ui_.chbw_txt->setText(record.satchbw);
    ui_.diseqc_cmd->setCurrentIndex(record.diseqc_cmd);
    ui_.diseqc_cmd2->setCurrentIndex(record.diseqc_cmd2);
    ui_.lnb_state->setCurrentIndex(record.lnb_volt);
    ui_.k22_state->setCurrentIndex(record.K22);
    show_position(record.logger_pos.trimmed());
    ui_.logger_state->setChecked(record.logger_state);
    ui_.monitor_state->setChecked(record.monitor_state);
    ui_.lev_mintxt->setText(record.lev_min);
    ui_.lev_maxtxt->setText(record.lev_max);
    ui_.cn_mintxt->setText(record.noise_min);
    ui_.cn_maxtxt->setText(record.noise_max);
    ui_.chber_mintxt->setText(record.chber_min);
    ui_.chber_maxtxt->setText(record.chber_max);
    ui_.mer_mintxt->setText(record.mer_min);
    ui_.mer_maxtxt->setText(record.mer_max);
    follow_tuning();
    follow_digital();
}

/// A position that the list does not offer, from a file made elsewhere, is shown as it is.
void PlanBoxes::show_position(const QString& position) {
    constexpr int kEntries = kLastLoggerLine + 2;
    while (ui_.logger_pos->count() > kEntries) ui_.logger_pos->removeItem(kEntries);
    if (ui_.logger_pos->findText(position) < 0) ui_.logger_pos->addItem(position);
    ui_.logger_pos->setCurrentIndex(ui_.logger_pos->findText(position));
}

ProgramRecord PlanBoxes::read() const {
    ProgramRecord record;
    record.pg_num = ui_.prog_num->text();
    record.frequenza = ui_.sat_freq_txt->text();
    record.loc_osc = ui_.ol_opt_0->isChecked();
    record.loc_osc0 = chosen_entry(ui_.ol_optval);
    record.sat_ad = ui_.cmd_dig->isChecked();
    record.qpsk_symbolrate = ui_.srqpsk_txt->text();
    record.satchbw = ui_.chbw_txt->text();
    record.diseqc_cmd = ui_.diseqc_cmd->currentIndex();
    record.diseqc_cmd2 = ui_.diseqc_cmd2->currentIndex();
    record.lnb_volt = chosen_entry(ui_.lnb_state);
    record.K22 = chosen_entry(ui_.k22_state);
    record.logger_pos = ui_.logger_pos->currentText();
    record.logger_state = ui_.logger_state->isChecked();
    record.monitor_state = ui_.monitor_state->isChecked();
    record.lev_min = ui_.lev_mintxt->text();
    record.lev_max = ui_.lev_maxtxt->text();
    record.noise_min = ui_.cn_mintxt->text();
    record.noise_max = ui_.cn_maxtxt->text();
    record.chber_min = ui_.chber_mintxt->text();
    record.chber_max = ui_.chber_maxtxt->text();
    record.mer_min = ui_.mer_mintxt->text();
    record.mer_max = ui_.mer_maxtxt->text();
    return record;
}

void PlanBoxes::load_oscloc(const Oscillators& oscillators) {
    const int chosen = chosen_entry(ui_.ol_optval);
    ui_.ol_optval->clear();
    for (const QString& oscillator : oscillators) ui_.ol_optval->addItem(oscillator);
    ui_.ol_optval->setCurrentIndex(chosen);
}

QString PlanBoxes::oscillator() const {
    return ui_.ol_optval->currentText();
}

void PlanBoxes::set_oscillator(const QString& text) {
    ui_.ol_optval->setItemText(chosen_entry(ui_.ol_optval), text);
    ui_.ol_optval->setEditText(text);
}

void PlanBoxes::follow_tuning() {
    ui_.ol_optval->setEnabled(ui_.ol_opt_1->isChecked());
}

void PlanBoxes::follow_digital() {
    ui_.dig_opt->setVisible(ui_.cmd_dig->isChecked());
    ui_.dig_opt->setEnabled(ui_.cmd_dig->isChecked());
}

void associa_user_sc(QListWidget* list, const Recordset& configurazione) {
    list->clear();
    for (const char* entry : field::kUserSwitches) list->addItem(configurazione.text(entry));
}

}  // namespace m47
