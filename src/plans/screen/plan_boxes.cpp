// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_boxes.h"

#include <algorithm>

#include "diseqc_commands.h"
#include "fields.h"
#include "numbers.h"
#include "program_limits.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

/// Nothing chosen counts as the first entry.
int chosen_entry(const QComboBox* list) {
    return std::max(0, list->currentIndex());
}

}  // namespace

void PlanBoxes::fill_lists() {
    ui_.logger_pos->clear();
    ui_.logger_pos->addItem(QString());
    for (int line = 0; line <= programme::kLastLoggerLine; ++line)
        ui_.logger_pos->addItem(link::format_number(line, "00"));
    for (QComboBox* list : {ui_.diseqc_cmd, ui_.diseqc_cmd2}) {
        list->clear();
        for (const char* entry : programme::kDiseqcCommands)
            list->addItem(QString::fromLatin1(entry));
    }
}

void PlanBoxes::join() {
    programme::ProgramRecord& record = record_;
    joints_.text(ui_.prog_num, record.pg_num);
    joints_.text(ui_.sat_freq_txt, record.frequenza);
    joints_.either(ui_.ol_opt_0, ui_.ol_opt_1, record.loc_osc);
    joints_.entry(ui_.ol_optval, record.loc_osc0, 0);
    joints_.ticked(ui_.cmd_dig, record.sat_ad);
    joints_.text(ui_.srqpsk_txt, record.qpsk_symbolrate);
    joints_.text(ui_.chbw_txt, record.satchbw);
    joints_.entry(ui_.diseqc_cmd, record.diseqc_cmd);
    joints_.entry(ui_.diseqc_cmd2, record.diseqc_cmd2);
    joints_.entry(ui_.lnb_state, record.lnb_volt, 0);
    joints_.entry(ui_.k22_state, record.K22, 0);
    joints_.text(ui_.logger_pos, record.logger_pos);
    joints_.ticked(ui_.logger_state, record.logger_state);
    joints_.ticked(ui_.monitor_state, record.monitor_state);
    joints_.text(ui_.lev_mintxt, record.lev_min);
    joints_.text(ui_.lev_maxtxt, record.lev_max);
    joints_.text(ui_.cn_mintxt, record.noise_min);
    joints_.text(ui_.cn_maxtxt, record.noise_max);
    joints_.text(ui_.chber_mintxt, record.chber_min);
    joints_.text(ui_.chber_maxtxt, record.chber_max);
    joints_.text(ui_.mer_mintxt, record.mer_min);
    joints_.text(ui_.mer_maxtxt, record.mer_max);
}

void PlanBoxes::show(const programme::ProgramRecord& record) {
    record_ = record;
    record_.pg_num = record.pg_num.trimmed();
    record_.loc_osc0 = static_cast<int>(programme::oscillator_entry(record));
    record_.logger_pos = record.logger_pos.trimmed();
    offer_position(record_.logger_pos);
    joints_.show();
    follow_tuning();
    follow_digital();
}

/// A position that the list does not have, from a file made elsewhere, is shown as it is.
void PlanBoxes::offer_position(const QString& position) {
    constexpr int kEntries = programme::kLastLoggerLine + 2;
    while (ui_.logger_pos->count() > kEntries) ui_.logger_pos->removeItem(kEntries);
    if (ui_.logger_pos->findText(position) < 0) ui_.logger_pos->addItem(position);
}

programme::ProgramRecord PlanBoxes::read() {
    joints_.take();
    return record_;
}

void PlanBoxes::load_oscloc(const programme::Oscillators& oscillators) {
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

void associa_user_sc(QListWidget* list, const db::Recordset& configurazione) {
    list->clear();
    for (const char* entry : db::field::kUserSwitches) list->addItem(configurazione.text(entry));
}

}  // namespace m47::plans
