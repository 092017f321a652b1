// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample_dialogs.h"

#include "changed_dialog.h"
#include "clash_dialog.h"
#include "compare_view.h"
#include "import_dialog.h"
#include "import_report.h"
#include "peak_dialog.h"
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

/// The levels of a satellite that is 1.2 degrees east.
void show_levels(peak::PeakDialog& dialog) {
    for (int steps = -40; steps <= 40; steps += 10) {
        const float away = static_cast<float>(steps - 12) / 22.4F;
        for (const float jitter : {-0.2F, 0.1F})
            dialog.show_reading({steps,
                                 measurement::Quantity::level,
                                 {.value = 58.3F - 6.0F * away * away + jitter}});
    }
}

}  // namespace

QMap<QString, MakeDialog> sample_dialogs(ProgramState& state,
                                         const std::function<link::Link&()>& line) {
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
    const auto peak = [&state, line](const std::function<void(peak::PeakDialog&)>& enter) {
        return [&state, line, enter](QWidget* parent) -> QDialog* {
            auto* dialog = new peak::PeakDialog({.link = line(), .texts = state.texts}, parent);
            enter(*dialog);
            return dialog;
        };
    };
    made["peak"] = peak([](peak::PeakDialog&) {});
    made["peak searched"] = peak([](peak::PeakDialog& dialog) {
        show_levels(dialog);
        dialog.show_running(true);
    });
    made["peak found"] = peak([](peak::PeakDialog& dialog) {
        show_levels(dialog);
        peak::PeakOutcome outcome;
        outcome.search.end = peak::SearchEnd::found;
        outcome.search.peak = outcome.search.shaft = 12;
        outcome.search.start_db = 51.9;
        outcome.search.peak_db = 58.3;
        outcome.linked = outcome.motor_stopped = true;
        dialog.show_end(outcome);
    });
    made["peak lost"] = peak([](peak::PeakDialog& dialog) {
        show_levels(dialog);
        peak::PeakOutcome outcome;
        outcome.search.moved = true;
        outcome.attenuator_back = false;
        dialog.show_end(outcome);
    });
    made["old database"] = [&texts](QWidget* parent) {
        return new olddb::ReportDialog("M47", QString("Line of the report\n").repeated(60), texts,
                                       parent);
    };
    return made;
}

}  // namespace m47::shell
