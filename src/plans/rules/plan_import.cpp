// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_import.h"

#include <algorithm>
#include <array>
#include <set>

#include "box_numbers.h"
#include "diseqc_commands.h"
#include "numbers.h"
#include "plan_clashes.h"
#include "program_checks.h"
#include "program_differences.h"
#include "program_limits.h"
#include "replaced_programs.h"
#include "used_numbers.h"

namespace m47::plans {
namespace {

QString checked_position(const QString& text) {
    const double line = link::typed_value(text);
    const bool good = !text.trimmed().isEmpty() && line >= 0 && line <= programme::kLastLoggerLine;
    return good ? link::format_number(line, "00") : QString();
}

QStringList corrections_of(const ImportCandidate& candidate,
                           const programme::ProgramRecord& after) {
    programme::ProgramRecord before = candidate.record;
    // Another place for the same oscillator changes nothing.
    if (!candidate.oscillator.isEmpty()) before.loc_osc0 = after.loc_osc0;
    return candidate.corrections + program_corrections(before, after);
}

/// Limits that are checked against each other.
using R = programme::ProgramRecord;
struct CheckedTogether {
    QString R::*minimum;
    QString R::*maximum;
};
constexpr std::array kCheckedTogether{
    CheckedTogether{&R::lev_min, &R::lev_max}, CheckedTogether{&R::noise_min, &R::noise_max},
    CheckedTogether{&R::chber_min, &R::chber_max}, CheckedTogether{&R::mer_min, &R::mer_max}};

/// What was unset stays so, and with it the other limit of the same measure.
void keep_unset(R& record, const R& before) {
    for (QString R::*text : {&R::frequenza, &R::qpsk_symbolrate, &R::satchbw})
        if ((before.*text).isEmpty()) (record.*text).clear();
    for (const auto& [minimum, maximum] : kCheckedTogether) {
        if (!(before.*minimum).isEmpty() && !(before.*maximum).isEmpty()) continue;
        record.*minimum = programme::number_text(before.*minimum);
        record.*maximum = programme::number_text(before.*maximum);
    }
}

/// Makes the preview program by program: each one sees those before it as part of the plan.
class Importer {
  public:
    Importer(const std::vector<ImportCandidate>& candidates,
             const std::vector<programme::ProgramRecord>& programs,
             const programme::Oscillators& oscillators, std::optional<double> unit_offset,
             const NumberedPrograms& replaced)
        : taken_(programs), unit_offset_(unit_offset), replaced_(replaced) {
        preview_.oscillators = preview_.oscillators_before = oscillators;
        preview_.replaces_blank = taken_.size() == 1 && programme::is_blank(taken_.front());
        if (preview_.replaces_blank) taken_.clear();
        fresh_ = taken_.empty();
        for (const programme::ProgramRecord& program : taken_) used_.take(program);
        for (const auto& [number, program] : replaced_) leave_place(program);
        // Numbers that the file names anywhere are left to those programs.
        for (const ImportCandidate& candidate : candidates)
            if (candidate.comes()) reserve(candidate.record);
    }

    ImportPreview preview_of(const std::vector<ImportCandidate>& candidates) {
        for (const ImportCandidate& candidate : candidates) take(candidate);
        tune_again(candidates);
        compare(candidates);
        if (preview_.added() == 0) preview_.replaces_blank = false;
        return preview_;
    }

  private:
    void take(const ImportCandidate& candidate) {
        ImportRow row{
            candidate.line, candidate.record, candidate.oscillator, {}, candidate.problem};
        row.name = candidate.name;
        row.code = candidate.code;
        if (row.added() && !candidate.wanted) row.problem = ImportProblem::unwanted;
        if (row.added()) row.problem = fit(row, candidate);
        if (row.added()) {
            taken_.push_back(row.record);
            used_.take(row.record);
            row.corrections = corrections_of(candidate, row.record);
        }
        preview_.rows.push_back(row);
    }

    /// A program may name an entry whose oscillator only a later line has brought.
    void tune_again(const std::vector<ImportCandidate>& candidates) {
        for (std::size_t k = 0; k < candidates.size(); ++k) {
            ImportRow& row = preview_.rows[k];
            if (!row.added() || row.record.loc_osc || !row.oscillator.isEmpty()) continue;
            row.problem = tune(row, candidates[k]);
            row.corrections = corrections_of(candidates[k], row.record);
        }
    }

    /// A program that is as the plan has it does not come, but keeps its place.
    void compare(const std::vector<ImportCandidate>& candidates) {
        for (std::size_t k = 0; k < candidates.size(); ++k) {
            ImportRow& row = preview_.rows[k];
            if (!row.added() || !row.replaces) continue;
            keep_unedited(row.record, candidates[k], *row.replaces, is_tuned_as_before(row));
            row.corrections = corrections_of(candidates[k], row.record);
            row.changes = program_differences(*row.replaces, row.record);
            if (row.changes.isEmpty()) row.problem = ImportProblem::as_in_plan;
        }
    }

    void reserve(programme::ProgramRecord program) {
        if (program.pg_num.isEmpty()) return;
        if (const auto number = number_of(program)) named_.insert(*number);
        program.pg_num = checked_program_number(program.pg_num);
        used_.take(program);
    }

    /// The program goes, and nothing stands in the way of the one that takes its place.
    void leave_place(const programme::ProgramRecord& program) {
        const auto place = std::ranges::find(taken_, program);
        if (place != taken_.end()) taken_.erase(place);
    }

    void replace(ImportRow& row, const ImportCandidate& candidate) {
        const auto number = number_of(row.record);
        if (!number || !replaced_.contains(*number)) return;
        row.replaces = replaced_.at(*number);
        keep_other_columns(row.record, candidate, *row.replaces);
    }

    bool is_tuned_as_before(const ImportRow& row) const {
        const programme::ProgramRecord& before = *row.replaces;
        if (row.record.loc_osc != before.loc_osc) return false;
        const QString& mhz = preview_.oscillators_before[programme::oscillator_entry(before)];
        return before.loc_osc || is_same_value(row.oscillator, mhz);
    }

    /// Gives the program its number.
    ImportProblem number(programme::ProgramRecord& record) const {
        const bool asks = record.pg_num.isEmpty();
        const bool proper = asks || number_of(record);
        record.pg_num = asks ? used_.first_free() : checked_program_number(record.pg_num);
        if (record.pg_num.isEmpty()) return ImportProblem::no_number;
        if (proper) return ImportProblem::none;
        // Where the one it is corrected to is meant for another program, it has none.
        const bool free = !named_.contains(number_of(record).value_or(0)) &&
                          find_clash(taken_, record) != Clash::number;
        return free ? ImportProblem::none : ImportProblem::number_out_of_range;
    }

    ImportProblem why_taken(const programme::ProgramRecord& record) const {
        const bool twice = std::ranges::any_of(preview_.rows, [&](const ImportRow& row) {
            return row.added() && number_of(row.record) == number_of(record);
        });
        return twice ? ImportProblem::number_twice : ImportProblem::number_taken;
    }

    ImportProblem fit(ImportRow& row, const ImportCandidate& candidate) {
        replace(row, candidate);
        programme::ProgramRecord& record = row.record;
        if (candidate.as_exported && programme::is_blank(record))
            return fresh_ ? tune(row, candidate) : ImportProblem::empty_program;
        if (const ImportProblem problem = number(record); problem != ImportProblem::none)
            return problem;
        const QString position = checked_position(record.logger_pos);
        // Without a line it cannot be active in the table.
        if (position.isEmpty() && !record.logger_pos.isEmpty()) record.logger_state = false;
        record.logger_pos = position;
        switch (find_clash(taken_, record)) {
            case Clash::number:
                return why_taken(record);
            case Clash::logger_position:
                return ImportProblem::position_taken;
            case Clash::none:
                break;
        }
        return tune(row, candidate);
    }

    /// A new plan takes the oscillators in the places that an export names.
    std::optional<int> place_oscillator(const ImportRow& row, bool as_exported) {
        const std::size_t entry = programme::oscillator_entry(row.record);
        QString& own = preview_.oscillators[entry];
        if (!fresh_ || !as_exported || !own.trimmed().isEmpty())
            return programme::place_oscillator(preview_.oscillators, row.record.loc_osc0,
                                               row.oscillator);
        own = row.oscillator;
        return static_cast<int>(entry);
    }

    ImportProblem tune(ImportRow& row, const ImportCandidate& candidate) {
        programme::ProgramRecord& record = row.record;
        if (!record.loc_osc && !row.oscillator.isEmpty()) {
            row.oscillator =
                link::plain_text(link::typed_value(checked_oscillator(row.oscillator)));
            const auto place = place_oscillator(row, candidate.as_exported);
            if (!place) return ImportProblem::no_oscillator;
            record.loc_osc0 = *place;
        }
        QString oscillator = preview_.oscillators[programme::oscillator_entry(record)];
        const programme::ProgramRecord before = record;
        correct_fields(record, oscillator, unit_offset_);
        if (candidate.as_exported) keep_unset(record, before);
        row.oscillator = record.loc_osc ? QString() : oscillator;
        return ImportProblem::none;
    }

    std::vector<programme::ProgramRecord> taken_;
    UsedNumbers used_;
    std::optional<double> unit_offset_;
    NumberedPrograms replaced_;
    std::set<int> named_;  ///< numbers that the file has for programs of its own
    bool fresh_ = false;   ///< the plan holds nothing yet
    ImportPreview preview_;
};

/// Those of `replaced` whose place a program of the file really takes.
NumberedPrograms really_replaced(const ImportPreview& preview, const NumberedPrograms& replaced) {
    NumberedPrograms taken;
    for (const ImportRow& row : preview.rows) {
        const bool placed = row.added() || row.problem == ImportProblem::as_in_plan;
        const auto number = number_of(row.record);
        if (placed && row.replaces && number) taken.emplace(*number, replaced.at(*number));
    }
    return taken;
}

/// Of the rows that were to replace a program and cannot, why: the number alone is no reason.
void keep_reasons(const ImportPreview& preview, std::vector<ImportProblem>& reasons) {
    for (std::size_t k = 0; k < preview.rows.size(); ++k) {
        const ImportRow& row = preview.rows[k];
        if (row.replaces && !row.added()) reasons[k] = row.problem;
    }
}

void tell_reasons(ImportPreview& preview, const std::vector<ImportProblem>& reasons) {
    for (std::size_t k = 0; k < reasons.size(); ++k)
        if (reasons[k] != ImportProblem::none &&
            preview.rows[k].problem == ImportProblem::number_taken)
            preview.rows[k].problem = reasons[k];
}

}  // namespace

int ImportPreview::added() const {
    return static_cast<int>(std::ranges::count_if(rows, &ImportRow::added));
}

int ImportPreview::replaced() const {
    return static_cast<int>(std::ranges::count_if(
        rows, [](const ImportRow& row) { return row.added() && row.replaces; }));
}

const ImportCandidate* first_without_number(const std::vector<ImportCandidate>& candidates) {
    const auto found = std::ranges::find_if(candidates, [](const ImportCandidate& candidate) {
        return !candidate.record.pg_num.isEmpty() && !number_of(candidate.record);
    });
    return found == candidates.end() ? nullptr : &*found;
}

programme::ProgramRecord import_defaults(double unit_offset) {
    programme::ProgramRecord record;
    record.loc_osc = true;
    record.qpsk_symbolrate = QStringLiteral("27500");
    record.satchbw = QStringLiteral("36");
    record.diseqc_cmd = record.diseqc_cmd2 = programme::kDiseqcNone;
    record.lev_min = link::plain_text(programme::level_range(unit_offset).minimum);
    record.lev_max = link::plain_text(programme::level_range(unit_offset).maximum);
    record.noise_min = record.mer_min = QStringLiteral("1");
    record.noise_max = record.mer_max = QStringLiteral("40");
    record.chber_min = QStringLiteral("1E-8");
    record.chber_max = QStringLiteral("3E-2");
    return record;
}

ImportPreview preview_import(const std::vector<ImportCandidate>& candidates,
                             const std::vector<programme::ProgramRecord>& programs,
                             const programme::Oscillators& oscillators,
                             std::optional<double> unit_offset, TakenNumbers taken) {
    NumberedPrograms replaced;
    if (taken == TakenNumbers::replace) replaced = named_programs(programs, candidates);
    std::vector<ImportProblem> reasons(candidates.size(), ImportProblem::none);
    for (;;) {
        Importer importer(candidates, programs, oscillators, unit_offset, replaced);
        ImportPreview preview = importer.preview_of(candidates);
        const NumberedPrograms placed = really_replaced(preview, replaced);
        if (placed.size() == replaced.size()) {
            tell_reasons(preview, reasons);
            return preview;
        }
        // Where the new one does not fit, the old one stays, and that with all that it takes up.
        keep_reasons(preview, reasons);
        replaced = placed;
    }
}

}  // namespace m47::plans
