// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

#include "site_store.h"
#include "visit_claim.h"

namespace m47::sites {

/// `site` is called `name`, whatever the capitals and the blanks around it.
bool is_called(const Site& site, const QString& name);

/// The site that is_called() `name`; nothing where there is none, a Fault where there are several.
std::optional<Site> site_named(const SiteStore& store, const QString& name);

/// `moment` with what the wall clock showed.
Instant instant_of(const QDateTime& moment);

/// What is known of a visit when it is begun.
struct VisitFacts {
    QString technician{};
    QString instrument{};
    QString logo{};
    QString plan{};
    QString remarks{};
};

/// Keeps the rows of a visit as they are measured. A file that fails in the middle stops nobody:
/// that is told once, the rows wait for it in memory, and what is missing at the end is counted.
class VisitRecorder {
  public:
    /// So many rows wait for a file that fails; further ones are given up.
    static constexpr std::size_t kMostWaiting = 10'000;

    /// `store` has to outlive the recorder.
    explicit VisitRecorder(SiteStore& store);
    ~VisitRecorder();
    VisitRecorder(const VisitRecorder&) = delete;
    VisitRecorder& operator=(const VisitRecorder&) = delete;

    /// Told at the first row, or end, of the visit that cannot be stored.
    std::function<void(const StoreError& error)> on_fault;

    /// Told once where the visit, or its site, was removed from the file meanwhile: missing_text()
    /// says what of it is lost.
    std::function<void()> on_gone;

    /// Begins a visit at the site called `site`, which is made where there is none of that name. A
    /// StoreFault, and no visit, where it cannot be stored; a Fault where several have that name.
    void begin(const QString& site, const VisitFacts& facts, const QDateTime& now);
    /// The same at `site`, which is stored where it is not in the file.
    void begin(const Site& site, const VisitFacts& facts, const QDateTime& now);

    /// Goes on with `visit`, which was cut off or ended. A StoreFault, and no visit, where it
    /// cannot be stored; one that is not in the file any more, or that another process keeps, is a
    /// Fault.
    void resume(const QUuid& visit);

    /// Stores `measured`, whose instant is that of a clock `offset` seconds ahead of UTC; nothing
    /// while no visit runs. Never a fault.
    void take(const measurement::Measurement& measured, int offset);

    /// The facts as they are known now; they are stored with the end.
    void tell(const VisitFacts& facts);
    VisitFacts facts() const;

    /// Stores what waits, where the file works again. Never a fault.
    void try_again();

    /// Leaves the visit to be gone on with later. Rows that the file does not take now are lost.
    /// Never a fault.
    void leave();

    /// Ends the visit, as far as the file takes it; nothing while none runs. Never a fault.
    void end(const QDateTime& now) { end(instant_of(now)); }
    void end(const Instant& now);

    bool running() const { return running_; }
    /// The visit was removed from the file while it ran.
    bool gone() const { return gone_; }
    /// The visit that runs, or that ran last.
    const std::optional<Visit>& visit() const { return visit_; }
    /// Rows of the visit that are in the file by this recorder.
    int stored() const { return stored_; }
    /// Rows of the visit that are not in the file.
    int missing() const { return given_up_ + static_cast<int>(waiting_.size()); }
    /// Both, for whoever watches: how many rows are missing of how many, or that the visit is gone.
    /// Only where that is so.
    std::optional<Said> missing_text() const;

  private:
    void start(const Visit& visit);
    QUuid next_id(double utc);
    bool store_waiting();
    void store_some();
    void be_patient(int milliseconds);
    bool trapped(const std::function<void()>& work);
    bool is_gone();

    SiteStore& store_;
    VisitClaim claim_;
    std::optional<Visit> visit_;
    std::deque<VisitMeasurement> waiting_;
    std::size_t at_once_ = 1;       ///< rows that are stored together when the file works again
    std::int64_t last_moment_ = 0;  ///< of the last id, ms
    int stored_ = 0;
    int given_up_ = 0;
    bool running_ = false;
    bool told_ = false;
    bool fails_ = false;
    bool gone_ = false;
};

}  // namespace m47::sites
