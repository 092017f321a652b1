// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan_reader.h"

#include <QRegularExpression>

#include "box_numbers.h"
#include "logger_table.h"

namespace m47::plans {
namespace {

/// Without the comment.
QString significant(const QString& line) {
    return line.section(u'#', 0, 0).trimmed();
}

bool is_heading(const QString& line) {
    return line.startsWith(u'[');
}

/// What stands in the brackets; a name may hold brackets and "#" itself.
QString heading_text(const QString& line) {
    static const QRegularExpression kHeading(QStringLiteral("^\\[(.*?)\\]\\s*(#.*)?$"));
    const QRegularExpressionMatch match = kHeading.match(line);
    return (match.hasMatch() ? match.captured(1) : line.mid(1)).trimmed();
}

/// "CHANNEL" and "channel 3496000" say no more than the entries below them.
QString transponder_name(const QString& heading) {
    static const QRegularExpression kNoName(QStringLiteral("^channel(\\s+\\d+)?$"),
                                            QRegularExpression::CaseInsensitiveOption);
    return kNoName.match(heading).hasMatch() ? QString() : heading;
}

/// The system of a line of the old form, in the words of the newer one; empty for any other line.
QString old_system(const QStringList& words) {
    static const QRegularExpression kSatellite(QStringLiteral("^S[12]?$"));
    static const QRegularExpression kOther(QStringLiteral("^[TCA][12]?$"));
    const QString word = words.value(0);
    if (kSatellite.match(word).hasMatch())
        return word == u"S2" ? QStringLiteral("DVBS2") : QStringLiteral("DVBS");
    // A letter alone begins many a sentence.
    if (!kOther.match(word).hasMatch() || !programme::is_number(words.value(1))) return {};
    return word == u"A" ? QStringLiteral("ATSC") : QStringLiteral("DVB") + word;
}

Transponder old_transponder(int line, const QStringList& words) {
    return {.line = line,
            .name = {},
            .system = old_system(words),
            .frequency = words.value(1),
            .polarisation = words.value(2),
            .symbol_rate = words.value(3),
            .modulation = words.value(6),
            .code = words.value(4)};
}

/// Collects the lines of either form into transponders.
class ScanReader {
  public:
    std::vector<Transponder> transponders;

    void read(const QString& line, int number) {
        const QStringList words = significant(line).simplified().split(u' ');
        if (is_heading(line)) {
            begin_block(line, number);
        } else if (!old_system(words).isEmpty()) {
            transponders.push_back(old_transponder(number, words));
            in_block_ = false;
        } else if (in_block_) {
            take_entry(significant(line));
        } else {
            transponders.push_back({.line = number});
        }
    }

  private:
    void begin_block(const QString& line, int number) {
        transponders.push_back({.line = number, .name = transponder_name(heading_text(line))});
        in_block_ = true;
    }

    void take_entry(const QString& line) {
        const QString key = line.section(u'=', 0, 0).trimmed().toUpper();
        const QString value = line.section(u'=', 1).trimmed().toUpper();
        Transponder& current = transponders.back();
        if (key == u"DELIVERY_SYSTEM") current.system = value;
        if (key == u"FREQUENCY") current.frequency = value;
        if (key == u"POLARIZATION") current.polarisation = value;
        if (key == u"SYMBOL_RATE") current.symbol_rate = value;
        if (key == u"MODULATION") current.modulation = value;
        if (key == u"INNER_FEC") current.code = value;
    }

    bool in_block_ = false;
};

}  // namespace

std::vector<Transponder> read_transponders(const QString& table) {
    ScanReader reader;
    int number = 0;
    for (const QString& line : table_lines(table)) {
        ++number;
        if (!significant(line).isEmpty()) reader.read(line.trimmed(), number);
    }
    return reader.transponders;
}

bool is_scan_table(const QString& text) {
    for (const QString& line : table_lines(text)) {
        const QString content = significant(line);
        if (content.isEmpty()) continue;
        return is_heading(content) || !old_system(content.simplified().split(u' ')).isEmpty();
    }
    return false;
}

}  // namespace m47::plans
