// SPDX-License-Identifier: GPL-3.0-or-later
// The menu entries of the plan screen that bring programs in and out.
#include <QFileDialog>
#include <QFileInfo>
#include <optional>

#include "fault.h"
#include "file_question.h"
#include "import_dialog.h"
#include "plain_file.h"
#include "plan_export.h"
#include "plan_file.h"
#include "plan_questions.h"
#include "program_set.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

constexpr Bilingual kAnyTable{"Plans and scan tables (*)", "Piani e tabelle di canali (*)"};
constexpr Bilingual kPlanFiles{"Plans (*.tsv *.csv)", "Piani (*.tsv *.csv)"};
constexpr Bilingual kTabbedPlan{"Plan with TAB between the columns (*.tsv)",
                                "Piano con TAB fra le colonne (*.tsv)"};
constexpr Bilingual kCommaPlan{"Plan with commas between the columns (*.csv)",
                               "Piano con virgole fra le colonne (*.csv)"};
constexpr Bilingual kNotUnderstood{"%1 is neither a plan nor a DVB scan table.",
                                   "%1 non è un piano né una tabella DVB."};
constexpr Bilingual kNoSatellites{
    "%1 is a table of terrestrial or cable channels. A plan takes the transponders of satellites, "
    "as those in /usr/share/dvb/dvb-s.",
    "%1 è una tabella di canali terrestri o via cavo. Un piano prende i transponder dei satelliti, "
    "come quelli in /usr/share/dvb/dvb-s."};
constexpr Bilingual kTooLong{"%1 is longer than 1 MiB, which no plan is.",
                             "%1 supera 1 MiB: nessun piano è così lungo."};
constexpr Bilingual kPlanExists{"The plan %1 already exists.", "Il piano %1 esiste già."};
constexpr Bilingual kCopyInto{"Copy the program into the plan:", "Copia il programma nel piano:"};
constexpr Bilingual kCopyPlanAs{"Copy the plan under the name:", "Copia il piano con il nome:"};

/// A "/" would be a folder, and what stands behind a "." the kind of file.
QString file_name_of(QString plan) {
    return plan.replace(u'/', u'-').replace(u'.', u'-');
}

[[noreturn]] void throw_plan_file_fault(const QString& path, const QString& reason) {
    throw Fault((path + QStringLiteral(": ") + reason).toStdString());
}

}  // namespace

QString ProgramSet::ask_file(bool save, const QStringList& filters) {
    QFileDialog dialog(this);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setNameFilters(filters);
    if (save) {
        // The suffix follows the chosen kind of file.
        const auto follow = [&dialog](const QString& filter) {
            dialog.setDefaultSuffix(filter.contains(QLatin1String("csv")) ? QStringLiteral("csv")
                                                                          : QStringLiteral("tsv"));
        };
        follow(filters.constFirst());
        connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
        dialog.selectFile(file_name_of(sets_.plan()));
    }
    return ask_for_file(dialog, program_, FilePurpose::plan);
}

void ProgramSet::cmdimport_Click() {
    if (lacks_plan() || !may_leave()) return;
    const QString path =
        ask_file(false, {program_.texts.pick(kAnyTable), program_.texts.pick(kPlanFiles)});
    if (path.isEmpty()) return;
    const platform::FileReading reading = platform::read_plain_file(path, kLargestPlanFile);
    if (!reading.reason.isEmpty()) throw_plan_file_fault(path, reading.reason);
    const ImportFile file = parse_import_file(reading.bytes, offset());
    if (!file.understood) {
        const Bilingual& what =
            reading.fault == platform::FileFault::too_long ? kTooLong : kNotUnderstood;
        tell_problem(this, program_.texts.pick(what).arg(QFileInfo(path).fileName()));
        return;
    }
    if (file.candidates.empty() && file.not_satellite > 0) {
        tell_problem(this, program_.texts.pick(kNoSatellites).arg(QFileInfo(path).fileName()));
        return;
    }
    import_file(file);
}

void ProgramSet::offer_programs(const std::vector<ImportCandidate>& programs) {
    handle("band_programs_Click", [&] {
        if (lacks_plan() || !may_leave()) return;
        ImportFile file;
        file.candidates = programs;
        file.understood = true;
        import_file(file);
    });
}

/// Shows what would come of `file` and stores what is wanted of it.
void ProgramSet::import_file(const ImportFile& file) {
    // As they are now, whatever others store while the user looks.
    const std::vector<programme::ProgramRecord> programs = sets_.programs();
    const programme::Oscillators oscillators = sets_.oscillators();
    std::optional<double> unit_offset = offset();
    if (program_.corrected.keep_unit) unit_offset.reset();
    ImportDialog dialog(
        file,
        [&](const std::vector<ImportCandidate>& candidates, const ImportChoices& choices) {
            return preview_import(with_choices(candidates, programs, choices), programs,
                                  oscillators, unit_offset, choices.taken);
        },
        program_.texts, this);
    if (dialog.exec() != QDialog::Accepted) return;
    take_in(dialog.preview());
}

void ProgramSet::cmdexport_Click() {
    if (lacks_plan()) return;
    const QString path =
        ask_file(true, {program_.texts.pick(kTabbedPlan), program_.texts.pick(kCommaPlan)});
    if (path.isEmpty()) return;
    const QString reason = export_plan(sets_, path);
    if (!reason.isEmpty()) throw_plan_file_fault(path, reason);
    program_.saved(path);
}

void ProgramSet::cmdcopyprog_Click() {
    if (lacks_program() || !may_leave()) return;
    const QString name = ask_plan_name(this, program_.texts.pick(kCopyInto), sets_.plan());
    if (name.isEmpty()) return;
    const ImportProblem problem = sets_.copy_program(name);
    if (problem != ImportProblem::none)
        tell_problem(this, import_problem_text(problem, program_.texts));
    move_plan(true);
}

void ProgramSet::cmdcopyplan_Click() {
    if (lacks_plan() || !may_leave()) return;
    const QString name = ask_plan_name(this, program_.texts.pick(kCopyPlanAs), QString());
    if (name.isEmpty()) return;
    if (sets_.copy_plan(name))
        move_plan(true);
    else
        tell_problem(this, program_.texts.pick(kPlanExists).arg(name));
}

}  // namespace m47::plans
