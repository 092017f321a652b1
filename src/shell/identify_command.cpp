// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify_command.h"

#include "identify_dialog.h"
#include "program_set.h"
#include "realtime.h"

namespace m47::shell {

IdentifyCommand::IdentifyCommand(const ProgramState& program, link::Link& link,
                                 const db::Database& database, M47MDI& window)
    : program_(program), link_(link), database_(database), window_(window) {}

void IdentifyCommand::cmdidentify_Click() {
    auto* realtime = window_.opened<realtime::Realtime>();
    if (realtime && realtime->told_that_run_goes_on()) return;
    identify::IdentifyWork work{.link = link_, .program = program_, .database = &database_};
    work.boxes = boxes_;
    work.make_programs = [this](const auto& programs) { offer(programs); };
    // It is chosen there, and nowhere else.
    if (realtime && realtime->has_motor())
        work.find_peak = [this](const identify::Asked& carrier) { find_peak(carrier); };
    identify::IdentifyDialog dialog(work, &window_);
    dialog.exec();
    boxes_ = dialog.boxes();
}

void IdentifyCommand::offer(const std::vector<plans::ImportCandidate>& programs) {
    window_.open_screen(QStringLiteral("program"));
    if (auto* plan = window_.opened<plans::ProgramSet>()) plan->offer_programs(programs);
}

void IdentifyCommand::find_peak(const identify::Asked& carrier) {
    window_.open_screen(QStringLiteral("realtime"));
    const band::Feed feed = identify::feed_of(carrier.lnb);
    realtime::WantedCarrier wanted{carrier.sky_mhz, carrier.lnb.oscillator, feed.volts, feed.tone};
    // The identification has set the meter's own back, at which this carrier does not lock.
    if (carrier.question.kind == identify::Question::Kind::lock)
        wanted.symbol_rate = carrier.question.rate;
    if (auto* screen = window_.opened<realtime::Realtime>()) screen->find_peak_at(wanted);
}

}  // namespace m47::shell
