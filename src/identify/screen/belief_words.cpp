// SPDX-License-Identifier: GPL-3.0-or-later
#include "belief_words.h"

#include "measurement.h"

namespace m47::identify {
namespace {

constexpr Bilingual kLevelAt{"Level at %1 MHz, %2…", "Livello a %1 MHz, %2…"};
constexpr Bilingual kLockAt{"Does %1 MHz, %2 lock with %3 MS/s? This takes some seconds…",
                            "%1 MHz, %2 si aggancia con %3 MS/s? Ci vuole qualche secondo…"};
constexpr Bilingual kAnswers{"Answers: %1, %2 s", "Risposte: %1, %2 s"};
constexpr Bilingual kDrift{", LNB drift %1 MHz", ", deriva dell'LNB %1 MHz"};
constexpr Bilingual kLocked{"locked", "agganciato"};
constexpr Bilingual kLockedOff{"locked, %1 MHz off", "agganciato, scarto %1 MHz"};
constexpr Bilingual kNoLock{"no lock", "non agganciato"};
constexpr Bilingual kNoAnswer{"no sure answer", "nessuna risposta sicura"};

QString with_sign(double mhz) {
    const QString text = QString::number(mhz, 'f', 1);
    return mhz > 0 ? u'+' + text : text;
}

}  // namespace

std::vector<Bar> bars_of(const std::vector<Standing>& standings,
                         const std::vector<Candidate>& candidates, const Texts& texts) {
    std::vector<Bar> bars;
    int shown = 0;
    for (const Standing& standing : standings) {
        const bool candidate = standing.kind == Verdict::Kind::candidate;
        if (candidate && ++shown > kShownCandidates) continue;
        bars.push_back({standing_text(standing, candidates, texts), standing.chance});
    }
    return bars;
}

QString question_text(const Asked& asked, const Texts& texts) {
    const QString mhz = QString::number(asked.sky_mhz, 'f', 1);
    if (asked.question.kind == Question::Kind::level)
        return texts.pick(kLevelAt).arg(mhz, feed_text(asked.lnb));
    return texts.pick(kLockAt).arg(mhz, feed_text(asked.lnb),
                                   QString::number(asked.question.rate, 'f', 1));
}

QString facts_text(int answers, double seconds, std::optional<double> drift, const Texts& texts) {
    const QString text = texts.pick(kAnswers).arg(answers).arg(QString::number(seconds, 'f', 0));
    return drift ? text + texts.pick(kDrift).arg(with_sign(*drift)) : text;
}

QString answer_text(const Asked& asked, std::optional<LevelUnit> unit, const Texts& texts) {
    const Answer& answer = asked.answer;
    if (asked.question.kind == Question::Kind::level) {
        if (!answer.db) return texts.pick(kNoAnswer);
        const QString value = QString::number(*answer.db, 'f', 1);
        return ((answer.below_range ? u'<' + value : value) + u' ' + measurement::unit_text(unit))
            .trimmed();
    }
    if (!answer.locked) return texts.pick(kNoAnswer);
    if (!*answer.locked) return texts.pick(kNoLock);
    return answer.offset ? texts.pick(kLockedOff).arg(with_sign(*answer.offset))
                         : texts.pick(kLocked);
}

QString feed_text(const LnbState& state) {
    const QString volts = state.high_voltage ? QStringLiteral("18 V") : QStringLiteral("13 V");
    return state.tone ? volts + QStringLiteral(" 22 kHz") : volts;
}

}  // namespace m47::identify
