// SPDX-License-Identifier: GPL-3.0-or-later
#include "candidate_programs.h"

#include <cmath>
#include <map>
#include <tuple>

#include "box_numbers.h"
#include "numbers.h"
#include "tuning_range.h"

namespace m47::identify {
namespace {

constexpr double kKiloOfMega = 1000;
constexpr double kMiddleIf = (kLowestIf + kHighestIf) / 2;

/// What tells the transponders of a satellite apart.
using Transponder = std::tuple<double, char, double>;

bool is_measured_rate(double kilosymbols) {
    return kilosymbols >= programme::kSymbolRateMinimum &&
           kilosymbols <= programme::kSymbolRateMaximum;
}

/// True where `one` can be received better than `other`, of the same transponder.
bool is_better(const Carrier& one, const Carrier& other) {
    if (one.loss != other.loss) return one.loss < other.loss;
    return std::abs(one.if_mhz - kMiddleIf) < std::abs(other.if_mhz - kMiddleIf);
}

std::map<Transponder, Carrier> transponders_of(const Candidate& candidate) {
    std::map<Transponder, Carrier> best;
    for (const Carrier& carrier : candidate.carriers) {
        const Transponder transponder{carrier.sky_mhz, carrier.polarisation, carrier.rate};
        const auto [place, is_new] = best.try_emplace(transponder, carrier);
        if (!is_new && is_better(carrier, place->second)) place->second = carrier;
    }
    return best;
}

plans::ImportCandidate program_of(const Carrier& carrier, const Lnb& lnb, double unit_offset) {
    plans::ImportCandidate program{.record = plans::import_defaults(unit_offset)};
    programme::ProgramRecord& record = program.record;
    const LnbState state = lnb.state(carrier.state);
    record.loc_osc = false;
    record.loc_osc0 = state.tone ? 1 : 0;
    record.frequenza = programme::frequency_box_text(carrier.sky_mhz, false);
    program.oscillator = link::plain_text(state.oscillator);
    record.lnb_volt = state.high_voltage ? 2 : 1;
    record.K22 = state.tone ? 1 : 0;
    record.sat_ad = true;
    const double rate = carrier.rate * kKiloOfMega;
    record.qpsk_symbolrate = link::format_number(rate, "0");
    if (!is_measured_rate(rate)) program.problem = plans::ImportProblem::rate_out_of_range;
    program.polarisation = QChar::fromLatin1(carrier.polarisation);
    program.beyond_qpsk = !carrier.lockable;
    return program;
}

}  // namespace

std::vector<plans::ImportCandidate> candidate_programs(const Candidate& candidate, const Lnb& lnb,
                                                       double unit_offset) {
    std::vector<plans::ImportCandidate> programs;
    for (const auto& [transponder, carrier] : transponders_of(candidate)) {
        programs.push_back(program_of(carrier, lnb, unit_offset));
        programs.back().line = static_cast<int>(programs.size());
    }
    return programs;
}

}  // namespace m47::identify
