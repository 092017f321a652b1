// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_identify.h"

#include "end_signals.h"
#include "fault.h"
#include "identification_table.h"
#include "line_recording.h"
#include "row_output.h"
#include "say_on_stderr.h"
#include "set_back.h"
#include "standard_streams.h"
#include "unattended.h"

namespace m47::unattended {
namespace {

struct IdentifyingRun {
    const Texts& texts;
    MeterConnection& connection;
    const Options& options;
    identify::IdentificationRun identification;
    RowOutput output{platform::kStandardOutput};
    LineRecording recording{connection.recorder(), texts};
    identify::IdentificationEnd end{};
};

void ask_the_sky(IdentifyingRun& run) {
    const link::Link& link = run.connection.link();
    run.output.write(identify::identification_header());
    run.identification.cancelled = [&run] { return run.output.closed(); };
    run.identification.on_answer = [&run, &link](const identify::Asked& asked) {
        run.output.write(identify::asked_line(run.identification, asked,
                                              measurement::unit_of_index(link.settings.unit())));
    };
    run.end = run.identification.run();
    const QByteArray verdict = identify::verdict_line(run.identification, run.end);
    if (!verdict.isEmpty()) run.output.write(verdict);
}

bool is_named(const IdentifyingRun& run) {
    return run.end.verdict && run.end.verdict->kind == identify::Verdict::Kind::candidate;
}

/// One line about how it ended, where no satellite is named or the meter is not as it was.
void tell_how_it_ended(const IdentifyingRun& run) {
    if (is_named(run) && run.end.not_set_back.empty()) return;
    say_of_run(end_text(run.end, run.identification.candidates(), run.texts));
}

int status_of(const IdentifyingRun& run) {
    if (run.end.lost) return kNoLink;
    if (run.output.lost() || run.recording.lost()) return kOutputLost;
    if (!run.end.verdict || !run.end.not_set_back.empty()) return kIncomplete;
    return is_named(run) ? kGood : kAlarmFailed;
}

}  // namespace

int run_identification(Texts& texts, MeterConnection& connection, const Options& options,
                       const db::Database* database) {
    begin_run(texts, connection);
    const identify::CandidateChoice& choice = *options.identify;
    std::vector<identify::Candidate> candidates = candidates_of(choice, database);
    if (candidates.empty()) {
        say_of_run(why_none(choice, texts));
        return choice.plans ? kDatabase : kUsage;
    }
    IdentifyingRun run{
        texts,
        connection,
        options,
        {connection.link(), choice.lnb, std::move(candidates), double(choice.dish_cm())}};
    run.recording.on_lost = say_of_run;
    if (!options.trace.isEmpty()) run.recording.start(options.trace);
    run.output.on_remark = say_of_run;
    try {
        if (!meter_answers(connection, options.on_port)) return kNoLink;
        ask_the_sky(run);
        tell_how_it_ended(run);
    } catch (const Interrupted&) {
        say_of_run(QStringLiteral("ended without a link to the meter"));
        return kNoLink;
    }
    run.output.finish(kLongestReaderWait, [] { return platform::times_told_to_end() > 1; });
    return status_of(run);
}

}  // namespace m47::unattended
