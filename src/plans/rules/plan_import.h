// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "code_rate.h"
#include "program_record.h"
#include "texts.h"

namespace m47::plans {

/// The column of a plan file behind those of the table: the MHz of the program's oscillator, since
/// its number alone says nothing in another plan.
inline constexpr const char* kOscillatorColumn = "oscillator";

/// Why a program of a file does not come into the plan.
enum class ImportProblem {
    none,
    number_taken,
    position_taken,
    no_number,          ///< all numbers of the plan are in use
    no_oscillator,      ///< all oscillators of the plan are in use, at other frequencies
    out_of_range,       ///< no oscillator brings its frequency into the meter's range
    rate_out_of_range,  ///< the meter measures no such symbol rate
    unreadable,
    unwanted,             ///< the user does not want it
    as_in_plan,           ///< the plan has it already, field by field
    number_out_of_range,  ///< and the one it would be corrected to is not free
    number_twice,         ///< an earlier program of the same file has it
    empty_program,        ///< the one that a new plan begins with; such a plan alone takes it
};

/// A program as a file describes it.
struct ImportCandidate {
    int line = 0;                     ///< where it stands in the file, from 1
    programme::ProgramRecord record;  ///< an empty number asks for the first free one
    QString oscillator{};             ///< MHz; empty: entry `loc_osc0` of the plan as it is
    ImportProblem problem = ImportProblem::none;
    QStringList unread{};       ///< what is no number though it has to be, "frequenza: abc"
    QStringList corrections{};  ///< of what the file says, as those of ImportRow
    QString name{};             ///< of a transponder, where its table has one
    QString polarisation{};     ///< of a transponder: H, V, L or R
    std::optional<programme::CodeRate> code{};  ///< of a DVB-S transponder, where its table has one
    int streams = 1;                            ///< how many entries of the file it stands for
    bool beyond_qpsk = false;   ///< the meter has no receiver for it, but for its level
    QStringList columns{};      ///< that its file has, by the names of their fields
    QStringList empty_cells{};  ///< those of them in which nothing stands
    bool wanted = true;
    /// An empty cell is an unset field, as an export writes it, and asks for no usual value.
    bool as_exported = false;

    /// True where nothing in the file and no choice of the user's is against it.
    bool comes() const { return wanted && problem == ImportProblem::none; }
};

/// A program as it will be stored, or why it will not be.
struct ImportRow {
    int line = 0;
    programme::ProgramRecord record;
    QString oscillator;
    QStringList corrections;  ///< "frequenza: 500 → 920.0"
    ImportProblem problem = ImportProblem::none;
    std::optional<programme::ProgramRecord> replaces{};  ///< the program of the plan, as it was
    QStringList changes{};                               ///< of that one, as `corrections`
    QString name{};                                      ///< of its transponder, where it has one
    std::optional<programme::CodeRate> code{};           ///< the same

    /// True where it will be stored, as a new program or over one of the plan.
    bool added() const { return problem == ImportProblem::none; }
};

/// What an import will do, before anything is written; a row for each candidate, in their order.
struct ImportPreview {
    std::vector<ImportRow> rows;
    programme::Oscillators oscillators;         ///< of the plan after the import
    programme::Oscillators oscillators_before;  ///< as they were when this was made
    bool replaces_blank = false;  ///< the one program that a new plan starts with goes

    int added() const;
    int replaced() const;
};

/// What is done with a program whose number the plan has already.
enum class TakenNumbers { leave_out, replace };

/// Of `candidates` the first whose number is none that a program can have; nullptr where all can be
/// taken as they are, or have none.
const ImportCandidate* first_without_number(const std::vector<ImportCandidate>& candidates);

/// The program that a file's gaps are filled from: tuned directly, no supply, no DiSEqC command,
/// the widest alarm limits in the unit that lies `unit_offset` dB below dBuV.
programme::ProgramRecord import_defaults(double unit_offset);

/// What becomes of `candidates` in a plan that holds `programs` and `oscillators`. Without a
/// `unit_offset` their level limits stay as they are. Where a program is replaced, what the file
/// says as the plan has it, or not at all, stays as it is stored.
ImportPreview preview_import(const std::vector<ImportCandidate>& candidates,
                             const std::vector<programme::ProgramRecord>& programs,
                             const programme::Oscillators& oscillators,
                             std::optional<double> unit_offset,
                             TakenNumbers taken = TakenNumbers::leave_out);

QString import_problem_text(ImportProblem problem, const Texts& texts);

}  // namespace m47::plans
