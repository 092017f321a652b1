// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "link.h"
#include "mdi.h"
#include "open_sites.h"
#include "program_state.h"
#include "visit_of_window.h"

namespace m47::shell {

/// The entries "Begin visit…", "End visit…" and "Import log…", and what is seen of a visit.
class VisitCommand {
  public:
    /// All outlive it.
    VisitCommand(sites::VisitOfWindow& visit, sites::OpenSites& sites, const ProgramState& program,
                 link::Link& link, M47MDI& window);
    /// A visit that runs is left to be gone on with.
    ~VisitCommand();
    VisitCommand(const VisitCommand&) = delete;
    VisitCommand& operator=(const VisitCommand&) = delete;

    /// Offers to go on with a visit that was cut off. No box: it stands in the status line.
    void look_for_cut_off();

    /// Begins a visit, or goes on with the one that was cut off.
    void cmdvisit_Click();
    /// Ends the one that runs, or was cut off; false where the user does not.
    bool cmdendvisit_Click();
    void cmdimportlog_Click();

    /// False where the user, who was asked what becomes of the visit, wants to stay.
    bool may_close();

    /// The same language for what is shown.
    void show_texts();

  private:
    void begin();
    void go_on();
    void leave();
    sites::VisitFacts proposed() const;
    sites::VisitFacts facts_at_end(const QString& remarks) const;
    QString plan_in_force() const;
    void tell_lost(const std::optional<Said>& missing) const;
    QString mark_text() const;
    QString mark_more() const;

    sites::VisitOfWindow& visit_;
    sites::OpenSites& sites_;
    const ProgramState& program_;
    link::Link& link_;
    M47MDI& window_;
};

}  // namespace m47::shell
