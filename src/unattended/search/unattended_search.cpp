// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_search.h"

#include "end_signals.h"
#include "fault.h"
#include "say_on_stderr.h"
#include "unattended.h"

namespace m47::unattended {

UnattendedSearch::UnattendedSearch(Texts& spoken, MeterConnection& to_meter, const Options& asked)
    : texts(spoken), connection(to_meter), options(asked), recording_(to_meter.recorder(), spoken) {
    spoken.language = kEnglish;
    link().interrupted = [] { return platform::times_told_to_end() > 0; };
    link().cut_off = [] { return platform::times_told_to_end() > 1; };
    recording_.on_lost = say_of_run;
    output.on_remark = say_of_run;
}

void UnattendedSearch::record() {
    if (!options.trace.isEmpty()) recording_.start(options.trace);
}

int UnattendedSearch::run(const std::function<void()>& search, const std::function<int()>& status) {
    try {
        if (!meter_answers()) return kNoLink;
        search();
    } catch (const Interrupted&) {
        say_of_run(QStringLiteral("ended without a link to the meter"));
        return kNoLink;
    }
    output.finish(kLongestReaderWait, [] { return platform::times_told_to_end() > 1; });
    return status();
}

bool UnattendedSearch::meter_answers() {
    connection.identify(options.on_port);
    if (link().port_connected) return true;
    say_of_run(no_meter_text(connection, options.on_port));
    return false;
}

}  // namespace m47::unattended
