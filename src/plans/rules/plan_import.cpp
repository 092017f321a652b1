// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_import.h"

#include <algorithm>

#include "box_numbers.h"
#include "diseqc_commands.h"
#include "fields.h"
#include "numbers.h"
#include "plan_clashes.h"
#include "program_checks.h"
#include "program_limits.h"
#include "used_numbers.h"

namespace m47::plans {
namespace {

QString checked_position(const QString& text) {
    const double line = link::typed_value(text);
    const bool good = !text.trimmed().isEmpty() && line >= 0 && line <= programme::kLastLoggerLine;
    return good ? link::format_number(line, "00") : QString();
}

QStringList differences(const programme::ProgramRecord& before,
                        const programme::ProgramRecord& after) {
    QStringList list;
    for (const programme::ProgramField& field : programme::program_fields()) {
        const QString old_text = programme::field_text(before, field);
        const QString new_text = programme::field_text(after, field);
        // Another form of the same number is no correction, nor is what fills a gap.
        const bool gap =
            old_text.isEmpty() && QLatin1String(field.name) != QLatin1String(db::field::kFrequenza);
        if (gap || old_text == new_text) continue;
        if (programme::is_number(old_text) && programme::is_number(new_text) &&
            link::typed_value(old_text) == link::typed_value(new_text))
            continue;
        list += QStringLiteral("%1: %2 → %3").arg(QLatin1String(field.name), old_text, new_text);
    }
    return list;
}

QStringList corrections_of(const ImportCandidate& candidate,
                           const programme::ProgramRecord& after) {
    programme::ProgramRecord before = candidate.record;
    // Another place for the same oscillator changes nothing.
    if (!candidate.oscillator.isEmpty()) before.loc_osc0 = after.loc_osc0;
    return candidate.corrections + differences(before, after);
}

/// Makes the preview program by program: each one sees those before it as part of the plan.
class Importer {
  public:
    Importer(const std::vector<ImportCandidate>& candidates,
             const std::vector<programme::ProgramRecord>& programs,
             const programme::Oscillators& oscillators, std::optional<double> unit_offset)
        : taken_(programs), unit_offset_(unit_offset) {
        preview_.oscillators = preview_.oscillators_before = oscillators;
        preview_.replaces_blank = taken_.size() == 1 && programme::is_blank(taken_.front());
        if (preview_.replaces_blank) taken_.clear();
        for (const programme::ProgramRecord& program : taken_) used_.take(program);
        // Numbers that the file names anywhere are left to those programs.
        for (const ImportCandidate& candidate : candidates)
            if (candidate.problem == ImportProblem::none) reserve(candidate.record);
    }

    void take(const ImportCandidate& candidate) {
        ImportRow row{
            candidate.line, candidate.record, candidate.oscillator, {}, candidate.problem};
        if (row.added()) row.problem = fit(row);
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
            row.problem = tune(row);
            row.corrections = corrections_of(candidates[k], row.record);
        }
    }

    ImportPreview result() {
        if (preview_.added() == 0) preview_.replaces_blank = false;
        return preview_;
    }

  private:
    void reserve(programme::ProgramRecord program) {
        if (program.pg_num.isEmpty()) return;
        program.pg_num = checked_program_number(program.pg_num);
        used_.take(program);
    }

    ImportProblem fit(ImportRow& row) {
        programme::ProgramRecord& record = row.record;
        record.pg_num =
            record.pg_num.isEmpty() ? used_.first_free() : checked_program_number(record.pg_num);
        if (record.pg_num.isEmpty()) return ImportProblem::no_number;
        const QString position = checked_position(record.logger_pos);
        // Without a line it cannot be active in the table.
        if (position.isEmpty() && !record.logger_pos.isEmpty()) record.logger_state = false;
        record.logger_pos = position;
        switch (find_clash(taken_, record)) {
            case Clash::number:
                return ImportProblem::number_taken;
            case Clash::logger_position:
                return ImportProblem::position_taken;
            case Clash::none:
                break;
        }
        return tune(row);
    }

    ImportProblem tune(ImportRow& row) {
        programme::ProgramRecord& record = row.record;
        if (!record.loc_osc && !row.oscillator.isEmpty()) {
            row.oscillator =
                link::plain_text(link::typed_value(checked_oscillator(row.oscillator)));
            const auto place =
                programme::place_oscillator(preview_.oscillators, record.loc_osc0, row.oscillator);
            if (!place) return ImportProblem::no_oscillator;
            record.loc_osc0 = *place;
        }
        QString oscillator = preview_.oscillators[programme::oscillator_entry(record)];
        correct_fields(record, oscillator, unit_offset_);
        row.oscillator = record.loc_osc ? QString() : oscillator;
        return ImportProblem::none;
    }

    std::vector<programme::ProgramRecord> taken_;
    UsedNumbers used_;
    std::optional<double> unit_offset_;
    ImportPreview preview_;
};

}  // namespace

int ImportPreview::added() const {
    return static_cast<int>(std::ranges::count_if(rows, &ImportRow::added));
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
                             std::optional<double> unit_offset) {
    Importer importer(candidates, programs, oscillators, unit_offset);
    for (const ImportCandidate& candidate : candidates) importer.take(candidate);
    importer.tune_again(candidates);
    return importer.result();
}

QString import_problem_text(ImportProblem problem, const Texts& texts) {
    switch (problem) {
        case ImportProblem::number_taken:
            return texts.message(kProgramExists);
        case ImportProblem::position_taken:
            return texts.message(kLoggerPositionExists);
        case ImportProblem::no_number:
            return texts.pick({"Left out: the plan is full.", "Escluso: il piano è pieno."});
        case ImportProblem::no_oscillator:
            return texts.pick({"Left out: the plan has no free oscillator.",
                               "Escluso: il piano non ha oscillatori liberi."});
        case ImportProblem::out_of_range:
            return texts.pick({"Left out: the meter cannot tune it.",
                               "Escluso: lo strumento non può sintonizzarlo."});
        case ImportProblem::rate_out_of_range:
            return texts.pick({"Left out: the meter measures 1500 to 45000 kS/s.",
                               "Escluso: lo strumento misura da 1500 a 45000 kS/s."});
        case ImportProblem::unreadable:
            return texts.pick({"Left out: not understood.", "Escluso: non interpretabile."});
        case ImportProblem::none:
            break;
    }
    return {};
}

}  // namespace m47::plans
