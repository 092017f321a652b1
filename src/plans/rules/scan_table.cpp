// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan_table.h"

#include <array>
#include <optional>

#include "box_numbers.h"
#include "numbers.h"
#include "scan_reader.h"

namespace m47::plans {
namespace {

/// A band that an LNB converts with one oscillator.
struct Band {
    double from;  ///< MHz, included
    double to;    ///< MHz, not included
    int oscillator;
    bool tone;
};
constexpr std::array kBands{
    Band{3000, 4231, 5150, false},
    Band{10670, 11700, 9750, false},
    Band{11700, 12751, 10600, true},
};

constexpr double kKilo = 1000;

std::optional<Band> band_of(double mhz) {
    for (const Band& band : kBands)
        if (mhz >= band.from && mhz < band.to) return band;
    return std::nullopt;
}

/// 1 for 13 V (vertical, circular right), 2 for 18 V (horizontal, circular left).
int supply_of(const QString& polarisation) {
    const QString letter = polarisation.left(1).toUpper();
    if (letter == u"V" || letter == u"R") return 1;
    return letter == u"H" || letter == u"L" ? 2 : 0;
}

ImportCandidate candidate_of(const Transponder& transponder, double unit_offset) {
    ImportCandidate candidate{.line = transponder.line, .record = import_defaults(unit_offset)};
    const double mhz = link::meter_value(transponder.frequency) / kKilo;
    const double rate = link::meter_value(transponder.symbol_rate) / kKilo;
    programme::ProgramRecord& record = candidate.record;
    record.sat_ad = true;
    record.frequenza = programme::frequency_box_text(mhz, false);
    record.qpsk_symbolrate = link::format_number(rate, "0");
    record.lnb_volt = supply_of(transponder.polarisation);
    const bool satellite = transponder.system.startsWith(QLatin1String("DVBS"));
    if (!satellite || mhz <= 0 || rate <= 0 || record.lnb_volt == 0) {
        candidate.problem = ImportProblem::unreadable;
        return candidate;
    }
    const std::optional<Band> band = band_of(mhz);
    if (!band) {
        candidate.problem = ImportProblem::out_of_range;
        return candidate;
    }
    record.loc_osc = false;
    record.loc_osc0 = band->tone ? 1 : 0;
    record.K22 = band->tone ? 1 : 0;
    candidate.oscillator = QString::number(band->oscillator);
    return candidate;
}

}  // namespace

std::vector<ImportCandidate> parse_scan_table(const QString& text, double unit_offset) {
    std::vector<ImportCandidate> candidates;
    for (const Transponder& transponder : read_transponders(text))
        candidates.push_back(candidate_of(transponder, unit_offset));
    return candidates;
}

}  // namespace m47::plans
