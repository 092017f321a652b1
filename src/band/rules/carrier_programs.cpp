// SPDX-License-Identifier: GPL-3.0-or-later
#include "carrier_programs.h"

#include "box_numbers.h"
#include "numbers.h"
#include "tuning_range.h"

namespace m47::band {
namespace {

constexpr double kKilosymbols = 1000;

/// The entry of a program's supply list.
int supply_entry(const Feed& feed) {
    if (feed.volts == 13) return 1;
    return feed.volts == 18 ? 2 : 0;
}

bool is_measured_rate(double kilosymbols) {
    return kilosymbols >= programme::kSymbolRateMinimum &&
           kilosymbols <= programme::kSymbolRateMaximum;
}

void tune(plans::ImportCandidate& candidate, const Carrier& carrier, const SweepTerms& terms) {
    programme::ProgramRecord& record = candidate.record;
    record.loc_osc = !terms.oscillator;
    record.loc_osc0 = terms.feed.tone.value_or(false) ? 1 : 0;
    const double mhz =
        terms.oscillator ? sky_frequency(carrier.centre, *terms.oscillator) : carrier.centre;
    record.frequenza = programme::frequency_box_text(mhz, record.loc_osc);
    if (terms.oscillator) candidate.oscillator = link::plain_text(*terms.oscillator);
    record.lnb_volt = supply_entry(terms.feed);
    record.K22 = terms.feed.tone.value_or(false) ? 1 : 0;
}

}  // namespace

std::vector<plans::ImportCandidate> carrier_programs(const std::vector<FoundCarrier>& carriers,
                                                     double unit_offset) {
    std::vector<plans::ImportCandidate> programs;
    for (const auto& [carrier, terms] : carriers) {
        plans::ImportCandidate candidate{.line = static_cast<int>(programs.size()) + 1,
                                         .record = plans::import_defaults(unit_offset)};
        candidate.name = carrier.name;
        tune(candidate, carrier, terms);
        const double rate = carrier.symbol_rate * kKilosymbols;
        candidate.record.sat_ad = is_measured_rate(rate);
        if (candidate.record.sat_ad)
            candidate.record.qpsk_symbolrate = link::format_number(rate, "0");
        programs.push_back(candidate);
    }
    return programs;
}

}  // namespace m47::band
