// SPDX-License-Identifier: GPL-3.0-or-later
// The plan screen sends its plan to the meter.
#include "plan_costs.h"
#include "plan_questions.h"
#include "program_set.h"
#include "ui_program_set.h"
#include "verify_dialog.h"

namespace m47::plans {
/// The program that nobody has stored yet is no program to be sent, so it is not made one. False
/// where the user wants to go on typing first.
bool ProgramSet::store_for_upload() {
    const bool typed = boxed() != shown_;
    if (!program_.corrected.skip_empty || typed || !programme::is_blank(sets_.program()))
        return store_record(true) != Outcome::put_off;
    return true;
}

/// What an upload sends.
UploadPlan ProgramSet::plan_to_upload() const {
    UploadPlan plan{sets_.programs(), sets_.oscillators(), sets_.program().satchbw,
                    program_.unit_index};
    if (program_.corrected.skip_empty) leave_out_blank(plan);
    return plan;
}

void ProgramSet::download_group(const QString& prompt, UploadMode mode) {
    if (lacks_program()) return;
    if (!store_for_upload()) return;
    const UploadPlan plan = plan_to_upload();
    if (plan.programs.empty()) return tell_no_program(this, program_.texts);
    PlanUpload upload(link_, program_);
    if (!agrees(prompt, mode, upload)) return;
    upload.on_progress = [this](int sent, int commands) {
        Q_EMIT upload_state(QStringLiteral("%1/%2").arg(sent).arg(commands), QString());
    };
    UploadResult result;
    try {
        result = upload.run(plan, mode);
    } catch (...) {
        show_first_program();
        Q_EMIT upload_state(QString(), QString());
        throw;
    }
    show_first_program();
    if (result.accepted > 0) tell_sent(program_, plan, sets_.has_unset_diseqc());
    Q_EMIT upload_state(upload_summary(result, program_.texts), upload_refusals(result));
    if (program_.corrected.verify && link_.can_send()) verify_upload(upload, mode, result.table);
}

bool ProgramSet::agrees(const QString& prompt, UploadMode mode, PlanUpload& upload) {
    if (mode != kReplace) return ask_continue(this, program_.texts, prompt);
    std::optional<QString> kept;
    if (program_.corrected.keep_copy && link_.can_send()) kept = upload.keep_table_now();
    return ask_replace(this, program_.texts, prompt, kept);
}

void ProgramSet::verify_upload(PlanUpload& upload, UploadMode mode, const QString& before) {
    const std::optional<QString> found = upload.ask_table();
    const TableCheck check{compare_table(sets_.programs(), mode, before, found.value_or(QString())),
                           mode, found.has_value()};
    VerifyDialog dialog(check, program_.texts, this);
    dialog.exec();
}

}  // namespace m47::plans
