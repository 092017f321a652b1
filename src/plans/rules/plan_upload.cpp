// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_upload.h"

#include "commands.h"
#include "program_commands.h"
#include "table_backup.h"

namespace m47::plans {
namespace {

const QString kAccepted = QStringLiteral("OK");
/// What is left of the answer to a query that the meter refuses.
const QString kRefusedQuery = QStringLiteral("0");
constexpr Bilingual kNothingReplaced{"the logger's programs were being read, nothing was replaced",
                                     "lettura dei programmi del logger, nulla è stato sostituito"};
constexpr Bilingual kReadingFirst{"Reading what will be replaced",
                                  "Lettura di ciò che sarà sostituito"};
constexpr Bilingual kNoneSent{"programs sent by the upload: none of %1",
                              "programmi trasmessi dall'invio: nessuno su %1"};
constexpr Bilingual kSent{"programs sent by the upload: %1 of %2, commands answered OK: %3",
                          "programmi trasmessi dall'invio: %1 su %2, comandi con risposta OK: %3"};
constexpr Bilingual kSummary{"%1 of %2 commands answered OK", "risposta OK: %1 su %2 comandi"};
constexpr Bilingual kUploading{"Uploading program %1 of %2", "Invio del programma %1 di %2"};

}  // namespace

UploadResult PlanUpload::run(const UploadPlan& plan, UploadMode mode) {
    UploadResult result;
    link::Work work(link_, kNoneSent, {QString::number(plan.programs.size())});
    work.doing(kUploading, {QString::number(1), QString::number(plan.programs.size())});
    const QStringList opening = opening_commands(mode);
    const auto of_plan = static_cast<int>(plan_commands(plan).size());
    result.commands = static_cast<int>(opening.size()) + of_plan;
    const std::optional<QString> table = send_all(opening, result);
    if (mode == kDisable && table && *table != kRefusedQuery) {
        result.table = *table;
        keep_table(program_.base_dir, result.table, link_.clock().date_time());
        const QStringList disabling =
            disabling_commands(lines_through_file(program_.base_dir, result.table));
        result.commands += static_cast<int>(disabling.size());
        send_all(disabling, result);
    }
    send_all(settings_commands(plan), result);
    send_programs(plan, result, work);
    return result;
}

void PlanUpload::send_programs(const UploadPlan& plan, UploadResult& result, link::Work& work) {
    const QString all = QString::number(plan.programs.size());
    int sent = 0;
    for (const programme::ProgramRecord& program : plan.programs) {
        // The meter stores a program at the end of its commands and uses its supply meanwhile.
        const link::Undivided whole(link_);
        work.doing(kUploading, {QString::number(sent + 1), all});
        send_all(programme::commands_of_program(program, plan.oscillators), result);
        if (!link_.port_connected) continue;
        work.at(kSent, {QString::number(++sent), all, QString::number(result.accepted)});
    }
}

std::optional<QString> PlanUpload::send_all(const QStringList& commands, UploadResult& result) {
    std::optional<QString> last;
    for (const QString& command : commands) last = send_one(command, result);
    return last;
}

std::optional<QString> PlanUpload::send_one(const QString& command, UploadResult& result) {
    const int sent = result.accepted + static_cast<int>(result.refused.size());
    link_.activity.reached(sent, result.commands);
    if (on_progress) on_progress(sent, result.commands);
    // The value of a query comes without the "OK" that ended it.
    const bool query = command.endsWith(u'?');
    std::optional<QString> answer = link_.can_send() ? link_.ask(command) : std::nullopt;
    const bool good = answer && (query ? *answer != kRefusedQuery : *answer == kAccepted);
    if (good)
        ++result.accepted;
    else
        result.refused += command;
    return answer;
}

std::optional<QString> PlanUpload::ask_table() {
    std::optional<QString> table = link_.ask(link::command::query(link::command::kLoggerTable));
    if (table == kRefusedQuery) return std::nullopt;
    return table;
}

QString PlanUpload::keep_table_now() {
    link::Work work(link_, kNothingReplaced);
    work.doing(kReadingFirst);
    const std::optional<QString> table = ask_table();
    // Whoever stops it does not want to be asked whether to replace.
    link_.end_when_interrupted();
    if (!table) return {};
    return keep_table(program_.base_dir, *table, link_.clock().date_time());
}

QString upload_summary(const UploadResult& result, const Texts& texts) {
    return texts.pick(kSummary).arg(result.accepted).arg(result.commands);
}

QString upload_refusals(const UploadResult& result) {
    return result.refused.join(u'\n');
}

}  // namespace m47::plans
