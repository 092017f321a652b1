// SPDX-License-Identifier: GPL-3.0-or-later
// A DVB scan table: every transponder is there, in its place, and either tunable or marked.
#include <QSet>

#include "fuzzing.h"
#include "logger_table.h"
#include "numbers.h"
#include "scan_reader.h"
#include "scan_table.h"
#include "tuning_range.h"

namespace {

void check_candidates(const QString& text,
                      const std::vector<m47::plans::ImportCandidate>& candidates) {
    const auto lines = static_cast<int>(m47::plans::table_lines(text).size());
    int previous = 0;
    for (const m47::plans::ImportCandidate& candidate : candidates) {
        HOLDS(candidate.line > previous && candidate.line <= lines);
        previous = candidate.line;
        HOLDS(candidate.record.sat_ad && candidate.record.pg_num.isEmpty());
        HOLDS(candidate.streams > 0);
        HOLDS((candidate.problem == m47::plans::ImportProblem::unreadable) ==
              !candidate.unread.isEmpty());
        if (candidate.problem != m47::plans::ImportProblem::none) continue;
        HOLDS(!candidate.record.loc_osc);
        HOLDS(candidate.record.lnb_volt == 1 || candidate.record.lnb_volt == 2);
        static const QSet<QString> kOscillators{QStringLiteral("5150"), QStringLiteral("9750"),
                                                QStringLiteral("10600")};
        HOLDS(kOscillators.contains(candidate.oscillator));
        HOLDS((candidate.oscillator == u"10600") == (candidate.record.K22 == 1));
    }
}

/// What comes into the plan is what the table says, within what the meter tunes.
void check_preview(const std::vector<m47::plans::ImportCandidate>& candidates) {
    const m47::plans::ImportPreview preview = m47::plans::preview_import(candidates, {}, {}, 0);
    for (const m47::plans::ImportRow& row : preview.rows) {
        if (!row.added()) continue;
        const double oscillator = m47::link::typed_value(row.oscillator);
        const m47::programme::TuningRange range = m47::programme::tuning_range(false, oscillator);
        const double mhz = m47::link::typed_value(row.record.frequenza);
        HOLDS(mhz >= range.minimum && mhz <= range.maximum);
    }
}

/// A table without a fault in it gives one program a line.
void check_inverse(unsigned number) {
    const double mhz = 10700 + number % 2000;
    const QString line = QStringLiteral("S %1 %2 27500000")
                             .arg(mhz * 1000, 0, 'f', 0)
                             .arg(number % 2 == 0 ? QChar(u'V') : QChar(u'H'));
    const auto candidates = m47::plans::parse_scan_table(line, 0).candidates;
    HOLDS(candidates.size() == 1 && candidates[0].problem == m47::plans::ImportProblem::none);
    HOLDS(m47::link::typed_value(candidates[0].record.frequenza) == mhz);
    HOLDS(candidates[0].record.lnb_volt == (number % 2 == 0 ? 1 : 2));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = fuzzing::Input(data, size).text();
    const m47::plans::ScanTable table = m47::plans::parse_scan_table(text, 0);
    const auto& candidates = table.candidates;
    if (m47::plans::is_scan_table(text)) HOLDS(!candidates.empty() || table.not_satellite > 0);
    check_candidates(text, candidates);
    check_preview(candidates);
    if (size >= 2) check_inverse(data[0] * 256U + data[1]);
    return 0;
}
