// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <functional>

#include "asked_table.h"
#include "belief_bars.h"
#include "choice_panel.h"
#include "database.h"
#include "identification_run.h"
#include "link.h"
#include "plan_import.h"
#include "program_state.h"
#include "run_dialog.h"

namespace m47::identify {

/// What the dialog works with; all that is named here outlives it.
struct IdentifyWork {
    link::Link& link;
    const ProgramState& program;
    const db::Database* database = nullptr;  ///< of the plans, where there is one
    ChoiceBoxes boxes{};                     ///< as they stand at first
    /// Offers the transponders of the satellite to the plan.
    std::function<void(const std::vector<plans::ImportCandidate>& programs)> make_programs{};
    /// Goes on to the peak of the satellite, at the carrier of a question; empty where nothing
    /// turns the dish.
    std::function<void(const Asked& carrier)> find_peak{};
};

/// "Identify satellite…": shows what is held of each candidate while the sky is asked, and what was
/// asked. While it asks Esc, Stop and closing any window stop it; what came stays and can be saved.
class IdentifyDialog : public RunDialog {
    Q_OBJECT
  public:
    IdentifyDialog(IdentifyWork work, QWidget* parent);

    /// The choice as it stands now.
    ChoiceBoxes boxes() const { return choice_->boxes(); }

    /// Takes the folder of the scan tables from `folder`.
    void take_tables(const QString& folder) { choice_->set_folder(folder); }
    /// Saves what was asked to `path`, as a table.
    void save(const QString& path);

    // As while it asks --------------------------------------------------------------------
    void show_question(const Asked& asked);
    void show_beliefs(const std::vector<Standing>& standings,
                      const std::vector<Candidate>& candidates, std::optional<double> drift);
    void show_answer(const Asked& asked);
    void show_end(const IdentificationEnd& end, const std::vector<Candidate>& candidates);

  private:
    void enable(bool running) override;
    void stop_run() override;
    void build();
    void build_choice(QBoxLayout* layout);
    void build_views(QBoxLayout* layout);
    void build_states(QBoxLayout* layout);
    void build_keys(QBoxLayout* layout);
    void join_keys();
    void start();
    void identify(const CandidateChoice& choice, std::vector<Candidate> candidates);
    void follow(IdentificationRun& run);
    void begin_anew();
    std::optional<LevelUnit> unit() const;
    void tell(const QString& text, bool bold = false);
    void show_facts();
    void enable_ends();
    void ask_tables();
    void ask_save();
    void make_programs();
    void find_peak();

    IdentifyWork work_;
    ChoicePanel* choice_ = nullptr;
    BeliefBars* bars_ = nullptr;
    AskedTable* table_ = nullptr;
    QLabel* facts_ = nullptr;
    QLabel* state_ = nullptr;
    QPushButton* start_ = nullptr;
    QPushButton* stop_ = nullptr;
    QPushButton* programs_ = nullptr;
    QPushButton* peak_ = nullptr;
    QPushButton* save_ = nullptr;
    Lnb lnb_;                         ///< of what was asked last
    std::vector<Asked> asked_;        ///< with its answers
    QByteArray lines_;                ///< the same as a table
    std::optional<Candidate> named_;  ///< what the satellite was found to be
    std::optional<double> drift_;
    double seconds_ = 0;
    bool from_plans_ = false;
};

}  // namespace m47::identify
