// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_commands.h"

#include <QFileInfo>
#include <cstdio>

#include "fault.h"
#include "plain_file.h"
#include "plan_export.h"
#include "plan_file.h"
#include "plan_import.h"
#include "plan_name.h"
#include "plan_sets.h"
#include "program_state.h"
#include "say_on_stderr.h"
#include "unattended.h"

namespace m47::shell {
namespace {

/// The file's candidates, or nothing, with a complaint, where it cannot be used.
std::optional<plans::ImportFile> read_plan_file(const QString& path) {
    const platform::FileReading reading = platform::read_plain_file(path, plans::kLargestPlanFile);
    QString complaint;
    plans::ImportFile file;
    if (reading.fault != platform::FileFault::none)
        complaint = unattended::why_not_read(
            reading, QStringLiteral("it is longer than 1 MiB, which no plan is"));
    else if (file = plans::parse_import_file(reading.bytes, unit_offset(kDbuv)); !file.understood)
        complaint = QStringLiteral("it is neither a plan nor a DVB scan table");
    if (complaint.isEmpty()) return file;
    unattended::say_on_stderr(QStringLiteral("cannot read %1: %2").arg(path, complaint),
                              unattended::Subsystem::kFiles);
    return std::nullopt;
}

/// What is to come into the current plan of `sets`, or into a new one. The limits stay as the file
/// has them: nobody knows the meter's unit here.
plans::ImportPreview preview_of(const plans::ImportFile& file, const plans::PlanSets* sets) {
    if (!sets) return plans::preview_import(file.candidates, {}, {}, std::nullopt);
    return plans::preview_import(file.candidates, sets->programs(), sets->oscillators(),
                                 std::nullopt);
}

/// The plan comes with its programs or not at all.
plans::ImportPreview import_as_new(plans::PlanSets& sets, const QString& name,
                                   const plans::ImportFile& file) {
    sets.add_new(name);
    try {
        const plans::ImportPreview preview = preview_of(file, &sets);
        sets.apply_import(preview);
        return preview;
    } catch (const Fault&) {
        sets.del_old();
        throw;
    }
}

plans::ImportPreview import_into(plans::PlanSets& sets, const QString& name,
                                 const plans::ImportFile& file) {
    const bool is_there = sets.has_plan(name);
    if (is_there) sets.crea_records(name);
    const plans::ImportPreview preview = preview_of(file, is_there ? &sets : nullptr);
    if (preview.added() == 0) return preview;
    if (!is_there) return import_as_new(sets, name, file);
    sets.apply_import(preview);
    return preview;
}

QString remark_of(const plans::ImportRow& row, const Texts& texts) {
    if (!row.added()) return plans::import_problem_text(row.problem, texts);
    if (row.corrections.isEmpty()) return {};
    return QStringLiteral("Corrected: ") + row.corrections.join(QStringLiteral("; "));
}

/// A program that asked for a number and did not come has none.
QString place_of(const plans::ImportRow& row) {
    const QString line = QStringLiteral("Line %1").arg(row.line);
    return row.record.pg_num.isEmpty() ? line
                                       : line + QStringLiteral(", program ") + row.record.pg_num;
}

/// A line for the whole and one for each program that did not come as it stands in the file.
QString report_of(const plans::ImportPreview& preview, const plans::ImportFile& file,
                  const QString& name, const Texts& texts) {
    QString report = QStringLiteral("%1: programs added: %2 of %3.\n")
                         .arg(name)
                         .arg(preview.added())
                         .arg(preview.rows.size());
    if (!file.unknown_columns.isEmpty())
        report += QStringLiteral("Columns not used: ") +
                  on_one_line(file.unknown_columns.join(QStringLiteral(", "))) + u'\n';
    if (file.not_satellite > 0)
        report += QStringLiteral("Terrestrial and cable channels left out: %1.\n")
                      .arg(file.not_satellite);
    for (const plans::ImportRow& row : preview.rows) {
        const QString remark = remark_of(row, texts);
        if (remark.isEmpty()) continue;
        report += place_of(row) + QStringLiteral(": ") + on_one_line(remark) + u'\n';
    }
    return report;
}

bool print_report(const QString& report) {
    return std::fputs(report.toUtf8().constData(), stdout) >= 0 && std::fflush(stdout) == 0;
}

}  // namespace

int export_plan_unattended(db::Database& database, const unattended::Options& options,
                           const Texts& texts) try {
    const QString name = db::stored_plan_name(options.export_plan.plan);
    const QString& path = options.export_plan.file;
    plans::PlanSets sets(database);
    if (!sets.has_plan(name)) {
        unattended::say_on_stderr(QStringLiteral("there is no plan %1").arg(name),
                                  unattended::Subsystem::kFiles);
        return unattended::kDatabase;
    }
    if (QFileInfo::exists(path) && !options.overwrite) {
        unattended::say_on_stderr(
            QStringLiteral("%1 is there already: --overwrite replaces it").arg(path),
            unattended::Subsystem::kFiles);
        return unattended::kOutputLost;
    }
    sets.crea_records(name);
    const QString reason = plans::export_plan(sets, path);
    if (reason.isEmpty()) return unattended::kGood;
    unattended::say_on_stderr(QStringLiteral("cannot write %1: %2").arg(path, reason),
                              unattended::Subsystem::kFiles);
    return unattended::kOutputLost;
} catch (const Fault& fault) {
    unattended::say_on_stderr(fault.text(texts), unattended::Subsystem::kFiles);
    return unattended::kDatabase;
}

int import_plan_unattended(db::Database& database, const unattended::Options& options,
                           const Texts& program_texts) try {
    const std::optional<plans::ImportFile> file = read_plan_file(options.import_plan.file);
    if (!file) return unattended::kOldFileUnreadable;
    Texts texts = program_texts;
    texts.load_messages(QString());
    const QString name = programme::plan_name(options.import_plan.plan);
    plans::PlanSets sets(database);
    const plans::ImportPreview preview = import_into(sets, name, *file);
    if (!print_report(report_of(preview, *file, name, texts))) return unattended::kOutputLost;
    const bool whole = preview.added() == static_cast<int>(preview.rows.size());
    return whole && preview.added() > 0 ? unattended::kGood : unattended::kIncomplete;
} catch (const Fault& fault) {
    unattended::say_on_stderr(fault.text(program_texts), unattended::Subsystem::kFiles);
    return unattended::kDatabase;
}

}  // namespace m47::shell
