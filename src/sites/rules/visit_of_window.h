// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "open_sites.h"
#include "visit_recorder.h"

namespace m47::sites {

/// The visit that runs while somebody measures in the windows, or that was cut off and can be gone
/// on with. Without either nothing is opened and nothing is done.
class VisitOfWindow {
  public:
    enum class State { none, cut_off, running };

    /// `sites` outlives it.
    explicit VisitOfWindow(OpenSites& sites) : sites_(sites) {}
    ~VisitOfWindow();
    VisitOfWindow(const VisitOfWindow&) = delete;
    VisitOfWindow& operator=(const VisitOfWindow&) = delete;

    /// Told when there is something else to show of it: its state, or rows that are not stored.
    std::function<void()> on_change;
    /// Told once a visit, when a row of it cannot be stored.
    std::function<void(const StoreError& error)> on_fault;
    /// Told once a visit, when it was removed from the file while it ran; missing_text() says so.
    std::function<void()> on_gone;

    State state() const { return state_; }
    /// Of the visit that runs, or was cut off; without either they are empty.
    const Site& site() const { return site_; }
    const Visit& visit() const { return visit_; }
    /// Rows of it that are in the file, those from before it was cut off too, and that are not.
    int rows() const;
    int missing() const { return recorder_ ? recorder_->missing() : 0; }
    /// As VisitRecorder has it.
    std::optional<Said> missing_text() const;

    /// Looks for a visit that was cut off, or left to be gone on with. The file of sites is opened
    /// only where there is one. A StoreFault where it cannot be read; the visit is offered again at
    /// the next look.
    void look_for_cut_off();

    /// Begins a visit at `site`, which is stored where it is not in the file. A Fault, and nothing
    /// changed, where it cannot be stored.
    void begin(const Site& site, const VisitFacts& facts, const QDateTime& now);
    /// Goes on with the one that was cut off. A Fault, and nothing changed, where that cannot be.
    void go_on();

    /// Keeps a row, as VisitRecorder::take does; nothing without a visit that runs.
    void take(const measurement::Measurement& measured, int offset);

    VisitFacts facts() const;
    /// Ends it: the running one now, one that was cut off with its last row. What is missing of it;
    /// nothing where all is stored. A visit with neither rows nor remarks is removed. A Fault, and
    /// nothing changed, where one that was cut off cannot be ended.
    std::optional<Said> end(const VisitFacts& facts, const QDateTime& now);

    /// Leaves the running one to be gone on with the next time. What is missing of it.
    std::optional<Said> leave();

  private:
    void show(const Visit& visit);
    void listen();
    void resume_with(VisitRecorder& recorder);
    void end_cut_off(const VisitFacts& facts);
    std::optional<Said> end_running(const VisitFacts& facts, const QDateTime& now);
    void forget();
    void changed() const;

    OpenSites& sites_;
    std::shared_ptr<SiteStore> store_;
    std::unique_ptr<VisitRecorder> recorder_;
    State state_ = State::none;
    Site site_;
    Visit visit_;
    int before_ = 0;  ///< rows from before it was cut off
    int shown_ = 0;   ///< missing rows that were told
};

}  // namespace m47::sites
