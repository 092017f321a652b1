// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "program_record.h"

namespace m47::programme {

/// The program in the current row of a record set as the file holds it, before a box gives it its
/// form. A field is named by its member of ProgramRecord; a field that holds nothing but blanks is
/// unset. Without a current row every look is a Fault.
class ProgramRow {
  public:
    /// Follows `programmi`, which has to outlive this object, from row to row.
    explicit ProgramRow(const db::Recordset& programmi) : set_(programmi) {}

    bool has(const ProgramField::Member& field) const;
    /// As it stands, blanks and all; empty where unset.
    QString text(const ProgramField::Member& field) const;
    /// What is no number, as what is unset, is 0.
    double number(const ProgramField::Member& field) const;
    /// As number(), in whole numbers of at most six digits.
    int whole(const ProgramField::Member& field) const;
    /// The number as plain text; empty where unset.
    QString plain(const ProgramField::Member& field) const;

    /// Its number in the meter, "007".
    QString pg_num() const { return text(&ProgramRecord::pg_num).trimmed(); }
    /// Takes part in passes over the plan; 1 alone does.
    bool monitored() const { return number(&ProgramRecord::monitor_state) == 1; }
    /// Tuned without a local oscillator.
    bool direct() const { return number(&ProgramRecord::loc_osc) != 0; }
    /// Which oscillator of the plan, 0 to 3; nothing where none was chosen.
    std::optional<int> oscillator() const;
    /// Nothing where neither was chosen.
    std::optional<bool> digital() const;
    /// The places in kDiseqcCommands of what it sends, "NONE" left out.
    QList<int> diseqc() const;

  private:
    const db::Recordset& set_;
};

}  // namespace m47::programme
