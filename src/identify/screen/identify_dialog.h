// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QBoxLayout>
#include <QDialog>
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
class IdentifyDialog : public QDialog {
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
    /// Shows that it asks, or that it does not.
    void show_running(bool running);
    void show_question(const Asked& asked);
    void show_beliefs(const std::vector<Standing>& standings,
                      const std::vector<Candidate>& candidates, std::optional<double> drift);
    void show_answer(const Asked& asked);
    void show_end(const IdentificationEnd& end, const std::vector<Candidate>& candidates);

    bool eventFilter(QObject* watched, QEvent* event) override;

  public Q_SLOTS:
    void reject() override;

  private:
    void build();
    void build_choice(QBoxLayout* layout);
    void build_views(QBoxLayout* layout);
    void build_states(QBoxLayout* layout);
    void build_keys(QBoxLayout* layout);
    void join_keys();
    QPushButton* add_key(QBoxLayout* keys, const char* name, const Bilingual& caption);
    void start();
    void identify(const CandidateChoice& choice, std::vector<Candidate> candidates);
    void follow(IdentificationRun& run);
    void begin_anew();
    std::optional<LevelUnit> unit() const;
    void tell(const QString& text, bool bold = false);
    void show_facts();
    void enable_ends();
    void stop();
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
    QPushButton* close_ = nullptr;
    QAction* escape_ = nullptr;
    Lnb lnb_;                         ///< of what was asked last
    std::vector<Asked> asked_;        ///< with its answers
    QByteArray lines_;                ///< the same as a table
    std::optional<Candidate> named_;  ///< what the satellite was found to be
    std::optional<double> drift_;
    double seconds_ = 0;
    bool from_plans_ = false;
    bool running_ = false;
    bool leave_ = false;  ///< a window was told to close while it asked
};

}  // namespace m47::identify
