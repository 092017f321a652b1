// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_sweep.h"

#include "carrier_names.h"
#include "end_signals.h"
#include "fault.h"
#include "line_recording.h"
#include "meter_levels.h"
#include "plain_file.h"
#include "row_output.h"
#include "say_on_stderr.h"
#include "set_back.h"
#include "standard_streams.h"
#include "sweep.h"
#include "sweep_table.h"
#include "unattended.h"
#include "work.h"

namespace m47::unattended {
namespace {

/// More than any scan table has.
constexpr qint64 kLongestScanTable = qint64{4} * 1024 * 1024;

struct SweepRun {
    const Texts& texts;
    MeterConnection& connection;
    const Options& options;
    band::MeterLevels levels{connection.link()};
    band::Sweep sweep{levels, *options.sweep};
    band::SweepTerms terms{};
    std::vector<band::ListedTransponder> listed{};
    RowOutput output{platform::kStandardOutput};
    LineRecording recording{connection.recorder(), texts};
    int without_level = 0;
    bool unit_changed = false;
    bool not_set_back = false;
};

band::SweepTerms terms_of(const AntennaOptions& antenna) {
    band::SweepTerms terms;
    terms.feed = feed_of(antenna);
    if (antenna.oscillator) terms.oscillator = *antenna.oscillator;
    return terms;
}

/// False, with a say_of_runt, where the table cannot be read.
bool read_scan_table(SweepRun& run) {
    const QString& name = run.options.scan_table;
    if (name.isEmpty()) return true;
    const platform::FileReading table = platform::read_plain_file(name, kLongestScanTable);
    if (table.fault != platform::FileFault::none) {
        say_of_run(QStringLiteral("cannot read the scan table %1: %2")
                       .arg(name, why_not_read(table, QStringLiteral("it is too long"))));
        return false;
    }
    run.listed = band::listed_transponders(QString::fromUtf8(table.bytes));
    if (!run.listed.empty()) return true;
    say_of_run(QStringLiteral("the scan table %1 lists no transponder").arg(name));
    return false;
}

void print_level(SweepRun& run, const band::Sample& sample) {
    if (!sample.level.measured()) ++run.without_level;
    if (!run.options.carriers) run.output.write(band::sweep_line({sample, run.terms}));
}

void print_carriers(SweepRun& run) {
    std::vector<band::Carrier> carriers = band::find_carriers(
        run.sweep.plan().curve(),
        band::measured_filter(run.sweep.plan().curve()).value_or(band::kUsualFilter));
    band::name_carriers(carriers, run.listed, run.terms);
    for (const band::Carrier& carrier : carriers)
        run.output.write(band::carrier_line(carrier, run.terms));
}

/// Asks level by level until all is asked, the link is lost or somebody wants it to end.
void ask_levels(SweepRun& run) {
    try {
        run.levels.prepare(run.terms.feed);
        run.terms.unit = measurement::unit_of_index(run.connection.link().settings.unit());
        run.output.write(run.options.carriers ? band::carrier_header() : band::sweep_header());
        while (!run.output.closed()) {
            const std::optional<band::Sample> sample = run.sweep.step();
            if (!sample) return;
            print_level(run, *sample);
        }
    } catch (const Interrupted&) {
        // What was found so far stands.
    }
}

/// Where somebody chose another unit at the meter, the levels are told to be in it in vain.
void check_unit(SweepRun& run) {
    if (run.sweep.plan().curve().empty()) return;
    const link::InOrder in_order(run.connection.link());
    try {
        run.unit_changed = run.levels.unit_changed();
    } catch (const Interrupted&) {
        // Told once more to end: nobody is asked.
    }
    if (run.unit_changed)
        say_of_run(
            QStringLiteral("the unit was changed at the meter during the sweep, so its levels "
                           "cannot be told apart"));
}

/// One sentence about how the meter is left, where it is not as it was or nobody can know.
void set_back(SweepRun& run) {
    const QString left = set_meter_back(run.levels, run.texts);
    run.not_set_back = !left.isEmpty();
    if (run.not_set_back) say_of_run(left);
}

int status_of(SweepRun& run) {
    if (run.levels.lost()) return kNoLink;
    if (run.output.lost() || run.recording.lost()) return kOutputLost;
    if (run.sweep.plan().curve().empty()) {
        say_of_run(QStringLiteral("nothing was measured"));
        return kIncomplete;
    }
    if (run.without_level > 0) {
        say_of_run(QStringLiteral("the meter gave no sure level at %1 of %2 frequencies")
                       .arg(run.without_level)
                       .arg(run.sweep.plan().asked()));
        return kIncomplete;
    }
    return run.not_set_back || run.unit_changed ? kIncomplete : kGood;
}

}  // namespace

int run_sweep(Texts& texts, MeterConnection& connection, const Options& options) {
    begin_run(texts, connection);
    SweepRun run{texts, connection, options};
    run.recording.on_lost = say_of_run;
    if (!options.trace.isEmpty()) run.recording.start(options.trace);
    run.terms = terms_of(options.antenna);
    run.output.on_remark = say_of_run;
    try {
        if (!read_scan_table(run)) return kUsage;
        if (!meter_answers(connection, options.on_port)) return kNoLink;
        ask_levels(run);
        check_unit(run);
        set_back(run);
    } catch (const Interrupted&) {
        say_of_run(QStringLiteral("ended without a link to the meter"));
        return kNoLink;
    }
    if (options.carriers && !run.unit_changed) print_carriers(run);
    run.output.finish(kLongestReaderWait, [] { return platform::times_told_to_end() > 1; });
    return status_of(run);
}

}  // namespace m47::unattended
