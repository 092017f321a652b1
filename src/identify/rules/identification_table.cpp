// SPDX-License-Identifier: GPL-3.0-or-later
#include "identification_table.h"

#include <algorithm>
#include <cmath>

#include "measurement_output.h"

namespace m47::identify {
namespace {

constexpr double kThousandths = 1000;

QByteArray tenths(double value) {
    return QByteArray::number(value, 'f', 1);
}

QByteArray rounded_down(double chance) {
    return QByteArray::number(std::floor(std::min(chance, 0.9999) * kThousandths) / kThousandths,
                              'f', 3);
}

/// State of the LNB, frequencies and symbol rate.
QByteArrayList question_cells(const Asked& asked) {
    const Question& question = asked.question;
    const bool lock = question.kind == Question::Kind::lock;
    return {lock ? "lock" : "level",
            QByteArray::number(feed_of(asked.lnb).volts.value_or(0)),
            asked.lnb.tone ? "on" : "off",
            tenths(question.if_mhz),
            tenths(asked.sky_mhz),
            lock ? QByteArray::number(std::lround(question.rate * kThousandths)) : QByteArray()};
}

/// Level with mark and unit, lock with MER and offset.
QByteArrayList answer_cells(const Answer& answer, std::optional<LevelUnit> unit) {
    QByteArrayList cells{"", "", "", "", "", ""};
    if (answer.db) {
        cells[0] = tenths(*answer.db);
        cells[1] = answer.below_range ? "<" : "";
        cells[2] = measurement::unit_text(unit).toLatin1();
    }
    if (answer.locked) cells[3] = *answer.locked ? "yes" : "no";
    if (answer.mer) cells[4] = tenths(*answer.mer);
    if (answer.offset) cells[5] = QByteArray::number(*answer.offset, 'f', 2);
    return cells;
}

/// A candidate's name and its satellites, or what says that it is none.
QByteArrayList name_cells(const Standing& standing, const std::vector<Candidate>& candidates) {
    if (standing.kind != Verdict::Kind::candidate)
        return {standing_text(standing, candidates, Texts()).toUtf8(), ""};
    const Candidate& candidate = candidates[standing.candidate];
    return {candidate.name.simplified().toUtf8(),
            candidate.satellites.join(QStringLiteral(", ")).simplified().toUtf8()};
}

/// What is held: `first`, the most probable candidate but for it, and the drift.
QByteArrayList held_cells(const IdentificationRun& run, const Standing& first) {
    QByteArrayList cells = name_cells(first, run.candidates());
    cells += rounded_down(first.chance);
    const std::vector<Standing> standings = run.standings();
    const auto next = std::ranges::find_if(standings, [&](const Standing& other) {
        const bool same = other.kind == first.kind && other.candidate == first.candidate;
        return other.kind == Verdict::Kind::candidate && !same;
    });
    if (next == standings.end())
        cells += {"", ""};
    else
        cells += {name_cells(*next, run.candidates()).constFirst(), rounded_down(next->chance)};
    const std::optional<double> drift = run.drift();
    const bool of_it = drift && first.kind == Verdict::Kind::candidate;
    return cells += of_it ? tenths(*drift) : QByteArray();
}

QByteArray line_of(const QByteArrayList& cells) {
    return cells.join('\t') + '\n';
}

}  // namespace

QByteArray identification_header() {
    return "asked\tlnb\ttone\tif_mhz\tsky_mhz\tsymbol_rate\tlevel\tlevel_mark\tunit\tlocked\tmer\t"
           "offset\tcandidate\tsatellites\tchance\trunner_up\trunner_up_chance\tdrift\n";
}

QByteArray asked_line(const IdentificationRun& run, const Asked& asked,
                      std::optional<LevelUnit> unit) {
    const std::vector<Standing> standings = run.standings();
    const QByteArrayList held = standings.empty() ? QByteArrayList{"", "", "", "", "", ""}
                                                  : held_cells(run, standings.front());
    return line_of(question_cells(asked) + answer_cells(asked.answer, unit) + held);
}

QByteArray verdict_line(const IdentificationRun& run, const IdentificationEnd& end) {
    if (!end.verdict) return {};
    const Verdict& verdict = *end.verdict;
    const bool named = verdict.kind == Verdict::Kind::candidate;
    QByteArrayList cells{"verdict"};
    for (int empty = 0; empty < 11; ++empty) cells += "";
    return line_of(
        cells + held_cells(run, {verdict.kind, named ? verdict.candidate : 0, verdict.certainty}));
}

}  // namespace m47::identify
