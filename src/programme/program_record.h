// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <span>
#include <variant>

#include "oscillators.h"
#include "recordset.h"

namespace m47::programme {

/// One program of a plan as its controls show it: a text is what stands in the box, a number the
/// chosen entry. An empty text is an unset field.
struct ProgramRecord {
    QString pg_num;           ///< 0 to 99, "007"
    QString frequenza;        ///< MHz
    bool loc_osc = false;     ///< tuned directly
    int loc_osc0 = 0;         ///< which of the plan's oscillators, 0 to 3
    bool sat_ad = false;      ///< digital
    QString qpsk_symbolrate;  ///< kS/s
    QString satchbw;          ///< MHz
    int diseqc_cmd = 0;
    int diseqc_cmd2 = 0;
    int lnb_volt = 0;  ///< 0 off, 1 13 V, 2 18 V
    int K22 = 0;
    QString logger_pos;  ///< "00" to "41"
    bool logger_state = false;
    bool monitor_state = false;
    QString lev_min, lev_max;
    QString noise_min, noise_max;
    QString chber_min, chber_max;
    QString mer_min, mer_max;

    bool operator==(const ProgramRecord&) const = default;
};

/// A field of the table `programmi` and where it stands in the record.
struct ProgramField {
    using Member =
        std::variant<QString ProgramRecord::*, int ProgramRecord::*, bool ProgramRecord::*>;
    const char* name;
    Member member;
};

/// All fields but the plan's name, in the order of the table.
std::span<const ProgramField> program_fields();

/// The name of the field that stands in `member`.
const char* field_name(const ProgramField::Member& member);

/// What stands in a field, as text; a choice that can only be made or not is "1" or "0".
QString field_text(const ProgramRecord& record, const ProgramField& field);
/// What is no number sets a number to 0; 1 alone is digital.
void set_field(ProgramRecord& record, const ProgramField& field, const QString& text);

/// The whole number in `text`, of at most six digits; what is none is 0.
int whole_number(const QString& text);

/// The entry of the plan's oscillators, 0 to 3, that `record` names.
std::size_t oscillator_entry(const ProgramRecord& record);

/// Frequency and bandwidth as their boxes show them.
void give_box_form(ProgramRecord& record);

/// The current row of `set` as the boxes show it; unset fields are empty or 0, unset DiSEqC
/// commands `unset_diseqc`.
ProgramRecord read_program(const db::Recordset& set, int unset_diseqc = 0);
/// Sets all fields of the row that is open in `set`, but for the plan's name.
void write_program(db::Recordset& set, const ProgramRecord& record);

/// True for the program that a new plan starts with, as long as nobody has stored it. "NONE" for
/// its unset DiSEqC commands is nothing either.
bool is_blank(const ProgramRecord& record);
/// True where no frequency was given yet: the meter would be sent zeros.
bool is_untuned(const ProgramRecord& record);

}  // namespace m47::programme
