// SPDX-License-Identifier: GPL-3.0-or-later
#include "candidate_choice.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "fields.h"
#include "numbers.h"
#include "tables.h"
#include "tuning_range.h"

namespace m47::identify {
namespace {

constexpr int kUsualDish = 80;
constexpr int kDishOfCBand = 240;
/// Below it an LNB receives C band.
constexpr double kLowestKuOscillator = 8000;

constexpr double kKilosymbols = 1000;  // of 1 MS/s
/// A place is written in tenths.
constexpr double kBesideTheEnd = 0.05;
constexpr int kHighVoltage = 2;  // of a program's list of supplies

constexpr Bilingual kNoTables{
    "There is no DVB scan table of a satellite in %1 that the LNB could receive: the package "
    "dtv-scan-tables brings them.",
    "In %1 non c'è nessuna tabella DVB di un satellite che l'LNB possa ricevere: le porta il "
    "pacchetto dtv-scan-tables."};
constexpr Bilingual kNoneInPart{
    "Of the DVB scan tables in %1 none is of a satellite on this part of the arc that the LNB "
    "could "
    "receive.",
    "Delle tabelle DVB in %1 nessuna è di un satellite su questa parte dell'arco che l'LNB possa "
    "ricevere."};
constexpr Bilingual kNoPlans{
    "No plan has a digital program with supply, frequency and symbol rate.",
    "Nessun piano ha un programma digitale con alimentazione, frequenza e symbol rate."};

/// MHz at the meter; nothing where the program does not say it or the meter cannot be tuned there.
std::optional<double> intermediate_of(const programme::ProgramRecord& program,
                                      const programme::Oscillators& oscillators) {
    const double mhz = link::typed_value(program.frequenza);
    const QString& oscillator = oscillators[programme::oscillator_entry(program)];
    if (!program.loc_osc && oscillator.isEmpty()) return std::nullopt;
    const double at = program.loc_osc ? mhz : std::abs(mhz - link::typed_value(oscillator));
    if (at < kLowestIf || at > kHighestIf) return std::nullopt;
    return at;
}

/// The state of the LNB that the program puts it into; nothing where it does not feed it.
std::optional<int> state_of(const programme::ProgramRecord& program, const Lnb& lnb) {
    if (program.lnb_volt == 0) return std::nullopt;
    const int high = program.lnb_volt == kHighVoltage ? 1 : 0;
    const int tone = program.K22 == 1 && lnb.states() == kStates ? kStates / 2 : 0;
    return tone + high;
}

std::optional<Carrier> carrier_of(const programme::ProgramRecord& program,
                                  const programme::Oscillators& oscillators, const Lnb& lnb) {
    const std::optional<double> at = intermediate_of(program, oscillators);
    const std::optional<int> state = state_of(program, lnb);
    const double rate = link::typed_value(program.qpsk_symbolrate);
    if (!program.sat_ad || !at || !state || rate < programme::kSymbolRateMinimum)
        return std::nullopt;
    const bool high = *state % 2 != 0;
    const char polarisation = lnb.circular ? (high ? 'L' : 'R') : (high ? 'H' : 'V');
    return Carrier{.state = *state,
                   .if_mhz = *at,
                   .rate = rate / kKilosymbols,
                   .sky_mhz = lnb.sky_mhz(*state, *at),
                   .polarisation = polarisation};
}

PlanPrograms programs_of(const db::Database& database, const QString& name) {
    PlanPrograms plan{name, {}, {}};
    db::Recordset programs = database.of_plan(db::table::kProgrammi, name);
    if (!programs.empty())
        for (programs.move_first(); !programs.end_of_set(); programs.move_next())
            plan.programs.push_back(programme::read_program(programs));
    const db::Recordset configuration = database.of_plan(db::table::kConfigurazione, name);
    if (!configuration.empty()) plan.oscillators = programme::read_oscillators(configuration);
    return plan;
}

}  // namespace

int usual_dish(const Lnb& lnb) {
    return lnb.oscillator < kLowestKuOscillator ? kDishOfCBand : kUsualDish;
}

bool ArcPart::holds(double east) const {
    const double wide = arc_between(one, other);
    return arc_between(one, east) + arc_between(east, other) < wide + 2 * kBesideTheEnd;
}

std::optional<double> place_on_arc(const QString& text) {
    static const QRegularExpression kForm(QStringLiteral("^\\d{1,3}(\\.\\d)?[EW]$"));
    const QString place = text.trimmed().toUpper();
    return kForm.match(place).hasMatch() ? position_of(place) : std::nullopt;
}

std::optional<ArcPart> arc_part_of(const QString& text) {
    if (text.count(u':') != 1) return std::nullopt;
    const auto one = place_on_arc(text.section(u':', 0, 0));
    const auto other = place_on_arc(text.section(u':', 1));
    if (!one || !other) return std::nullopt;
    return ArcPart{*one, *other};
}

std::vector<PlanPrograms> read_plans(const db::Database& database) {
    std::vector<PlanPrograms> plans;
    db::Recordset names = db::Recordset::table(database.connection(), db::table::kGruppo);
    if (names.empty()) return plans;
    for (names.move_first(); !names.end_of_set(); names.move_next())
        plans.push_back(programs_of(database, db::stored_plan_name(names.text(db::field::kNome))));
    return plans;
}

std::vector<Candidate> candidates_of_plans(const std::vector<PlanPrograms>& plans, const Lnb& lnb) {
    std::vector<Candidate> candidates;
    for (const PlanPrograms& plan : plans) {
        Candidate candidate{.name = plan.name, .is_plan = true};
        for (const programme::ProgramRecord& program : plan.programs)
            if (const auto carrier = carrier_of(program, plan.oscillators, lnb))
                candidate.carriers.push_back(*carrier);
        join_same_carriers(candidate);
        if (!candidate.carriers.empty()) candidates.push_back(candidate);
    }
    return candidates;
}

std::vector<Candidate> candidates_of(const CandidateChoice& choice, const db::Database* database) {
    if (choice.plans)
        return database ? candidates_of_plans(read_plans(*database), choice.lnb)
                        : std::vector<Candidate>();
    std::vector<Candidate> found = candidates_of_tables(read_tables(choice.folder), choice.lnb);
    if (choice.part)
        std::erase_if(found, [&](const Candidate& candidate) {
            return std::ranges::none_of(candidate.positions,
                                        [&](double east) { return choice.part->holds(east); });
        });
    return found;
}

QString why_none(const CandidateChoice& choice, const Texts& texts) {
    if (choice.plans) return texts.pick(kNoPlans);
    return texts.pick(choice.part ? kNoneInPart : kNoTables).arg(choice.folder);
}

}  // namespace m47::identify
