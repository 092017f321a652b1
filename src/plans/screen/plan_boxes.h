// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListWidget>

#include "joints.h"
#include "program_record.h"

namespace Ui {
class ProgramSet;
}

namespace m47::plans {

/// The controls of the plan screen that hold a program.
class PlanBoxes {
  public:
    explicit PlanBoxes(Ui::ProgramSet& ui) : ui_(ui) {}
    PlanBoxes(const PlanBoxes&) = delete;
    PlanBoxes& operator=(const PlanBoxes&) = delete;

    /// Joins each box to its member of the record, once the form is set up.
    void join();

    /// Fills the lists whose entries are the same for every plan.
    void fill_lists();

    /// Shows `record` and enables what goes with it; runs no check.
    void show(const programme::ProgramRecord& record);
    /// A DiSEqC list without a choice gives -1.
    programme::ProgramRecord read();

    /// Empties the list of oscillators and fills it anew; the chosen entry stays.
    void load_oscloc(const programme::Oscillators& oscillators);
    QString oscillator() const;
    void set_oscillator(const QString& text);

    /// What goes with direct tuning and with digital acquisition.
    void follow_tuning();
    void follow_digital();

  private:
    void offer_position(const QString& position);

    Ui::ProgramSet& ui_;
    /// What was shown or read last.
    programme::ProgramRecord record_;
    Joints joints_;
};

/// Empties `list` and fills it with the user switches of the plan in `configurazione`'s row.
void associa_user_sc(QListWidget* list, const db::Recordset& configurazione);

}  // namespace m47::plans
