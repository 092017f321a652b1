// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "identifier.h"
#include "link_sky.h"
#include "texts.h"

namespace m47::identify {

/// A question with what is known of it.
struct Asked {
    Question question;
    LnbState lnb;             ///< how it is fed for it
    double sky_mhz = 0;       ///< the frequency before the LNB
    Answer answer{};          ///< empty before it is there
    double from_start = 0.0;  ///< seconds from the first question until it was there
};

/// One of the answers that are possible, for a bar or a row.
struct Standing {
    Verdict::Kind kind = Verdict::Kind::candidate;
    std::size_t candidate = 0;  ///< where it is one
    double chance = 0;          ///< 0 to 1
};

/// How an identification ended, for whoever waited for it.
struct IdentificationEnd {
    std::optional<Verdict> verdict{};  ///< nothing where it ended before it was clear
    bool unit_changed = false;         ///< meanwhile, at the meter: its levels name nobody
    bool stopped = false;              ///< told to stop or to end
    bool lost = false;                 ///< nobody answers any more
    int answers = 0;
    std::vector<Bilingual> not_set_back{};
};

/// Finds out over the line which satellite the dish looks at, one question at a time. The meter is
/// set back at the end.
class IdentificationRun {
  public:
    /// `candidates` as `lnb` receives them, at least one; the dish is of `dish_cm`.
    IdentificationRun(link::Link& link, const Lnb& lnb, std::vector<Candidate> candidates,
                      double dish_cm = 80);

    /// Asked before each question of run(); true ends it as stopped.
    std::function<bool()> cancelled;
    /// Told of each question before it is asked, and again with its answer. Both may call what is
    /// const here.
    std::function<void(const Asked& asked)> on_question;
    std::function<void(const Asked& asked)> on_answer;

    /// Asks one question; false once there is none any more: it is clear, nobody answers, or the
    /// meter gives nothing that is sure. Told to stop or to end, it throws Interrupted. Whoever
    /// calls it calls finish() at the end.
    bool step();
    /// Sets the meter back and says how it ended.
    IdentificationEnd finish();
    /// All steps and the end. Told to stop it ends with what there is and does not throw.
    IdentificationEnd run();

    const std::vector<Candidate>& candidates() const { return arc_.candidates(); }
    /// All questions that have an answer, in order.
    const std::vector<Asked>& asked() const { return asked_; }
    /// What is held of all possible answers, the most probable first, in the end as the verdict has
    /// it; empty as long as nothing is known, which is before the band was looked over.
    std::vector<Standing> standings() const;
    /// Of the LNB if the most probable candidate is the right one, MHz; nothing while nothing is
    /// known.
    std::optional<double> drift() const;
    /// Since the first question.
    double seconds() const;

  private:
    bool is_over() const;
    std::optional<Question> next();
    void ask(const Question& question);
    void conclude(IdentificationEnd& end);
    void weigh_verdict(std::vector<Standing>& found) const;

    link::Link& link_;
    Lnb lnb_;
    Arc arc_;
    Identifier identifier_;
    std::vector<double> at_first_;  ///< the chances before anything was asked
    LinkSky sky_;
    std::vector<Asked> asked_;
    std::optional<double> start_;
    bool clear_ = false;
    int unanswered_ = 0;  ///< one behind the other
    bool stopped_ = false;
};

/// "13.0E (Hotbird)", or the plan's name.
QString candidate_text(const Candidate& candidate);
/// A candidate's text, or what says that it is none.
QString standing_text(const Standing& standing, const std::vector<Candidate>& candidates,
                      const Texts& texts);
/// A certainty in whole percent, as nothing is ever quite certain "99 %" at most.
QString percent_text(double chance);
/// "This is 13.0E (Hotbird), certainty 98 %; runner-up 16.0E (Eutelsat), 1 %.", or that it is none.
QString verdict_text(const Verdict& verdict, const std::vector<Candidate>& candidates,
                     const Texts& texts);
/// One sentence about how it ended, with the verdict where there is one, and one more where the
/// meter is not as it was.
QString end_text(const IdentificationEnd& end, const std::vector<Candidate>& candidates,
                 const Texts& texts);

}  // namespace m47::identify
