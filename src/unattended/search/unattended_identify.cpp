// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_identify.h"

#include "exit_status.h"
#include "identification_table.h"
#include "say_on_stderr.h"
#include "unattended_search.h"

namespace m47::unattended {
namespace {

struct IdentifyingRun {
    UnattendedSearch& search;
    identify::IdentificationRun identification;
    identify::IdentificationEnd end{};
};

void ask_the_sky(IdentifyingRun& run) {
    const link::Link& link = run.search.link();
    run.search.output.write(identify::identification_header());
    run.identification.cancelled = [&run] { return run.search.output.closed(); };
    run.identification.on_answer = [&run, &link](const identify::Asked& asked) {
        run.search.output.write(identify::asked_line(
            run.identification, asked, measurement::unit_of_index(link.settings.unit())));
    };
    run.end = run.identification.run();
    const QByteArray verdict = identify::verdict_line(run.identification, run.end);
    if (!verdict.isEmpty()) run.search.output.write(verdict);
}

bool is_named(const IdentifyingRun& run) {
    return run.end.verdict && run.end.verdict->kind == identify::Verdict::Kind::candidate;
}

/// One line about how it ended, where no satellite is named or the meter is not as it was.
void tell_how_it_ended(const IdentifyingRun& run) {
    if (is_named(run) && run.end.not_set_back.empty()) return;
    say_of_run(end_text(run.end, run.identification.candidates(), run.search.texts));
}

int status_of(const IdentifyingRun& run) {
    if (run.end.lost) return kNoLink;
    if (run.search.output_lost()) return kOutputLost;
    if (!run.end.verdict || !run.end.not_set_back.empty()) return kIncomplete;
    return is_named(run) ? kGood : kAlarmFailed;
}

}  // namespace

int run_identification(Texts& texts, MeterConnection& connection, const Options& options,
                       const db::Database* database) {
    UnattendedSearch search(texts, connection, options);
    const identify::CandidateChoice& choice = *options.identify;
    std::vector<identify::Candidate> candidates = candidates_of(choice, database);
    if (candidates.empty()) {
        say_of_run(why_none(choice, texts));
        return choice.plans ? kDatabase : kUsage;
    }
    search.record();
    IdentifyingRun run{
        search, {search.link(), choice.lnb, std::move(candidates), double(choice.dish_cm())}};
    const auto identify = [&run] {
        ask_the_sky(run);
        tell_how_it_ended(run);
    };
    return search.run(identify, [&run] { return status_of(run); });
}

}  // namespace m47::unattended
