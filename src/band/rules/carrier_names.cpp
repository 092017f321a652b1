// SPDX-License-Identifier: GPL-3.0-or-later
#include "carrier_names.h"

#include <algorithm>
#include <cmath>

#include "numbers.h"
#include "scan_table.h"

namespace m47::band {
namespace {

constexpr double kKilo = 1000;
/// An LNB drifts by 3 MHz and more, a centre is found within 1.5 MHz.
constexpr double kFarthest = 5;
constexpr double kWidthDoubt = 4;
constexpr double kWidthShare = 0.3;
constexpr int kVerticalVolts = 13;
constexpr int kHorizontalVolts = 18;

QString name_of(const plans::ImportCandidate& candidate) {
    if (!candidate.name.isEmpty()) return candidate.name;
    return QStringLiteral("%1 %2 %3")
        .arg(candidate.record.frequenza, candidate.polarisation, candidate.record.qpsk_symbolrate);
}

bool is_received(const QString& polarisation, const Feed& feed) {
    const bool low = polarisation == u"V" || polarisation == u"R";
    if (feed.volts == kVerticalVolts) return low;
    return feed.volts != kHorizontalVolts || !low;
}

bool fits(const ListedTransponder& transponder, const Carrier& carrier, double mhz,
          const Feed& feed) {
    const double doubt = std::max(kWidthDoubt, kWidthShare * transponder.symbol_rate);
    return std::abs(transponder.mhz - mhz) <= kFarthest &&
           std::abs(transponder.symbol_rate - carrier.width) <= doubt &&
           is_received(transponder.polarisation, feed);
}

}  // namespace

std::vector<ListedTransponder> listed_transponders(const QString& text) {
    std::vector<ListedTransponder> listed;
    for (const plans::ImportCandidate& candidate : plans::parse_scan_table(text, 0).candidates) {
        if (candidate.problem != plans::ImportProblem::none) continue;
        listed.push_back(
            {.mhz = link::typed_value(candidate.record.frequenza),
             .symbol_rate = link::typed_value(candidate.record.qpsk_symbolrate) / kKilo,
             .polarisation = candidate.polarisation,
             .name = name_of(candidate)});
    }
    return listed;
}

void name_carriers(std::vector<Carrier>& carriers,
                   const std::vector<ListedTransponder>& transponders, const SweepTerms& terms) {
    if (!terms.oscillator) return;
    for (Carrier& carrier : carriers) {
        const double mhz = sky_frequency(carrier.centre, *terms.oscillator);
        double nearest = kFarthest;
        for (const ListedTransponder& transponder : transponders) {
            const double off = std::abs(transponder.mhz - mhz);
            if (off > nearest || !fits(transponder, carrier, mhz, terms.feed)) continue;
            nearest = off;
            carrier.name = transponder.name;
            carrier.symbol_rate = transponder.symbol_rate;
        }
    }
}

}  // namespace m47::band
