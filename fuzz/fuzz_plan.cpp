// SPDX-License-Identifier: GPL-3.0-or-later
// A file to import as a plan: what it would add to an empty plan can be tuned and stored, and comes
// back the same from the file that the plan is exported to.
#include <QSet>

#include "fuzzing.h"
#include "numbers.h"
#include "plan_file.h"
#include "plan_import.h"

namespace {

std::vector<m47::programme::ProgramRecord> added_programs(
    const m47::plans::ImportPreview& preview) {
    std::vector<m47::programme::ProgramRecord> programs;
    for (const m47::plans::ImportRow& row : preview.rows)
        if (row.added()) programs.push_back(row.record);
    return programs;
}

void check_programs(const std::vector<m47::programme::ProgramRecord>& programs) {
    HOLDS(programs.size() <= 100);
    QSet<QString> numbers;
    QSet<QString> positions;
    for (const m47::programme::ProgramRecord& program : programs) {
        const double number = m47::link::typed_value(program.pg_num);
        HOLDS(program.pg_num.size() == 3 && number >= 0 && number <= 99);
        HOLDS(!numbers.contains(program.pg_num));
        numbers += program.pg_num;
        HOLDS(program.loc_osc0 >= 0 && program.loc_osc0 < 4);
        HOLDS(program.lnb_volt >= 0 && program.lnb_volt < 3);
        HOLDS(program.K22 == 0 || program.K22 == 1);
        if (program.logger_pos.isEmpty()) continue;
        HOLDS(program.logger_pos.size() == 2 && !positions.contains(program.logger_pos));
        HOLDS(m47::link::typed_value(program.logger_pos) <= 41);
        positions += program.logger_pos;
    }
}

void check_export(const std::vector<m47::programme::ProgramRecord>& programs,
                  const m47::programme::Oscillators& oscillators, QChar separator) {
    const QString text =
        m47::plans::plan_file_text(QStringLiteral("FUZZ"), programs, oscillators, separator);
    const m47::plans::ImportFile file = m47::plans::parse_import_file(text.toUtf8(), 0);
    HOLDS(file.understood && file.unknown_columns.isEmpty());
    HOLDS(file.candidates.size() == programs.size());
    const m47::plans::ImportPreview again =
        m47::plans::preview_import(file.candidates, {}, oscillators, 0);
    HOLDS(again.added() == static_cast<int>(programs.size()));
    const std::vector<m47::programme::ProgramRecord> back = added_programs(again);
    for (std::size_t k = 0; k < programs.size(); ++k)
        for (const m47::programme::ProgramField& field : m47::programme::program_fields())
            if (m47::programme::field_text(back[k], field) !=
                m47::programme::field_text(programs[k], field))
                std::fprintf(stderr, "program %zu, %s: \"%s\" became \"%s\"\n", k, field.name,
                             qPrintable(m47::programme::field_text(programs[k], field)),
                             qPrintable(m47::programme::field_text(back[k], field)));
    HOLDS(back == programs);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const QChar separator = input.byte() % 2 == 0 ? u'\t' : u',';
    const m47::plans::ImportFile file = m47::plans::parse_import_file(input.byte_array(), 0);
    if (!file.understood) HOLDS(file.candidates.empty());
    const m47::plans::ImportPreview preview =
        m47::plans::preview_import(file.candidates, {}, {}, 0);
    HOLDS(preview.rows.size() == file.candidates.size());
    const std::vector<m47::programme::ProgramRecord> programs = added_programs(preview);
    check_programs(programs);
    check_export(programs, preview.oscillators, separator);
    return 0;
}
