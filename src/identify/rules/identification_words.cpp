// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "identification_run.h"

namespace m47::identify {
namespace {

constexpr int kMostNames = 3;

constexpr Bilingual kNone{"none of these", "nessuno di questi"};
constexpr Bilingual kNothing{"no satellite", "nessun satellite"};

constexpr Bilingual kNamed{"This is %1, certainty %2.", "Questo è %1, certezza %2."};
constexpr Bilingual kNamedBefore{"This is %1, certainty %2; runner-up %3, %4.",
                                 "Questo è %1, certezza %2; secondo %3, %4."};
constexpr Bilingual kNoneOfThese{
    "None of these satellites, certainty %1; the most probable of them would be %2.",
    "Nessuno di questi satelliti, certezza %1; il più probabile di essi sarebbe %2."};
constexpr Bilingual kNoSatellite{"No satellite: nothing but noise, certainty %1.",
                                 "Nessun satellite: solo rumore, certezza %1."};

constexpr Bilingual kNoMeter{"Nothing was asked: no meter answers.",
                             "Non si è chiesto niente: nessuno strumento risponde."};
constexpr Bilingual kLost{
    "The link to the meter was lost at %1 answers, which stay, before it was clear which satellite "
    "this is.",
    "Il collegamento con lo strumento si è perso a %1 risposte, che restano, prima che fosse "
    "chiaro "
    "quale satellite è."};
constexpr Bilingual kStopped{"Stopped at %1 answers, before it was clear which satellite this is.",
                             "Fermato a %1 risposte, prima che fosse chiaro quale satellite è."};
constexpr Bilingual kUnsure{
    "The meter gave no sure answer any more: %1 answers stay, and it is not clear which satellite "
    "this is.",
    "Lo strumento non ha più dato una risposta sicura: restano %1 risposte e non è chiaro quale "
    "satellite è."};
constexpr Bilingual kUnitChanged{
    "The unit was changed at the meter meanwhile, so its levels cannot be compared: no satellite "
    "is named. Start again.",
    "Nel frattempo l'unità è stata cambiata sullo strumento, quindi i suoi livelli non si possono "
    "confrontare: nessun satellite viene nominato. Ricominciare."};
constexpr Bilingual kNotSetBack{" Not set back: %1.", " Non ripristinati: %1."};

QString named_text(const Verdict& verdict, const std::vector<Candidate>& candidates,
                   const Texts& texts) {
    const QString name = candidate_text(candidates[verdict.candidate]);
    const QString certainty = percent_text(verdict.certainty);
    if (!verdict.runner_up) return texts.pick(kNamed).arg(name, certainty);
    return texts.pick(kNamedBefore)
        .arg(name, certainty, candidate_text(candidates[*verdict.runner_up]),
             percent_text(verdict.runner_up_chance));
}

QString unclear_text(const IdentificationEnd& end, const Texts& texts) {
    const QString answers = QString::number(end.answers);
    if (end.lost) return texts.pick(kLost).arg(answers);
    if (end.unit_changed) return texts.pick(kUnitChanged);
    return texts.pick(end.stopped ? kStopped : kUnsure).arg(answers);
}

}  // namespace

QString candidate_text(const Candidate& candidate) {
    if (candidate.satellites.isEmpty()) return candidate.name;
    QStringList names = candidate.satellites.mid(0, kMostNames);
    if (candidate.satellites.size() > kMostNames) names += QStringLiteral("…");
    return candidate.name + QStringLiteral(" (") + names.join(QStringLiteral(", ")) + u')';
}

QString standing_text(const Standing& standing, const std::vector<Candidate>& candidates,
                      const Texts& texts) {
    if (standing.kind == Verdict::Kind::candidate)
        return candidate_text(candidates[standing.candidate]);
    return texts.pick(standing.kind == Verdict::Kind::none_of_these ? kNone : kNothing);
}

QString percent_text(double chance) {
    const int percent = std::min(99, static_cast<int>(std::floor(chance * 100)));
    return QString::number(percent) + QStringLiteral(" %");
}

QString verdict_text(const Verdict& verdict, const std::vector<Candidate>& candidates,
                     const Texts& texts) {
    switch (verdict.kind) {
        case Verdict::Kind::candidate:
            return named_text(verdict, candidates, texts);
        case Verdict::Kind::none_of_these:
            return texts.pick(kNoneOfThese)
                .arg(percent_text(verdict.certainty),
                     candidate_text(candidates[verdict.candidate]));
        case Verdict::Kind::no_satellite:
            break;
    }
    return texts.pick(kNoSatellite).arg(percent_text(verdict.certainty));
}

QString end_text(const IdentificationEnd& end, const std::vector<Candidate>& candidates,
                 const Texts& texts) {
    if (end.lost && end.answers == 0 && end.not_set_back.empty()) return texts.pick(kNoMeter);
    const QString said =
        end.verdict ? verdict_text(*end.verdict, candidates, texts) : unclear_text(end, texts);
    if (end.not_set_back.empty()) return said;
    return said + texts.pick(kNotSetBack).arg(band::names_in(end.not_set_back, texts));
}

}  // namespace m47::identify
