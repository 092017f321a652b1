// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_sweep.h"

#include "carrier_names.h"
#include "exit_status.h"
#include "fault.h"
#include "meter_levels.h"
#include "plain_file.h"
#include "say_on_stderr.h"
#include "set_back.h"
#include "sweep.h"
#include "sweep_table.h"
#include "unattended_search.h"
#include "work.h"

namespace m47::unattended {
namespace {

/// More than any scan table has.
constexpr qint64 kLongestScanTable = qint64{4} * 1024 * 1024;

struct SweepRun {
    UnattendedSearch& search;
    band::MeterLevels levels{search.link()};
    band::Sweep sweep{levels, *search.options.sweep};
    band::SweepTerms terms{};
    std::vector<band::ListedTransponder> listed{};
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

/// False, with a complaint, where the table cannot be read.
bool read_scan_table(SweepRun& run) {
    const QString& name = run.search.options.scan_table;
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
    if (!run.search.options.carriers)
        run.search.output.write(band::sweep_line({sample, run.terms}));
}

void print_carriers(SweepRun& run) {
    std::vector<band::Carrier> carriers = band::find_carriers(
        run.sweep.plan().curve(),
        band::measured_filter(run.sweep.plan().curve()).value_or(band::kUsualFilter));
    band::name_carriers(carriers, run.listed, run.terms);
    for (const band::Carrier& carrier : carriers)
        run.search.output.write(band::carrier_line(carrier, run.terms));
}

/// Asks level by level until all is asked, the link is lost or somebody wants it to end.
void ask_levels(SweepRun& run) {
    try {
        run.levels.prepare(run.terms.feed);
        run.terms.unit = measurement::unit_of_index(run.search.link().settings.unit());
        run.search.output.write(run.search.options.carriers ? band::carrier_header()
                                                            : band::sweep_header());
        while (!run.search.output.closed()) {
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
    const link::InOrder in_order(run.search.link());
    try {
        run.unit_changed = run.levels.unit_changed();
    } catch (const Interrupted&) {
        // Told once more to end: nobody is asked.
    }
    if (!run.unit_changed) return;
    if (run.levels.told_apart())
        say_of_run(
            QStringLiteral("the unit was changed at the meter during the sweep, which ends "
                           "with the levels before that"));
    else
        say_of_run(
            QStringLiteral("the unit was changed at the meter during the sweep, so its levels "
                           "cannot be told apart"));
}

/// One sentence about how the meter is left, where it is not as it was or nobody can know.
void set_back(SweepRun& run) {
    const QString left = set_meter_back(run.levels, run.search.texts);
    run.not_set_back = !left.isEmpty();
    if (run.not_set_back) say_of_run(left);
}

int status_of(SweepRun& run) {
    if (run.levels.lost()) return kNoLink;
    if (run.search.output_lost()) return kOutputLost;
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
    UnattendedSearch search(texts, connection, options);
    search.record();
    SweepRun run{search};
    run.terms = terms_of(options.antenna);
    if (!read_scan_table(run)) return kUsage;
    const auto sweep = [&run] {
        ask_levels(run);
        check_unit(run);
        set_back(run);
        const bool known = !run.unit_changed || run.levels.told_apart();
        if (run.search.options.carriers && known) print_carriers(run);
    };
    return search.run(sweep, [&run] { return status_of(run); });
}

}  // namespace m47::unattended
