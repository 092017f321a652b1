// SPDX-License-Identifier: GPL-3.0-or-later
#include "identification_run.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "commands.h"
#include "fault.h"
#include "work.h"

namespace m47::identify {
namespace {

constexpr Bilingual kBegun{"which satellite this is has not been asked yet",
                           "non si era ancora chiesto quale satellite è"};
constexpr Bilingual kSoFar{"which satellite this is was being found out: %1 answers had come",
                           "si cercava quale satellite è: erano arrivate %1 risposte"};
constexpr Bilingual kAskingLevel{"Identifying the satellite: question %1",
                                 "Identificazione del satellite: domanda %1"};
constexpr Bilingual kAskingLock{"Identifying the satellite: lock at %1 MHz",
                                "Identificazione del satellite: aggancio a %1 MHz"};
/// A meter that gives nothing sure so often tells nothing any more.
constexpr int kMostUnanswered = 5;

bool is_answered(const Answer& answer) {
    return answer.db.has_value() || answer.locked.has_value();
}

Said doing_of(const Question& question, std::size_t number) {
    if (question.kind == Question::Kind::level) return {kAskingLevel, {QString::number(number)}};
    return {kAskingLock, {QString::number(question.if_mhz, 'f', 1)}};
}

}  // namespace

IdentificationRun::IdentificationRun(link::Link& link, const Lnb& lnb,
                                     std::vector<Candidate> candidates, double dish_cm)
    : link_(link),
      lnb_(lnb),
      arc_(std::move(candidates), dish_cm),
      identifier_(arc_, lnb.states()),
      at_first_(identifier_.belief().chances()),
      sky_(link, lnb) {}

bool IdentificationRun::is_over() const {
    return clear_ || sky_.lost() || unanswered_ >= kMostUnanswered;
}

std::optional<Question> IdentificationRun::next() {
    if (is_over()) return std::nullopt;
    if (!start_) start_ = link_.clock().steady();
    std::optional<Question> question = identifier_.next_question();
    clear_ = !question;
    return question;
}

void IdentificationRun::ask(const Question& question) {
    Asked asked{question, lnb_.state(question.state),
                lnb_.sky_mhz(question.state, question.if_mhz)};
    if (on_question) on_question(asked);
    asked.answer = sky_.ask(question);
    // What nobody has answered was not asked.
    if (sky_.lost()) return;
    asked.from_start = seconds();
    identifier_.take(question, asked.answer);
    unanswered_ = is_answered(asked.answer) ? 0 : unanswered_ + 1;
    asked_.push_back(asked);
    if (on_answer) on_answer(asked);
}

bool IdentificationRun::step() {
    const std::optional<Question> question = next();
    if (question) ask(*question);
    return question && !is_over();
}

/// Levels in two units, which nobody can tell apart, name nobody.
void IdentificationRun::conclude(IdentificationEnd& end) {
    const link::InOrder in_order(link_);
    try {
        end.unit_changed = sky_.unit_changed();
    } catch (const Interrupted&) {
        // Told twice to end: nobody is asked.
    }
    if (!end.unit_changed) end.verdict = identifier_.verdict();
}

IdentificationEnd IdentificationRun::finish() {
    IdentificationEnd end;
    end.stopped = stopped_;
    for (const Asked& asked : asked_) end.answers += is_answered(asked.answer) ? 1 : 0;
    if (clear_) conclude(end);
    end.not_set_back = sky_.set_back();
    end.lost = sky_.lost();
    return end;
}

IdentificationEnd IdentificationRun::run() {
    link::Work work(link_, kBegun);
    // Tells that none is connected.
    if (sky_.lost()) link_.send(link::command::kMeasure);
    try {
        while (const std::optional<Question> question = next()) {
            if (cancelled && cancelled()) throw Interrupted();
            const Said doing = doing_of(*question, asked_.size() + 1);
            work.doing(doing.words, doing.values);
            ask(*question);
            work.at(kSoFar, {QString::number(asked_.size())});
        }
    } catch (const Interrupted&) {
        // What came so far stands.
        stopped_ = true;
    } catch (...) {
        static_cast<void>(sky_.set_back());
        throw;
    }
    return finish();
}

/// What a verdict rests on besides the levels counts in the end.
void IdentificationRun::weigh_verdict(std::vector<Standing>& found) const {
    const Verdict verdict = identifier_.verdict();
    const auto is_named = [&](const Standing& one) {
        return one.kind == verdict.kind &&
               (one.kind != Verdict::Kind::candidate || one.candidate == verdict.candidate);
    };
    const auto named = std::ranges::find_if(found, is_named);
    if (named == found.end()) return;
    const double others = part_of_others(named->chance, verdict.certainty);
    for (Standing& one : found)
        one.chance = is_named(one) ? verdict.certainty : one.chance * others;
    std::ranges::stable_sort(found, std::greater(), &Standing::chance);
}

std::vector<Standing> IdentificationRun::standings() const {
    const Belief& belief = identifier_.belief();
    std::vector<Standing> found;
    if (belief.chances() == at_first_) return found;
    for (const std::size_t which : belief.order()) {
        Standing standing{Verdict::Kind::candidate, which, belief.chances()[which]};
        if (which == belief.none()) standing.kind = Verdict::Kind::none_of_these;
        if (which == belief.nothing()) standing.kind = Verdict::Kind::no_satellite;
        found.push_back(standing);
    }
    if (clear_) weigh_verdict(found);
    return found;
}

std::optional<double> IdentificationRun::drift() const {
    if (standings().empty()) return std::nullopt;
    return identifier_.verdict().drift;
}

double IdentificationRun::seconds() const {
    return start_ ? link_.clock().steady() - *start_ : 0;
}

}  // namespace m47::identify
