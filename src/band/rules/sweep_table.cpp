// SPDX-License-Identifier: GPL-3.0-or-later
#include "sweep_table.h"

#include <QRegularExpression>
#include <array>
#include <charconv>

#include "measurement_output.h"
#include "oscillators.h"
#include "tuning_range.h"

namespace m47::band {
namespace {

constexpr Bilingual kNoTable{
    "This is no table of a band sweep: its first line is another.",
    "Questa non è una tabella di una scansione: la prima riga è un'altra."};
constexpr Bilingual kUnsound{"The table was read up to line %1, which is no row of a band sweep.",
                             "La tabella è stata letta fino alla riga %1, che non è una riga di "
                             "una scansione."};
constexpr Bilingual kCutOff{"The table was read up to line %1, which is cut off.",
                            "La tabella è stata letta fino alla riga %1, che è troncata."};

const std::array kUnits{kDbuv, kDbmv, kDbm};
constexpr qsizetype kCells = 7;
/// No band has more samples; what is longer was not written by a sweep.
constexpr qsizetype kLongestTable = 200000;

/// The shortest text that is this value again.
QByteArray shortest(float value) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
    return QByteArray(text.data(), end - text.data());
}

QByteArray megahertz(double mhz) {
    return QByteArray::number(mhz, 'f', 1);
}

QByteArray sky_text(double mhz, const std::optional<double>& oscillator) {
    return oscillator ? megahertz(sky_frequency(mhz, *oscillator)) : QByteArray();
}

/// Unit, supply and tone.
QByteArrayList terms_cells(const SweepTerms& terms) {
    QByteArray supply;
    if (terms.feed.volts)
        supply = *terms.feed.volts == 0 ? "off" : QByteArray::number(*terms.feed.volts);
    QByteArray tone;
    if (terms.feed.tone) tone = *terms.feed.tone ? "on" : "off";
    return {measurement::unit_text(terms.unit).toLatin1(), supply, tone};
}

QByteArray line_of(const QByteArrayList& cells) {
    return cells.join('\t') + '\n';
}

/// A number as a sweep writes it, within the bounds.
std::optional<double> number(const QByteArray& cell, const QRegularExpression& form, double minimum,
                             double maximum) {
    if (!form.match(QString::fromLatin1(cell)).hasMatch()) return std::nullopt;
    const double value = cell.toDouble();
    return value >= minimum && value <= maximum ? std::optional(value) : std::nullopt;
}

std::optional<double> frequency(const QByteArray& cell, double minimum, double maximum) {
    static const QRegularExpression kForm(QStringLiteral("\\A\\d{3,5}\\.\\d\\z"));
    return number(cell, kForm, minimum, maximum);
}

std::optional<double> decibel(const QByteArray& cell) {
    static const QRegularExpression kForm(QStringLiteral("\\A-?\\d{1,3}(\\.\\d{1,3})?\\z"));
    constexpr double kMost = 300;
    return number(cell, kForm, -kMost, kMost);
}

bool take_level(const QByteArray& cell, const QByteArray& mark, measurement::Reading& reading) {
    if (cell.isEmpty()) return mark.isEmpty();
    const auto value = decibel(cell);
    if (!value || !(mark.isEmpty() || mark == "<" || mark == ">")) return false;
    reading.value = static_cast<float>(*value);
    if (mark == "<") reading.mark = measurement::RangeMark::below;
    if (mark == ">") reading.mark = measurement::RangeMark::above;
    return true;
}

bool take_unit(const QByteArray& cell, std::optional<LevelUnit>& unit) {
    for (const LevelUnit one : kUnits)
        if (cell == measurement::unit_text(one).toLatin1()) unit = one;
    return unit || cell.isEmpty();
}

bool take_feed(const QByteArray& supply, const QByteArray& tone, Feed& feed) {
    for (const int volts : programme::kSupplyVolts)
        if (supply == (volts == 0 ? QByteArray("off") : QByteArray::number(volts)))
            feed.volts = volts;
    if (tone == "on" || tone == "off") feed.tone = tone == "on";
    return (feed.volts || supply.isEmpty()) && (feed.tone || tone.isEmpty());
}

/// The oscillator follows from where a level lies in the band and in the sky.
bool take_sky(const QByteArray& cell, double mhz, std::optional<double>& oscillator) {
    if (cell.isEmpty()) return true;
    const auto sky = frequency(cell, 0, programme::kOscillatorMaximum + 2150);
    if (!sky) return false;
    for (const double candidate : {*sky - mhz, *sky + mhz})
        if (programme::is_oscillator(candidate) && sky_text(mhz, candidate) == cell)
            oscillator = candidate;
    return oscillator.has_value();
}

std::optional<SweepRow> row_of(const QByteArrayList& cells) {
    if (cells.size() != kCells) return std::nullopt;
    const programme::TuningRange band = programme::tuning_range(true, 0);
    const auto mhz = frequency(cells[0], band.minimum, band.maximum);
    SweepRow row;
    if (!mhz || !take_sky(cells[1], *mhz, row.terms.oscillator)) return std::nullopt;
    row.sample.mhz = *mhz;
    if (!take_level(cells[2], cells[3], row.sample.level)) return std::nullopt;
    if (!take_unit(cells[4], row.terms.unit)) return std::nullopt;
    if (!take_feed(cells[5], cells[6], row.terms.feed)) return std::nullopt;
    return row;
}

/// The line that begins at `begin`, its CR left out; `begin` is behind its LF then. Nothing where
/// the bytes end before one.
std::optional<QByteArray> next_line(const QByteArray& bytes, qsizetype& begin) {
    const qsizetype end = bytes.indexOf('\n', begin);
    if (end < 0) return std::nullopt;
    QByteArray line = bytes.mid(begin, end - begin);
    if (line.endsWith('\r')) line.chop(1);
    begin = end + 1;
    return line;
}

}  // namespace

double sky_frequency(double mhz, double oscillator) {
    const programme::TuningRange range = programme::tuning_range(false, oscillator);
    return range.minimum > oscillator ? oscillator + mhz : oscillator - mhz;
}

QByteArray sweep_header() {
    return line_of({"if_mhz", "sky_mhz", "level", "level_mark", "unit", "lnb", "tone"});
}

QByteArray sweep_line(const SweepRow& row) {
    const measurement::Reading& level = row.sample.level;
    const bool there = level.measured();
    return line_of(QByteArrayList{megahertz(row.sample.mhz),
                                  sky_text(row.sample.mhz, row.terms.oscillator),
                                  there ? shortest(level.value) : QByteArray(),
                                  there ? measurement::mark_text(level.mark) : QByteArray()} +
                   terms_cells(row.terms));
}

QByteArray carrier_header() {
    return line_of({"centre_if_mhz", "centre_sky_mhz", "width_mhz", "level", "height_db", "unit",
                    "lnb", "tone", "name"});
}

QByteArray carrier_line(const Carrier& carrier, const SweepTerms& terms) {
    return line_of(
        QByteArrayList{megahertz(carrier.centre), sky_text(carrier.centre, terms.oscillator),
                       megahertz(carrier.width), QByteArray::number(carrier.level, 'f', 1),
                       QByteArray::number(carrier.height, 'f', 1)} +
        terms_cells(terms) + QByteArrayList{carrier.name.simplified().toUtf8()});
}

SweepRead read_sweep(const QByteArray& bytes) {
    SweepRead read;
    qsizetype begin = 0;
    const std::optional<QByteArray> header = next_line(bytes, begin);
    if (!header || *header + '\n' != sweep_header()) {
        read.fault = Said{kNoTable, {}};
        return read;
    }
    for (qsizetype place = 2; begin < bytes.size(); ++place) {
        const std::optional<QByteArray> line = next_line(bytes, begin);
        std::optional<SweepRow> row;
        if (line && place <= kLongestTable) row = row_of(line->split('\t'));
        if (!row) {
            read.fault = Said{line ? kUnsound : kCutOff, {QString::number(place)}};
            return read;
        }
        read.rows.push_back(*row);
    }
    return read;
}

}  // namespace m47::band
