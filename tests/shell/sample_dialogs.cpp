// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample_dialogs.h"

#include <QPlainTextEdit>

#include "begin_visit_dialog.h"
#include "changed_dialog.h"
#include "clash_dialog.h"
#include "compare_view.h"
#include "end_visit_dialog.h"
#include "identify_dialog.h"
#include "import_dialog.h"
#include "import_log_dialog.h"
#include "import_report.h"
#include "letterhead_dialog.h"
#include "merge_dialog.h"
#include "peak_dialog.h"
#include "report_dialog.h"
#include "report_form.h"
#include "restore_preview.h"
#include "sample_programs.h"
#include "site_dialog.h"
#include "verify_dialog.h"
#include "visit_report_form.h"

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

/// A long name among the short ones of an arc.
std::vector<identify::Candidate> satellites() {
    std::vector<identify::Candidate> made;
    for (int k = 0; k < 14; ++k)
        made.push_back({.name = identify::position_text(3 * k - 5),
                        .satellites = {k == 2 ? "Eutelsat 7A and B, Badr, Al Yah" : "Hotbird"},
                        .positions = {3.0 * k - 5}});
    return made;
}

/// What is held once the seventh is known by `chance`.
std::vector<identify::Standing> standings(double chance) {
    using Kind = identify::Verdict::Kind;
    std::vector<identify::Standing> made{{Kind::candidate, 6, chance}};
    for (std::size_t k = 0; k < satellites().size(); ++k)
        if (k != 6) made.push_back({Kind::candidate, k, (1 - chance) / 16});
    made.insert(made.begin() + 1, {Kind::none_of_these, 0, (1 - chance) / 8});
    made.push_back({Kind::no_satellite, 0, (1 - chance) / 16});
    return made;
}

identify::Asked asked(int number) {
    const bool lock = number % 8 == 7;
    identify::Asked made;
    made.question = {lock ? identify::Question::Kind::lock : identify::Question::Kind::level,
                     number % 4, 950 + 13.5 * number, lock ? 27.5 : 0};
    made.lnb = identify::Lnb::universal().state(made.question.state);
    made.sky_mhz = identify::Lnb::universal().sky_mhz(made.question.state, made.question.if_mhz);
    if (lock)
        made.answer = {.locked = number % 16 == 7, .offset = -1.4};
    else
        made.answer = {.db = 48.3 + number % 5};
    made.from_start = 0.3 * number;
    return made;
}

void ask_sky(identify::IdentifyDialog& dialog, double chance) {
    for (int number = 0; number < 40; ++number) dialog.show_answer(asked(number));
    dialog.show_beliefs(standings(chance), satellites(), -1.4);
}

void end_asking(identify::IdentifyDialog& dialog, const std::optional<identify::Verdict>& verdict,
                bool lost) {
    identify::IdentificationEnd end{.verdict = verdict, .lost = lost, .answers = 88};
    if (lost)
        end.not_set_back = {{"tuned frequency", "frequenza sintonizzata"},
                            {"local oscillator", "oscillatore locale"},
                            {"22 kHz tone", "tono 22 kHz"}};
    dialog.show_running(false);
    dialog.show_end(end, satellites());
}

void add_identification(QMap<QString, MakeDialog>& made, ProgramState& state,
                        const std::function<link::Link&()>& line) {
    const auto identify = [&](const std::function<void(identify::IdentifyDialog&)>& enter) {
        return [&state, line, enter](QWidget* parent) -> QDialog* {
            identify::IdentifyWork work{.link = line(), .program = state};
            work.make_programs = [](const auto&) {};
            work.find_peak = [](const auto&) {};
            auto* dialog = new identify::IdentifyDialog(work, parent);
            enter(*dialog);
            return dialog;
        };
    };
    made["identify"] = identify([](identify::IdentifyDialog&) {});
    made["identify half way"] = identify([](identify::IdentifyDialog& dialog) {
        ask_sky(dialog, 0.43);
        dialog.show_running(true);
        dialog.show_question(asked(47));
    });
    made["identify ended"] = identify([](identify::IdentifyDialog& dialog) {
        ask_sky(dialog, 0.983);
        end_asking(dialog,
                   identify::Verdict{.kind = identify::Verdict::Kind::candidate,
                                     .candidate = 6,
                                     .certainty = 0.983,
                                     .runner_up = 2,
                                     .runner_up_chance = 0.01},
                   false);
    });
    made["identify lost"] = identify([](identify::IdentifyDialog& dialog) {
        ask_sky(dialog, 0.43);
        end_asking(dialog, std::nullopt, true);
    });
}

sites::Site long_site(const QString& address) {
    return {.id = QUuid::createUuid(),
            .name = QString("Condominio con un nome lungo ").repeated(3),
            .address = address,
            .customer = {},
            .remarks = {}};
}

sites::LogPreview long_log() {
    QByteArray lines;
    for (int k = 0; k < 60; ++k)
        lines += k % 7 ? "21/11/25\t10:" + QByteArray::number(10 + k % 50) +
                             ":00\t11778.0\t10600\t58.3\t2.0E-4\t1.0E-8\t-0.5\t14.2\t\tPASS\n"
                       : QByteArray("NO MEASUREMENT BUT A LONG LINE OF WORDS ").repeated(4) + '\n';
    return sites::read_log(lines, "day.log", long_site({}), QTimeZone::utc());
}

void add_visits(QMap<QString, MakeDialog>& made, const Texts& texts) {
    made["begin visit"] = [&texts](QWidget* parent) {
        return new sites::BeginVisitDialog(nullptr, {.technician = "M. Rossi", .plan = "ROOF"},
                                           texts, parent);
    };
    made["end visit"] = [&texts](QWidget* parent) {
        static const QString none;
        static sites::OpenSites file(none);
        static const sites::VisitOfWindow visit(file);
        return new sites::EndVisitDialog(visit, texts, parent);
    };
    made["import log"] = [&texts](QWidget* parent) {
        return new sites::ImportLogDialog(long_log(), "measures-20251121.log", nullptr, texts,
                                          parent);
    };
    made["merge sites"] = [&texts](QWidget* parent) {
        sites::SiteMerge merge;
        merge.new_rows = 120;
        for (int k = 0; k < 30; ++k)
            merge.conflicts.push_back({long_site("VIA ROMA 7"), long_site("VIA ROMA 9")});
        return new sites::MergeDialog(merge, "M47", texts, parent);
    };
}

/// Twenty years of visits at one site, and the letterhead of a firm with much to say.
void add_visit_report(QMap<QString, MakeDialog>& made, const ProgramState& state) {
    made["visit report"] = [&state](QWidget* parent) -> QDialog* {
        sites::Site site = long_site("VIA ROMA 7");
        site.name = site.name.toUpper();
        std::vector<sites::Visit> visits;
        for (int k = 0; k < 40; ++k) {
            sites::Visit visit{.id = QUuid::createUuid(), .site = site.id};
            visit.begun = {.utc = 1763.8e6 - 15.8e6 * k, .offset = 3600};
            if (k % 3) visit.ended = sites::Instant{.utc = visit.begun.utc + 2400, .offset = 3600};
            visit.technician = "MASSIMILIANO BONAVENTURA-CASTELLANI";
            visit.plan = "IMPIANTO CENTRALIZZATO";
            visits.push_back(visit);
        }
        return new sites::VisitReportForm(state, site, visits, {}, parent);
    };
    made["letterhead"] = [&state](QWidget* parent) -> QDialog* {
        auto* dialog = new sites::LetterheadDialog(state, parent);
        dialog->findChild<QPlainTextEdit*>("letterhead_company")
            ->setPlainText(QString("Antennista Rossi di Rossi Mario e Figli S.n.c.\n").repeated(6));
        return dialog;
    };
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
    made["peak held"] = peak([](peak::PeakDialog& dialog) {
        show_levels(dialog);
        peak::PeakOutcome outcome;
        outcome.search.end = peak::SearchEnd::held;
        outcome.search.moved = outcome.linked = outcome.motor_stopped = true;
        outcome.attenuator_back = false;
        dialog.show_end(outcome);
    });
    made["peak beyond"] = peak([](peak::PeakDialog& dialog) {
        show_levels(dialog);
        peak::PeakOutcome outcome;
        outcome.search.end = peak::SearchEnd::nothing_better;
        outcome.search.start_db = 48.3;
        outcome.search.looked = {{-46, 59.6}, {0, 48.3}};
        outcome.search.moved = outcome.linked = outcome.motor_stopped = true;
        outcome.attenuator_back = false;
        dialog.show_end(outcome);
    });
    add_identification(made, state, line);
    made["site"] = [&texts](QWidget* parent) {
        const sites::Site site{.id = QUuid::createUuid(),
                               .name = QString("Condominio Rossi ").repeated(12),
                               .address = "Via Roma 7",
                               .remarks = QString("chiavi dal portiere\n").repeated(9)};
        return new sites::SiteDialog(site, false, texts, parent);
    };
    add_visits(made, texts);
    add_visit_report(made, state);
    made["old database"] = [&texts](QWidget* parent) {
        return new olddb::ReportDialog("M47", QString("Line of the report\n").repeated(60), texts,
                                       parent);
    };
    return made;
}

}  // namespace m47::shell
