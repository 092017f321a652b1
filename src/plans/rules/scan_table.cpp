// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan_table.h"

#include <QRegularExpression>
#include <array>
#include <optional>

#include "box_numbers.h"
#include "logger_table.h"
#include "numbers.h"

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

const QString kBlock = QStringLiteral("[CHANNEL]");
constexpr double kKilo = 1000;

/// A transponder in the words of its table.
struct Transponder {
    int line = 0;
    QString system;
    QString frequency;     ///< kHz
    QString polarisation;  ///< begins with H, V, L or R
    QString symbol_rate;   ///< S/s
};

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

bool is_old_line(const QStringList& words) {
    static const QRegularExpression kSystem(QStringLiteral("^S[12]?$"));
    return kSystem.match(words.value(0)).hasMatch();
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

QString significant(const QString& line) {
    return line.section(u'#', 0, 0).trimmed();
}

/// Collects the lines of either form into transponders.
class ScanReader {
  public:
    std::vector<Transponder> transponders;

    void read(const QString& line, int number) {
        const QStringList words = line.simplified().split(u' ');
        if (line.startsWith(u'[')) {
            transponders.push_back({number, {}, {}, {}, {}});
            in_block_ = line.toUpper() == kBlock;
        } else if (is_old_line(words)) {
            transponders.push_back(
                {number, QStringLiteral("DVBS"), words.value(1), words.value(2), words.value(3)});
            in_block_ = false;
        } else if (in_block_) {
            take_entry(line);
        } else {
            transponders.push_back({number, {}, {}, {}, {}});
        }
    }

  private:
    void take_entry(const QString& line) {
        const QString key = line.section(u'=', 0, 0).trimmed().toUpper();
        const QString value = line.section(u'=', 1).trimmed().toUpper();
        Transponder& current = transponders.back();
        if (key == u"DELIVERY_SYSTEM") current.system = value;
        if (key == u"FREQUENCY") current.frequency = value;
        if (key == u"POLARIZATION") current.polarisation = value;
        if (key == u"SYMBOL_RATE") current.symbol_rate = value;
    }

    bool in_block_ = false;
};

}  // namespace

bool is_scan_table(const QString& text) {
    for (const QString& line : table_lines(text)) {
        const QString content = significant(line);
        if (content.isEmpty()) continue;
        return content.startsWith(u'[') || is_old_line(content.simplified().split(u' '));
    }
    return false;
}

std::vector<ImportCandidate> parse_scan_table(const QString& text, double unit_offset) {
    ScanReader reader;
    int number = 0;
    for (const QString& line : table_lines(text)) {
        ++number;
        const QString content = significant(line);
        if (!content.isEmpty()) reader.read(content, number);
    }
    std::vector<ImportCandidate> candidates;
    for (const Transponder& transponder : reader.transponders)
        candidates.push_back(candidate_of(transponder, unit_offset));
    return candidates;
}

}  // namespace m47::plans
