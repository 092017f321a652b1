// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample_dialogs.h"

#include "changed_dialog.h"
#include "clash_dialog.h"
#include "compare_view.h"
#include "import_dialog.h"
#include "import_report.h"
#include "report_dialog.h"
#include "report_form.h"
#include "restore_preview.h"
#include "sample_programs.h"
#include "verify_dialog.h"

namespace m47::shell {
namespace {

plans::ImportFile import_file() {
    plans::ImportFile file;
    file.understood = true;
    for (int k = 0; k < 30; ++k) {
        plans::ImportCandidate candidate;
        candidate.line = k + 1;
        candidate.record = k % 2 ? digital_program() : direct_program();
        candidate.record.pg_num = QStringLiteral("%1").arg(k + 1, 3, 10, QChar('0'));
        candidate.name = QStringLiteral("TP %1").arg(k);
        candidate.polarisation = "H";
        if (k % 5 == 4) candidate.record.frequenza = "500";
        file.candidates.push_back(candidate);
    }
    return file;
}

}  // namespace

QMap<QString, MakeDialog> sample_dialogs(ProgramState& state) {
    const Texts& texts = state.texts;
    QMap<QString, MakeDialog> made;
    made["import"] = [&texts](QWidget* parent) {
        const auto preview = [](const std::vector<plans::ImportCandidate>& candidates,
                                const plans::ImportChoices& choices) {
            return plans::preview_import(plans::with_choices(candidates, {}, choices), {}, kKu, 0.0,
                                         choices.taken);
        };
        return new plans::ImportDialog(import_file(), preview, texts, parent);
    };
    made["changed"] = [&texts](QWidget* parent) {
        const plans::ChangedMeanwhile change({direct_program(), kKu}, digital_program(), "9750",
                                             true);
        return new plans::ChangedDialog(change, texts, parent);
    };
    made["verify"] = [&texts](QWidget* parent) {
        plans::TableCheck check;
        for (int k = 0; k < 20; ++k)
            check.rows.push_back(
                {QStringLiteral("%1").arg(k), "07 ON", k % 3 ? "07 ON" : "08 OFF"});
        return new plans::VerifyDialog(check, texts, parent);
    };
    made["report"] = [&state](QWidget* parent) { return new report::ReportForm(state, parent); };
    made["compare"] = [&texts](QWidget* parent) {
        const auto one = asl::SlotBlock::of(QByteArray(48, 'a'), "HOTBIRD");
        const auto other = asl::SlotBlock::of(QByteArray(48, 'b'), "ASTRA");
        return new asl::CompareView({{"00 HOTBIRD", one}, {"01 ASTRA", other}}, 0, 1, texts,
                                    parent);
    };
    made["restore"] = [&texts](QWidget* parent) {
        asl::SlotTable now, file;
        now.fill(asl::SlotBlock());
        for (std::size_t k = 0; k < file.size(); k += 2)
            file[k] = asl::SlotBlock::of(QByteArray(48, 'a'), "HOTBIRD");
        return new asl::RestorePreview(asl::restore_plan(now, file), texts, parent);
    };
    made["clash"] = [&texts](QWidget* parent) -> QDialog* {
        static olddb::ImportPlan plan;
        plan = {};
        for (int k = 0; k < 12; ++k) {
            olddb::ImportedPlan old;
            old.name = QStringLiteral("OLD PLAN %1").arg(k);
            old.clashes = true;
            plan.plans.append(old);
        }
        return new olddb::ClashDialog(plan, texts, parent);
    };
    made["old database"] = [&texts](QWidget* parent) {
        return new olddb::ReportDialog("M47", QString("Line of the report\n").repeated(60), texts,
                                       parent);
    };
    return made;
}

}  // namespace m47::shell
