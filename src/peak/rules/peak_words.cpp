// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstdlib>

#include "peak_run.h"
#include "port_diagnosis.h"

namespace m47::peak {
namespace {

// A level that is higher by less at an end of the span is one of noise.
constexpr double kRisesDb = 1;

constexpr Bilingual kEast{"%1° east", "%1° a est"};
constexpr Bilingual kWest{"%1° west", "%1° a ovest"};
constexpr Bilingual kFound{"The peak is found: %1 of the start, %2 dB better than there.",
                           "Massimo trovato: %1 dell'inizio, %2 dB meglio di lì."};
constexpr Bilingual kFoundAtStart{"The dish stood on the peak already: %1 dB better than before.",
                                  "L'antenna era già sul massimo: %1 dB meglio di prima."};
constexpr Bilingual kNothingBetter{
    "Nothing better was found within the span: the dish is back at its start.",
    "Nell'arco non si è trovato niente di meglio: l'antenna è di nuovo all'inizio."};
constexpr Bilingual kRises{
    "No peak within the span, but the level rises towards its end: %1 dB more %2 of the start. The "
    "dish is back at its start.",
    "Nessun massimo nell'arco, ma il livello sale verso un suo estremo: %1 dB in più %2 "
    "dell'inizio. L'antenna è di nuovo all'inizio."};
constexpr Bilingual kNothingMoved{"Stopped before anything moved.",
                                  "Fermato prima di ogni movimento."};
constexpr Bilingual kStopped{"Stopped: the motor was told to stop, and the dish stays where it is.",
                             "Fermato: il motore ha ricevuto lo stop e l'antenna resta dov'è."};
constexpr Bilingual kNoLevel{"The meter gave no sure level: nothing was moved.",
                             "Lo strumento non ha dato un livello sicuro: nulla si è mosso."};
constexpr Bilingual kNoLevelBack{
    "The meter gave no sure level any more: the dish is back at its start.",
    "Lo strumento non ha più dato un livello sicuro: l'antenna è di nuovo all'inizio."};
constexpr Bilingual kUnitChanged{
    "The unit was changed at the meter meanwhile, so its levels cannot be compared: the dish is "
    "back at its start.",
    "Nel frattempo l'unità è stata cambiata sullo strumento, quindi i suoi livelli non si possono "
    "confrontare: l'antenna è di nuovo all'inizio."};
constexpr Bilingual kAstray{
    "The meter did not surely take a drive: the motor was told to stop, and nobody knows how far "
    "it has turned.",
    "Lo strumento non ha accettato con certezza un movimento: il motore ha ricevuto lo stop e non "
    "si sa di quanto abbia girato."};
constexpr Bilingual kHeld{
    "The motor has not turned as told, perhaps at a limit: at the start the level is another one. "
    "It was told to stop.",
    "Il motore non ha girato come detto, forse a un fine corsa: all'inizio il livello è un altro. "
    "Ha ricevuto lo stop."};
constexpr Bilingual kNotTold{
    "The link to the meter was lost and the motor could not be told to stop; its last drive, 1° at "
    "most, ends by itself.",
    "Il collegamento con lo strumento è caduto e lo stop non è arrivato al motore; il suo ultimo "
    "movimento, 1° al massimo, finisce da solo."};
constexpr Bilingual kNoStop{
    "The meter did not take the stop of the motor; its last drive, 1° at most, ends by itself.",
    "Lo strumento non ha accettato lo stop del motore; il suo ultimo movimento, 1° al massimo, "
    "finisce da solo."};
constexpr Bilingual kGone{"The link to the meter was lost",
                          "Il collegamento con lo strumento è caduto"};
constexpr Bilingual kEndsLink{"%1, which ends the link", "%1, e ciò chiude il collegamento"};
constexpr Bilingual kNoneMoved{"%1: nothing was moved.", "%1: nulla si è mosso."};
constexpr Bilingual kLeft{"%1: the motor was told to stop, and the dish stays %2.",
                          "%1: il motore ha ricevuto lo stop e l'antenna resta %2."};
constexpr Bilingual kLeftUnsure{
    "%1: the motor was told to stop, and nobody knows how far it has turned.",
    "%1: il motore ha ricevuto lo stop e non si sa di quanto abbia girato."};
constexpr Bilingual kAtItsStart{"at its start", "all'inizio"};
constexpr Bilingual kOffItsStart{"%1 of its start", "%1 dell'inizio"};
constexpr Bilingual kAttenuator{" The attenuator was not set back.",
                                " L'attenuatore non è stato reimpostato."};

QString one_decimal(double value) {
    return QString::number(value, 'f', 1);
}

QString found_text(const PeakOutcome& outcome, const Texts& texts) {
    const QString gain = one_decimal(outcome.gain().value_or(0));
    if (outcome.search.shaft == 0) return texts.pick(kFoundAtStart).arg(gain);
    return texts.pick(kFound).arg(place_text(outcome.search.shaft, texts), gain);
}

/// Where the level was highest, if that was at an end of all places looked at: what nothing in the
/// span is the peak of may lie beyond it.
std::optional<Point> highest_at_an_end(const SearchResult& search) {
    if (search.looked.empty() || !search.start_db) return {};
    const auto [west, east] = std::ranges::minmax(search.looked, {}, &Point::steps);
    const Point& higher = west.db > east.db ? west : east;
    const double most = std::ranges::max(search.looked, {}, &Point::db).db;
    const bool rises = higher.db >= most && higher.db >= *search.start_db + kRisesDb;
    return rises ? std::optional(higher) : std::nullopt;
}

QString nothing_better_text(const SearchResult& search, const Texts& texts) {
    const std::optional<Point> higher = highest_at_an_end(search);
    if (!higher) return texts.pick(kNothingBetter);
    return texts.pick(kRises).arg(one_decimal(higher->db - *search.start_db),
                                  place_text(higher->steps, texts));
}

/// Why nothing goes out any more: "The meter refused LEVANL? three times, which ends the link".
QString lost_because(const PeakOutcome& outcome, const Texts& texts) {
    if (outcome.refused.isEmpty()) return texts.pick(kGone);
    QString why = texts.pick(kEndsLink).arg(link::refused_text(outcome.refused, texts));
    why.front() = why.front().toUpper();
    return why;
}

QString lost_text(const PeakOutcome& outcome, const Texts& texts) {
    const QString why = lost_because(outcome, texts);
    if (!outcome.search.moved) return texts.pick(kNoneMoved).arg(why);
    if (!outcome.motor_stopped) return texts.pick(outcome.refused.isEmpty() ? kNotTold : kNoStop);
    if (!outcome.place) return texts.pick(kLeftUnsure).arg(why);
    const QString place = *outcome.place == 0
                              ? texts.pick(kAtItsStart)
                              : texts.pick(kOffItsStart).arg(place_text(*outcome.place, texts));
    return texts.pick(kLeft).arg(why, place);
}

const Bilingual& words_of(const PeakOutcome& outcome) {
    const bool moved = outcome.search.moved;
    if (!outcome.motor_stopped) return kNoStop;
    switch (outcome.search.end) {
        case SearchEnd::astray:
            return kAstray;
        case SearchEnd::held:
            return kHeld;
        case SearchEnd::lost:
            return moved ? kNoLevelBack : kNoLevel;
        case SearchEnd::unit_changed:
            return kUnitChanged;
        default:
            return moved ? kStopped : kNothingMoved;
    }
}

QString unfound_text(const PeakOutcome& outcome, const Texts& texts) {
    if (outcome.came_to_its_end()) return nothing_better_text(outcome.search, texts);
    return outcome.linked ? texts.pick(words_of(outcome)) : lost_text(outcome, texts);
}

}  // namespace

QString place_text(int steps, const Texts& texts) {
    const QString degrees = one_decimal(std::abs(double(steps)) / kStepsOfDegree);
    if (steps == 0) return degrees + u'°';
    return texts.pick(steps > 0 ? kEast : kWest).arg(degrees);
}

QString end_sentence(const PeakOutcome& outcome, const Texts& texts) {
    const bool good = outcome.came_to_its_end() && outcome.search.end == SearchEnd::found;
    const QString sentence = good ? found_text(outcome, texts) : unfound_text(outcome, texts);
    return outcome.attenuator_back ? sentence : sentence + texts.pick(kAttenuator);
}

}  // namespace m47::peak
