// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan_table.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <tuple>

#include "box_numbers.h"
#include "numbers.h"
#include "scan_reader.h"
#include "tuning_range.h"

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
/// No satellite sends below it: a smaller number is meant in MHz.
constexpr double kLowestKhz = 100000;

/// What tells transponders of one table apart: frequency, polarisation, symbol rate.
using Carrier = std::tuple<double, QString, double>;

std::optional<Band> band_of(double mhz) {
    for (const Band& band : kBands)
        if (mhz >= band.from && mhz < band.to) return band;
    return std::nullopt;
}

QString polarisation_letter(const Transponder& transponder) {
    return transponder.polarisation.left(1).toUpper();
}

/// 1 for 13 V (vertical, circular right), 2 for 18 V (horizontal, circular left).
int supply_of(const QString& letter) {
    if (letter == u"V" || letter == u"R") return 1;
    return letter == u"H" || letter == u"L" ? 2 : 0;
}

bool is_satellite(const Transponder& transponder) {
    return transponder.system.startsWith(QLatin1String("DVBS"));
}

bool is_other_network(const Transponder& transponder) {
    for (const char* system : {"DVBT", "DVBC", "DVBH", "ISDBT", "ISDBC", "ATSC", "DTMB", "DAB"})
        if (transponder.system.startsWith(QLatin1String(system))) return true;
    return false;
}

/// True for what a receiver of QPSK does not lock: its level alone can be measured.
bool is_beyond_qpsk(const Transponder& transponder) {
    const QString modulation = transponder.modulation.toUpper();
    return transponder.system == u"DVBS2" || modulation.contains(QLatin1String("PSK/8")) ||
           modulation.contains(QLatin1String("8PSK")) || modulation.contains(QLatin1String("APSK"));
}

/// The number in `text`, 0 where it is none or less.
double positive(const QString& text) {
    return programme::is_number(text) ? std::max(0.0, link::meter_value(text)) : 0;
}

double khz_of(const Transponder& transponder) {
    const double number = positive(transponder.frequency);
    return number < kLowestKhz ? number * kKilo : number;
}

/// What a person has to look at in the table, "SYMBOL_RATE: 27x".
QStringList unread_entries(const Transponder& transponder) {
    QStringList entries;
    const auto unless = [&](bool read, const char* key, const QString& text) {
        if (!read) entries += QStringLiteral("%1: %2").arg(QLatin1String(key), text);
    };
    unless(is_satellite(transponder), "DELIVERY_SYSTEM", transponder.system);
    unless(positive(transponder.frequency) > 0, "FREQUENCY", transponder.frequency);
    unless(supply_of(polarisation_letter(transponder)) != 0, "POLARIZATION",
           transponder.polarisation);
    unless(positive(transponder.symbol_rate) > 0, "SYMBOL_RATE", transponder.symbol_rate);
    return entries;
}

/// Oscillator and tone of the band that the transponder lies in.
ImportProblem tune_to_band(ImportCandidate& candidate, double mhz) {
    const std::optional<Band> band = band_of(mhz);
    if (!band) return ImportProblem::out_of_range;
    candidate.record.loc_osc = false;
    candidate.record.loc_osc0 = band->tone ? 1 : 0;
    candidate.record.K22 = band->tone ? 1 : 0;
    candidate.oscillator = QString::number(band->oscillator);
    return ImportProblem::none;
}

bool is_measured_rate(double rate) {
    return rate >= programme::kSymbolRateMinimum && rate <= programme::kSymbolRateMaximum;
}

ImportCandidate candidate_of(const Transponder& transponder, double unit_offset) {
    ImportCandidate candidate{.line = transponder.line, .record = import_defaults(unit_offset)};
    candidate.name = transponder.name;
    candidate.beyond_qpsk = is_beyond_qpsk(transponder);
    if (!candidate.beyond_qpsk) candidate.code = programme::code_rate_of(transponder.code);
    const double khz = khz_of(transponder);
    const double rate = positive(transponder.symbol_rate) / kKilo;
    programme::ProgramRecord& record = candidate.record;
    record.sat_ad = true;
    // What is no number is shown as nothing, and not as 0.
    record.frequenza = khz > 0 ? programme::frequency_box_text(khz / kKilo, false) : QString();
    record.qpsk_symbolrate = rate > 0 ? link::format_number(rate, "0") : QString();
    record.lnb_volt = supply_of(polarisation_letter(transponder));
    if (record.lnb_volt != 0) candidate.polarisation = polarisation_letter(transponder);
    candidate.unread = unread_entries(transponder);
    if (!candidate.unread.isEmpty())
        candidate.problem = ImportProblem::unreadable;
    else if (!is_measured_rate(rate))
        candidate.problem = ImportProblem::rate_out_of_range;
    else
        candidate.problem = tune_to_band(candidate, khz / kKilo);
    if (khz != positive(transponder.frequency))
        candidate.corrections +=
            QStringLiteral("FREQUENCY: %1 → %2").arg(transponder.frequency, link::plain_text(khz));
    return candidate;
}

/// Puts transponders together as the table names them.
class ScanCollector {
  public:
    ScanTable table;

    void take(const Transponder& transponder, double unit_offset) {
        if (is_other_network(transponder)) {
            ++table.not_satellite;
            return;
        }
        ImportCandidate candidate = candidate_of(transponder, unit_offset);
        const Carrier carrier{khz_of(transponder), polarisation_letter(transponder),
                              positive(transponder.symbol_rate)};
        const bool read = candidate.unread.isEmpty();
        const auto met = read ? places_.find(carrier) : places_.end();
        const std::size_t place = met != places_.end() ? met->second : table.candidates.size();
        if (candidate.code) codes_[place].insert(*candidate.code);
        if (met != places_.end()) return join(table.candidates[place], candidate);
        if (read) places_[carrier] = place;
        table.candidates.push_back(candidate);
    }

    /// Where streams of one transponder contradict each other, nobody knows its code.
    void settle_codes() {
        for (const auto& [place, codes] : codes_)
            table.candidates[place].code =
                codes.size() == 1 ? std::optional(*codes.begin()) : std::nullopt;
    }

  private:
    static void join(ImportCandidate& first, const ImportCandidate& stream) {
        ++first.streams;
        if (first.name.isEmpty()) first.name = stream.name;
        // Named once as what the meter locks, it may be that.
        first.beyond_qpsk = first.beyond_qpsk && stream.beyond_qpsk;
    }

    std::map<Carrier, std::size_t> places_;
    std::map<std::size_t, std::set<programme::CodeRate>> codes_;
};

}  // namespace

ScanTable parse_scan_table(const QString& text, double unit_offset) {
    ScanCollector collector;
    for (const Transponder& transponder : read_transponders(text))
        collector.take(transponder, unit_offset);
    collector.settle_codes();
    return collector.table;
}

}  // namespace m47::plans
