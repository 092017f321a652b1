// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_clip.h"

#include <algorithm>

#include "fields.h"

namespace m47::plans {
namespace {

constexpr QChar kTab = u'\t';

/// The line of field names that the columns of a copy have.
QString names_of_columns() {
    return plan_file_text(QString(), {}, {}, kTab);
}

bool has_names(const QString& text) {
    return text.section(u'\n', 0, 0).contains(QLatin1String(db::field::kFrequenza));
}

}  // namespace

QString copied_rows(const QString& name, const std::vector<PlanRow>& rows,
                    const programme::Oscillators& oscillators, int unset_diseqc) {
    std::vector<programme::ProgramRecord> programs;
    for (const PlanRow& row : rows) {
        programs.push_back(row.program);
        for (int* command : {&programs.back().diseqc_cmd, &programs.back().diseqc_cmd2})
            if (*command < 0) *command = unset_diseqc;
    }
    return plan_file_text(name, programs, oscillators, kTab);
}

ImportFile pasted_rows(const QString& text, double unit_offset) {
    if (!text.contains(kTab) && !has_names(text)) return {};
    const QString whole = has_names(text) ? text : names_of_columns() + text;
    ImportFile file = parse_import_file(whole.toUtf8(), unit_offset);
    // Counted as the user sees them.
    if (!has_names(text))
        for (ImportCandidate& candidate : file.candidates) --candidate.line;
    return file;
}

const ImportRow* first_refused(const ImportPreview& preview) {
    const auto refused = std::ranges::find_if(preview.rows, [](const ImportRow& row) {
        return !row.added() && row.problem != ImportProblem::as_in_plan;
    });
    return refused == preview.rows.end() ? nullptr : &*refused;
}

}  // namespace m47::plans
