// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "belief.h"
#include "noise_floor.h"

namespace m47::identify {

/// What the sky is asked next.
struct Question {
    enum class Kind { level, lock };
    Kind kind = Kind::level;
    int state = 0;  ///< of the LNB
    double if_mhz = 0;
    double rate = 0;  ///< MS/s, of a lock
};

/// What the sky answered: a level in dB, or whether the demodulator locked. Neither where it gave
/// no answer that counts: such a question is not asked again.
struct Answer {
    std::optional<double> db{};
    std::optional<bool> locked{};
    std::optional<double> offset{};  ///< MHz from the frequency asked, where a lock tells it
    std::optional<double> mer{};     ///< dB, where a lock tells it
    bool below_range = false;        ///< the level lies somewhere below `db`
};

/// Who asks the sky, through a meter or a simulated one.
class SkyAsker {
  public:
    virtual ~SkyAsker() = default;
    virtual Answer ask(const Question& question) = 0;
};

/// What a question costs, in seconds on the wire.
struct Costs {
    double level = 0.2;
    double lock = 6;
    double change_of_state = 0.3;  ///< supply, tone and oscillator of the LNB
};

/// What an identification ends with.
struct Verdict {
    enum class Kind { candidate, none_of_these, no_satellite };
    Kind kind = Kind::no_satellite;
    std::size_t candidate = 0;  ///< that is named; where none is, the most probable all the same
    double certainty = 0;       ///< that it is so, 0 to 1
    std::optional<std::size_t> runner_up{};  ///< the candidate that is most probable but for it
    double runner_up_chance = 0;
    double drift = 0;  ///< of the LNB, MHz, if it is the candidate
    int locks = 0;     ///< how many transponders of its table locked
};

/// What the chances of all others are to be multiplied by, where the levels gave `of_levels` to
/// what has `certainty` once all is weighed.
double part_of_others(double of_levels, double certainty);

/// Asks until it is clear which satellite a dish points at. The same answers lead to the same
/// questions. One is for one sky.
class Identifier {
  public:
    /// Of `states` of the LNB (2 or 4). The arc has to outlive it.
    Identifier(const Arc& arc, int states);

    /// Nothing once it is clear, or nothing is left that would make it clearer.
    std::optional<Question> next_question();
    void take(const Question& question, const Answer& answer);
    /// What is held now; final once there is no next question.
    Verdict verdict() const;

    const Belief& belief() const { return belief_; }
    const std::vector<Level>& levels() const { return levels_; }
    const Evidence& evidence() const { return evidence_; }
    const std::vector<LockTry>& locks() const { return evidence_.locks; }

  private:
    void plan_scan();
    void plan();
    void plan_levels();
    using Worths = std::vector<std::pair<double, Question>>;
    void add_worth(Worths& worths, const Ideas& ideas, int state, double if_mhz) const;
    Worths worths_of_levels() const;
    bool plan_lock();
    void plan_proof();
    bool wants_levels(double certainty) const;
    Verdict::Kind kind() const;
    void name_two(Verdict& verdict) const;
    double chance_of_listed(const Verdict& verdict) const;
    bool is_out_of_place(const Verdict& verdict) const;
    void name_nobody(Verdict& verdict) const;
    void note_levels();
    double filled_in(int state) const;
    void ask_by_state(std::vector<Question> questions);
    bool is_asked(int state, double if_mhz, double within) const;
    std::optional<double> above_at(int state, double if_mhz) const;
    double worth_of_lock(const LockTry& trial, std::size_t candidate, const Ideas& ideas) const;
    std::vector<std::size_t> probable() const;
    bool lock_tried(const Carrier& carrier, double if_mhz) const;
    bool is_of(const LockTry& lock, std::size_t candidate) const;
    bool among_plans() const;
    int most_locks() const;
    double chance_of_plan(std::size_t plan) const;
    double share(std::size_t candidate) const;
    bool is_settled() const;
    void name_plan(Verdict& verdict) const;
    void weigh_name(Verdict& verdict) const;
    int locks_of(std::size_t candidate) const;

    const Arc& arc_;
    int states_;
    Belief belief_;
    std::deque<Question> planned_;
    std::vector<Level> levels_;
    std::vector<Question> asked_;
    NoiseFloor floor_;
    bool scanned_ = false;
    Evidence evidence_;
    int batches_ = 0;
    int tried_locks_ = 0;
    bool proof_planned_ = false;
    bool done_ = false;
};

}  // namespace m47::identify
