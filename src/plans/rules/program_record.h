// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <span>
#include <variant>

#include "recordset.h"

namespace m47 {

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

/// The four oscillators of a plan in MHz, as their list shows them; an empty one is none.
using Oscillators = std::array<QString, 4>;

/// A field of the table `programmi` and where it stands in the record.
struct ProgramField {
    using Member =
        std::variant<QString ProgramRecord::*, int ProgramRecord::*, bool ProgramRecord::*>;
    const char* name;
    Member member;
};

/// All fields but the plan's name, in the order of the table.
std::span<const ProgramField> program_fields();

/// True where `text` is a number, with "." or ",", and nothing else.
bool is_number(const QString& text);

/// The number that `text` begins with; its decimal point may be a comma on every system, as whoever
/// types "1500,5" means it.
double box_value(const QString& text);
/// `text` as it is kept: the number that every reader will take it for. "27500abc" is "27500",
/// "45,5" is "45.5", "1E-8" stays; a text without a number is "0", an empty one stays empty.
QString number_text(const QString& text);

QString field_text(const ProgramRecord& record, const ProgramField& field);
/// What is no number sets a number to 0.
void set_field(ProgramRecord& record, const ProgramField& field, const QString& text);

/// A frequency as the box shows it: one decimal tuned directly, else whole MHz.
QString frequency_box_text(double mhz, bool direct);

/// The current row of `set`; unset fields are empty or 0, unset DiSEqC commands `unset_diseqc`.
ProgramRecord read_program(const Recordset& set, int unset_diseqc = 0);
/// Sets all fields of the row that is open in `set`, but for the plan's name.
void write_program(Recordset& set, const ProgramRecord& record);

/// Of the current row of `set`.
Oscillators read_oscillators(const Recordset& set);
/// Sets oscillator `index` (0 to 3) of the row that is open in `set`; an empty text unsets it.
void write_oscillator(Recordset& set, int index, const QString& text);

/// True for the program that a new plan starts with, as long as nobody has stored it. "NONE" for
/// its unset DiSEqC commands is nothing either.
bool is_blank(const ProgramRecord& record);

}  // namespace m47
